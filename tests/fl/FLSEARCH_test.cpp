// Tests of the directory search and its matcher.
#include "fl/FLSEARCH.h"

#include <set>

#include "fl/Folder.h"
#include "gmock/gmock.h"
#include "plat/PlatFile.h"
#include "plat/Scene.h"

namespace {

// The names that a search finds, sorted, and the status that ended it.
std::string found(const std::string& pattern, unsigned int filter) {
  FL_Search search;
  search.startSearch(pattern.c_str(), filter);
  char path[300];
  std::set<std::string> names;
  unsigned int status = search.nextMatch(sizeof path, path);
  for (; status == 0; status = search.nextMatch(sizeof path, path)) {
    names.insert(std::filesystem::path(path).filename());
  }
  std::string text;
  for (const std::string& name : names) {
    text += name + " ";
  }
  return text + std::to_string(status);
}

TEST(Search, TheFilterOpensOneKindAtATime) {
  const Folder folder;
  folder.write("plain.t", "");
  folder.write(".point.t", "");
  folder.write("ro.t", "");
  folder.setMode("ro.t", 0444);
  std::filesystem::create_directory(folder.path("sub.t"));
  const std::string all = folder.path("*.t");
  EXPECT_EQ(found(all, 0), "plain.t 485");
  EXPECT_EQ(found(all, FL_Search::READ_ONLY), "plain.t ro.t 485");
  EXPECT_EQ(found(all, FL_Search::POINT_NAMES), ".point.t plain.t 485");
  EXPECT_EQ(found(all, FL_Search::DIRECTORIES | FL_Search::ONLY_WITH_ATTRIBUTE), "sub.t 485");
  if (plat::setExtendedAttribute(folder.write("both.t", ""), "user.DOSATTRIB", "0x6") == 0) {
    EXPECT_EQ(found(all, FL_Search::HIDDEN), "plain.t 485");
    EXPECT_EQ(found(all, FL_Search::HIDDEN | FL_Search::SYSTEM), "both.t plain.t 485");
  }
}

TEST(Search, NamesThatAPathCannotHoldNeverComeOut) {
  const Folder folder;
  for (const char* name : {"a:b", "..\\x", "q\"", "l<", "g>", "p|", "t\tb", "good"}) {
    folder.write(name, "");
  }
  EXPECT_EQ(found(folder.path("*"), 0), "good 485");
}

TEST(Search, EveryEndHasItsStatus) {
  const Folder folder;
  EXPECT_EQ(found("", 0), "484");
  EXPECT_EQ(found(folder.path("*"), 0) + found(folder.path("none/*"), 0), "452452");
  std::filesystem::create_symlink("ring", folder.path("ring"));
  EXPECT_EQ(found(folder.path("ring/*"), 0), "451");  // cannot be read, which is not empty
  scene::elsewhere([&] {
    scene::refuse(SYS_getdents64, EIO);
    EXPECT_EQ(found(folder.path("*"), 0), "451");
  });
}

TEST(Search, AShortBufferHoldsWhatFitsAndTheSearchGoesOn) {
  const Folder folder;
  folder.write("long-name", "");
  const auto directory = static_cast<unsigned int>(folder.path().size());
  FL_Search search;
  search.startSearch(folder.path("*").c_str(), 0);
  char path[300];
  EXPECT_EQ(search.nextMatch(directory + 5, path), 486U);
  EXPECT_EQ(path, folder.path("long"));
  EXPECT_EQ(search.nextMatch(sizeof path, path), 485U);
}

TEST(Wildcards, OnlyStarAndQuestionMarkAreSpecial) {
  const auto matches = fl::matchesWildcard;
  EXPECT_TRUE(matches("*.rcp", "X.RCP") && matches("*.*", "noextension"));
  EXPECT_TRUE(matches("a?c*", "abc") && matches("*b*b", "abbb") && matches("[a]", "[A]"));
  EXPECT_FALSE(matches("[a]", "a") || matches("a?", "a") || matches("*.rcp", "x.rcp2"));
  EXPECT_FALSE(matches("a*a*a*a*a*a*a*a*a*a*a*a*b", std::string(250, 'a')));  // in no time
}

}  // namespace
