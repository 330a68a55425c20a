// Tests of the directory search and its matcher.
#include "fl/FLSEARCH.h"

#include <set>

#include "fl/Folder.h"
#include "gmock/gmock.h"
#include "plat/PlatFile.h"

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
  EXPECT_EQ(found(all, FL_Search::DIRECTORIES), "plain.t sub.t 485");
  EXPECT_EQ(found(all, FL_Search::POINT_NAMES), ".point.t plain.t 485");
  EXPECT_EQ(found(all, FL_Search::DIRECTORIES | FL_Search::ONLY_WITH_ATTRIBUTE), "sub.t 485");
  EXPECT_EQ(found(folder.path("sub.*"), 0), "485");
}

TEST(Search, HiddenAndSystemAreWhatFileServersMark) {
  const Folder folder;
  folder.write("hidden.t", "");
  folder.write("system.t", "");
  if (plat::setExtendedAttribute(folder.path("hidden.t"), "user.DOSATTRIB", "0x2") != 0 ||
      plat::setExtendedAttribute(folder.path("system.t"), "user.DOSATTRIB", "0x4") != 0) {
    GTEST_SKIP() << "no extended attributes here";
  }
  EXPECT_EQ(found(folder.path("*"), 0), "485");
  EXPECT_EQ(found(folder.path("*"), FL_Search::HIDDEN), "hidden.t 485");
  EXPECT_EQ(found(folder.path("*"), FL_Search::SYSTEM), "system.t 485");
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
  FL_Search search;
  char path[300];
  EXPECT_EQ(search.nextMatch(sizeof path, path), 484U);
  EXPECT_EQ(search.currentPattern(sizeof path, path), 484U);
  EXPECT_EQ(found(folder.path("*"), 0), "452");
  EXPECT_EQ(found(folder.path("none/*"), 0), "452");
  EXPECT_EQ(found("a|b", 0), "451");
  folder.write("x", "");
  search.startSearch(folder.path("*").c_str(), 0);
  EXPECT_EQ(search.nextMatch(sizeof path, path), 0U);
  EXPECT_EQ(path, folder.path("x"));
  EXPECT_EQ(search.nextMatch(sizeof path, path), 485U);
  EXPECT_EQ(search.nextMatch(sizeof path, path), 485U);
  EXPECT_EQ(search.currentPattern(5, path), 486U);
  EXPECT_EQ(std::string(path), folder.path().substr(0, 4));
}

TEST(Search, AShortBufferHoldsWhatFitsAndTheSearchGoesOn) {
  const Folder folder;
  folder.write("long-name", "");
  FL_Search search;
  search.startSearch(folder.path("*").c_str(), 0);
  char path[300];
  const auto directory = static_cast<unsigned int>(folder.path().size());
  EXPECT_EQ(search.nextMatch(directory + 1, path), 486U);
  EXPECT_EQ(search.nextMatch(directory + 5, path), 486U);
  EXPECT_EQ(path, folder.path("long"));
  EXPECT_EQ(search.nextMatch(sizeof path, path), 485U);
}

TEST(Wildcards, OnlyStarAndQuestionMarkAreSpecial) {
  const auto matches = fl::matchesWildcard;
  EXPECT_TRUE(matches("*.rcp", "X.RCP"));
  EXPECT_TRUE(matches("*.*", "noextension"));
  EXPECT_TRUE(matches("a?c*", "abc"));
  EXPECT_TRUE(matches("*b*b", "abbb"));
  EXPECT_TRUE(matches("[a]", "[A]"));
  EXPECT_FALSE(matches("[a]", "a"));
  EXPECT_FALSE(matches("a?", "a"));
  EXPECT_FALSE(matches("", "a"));
  EXPECT_FALSE(matches("*.rcp", "x.rcp2"));
  std::string stars;
  for (int i = 0; i < 100; ++i) {
    stars += "a*";
  }
  EXPECT_FALSE(matches(stars + "b", std::string(250, 'a')));
}

}  // namespace
