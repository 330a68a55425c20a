// Tests of deleting, copying, renaming and making directories.
#include "fl/FLFILES.h"

#include <sys/stat.h>

#include "fl/BrokenDevice.h"
#include "fl/Folder.h"
#include "fl/FullDisk.h"
#include "gmock/gmock.h"
#include "plat/Scene.h"

namespace {

class Files : public testing::Test {
 protected:
  unsigned int copy(const std::string& from, const std::string& to) const {
    return fl::copyFile(folder.path(from).c_str(), folder.path(to).c_str());
  }
  unsigned int copyAll(const std::string& pattern, const std::string& to) {
    return fl::copyMatching(folder.path(pattern).c_str(), to.c_str(), count);
  }
  unsigned int removeAll(const std::string& pattern) {
    return fl::deleteMatching(folder.path(pattern).c_str(), count);
  }
  unsigned int move(const std::string& from, const std::string& to) const {
    return fl::moveFile(folder.path(from).c_str(), to.c_str());
  }
  unsigned int make(const std::string& name) const {
    return fl::makeDirectory(folder.path(name).c_str());
  }

  Folder folder;
  unsigned int count = 77;
};

TEST_F(Files, CopiesAreEqualAtEveryBufferEdgeAndNoMoreReadable) {
  for (const std::size_t size : {0, 4095, 4096, 4097}) {
    const std::string name = std::to_string(size);
    folder.write(name, std::string(size, 'x'));
    folder.setMode(name, 0400);
    EXPECT_EQ(copy(name, "copy"), 0U);
    EXPECT_EQ(folder.read("copy"), std::string(size, 'x'));
    EXPECT_EQ(folder.mode("copy"), 0600U);
    EXPECT_EQ(removeAll("copy"), 0U);
  }
  EXPECT_EQ(copy("0", "none/copy"), 475U);
}

TEST_F(Files, NothingIsOverwrittenNorMadeBehindALink) {
  folder.write("a.txt", "new");
  folder.write("b.txt", "old");
  std::filesystem::create_symlink(folder.path("elsewhere"), folder.path("link.txt"));
  EXPECT_EQ(copy("a.txt", "b.txt"), 454U);
  EXPECT_EQ(copy("a.txt", "link.txt"), 454U);
  EXPECT_EQ(move("a.txt", "b.txt"), 454U);
  EXPECT_EQ(move("a.txt", folder.path("link.txt")), 454U);
  EXPECT_EQ(make("link.txt"), 454U);
  EXPECT_EQ(folder.names() + folder.read("b.txt"), "a.txt b.txt link.txtold");
}

TEST_F(Files, CopyMatchingDoesNotMeetItsOwnOutput) {
  folder.write("a.txt", "1");
  EXPECT_EQ(copyAll("*", ".bak"), 0U);
  EXPECT_EQ(folder.names(), "a.bak a.txt");
  EXPECT_EQ(copyAll("*.txt", "a<b"), 451U);
}

TEST_F(Files, DeleteMatchingLeavesWhatIsHidden) {
  for (const char* name : {"a.txt", "B.TXT", ".c.txt", "d.txt"}) {
    folder.write(name, "x");
  }
  folder.setMode("d.txt", 0444);
  EXPECT_EQ(removeAll("*.txt"), 0U);
  EXPECT_EQ(count, 2U);
  EXPECT_EQ(removeAll("*.txt"), 452U);
  EXPECT_EQ(folder.names(), ".c.txt d.txt");
  EXPECT_EQ(fl::deleteFile(folder.path("d.txt").c_str()), 460U);
}

TEST_F(Files, ABareExtensionRenamesInPlaceAndNeverAnotherSpelling) {
  folder.write("x.rcp", "x");
  EXPECT_EQ(fl::deleteFile(folder.path("x.RCP").c_str()), 452U);
  EXPECT_EQ(move("x.RCP", ".old"), 452U);
  EXPECT_EQ(move("x.rcp", folder.path("none/")), 480U);
  EXPECT_EQ(move("x.rcp", ".old"), 0U);
  EXPECT_EQ(folder.names(), "x.old");
}

TEST_F(Files, WhatTheDeviceRefusesIsToldStepByStep) {
  const std::string file = folder.write("a", "x");
  EXPECT_EQ(fl::copyFile("/proc/self/mem", folder.path("copy").c_str()),
            473U);  // it has no first byte
  EXPECT_EQ(fl::moveFile(file.c_str(), "/proc/self/moved"), 479U);
  {
    const FullDisk full(0);
    EXPECT_EQ(copy("a", "full"), 472U);
  }
  const BrokenDevice broken("close", EIO);
  EXPECT_EQ(copy("a", "closed"), 498U);
  EXPECT_EQ(folder.read("a") + folder.read("closed"), "xx");
}

TEST_F(Files, InADirectoryThatMayNotBeChangedNothingIsMoved) {
  folder.write("a", "x");
  folder.setMode("", 0555);
  scene::elsewhere([&] {
    if (::geteuid() == 0) {
      scene::becomeUser(65534);
    }
    EXPECT_EQ(move("a", folder.path("b")), 478U);
  });
  folder.setMode("", 0755);
}

TEST(ComposeTarget, TakesWhatTheTemplateLacksFromTheSource) {
  const auto composed = [](const char* source, const char* pattern) {
    SCL_String target("?");
    return fl::composeTarget(source, pattern, target) == 0 ? std::string(target.c_str()) : "451";
  };
  EXPECT_EQ(composed("C:\\in\\x.txt", "out/y"), "out\\y.txt");
  EXPECT_EQ(composed("C:\\in\\x.txt", "D:"), "D:\\in\\x.txt");
  EXPECT_EQ(composed("C:\\in\\x.txt", "\\\\s\\h\\"), "\\\\s\\h\\\\in\\x.txt");
  EXPECT_EQ(composed("/in/x.txt", ""), "451");
}

TEST_F(Files, MakingADirectoryTellsWhatIsInItsWay) {
  EXPECT_EQ(make("d/"), 0U);
  EXPECT_EQ(make("d\\"), 482U);
  const mode_t mask = ::umask(0022);
  EXPECT_EQ(make("open"), 0U);
  ::umask(mask);
  EXPECT_EQ(folder.mode("open"), 0755U);
  folder.write("f", "x");
  EXPECT_EQ(make("f/"), 454U);
  EXPECT_EQ(make("none/d"), 483U);
  EXPECT_EQ(fl::makeDirectory("/"), 482U);
  EXPECT_EQ(fl::makePath(folder.path("d/b\\c").c_str()), 0U);
  EXPECT_TRUE(std::filesystem::is_directory(folder.path("d/b/c")));
  EXPECT_EQ(fl::makePath(folder.path("f/g").c_str()), 454U);
  // A share that is not there is not made.
  const scene::Environment network("KRX_UNC_ROOT", folder.path("d"));
  EXPECT_EQ(fl::makePath("\\\\server\\share\\a\\b"), 483U);
  EXPECT_FALSE(std::filesystem::exists(folder.path("d/server")));
}

}  // namespace
