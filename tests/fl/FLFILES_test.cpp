// Tests of deleting, copying, renaming and making directories.
#include "fl/FLFILES.h"

#include "fl/Folder.h"
#include "gmock/gmock.h"

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

TEST_F(Files, CopiesAreEqualAtEveryBufferEdge) {
  for (const std::size_t size : {0, 1, 4095, 4096, 4097, 20000}) {
    const std::string text(size, 'x');
    folder.write("a.txt", text);
    std::filesystem::remove(folder.path("b.txt"));
    EXPECT_EQ(copy("a.txt", "b.txt"), 0U);
    EXPECT_EQ(folder.read("b.txt"), text);
  }
}

TEST_F(Files, CopyingNeverOverwrites) {
  folder.write("a.txt", "new");
  folder.write("b.txt", "old");
  EXPECT_EQ(copy("a.txt", "b.txt"), 454U);
  EXPECT_EQ(folder.read("b.txt"), "old");
  EXPECT_EQ(copy("none.txt", "c.txt"), 452U);
  EXPECT_EQ(copy("a.txt", "none/c.txt"), 475U);
}

TEST_F(Files, ACopyIsNoMoreReadableThanItsSource) {
  folder.write("secret.txt", "x");
  folder.setMode("secret.txt", 0400);
  EXPECT_EQ(copy("secret.txt", "b.txt"), 0U);
  EXPECT_EQ(folder.mode("b.txt"), 0600U);
}

TEST_F(Files, CopyMatchingDoesNotMeetItsOwnOutput) {
  folder.write("a.txt", "1");
  folder.write("b.txt", "2");
  EXPECT_EQ(copyAll("*", ".bak"), 0U);
  EXPECT_EQ(count, 2U);
  EXPECT_EQ(folder.names(), "a.bak a.txt b.bak b.txt");
  EXPECT_EQ(copyAll("*.txt", ".bak"), 454U);
  EXPECT_EQ(copyAll("*.doc", ".bak"), 452U);
  EXPECT_EQ(copyAll("*.txt", "a<b"), 451U);
  EXPECT_EQ(count, 0U);
}

TEST_F(Files, DeleteMatchingLeavesWhatIsHidden) {
  EXPECT_EQ(removeAll("*.txt"), 452U);
  folder.write("a.txt", "1");
  folder.write("B.TXT", "2");
  folder.write(".c.txt", "3");
  folder.write("d.txt", "4");
  folder.setMode("d.txt", 0444);
  EXPECT_EQ(removeAll("*.txt"), 0U);
  EXPECT_EQ(count, 2U);
  EXPECT_EQ(folder.names(), ".c.txt d.txt");
  EXPECT_EQ(fl::deleteFile(folder.path("d.txt").c_str()), 460U);
}

TEST_F(Files, DeletingNeverGuessesTheExtension) {
  folder.write("x.rcp", "x");
  EXPECT_EQ(fl::deleteFile(folder.path("x.RCP").c_str()), 452U);
  EXPECT_EQ(move("x.RCP", ".old"), 452U);
  EXPECT_EQ(folder.names(), "x.rcp");
}

TEST_F(Files, ABareExtensionRenamesInPlace) {
  folder.write("a.txt", "x");
  EXPECT_EQ(move("a.txt", ".old"), 0U);
  EXPECT_EQ(folder.names(), "a.old");
  folder.write("a.txt", "y");
  EXPECT_EQ(move("a.txt", ".old"), 454U);
  EXPECT_EQ(move("a.txt", folder.path("none/")), 480U);
  EXPECT_EQ(folder.read("a.old") + folder.read("a.txt"), "xy");
}

TEST(ComposeTarget, TakesWhatTheTemplateLacksFromTheSource) {
  const auto composed = [](const char* source, const char* pattern) {
    SCL_String target("?");
    return fl::composeTarget(source, pattern, target) == 0 ? std::string(target.c_str()) : "451";
  };
  EXPECT_EQ(composed("C:\\in\\x.txt", ".$$1"), "C:\\in\\x.$$1");
  EXPECT_EQ(composed("C:\\in\\x.txt", "\\out\\"), "C:\\out\\x.txt");
  EXPECT_EQ(composed("C:\\in\\x.txt", "out/y"), "out\\y.txt");
  EXPECT_EQ(composed("C:\\in\\x.txt", "D:"), "D:\\in\\x.txt");
  EXPECT_EQ(composed("C:\\in\\x.txt", "\\\\s\\h\\"), "\\\\s\\h\\\\in\\x.txt");
  EXPECT_EQ(composed("in/x.txt", "y.doc"), "in\\y.doc");
  EXPECT_EQ(composed("/in/x.txt", ""), "451");
  EXPECT_EQ(composed("/in/x.txt", (std::string(253, 'd') + "/").c_str()), "451");
}

TEST_F(Files, MakingADirectoryTellsWhatIsInItsWay) {
  EXPECT_EQ(make("d/"), 0U);
  EXPECT_EQ(make("d\\"), 482U);
  EXPECT_EQ(make("d"), 482U);
  EXPECT_EQ(fl::makeDirectory("C:\\"), 482U);
  folder.write("f", "x");
  EXPECT_EQ(make("f/"), 454U);
  EXPECT_EQ(make("none/d"), 483U);
  EXPECT_EQ(make("d*"), 457U);
  EXPECT_EQ(fl::makeDirectory(""), 451U);
}

TEST_F(Files, MakePathMakesEveryMissingDirectory) {
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(fl::makePath(folder.path("a/b\\c").c_str()), 0U);
    EXPECT_TRUE(std::filesystem::is_directory(folder.path("a/b/c")));
  }
  folder.write("a/f", "x");
  EXPECT_EQ(fl::makePath(folder.path("a/f/g").c_str()), 454U);
}

}  // namespace
