// Tests of a profile's file: exclusion by the working name, writing back, recovery after a crash.
#include <chrono>

#include <sys/wait.h>
#include <unistd.h>

#include "fl/FullDisk.h"
#include "pfa/ProfileTest.h"
#include "plat/PlatFile.h"
#include "plat/Scene.h"

namespace {

class ProfileFile : public ProfileTest {
 protected:
  unsigned int openWritable(PFA_Profile& profile, const char* text = "[S]\nA=1\n") const {
    return open(profile, text, true);
  }
  std::string reported() const {
    unsigned int code = 0;
    int val1 = 0;
    int val2 = 0;
    char text[101];
    unsigned int length = 0;
    GENGetStatus(code, val1, val2, sizeof text, text, length);
    return std::to_string(code) + " " + std::to_string(val1) + " " + text;
  }
  // A process that opens the profile for writing and dies.
  void crashHolding(const std::string& name) const {
    const pid_t child = fork();
    if (child == 0) {
      PFA_Profile profile;
      _exit(profile.open(folder.path(name).c_str(), true) == 0 ? 0 : 1);
    }
    int state = 1;
    ASSERT_EQ(waitpid(child, &state, 0), child);
    ASSERT_EQ(state, 0);
  }
  bool canBeMarked() const {
    return plat::setExtendedAttribute(folder.path(""), "user.krx.test", "x") == 0;
  }
};

TEST_F(ProfileFile, OpenForWritingItIsGoneUnderItsName) {
  PFA_Profile profile;
  ASSERT_EQ(openWritable(profile), 0U);
  EXPECT_EQ(folder.names(), "a.$$1");
  PFA_Profile second(ini().c_str(), true);
  EXPECT_EQ(second.openStatus(), 1822U);
  EXPECT_EQ(clock.monotonicMilliseconds(), 2000);
  second.setFlags(PFA_Profile::RETRY_BUSY, false);
  EXPECT_EQ(second.open(ini().c_str(), false), 1822U);
  EXPECT_EQ(clock.monotonicMilliseconds(), 2000);
  EXPECT_EQ(profile.flush(), 0U);
  EXPECT_EQ(second.open(ini().c_str(), false, "s"), 0U);
  EXPECT_EQ(folder.read("a.ini"), "[S]\nA=1\n");
}

TEST_F(ProfileFile, AModifiedProfileIsWrittenAnewAndReadOnlyThen) {
  {
    PFA_Profile profile;
    ASSERT_EQ(openWritable(profile, "x = 1\n;c\n[ S ]\r\n\r\nA: 2 = v \n[Empty]\n[Gone]\n"), 0U);
    folder.setMode("a.$$1", 0640);
    EXPECT_EQ(profile.dropSection("gone"), 0U);
    EXPECT_EQ(profile.selectSection("Void"), 1830U);
    EXPECT_EQ(profile.selectSection("s"), 0U);
    EXPECT_EQ(profile.addEntry("B", 1, "w,z", 2), 0U);
    EXPECT_EQ(profile.flush(), 0U);
    EXPECT_EQ(folder.read("a.ini"), "x= 1\n;c\n \n[S]\nB:1,,w,z\nA:2= v \n \n[Empty]\n \n");
    EXPECT_EQ(profile.setValue("v", false, 1), 1835U);
    folder.write("a.ini", "foreign");
  }
  EXPECT_EQ(folder.read("a.ini"), "foreign");
  EXPECT_EQ(folder.mode("a.ini"), 0640U);
  EXPECT_EQ(folder.names(), "a.ini");
}

TEST_F(ProfileFile, WhatWasNotChangedComesBackByteForByte) {
  const std::string text = "[ S ]\r\n; c\r\nA = 1";
  for (int way = 0; way < 3; ++way) {
    {
      PFA_Profile profile;
      ASSERT_EQ(open(profile, text, true), 0U);
      if (way < 2) {  // the third way is to destroy it
        EXPECT_EQ(way == 0 ? profile.flush() : profile.open(ini().c_str(), false), 0U);
      }
    }
    EXPECT_EQ(folder.names(), "a.ini");
    EXPECT_EQ(folder.read("a.ini"), text);
  }
}

TEST_F(ProfileFile, AFailedFlushKeepsTheWorkingFileAndTheChanges) {
  PFA_Profile profile;
  ASSERT_EQ(openWritable(profile), 0U);
  profile.selectSection("S");
  ASSERT_EQ(profile.setValue("2", false, 1, "A"), 0U);
  std::filesystem::create_directory(ini());
  EXPECT_EQ(profile.flush(), 1822U);
  EXPECT_EQ(folder.names(), "a.$$1 a.ini");
  EXPECT_TRUE(profile.isModified() && profile.isWritable());
  EXPECT_EQ(reported(), "1822 " + std::to_string(EISDIR) + " " + ini().substr(0, 100));
  std::filesystem::remove(ini());
  {
    const FullDisk full(0);
    EXPECT_EQ(profile.flush(), 1822U);
  }
  EXPECT_EQ(folder.names(), "a.$$1");
  EXPECT_EQ(profile.flush(), 0U);
  EXPECT_EQ(folder.read("a.ini"), "[S]\nA=2\n \n");
}

TEST_F(ProfileFile, WhatCannotBeGivenToItsOwnerIsForNobodyElse) {
  folder.write("a.ini", "[S]\nA=1\n");
  folder.setMode("a.ini", 0644);
  folder.setMode("", 0777);
  scene::elsewhere([&] {
    scene::require(::geteuid() == 0);
    scene::becomeUser(65534);
    PFA_Profile profile;
    EXPECT_EQ(profile.open(ini().c_str(), true, "S"), 0U);
    EXPECT_EQ(profile.setValue("secret", false, 1, "A"), 0U);
    EXPECT_EQ(profile.flush(), 0U);
    EXPECT_EQ(folder.mode("a.ini"), 0600U);
  });
}

TEST_F(ProfileFile, AProfileThatSomebodyHasLockedIsNotTaken) {
  folder.write("a.ini", "[S]\nA=1\n");
  plat::File other;
  plat::OpenMode mode;
  mode.read = true;
  ASSERT_EQ(other.open(ini(), mode) | plat::lockFile(other), 0);
  PFA_Profile profile;
  EXPECT_EQ(profile.open(ini().c_str(), true), 1822U);
  EXPECT_EQ(folder.names(), "a.ini");
}

TEST_F(ProfileFile, WithoutAFreeWorkingNameNothingIsTouched) {
  for (char digit = '1'; digit <= '9'; ++digit) {
    folder.write(std::string("a.$$") + digit, "taken");
  }
  PFA_Profile profile;
  EXPECT_EQ(openWritable(profile), 1832U);
  EXPECT_EQ(folder.read("a.ini"), "[S]\nA=1\n");
}

TEST_F(ProfileFile, AFileThatCannotBeReadIsNoEmptyProfile) {
  const PFA_Profile profile("/proc/self/mem");  // which has no first byte
  EXPECT_EQ(profile.openStatus(), 1826U);
}

TEST_F(ProfileFile, AFailedReadGivesTheNameBack) {
  PFA_Profile profile;
  EXPECT_EQ(openWritable(profile, "[S\n"), 1827U);
  EXPECT_EQ(folder.names(), "a.ini");
  EXPECT_FALSE(profile.isWritable());
  EXPECT_EQ(profile.nextEntryAnywhere(true), 1823U);
  EXPECT_EQ(reported().substr(0, 5), "1827 ");
  EXPECT_EQ(profile.open(folder.path("none").c_str(), false), 1822U);
  EXPECT_EQ(reported().substr(0, 5), "1827 ");
}

TEST_F(ProfileFile, ADeadOwnersProfileIsRestored) {
  folder.write("a.ini", "[S]\nA=1\n");
  crashHolding("a.ini");
  folder.write("a.cfg", "");
  crashHolding("a.cfg");
  ASSERT_EQ(folder.names(), "a.$$1 a.$$2");
  if (!canBeMarked()) {
    GTEST_SKIP() << "no extended attributes here";
  }
  PFA_Profile profile;
  EXPECT_EQ(profile.open(ini().c_str(), false), 0U);
  EXPECT_EQ(contents(profile), "[S] A=1|1823");
  EXPECT_EQ(folder.names(), "a.$$2 a.ini");
  EXPECT_EQ(profile.create(folder.path("a.cfg").c_str()), 1825U);
  EXPECT_EQ(folder.names(), "a.cfg a.ini");
}

TEST_F(ProfileFile, OfTwoThatDeadOwnersLeftTheNewerIsRestored) {
  const auto aDayAgo = std::filesystem::file_time_type::clock::now() - std::chrono::hours(24);
  folder.write("a.ini", "[S]\nA=old\n");
  crashHolding("a.ini");
  std::filesystem::last_write_time(folder.path("a.$$1"), aDayAgo);
  folder.write("a.ini", "[S]\nA=new\n");
  crashHolding("a.ini");
  if (!canBeMarked()) {
    GTEST_SKIP() << "no extended attributes here";
  }
  PFA_Profile profile;
  EXPECT_EQ(profile.open(ini().c_str(), false), 0U);
  EXPECT_EQ(contents(profile), "[S] A=new|1823");
}

TEST_F(ProfileFile, AFileThatDoesNotNameItsProfileStaysWhereItIs) {
  folder.write("a.$$1", "[S]\nA=1\n");
  PFA_Profile profile;
  EXPECT_EQ(profile.open(ini().c_str(), false), 1822U);
  EXPECT_EQ(folder.names(), "a.$$1");
}

TEST_F(ProfileFile, CreatingMakesAnEmptyProfileForWriting) {
  PFA_Profile profile;
  EXPECT_EQ(profile.flush(), 1843U);
  EXPECT_EQ(profile.create(ini().c_str()), 0U);
  EXPECT_EQ(folder.mode("a.$$1"), 0600U);
  EXPECT_EQ(profile.selectSection("S"), 1830U);
  EXPECT_EQ(profile.addEntry("A", 0, "1", 1), 0U);
  EXPECT_EQ(profile.create(ini().c_str()), 1825U);
  EXPECT_EQ(folder.read("a.ini"), "[S]\nA,1\n \n");
  EXPECT_EQ(profile.create(folder.path("none/a.ini").c_str()), 1821U);
}

TEST_F(ProfileFile, TheSameFileInTheSameModeIsNotReadAgain) {
  PFA_Profile profile;
  ASSERT_EQ(open(profile, "[S]\nA=1\n", false), 0U);
  folder.write("a.ini", "[T]\n");
  EXPECT_EQ(profile.open(ini().c_str(), false, "S"), 0U);
  EXPECT_EQ(profile.open(ini().c_str(), true, "T"), 0U);
  EXPECT_EQ(profile.selectSection("S"), 1830U);
}

}  // namespace
