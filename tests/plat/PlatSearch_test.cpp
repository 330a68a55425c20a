// Reading directories and the attributes of names.
#include "plat/PlatSearch.h"

#include <map>

#include <fcntl.h>
#include <sys/stat.h>

#include "plat/PlatDrive.h"
#include "plat/Scene.h"

namespace {

class PlatSearch : public scene::Directory {
 protected:
  // "name:bits" of every name, sorted, each followed by a blank; the error number for bits that
  // could not be read; "?" where the directory did not tell that the name is a file.
  std::string listing() const {
    plat::DirectorySearch search;
    EXPECT_EQ(search.open(path()), 0);
    std::map<std::string, std::string> found;
    std::string name;
    bool maybeDirectory = false;
    while (search.next(name, maybeDirectory) == 0 && !name.empty()) {
      unsigned int bits = 0;
      const int error = search.attributesOf(name, bits);
      found[name] = (error == 0 ? std::to_string(bits) : ::strerrorname_np(error)) +
                    (maybeDirectory ? "?" : "");
    }
    std::string text;
    for (const auto& [key, value] : found) {
      text += key + ":" + value + " ";
    }
    return text;
  }
  // False where the file system keeps no attributes of users.
  bool mark(const std::string& name, std::string_view value) const {
    return plat::setExtendedAttribute(make(name), "user.DOSATTRIB", value) == 0;
  }
};

TEST_F(PlatSearch, EveryNameComesWithItsAttributesButNeverTheDots) {
  make("file");
  make(".point");
  make("locked");
  ASSERT_EQ(::chmod(at("locked").c_str(), 0444), 0);
  ASSERT_EQ(::mkdir(at("directory").c_str(), 0755), 0);
  ASSERT_EQ(::symlink("directory", at("link").c_str()), 0);
  ASSERT_EQ(::symlink("nowhere", at("dangling").c_str()), 0);
  ASSERT_EQ(::symlink("ring", at("ring").c_str()), 0);
  EXPECT_EQ(listing(),
            ".point:0 dangling:ENOENT? directory:16? file:0 link:16? locked:1 ring:ENOENT? ");
}

TEST_F(PlatSearch, HiddenAndSystemComeFromTheFileServersAttribute) {
  if (!mark("hidden", "0x2")) {
    GTEST_SKIP() << "no extended attributes here: " << plat::errorText(plat::lastFailure().error);
  }
  mark("system", "0x4");
  mark("both", "0X27");
  mark("archive", "0x20");
  mark("newer", std::string("0x2\0\3\0\0\0", 8));
  mark("long", "0x6" + std::string(100, '\0'));
  mark("nonsense", "hidden");
  EXPECT_EQ(listing(), "archive:0 both:6 hidden:2 long:6 newer:2 nonsense:0 system:4 ");
  unsigned int bits = 0;
  EXPECT_EQ(plat::attributes(at("both"), bits), 0);
  EXPECT_EQ(bits, plat::ATTRIBUTE_HIDDEN | plat::ATTRIBUTE_SYSTEM);
  std::string value;
  EXPECT_EQ(plat::getExtendedAttribute(at("long"), "user.DOSATTRIB", value), 0);
  EXPECT_EQ(value.size(), 103U);
  EXPECT_EQ(plat::getExtendedAttribute(at("long"), "user.none", value), ENODATA);
}

TEST_F(PlatSearch, DriveTellsItsSpaceAndKind) {
  std::uint64_t bytes = 0;
  plat::DriveKind kind = plat::DriveKind::fixed;
  EXPECT_EQ(plat::freeSpace("Q:\\", bytes), ENOENT) << "an unknown drive";
  EXPECT_EQ(plat::driveKind("/proc", kind), 0);
  EXPECT_EQ(kind, plat::DriveKind::unknown);
  scene::elsewhere([&] {
    scene::mountSmall(path());
    EXPECT_EQ(plat::freeSpace(path() + "\\", bytes), 0);
    EXPECT_EQ(bytes, 64U * 1024);
    EXPECT_EQ(plat::driveKind(path(), kind), 0);
    EXPECT_EQ(kind, plat::DriveKind::ramDisk);
  });
}

}  // namespace
