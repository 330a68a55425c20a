// File names: their components, the checks against the file system, completing and comparing.
#include "dv/DVPATH.h"

#include <filesystem>
#include <fstream>
#include <functional>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "scl/Failure.h"

namespace {

namespace fs = std::filesystem;

constexpr int ANY = dv::MODE_UNC | dv::MODE_DRIVE;

std::string shown(const dv::PathRecord& record) {
  std::string text;
  for (const unsigned int part :
       {dv::PART_SERVER, dv::PART_DRIVE, dv::PART_DIRECTORY, dv::PART_NAME, dv::PART_EXTENSION}) {
    text += dv::composePath(record, part).c_str() + std::string("|");
  }
  text.pop_back();
  return text;
}

// The length and the components: server|drive|directory|name|extension.
std::string split(const SCL_StringRef& text, int mode = ANY) {
  dv::PathRecord record;
  const int length = dv::decodePath(record, text, mode);
  return std::to_string(length) + (length >= 0 ? " " + shown(record) : "");
}

dv::PathRecord recordOf(const char* text) {
  dv::PathRecord record;
  dv::decodePath(record, text, ANY);
  return record;
}

TEST(DecodePath, FindsTheComponentsUpToWhereNoPathGoesOn) {
  EXPECT_EQ(split("c:/spool\\in/x.tar.RCP"), "21 |c:|\\spool\\in\\|x.tar|.RCP");
  EXPECT_EQ(split("//srv/share/a/b"), "15 \\\\srv\\share\\||a\\|b|");
  EXPECT_EQ(split("a.b\\c"), "5 ||a.b\\|c|");
  EXPECT_EQ(split(" a / b "), "7 || a \\| b |");
  EXPECT_EQ(split("a//b\xE9.\x7F"), "7 ||a\\\\|b\xE9|.\x7F");
  EXPECT_EQ(split("c:"), "2 |c:|||");
  EXPECT_EQ(split(".down"), "5 ||||.down");
  EXPECT_EQ(split("a\\.."), "4 ||a\\|..|");
  EXPECT_EQ(split("//srv/a"), "-1") << "no share";
  EXPECT_EQ(split("///srv/a"), "-1") << "no server";
  EXPECT_EQ(split("a<b"), "1 |||a|");
  EXPECT_EQ(split("a\tb"), "1 |||a|");
  EXPECT_EQ(split("ab:c"), "2 |||ab|");
  EXPECT_EQ(split(""), "-1");
}

TEST(DecodePath, ObeysItsMode) {
  EXPECT_EQ(split("c:x", 0), "1 |||c|");
  EXPECT_EQ(split("//a/b/c", dv::MODE_DRIVE), "7 ||\\\\a\\b\\|c|");
  EXPECT_EQ(split("\\x", ANY | dv::MODE_NEED_ROOT), "-1");
  EXPECT_EQ(split("d:x", ANY | dv::MODE_NEED_ROOT), "3 |d:||x|");
  EXPECT_EQ(split("a\\.x", ANY | dv::MODE_NEED_NAME), "-1");
}

TEST(DecodePath, RefusesWhatTheRecordCannotHold) {
  const std::string longest(dv::PATH_LENGTH, 'x');
  EXPECT_EQ(split(longest.c_str()), "258 |||" + longest + "|");
  EXPECT_EQ(split((longest + "x").c_str()), "-1");
}

TEST(ComposePath, WritesWhollyOrNot) {
  const dv::PathRecord record = recordOf("d:\\in\\x.RCP");
  char buffer[8] = "kept";
  EXPECT_EQ(dv::composePath(record, dv::PART_FILE, 5, buffer), -1);
  EXPECT_STREQ(buffer, "kept");
  EXPECT_EQ(dv::composePath(record, dv::PART_FILE, 6, buffer), 0);
  EXPECT_STREQ(buffer, "x.RCP");
  EXPECT_STREQ(dv::composePath(record, dv::PART_FOLDER).c_str(), "d:\\in\\");
}

// What a process that may not look into a directory gets.
int asStranger(const std::function<int()>& check) {
  const pid_t child = ::fork();
  if (child == 0) {
    const bool isStranger = ::geteuid() != 0 || ::setuid(65534) == 0;
    ::_exit(isStranger ? -check() : 99);
  }
  int status = 0;
  ::waitpid(child, &status, 0);
  return -WEXITSTATUS(status);
}

class PathChecks : public testing::Test {
 protected:
  PathChecks() {
    std::string name = testing::TempDir() + "dvpathXXXXXX";
    m_root = ::mkdtemp(name.data());
    std::ofstream(m_root / "x.RCP") << "x";
    fs::create_directory(m_root / "sub");
    fs::create_directory_symlink("nowhere", m_root / "dangling");
    fs::create_symlink("x.RCP", m_root / "link");
    fs::create_symlink("loop", m_root / "loop");
    ::mkfifo((m_root / "pipe").c_str(), 0600);
  }
  ~PathChecks() override { fs::remove_all(m_root); }

