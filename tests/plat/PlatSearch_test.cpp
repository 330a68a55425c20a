// Reading directories and the attributes of names.
#include "plat/PlatSearch.h"

#include <fstream>
#include <numeric>
#include <set>

#include <sys/stat.h>

#include "plat/PlatDrive.h"
#include "plat/PlatSpool.h"
#include "plat/Scene.h"

namespace {

struct PlatSearch : scene::Directory {
  // "name:bits" of every name, sorted; the error for bits that could not be read; "?" where the
  // directory did not tell that the name is a file.
  std::string listing() const {
    plat::DirectorySearch search;
    EXPECT_EQ(search.open(path()), 0);
    std::set<std::string> found;
    std::string name;
    bool maybeDirectory = false;
    while (search.next(name, maybeDirectory) == 0 && !name.empty()) {
      unsigned int bits = 0;
      const int error = search.attributesOf(name, bits);
      found.insert(name + ":" + (error == 0 ? std::to_string(bits) : ::strerrorname_np(error)) +
                   (maybeDirectory ? "? " : " "));
    }
    return std::accumulate(found.begin(), found.end(), std::string());
  }
  // False where the file system keeps no attributes of users.
  bool mark(const std::string& name, std::string_view value) const {
    return plat::setExtendedAttribute(make(name), "user.DOSATTRIB", value) == 0;
  }
};

TEST_F(PlatSearch, EveryNameComesWithItsAttributesButNeverTheDots) {
  make("file");
  make(".point");
  ASSERT_EQ(::chmod(make("locked").c_str(), 0444), 0);
  std::filesystem::create_directory(at("directory"));
  std::filesystem::create_symlink("directory", at("link"));
  std::filesystem::create_symlink("ring", at("ring"));
  EXPECT_EQ(listing(), ".point:0 directory:16? file:0 link:16? locked:1 ring:ENOENT? ");
}

TEST_F(PlatSearch, HiddenAndSystemComeFromTheFileServersAttribute) {
  if (!mark("hidden", "0x2")) {
    GTEST_SKIP() << "no extended attributes here: " << plat::errorText(plat::lastFailure().error);
  }
  mark("system", "0x4");
  mark("both", "0X27");
  mark("newer", std::string("0x2\0\3\0\0\0", 8));
  mark("long", "0x6" + std::string(100, '\0'));
  mark("nonsense", "hidden");
  mark("empty", "");
  EXPECT_EQ(listing(), "both:6 empty:0 hidden:2 long:6 newer:2 nonsense:0 system:4 ");
  std::string value;
  EXPECT_EQ(plat::getExtendedAttribute(at("long"), "user.DOSATTRIB", value), 0);
  EXPECT_EQ(value.size(), 103U);
}

TEST_F(PlatSearch, DriveTellsItsSpaceAndKind) {
  std::uint64_t bytes = 0;
  plat::DriveKind kind = plat::DriveKind::fixed;
  EXPECT_EQ(plat::freeSpace("Q:\\", bytes), ENOENT) << "an unknown drive";
  EXPECT_EQ(plat::freeSpace("C:/dev/shm", bytes) | plat::driveKind("C:\\dev\\shm", kind), 0);
  EXPECT_EQ(bytes, std::filesystem::space("/dev/shm").available);
  EXPECT_EQ(kind, plat::DriveKind::ramDisk);
}

TEST_F(PlatSearch, ASpoolFileIsReadWithItsAttributesAndNothingElseIs) {
  std::ofstream(at("file")) << "content";
  ASSERT_EQ(::chmod(at("file").c_str(), 0444), 0);
  std::filesystem::create_symlink("file", at("link"));
  ASSERT_EQ(::mkfifo(at("fifo").c_str(), 0600), 0);
  plat::SpoolDirectory directory;
  EXPECT_EQ(directory.open(at("missing")), ENOENT);
  EXPECT_EQ(directory.open(path()), 0);
  std::string told;
  for (const char* name : {"file", "link", "fifo", ".", "missing"}) {
    char bytes[4];
    std::size_t length = 0;
    plat::SpoolFile file;
    unsigned int bits = 0;
    const int error = directory.read(name, bytes, sizeof bytes, length, file, bits);
    told += error == 0 ? std::string(bytes, length) + ":" + std::to_string(file.size) + ":" +
                             std::to_string(bits)
                       : std::string(" ") + ::strerrorname_np(error);
    plat::SpoolFile same;
    EXPECT_EQ(directory.status(name, same) == 0, error == 0) << name;
  }
  EXPECT_EQ(told, "cont:7:1 ELOOP EINVAL EINVAL ENOENT");
}

}  // namespace