  std::string below(const std::string& name) const { return (m_root / name).string(); }
  int file(const std::string& name) const { return dv::checkFile(below(name).c_str()); }
  int directory(const std::string& name, unsigned int size = dv::PATH_SIZE) const {
    return dv::checkDirectory(size, below(name).c_str());
  }

  fs::path m_root;
};

TEST_F(PathChecks, FilesThatExistAreRegular) {
  EXPECT_EQ(file("x.RCP"), 0);
  EXPECT_EQ(file("x.rcp"), 0);  // the extension in the other case
  EXPECT_EQ(file("link"), 0);
  EXPECT_EQ(file("X.RCP"), -3);
  EXPECT_EQ(file("dangling"), -3);
  EXPECT_EQ(file("x.RCP\\y"), -3);
  EXPECT_EQ(file("pipe"), -4);
  EXPECT_EQ(file("sub"), -4);
  EXPECT_EQ(file("loop"), -1);
}

TEST_F(PathChecks, AFilesFormIsCheckedBeforeItsExistence) {
  EXPECT_EQ(dv::checkFile(" \t"), -5);
  EXPECT_EQ(dv::checkFile(SCL_StringRef()), -5);
  EXPECT_EQ(dv::checkFile("a:b:c"), -1);
  EXPECT_EQ(dv::checkFile("a*\\b"), -1);
  EXPECT_EQ(dv::checkFile("\\\\s*\\share\\b"), -1);
  EXPECT_EQ(dv::checkFile("a*"), -2);
  EXPECT_EQ(dv::checkFile("a.?"), -2);
  EXPECT_EQ(file(".x"), -2);
  EXPECT_EQ(dv::checkFile("a\\"), -4);
  EXPECT_EQ(file(".."), -4);
  EXPECT_EQ(file("none/.."), -4);
  EXPECT_EQ(dv::checkFile("q:\\x"), -3);
  EXPECT_EQ(failureOf([] { dv::checkFile(static_cast<const char*>(nullptr)); }),
            "Null pointer in DVPATCHK");
}

TEST_F(PathChecks, DirectoriesMayEndInASeparator) {
  EXPECT_EQ(directory("sub"), 0);
  EXPECT_EQ(directory("sub/"), 0);
  EXPECT_EQ(directory("sub/.."), 0);
  EXPECT_EQ(directory("none"), -3);
  EXPECT_EQ(directory("x.RCP"), -1);
  EXPECT_EQ(directory("pipe"), -1);
  EXPECT_EQ(directory("s*"), -1);
  EXPECT_EQ(dv::checkDirectory(dv::PATH_SIZE, ""), -1);
  EXPECT_EQ(dv::checkDirectory(dv::PATH_SIZE, "a:b:c"), -1);
  for (const char* root : {"/", "\\", "C:\\", "C:/", "c:", "."}) {
    EXPECT_EQ(dv::checkDirectory(dv::PATH_SIZE, root), 0) << root;
  }
}

// A server that does not let us in now may do so later, as one that is not there.
TEST_F(PathChecks, WhatCannotBeReachedDoesNotExist) {
  fs::permissions(m_root / "sub", fs::perms::none);
  EXPECT_EQ(asStranger([&] { return file("sub/x.RCP"); }), -3);
  EXPECT_EQ(asStranger([&] { return directory("sub/in"); }), -3);
}

TEST_F(PathChecks, OnAnotherDriveARelativeDirectoryBeginsAtTheRoot) {
  ::setenv("KRX_DRIVES", ("D:=" + m_root.string()).c_str(), 1);
  EXPECT_EQ(dv::checkDirectory(dv::PATH_SIZE, "d:sub"), 0);
  EXPECT_EQ(dv::checkDirectory(dv::PATH_SIZE, "D:"), 0);
  EXPECT_EQ(dv::checkDirectory(dv::PATH_SIZE, "D:none"), -3);
  ::unsetenv("KRX_DRIVES");
}

TEST_F(PathChecks, ADirectoryWithItsSeparatorFitsTheCallersBuffer) {
  const auto length = static_cast<unsigned int>(below("sub").size());
  EXPECT_EQ(directory("sub", length + 2), 0);
  EXPECT_EQ(directory("sub", length + 1), -1);
  EXPECT_EQ(directory("sub/", length + 2), 0);
}

std::string merged(const char* path, const char* defaults) {
  dv::PathRecord result = recordOf("unchanged");
  const int status = dv::mergePath(recordOf(path), recordOf(defaults), result);
  return std::to_string(status) + " " + result.path;
}

TEST(MergePath, TakesWhatThePathLacks) {
  EXPECT_EQ(merged("x", "c:\\in\\y.RCP"), "0 c:\\in\\x.RCP");
  EXPECT_EQ(merged(".MSG", "c:\\in\\y.RCP"), "0 c:\\in\\y.MSG");
  EXPECT_EQ(merged("sub\\x.a", "c:\\in\\"), "0 c:\\in\\sub\\x.a");
  EXPECT_EQ(merged("..\\x", "c:\\in\\"), "0 c:\\in\\..\\x");
  EXPECT_EQ(merged("\\x", "c:\\in\\y"), "0 c:\\x");
  EXPECT_EQ(merged("d:x", "\\\\s\\h\\in\\"), "0 d:in\\x");
  EXPECT_EQ(merged("\\a\\x", "\\\\s\\h\\in\\"), "0 \\\\s\\h\\a\\x");
  EXPECT_EQ(merged("\\\\s\\h\\x", "c:\\in\\"), "0 \\\\s\\h\\x");
}

TEST(MergePath, RefusesWhatTheRecordCannotHold) {
  const std::string name(200, 'n');
  EXPECT_EQ(merged(name.c_str(), ("\\" + std::string(57, 'd') + "\\").c_str()).size(), 2U + 259);
  EXPECT_EQ(merged(name.c_str(), ("\\" + std::string(58, 'd') + "\\").c_str()), "-1 unchanged");
}

TEST(ComparePaths, FindsTheSamePlaceBehindTwoNames) {
  const dv::PathRecord place = recordOf("C:\\in\\");
  EXPECT_EQ(dv::comparePaths("c:\\A\\.\\b\\..\\x.y", "C:/a//X.Y", nullptr), 0);
  EXPECT_EQ(dv::comparePaths("..\\x", "C:\\x", &place), 0);
  EXPECT_EQ(dv::comparePaths("..\\..\\x", "..\\y\\..\\..\\x", nullptr), 0);
  EXPECT_EQ(dv::comparePaths("..x\\..\\y", "y", nullptr), 0);
  EXPECT_EQ(dv::comparePaths("\\..\\a\\", "\\a\\.", nullptr), 0);
}

TEST(ComparePaths, TellsWhichPathGoesDeeper) {
  EXPECT_EQ(dv::comparePaths("c:\\a\\x", "c:\\a\\y", nullptr), -6);
  EXPECT_EQ(dv::comparePaths("c:\\a\\x", "c:\\a\\y\\z", nullptr), -7);
  EXPECT_EQ(dv::comparePaths("c:\\a\\x\\y", "c:\\a\\z", nullptr), -8);
  EXPECT_EQ(dv::comparePaths("c:\\a\\x", "c:\\b\\x", nullptr), -9);
  EXPECT_EQ(dv::comparePaths("a|b", "a", nullptr), -1);
}

}  // namespace
