// The post office base: configuration, open state and marker file.
#include <filesystem>
#include <fstream>

#include "gma/GMAPOGRP.h"
#include "gma/Support.h"
#include "pfa/PFAPROF.h"

namespace {

class PostOfficeTest : public testing::Test {
 protected:
  void SetUp() override {
    gmatest::startLog();
    directory = testing::TempDir() + "gma-" + std::to_string(getpid()) + "/";
    std::filesystem::create_directories(directory);
  }
  void TearDown() override { std::filesystem::remove_all(directory); }

  void writeFile(const std::string& name, const std::string& text) {
    std::ofstream(directory + name) << text;
  }
  unsigned int configure(const std::string& section, bool writable = false) {
    writeFile("profile.ini", section);
    PFA_Profile profile((directory + "profile.ini").c_str(), writable);
    unsigned int status = 0;
    postOffice.configure(profile, status);
    return status;
  }
  // The text as an entry of mask 15 appears in the log.
  static std::string logged(const std::string& text) {
    return "0 8/1 " + text + "\n1 8/1 " + text + "\n";
  }
  // Whether the post office is open after another `open`, and what that logged and called.
  std::string open() {
    gmatest::logText().clear();
    postOffice.calls.clear();
    unsigned int status = 0;
    postOffice.open(status);
    EXPECT_EQ(status, 0U);
    return std::string(postOffice.isOpen() ? "open" : "closed") + " " + postOffice.calls + "\n" +
           gmatest::logText();
  }

  std::string directory;
  GMA_POGroup group{"Group"};
  gmatest::PostOffice postOffice{"Main", 0, &group};
};

}  // namespace

TEST_F(PostOfficeTest, HandsOnWhatItDoesNotKnowAndThenValidates) {
  EXPECT_EQ(
      configure("[Other]\nX=1\n[MAIN]\nSourceDir = /in , second\nmustopenatstart=no\nLast,1\n"),
      0U);
  EXPECT_FALSE(postOffice.mustOpenAtStart());
  EXPECT_EQ(configure("[Main]\n"), 0U);
  EXPECT_EQ(configure("[Main]\n; a comment that is longer than any name may be\nB=2\n", true), 0U);
  EXPECT_EQ(postOffice.calls, "SourceDir=/in;Last=1;validate;validate;B=2;validate;");
  EXPECT_EQ(configure("[Main]\nMustOpenAtStart=yes please\n"), 0U);
  EXPECT_TRUE(postOffice.mustOpenAtStart());
  EXPECT_EQ(gmatest::logText(), "");
  EXPECT_EQ(configure("[Main]\nMustOpenAtStart=maybe\n"), 0U);
  EXPECT_TRUE(postOffice.mustOpenAtStart());
  EXPECT_EQ(gmatest::logText(), logged("MustOpenAtStart has to be YES or NO not \"maybe\"."));
}

TEST_F(PostOfficeTest, TheFirstErrorEndsTheConfiguration) {
  EXPECT_EQ(configure("[Main]\nRefused=1\nB=2\n"), 11917U);
  EXPECT_EQ(postOffice.calls, "Refused=1;");
  EXPECT_EQ(gmatest::logText(), "");  // the derived class logs its own
}

TEST_F(PostOfficeTest, ErrorsOfTheProfileAreLoggedWithTheEntry) {
  const std::string error = "Error in configuration section Main, ";
  const std::string name(40, 'n');
  const std::string value(128, 'v');
  const std::tuple<std::string, std::string, unsigned int> cases[] = {{"Dir:3=1", "Dir", 1834},
                                                                      {"A", "A", 1841},
                                                                      {name + "=1", name, 1820},
                                                                      {"A=" + value, "A", 1820}};
  for (const auto& [entry, shown, code] : cases) {
    gmatest::logText().clear();
    EXPECT_EQ(configure("[Main]\n" + entry + "\n"), code);
    EXPECT_EQ(gmatest::logText(), logged(error + "entry \"" + shown + "\" is not valid, status " +
                                         std::to_string(code) + "."));
  }
  gmatest::logText().clear();
  EXPECT_EQ(configure("[Else]\nA=1\n"), 1830U);
  EXPECT_EQ(gmatest::logText(), logged(error + "there is no such section."));
  EXPECT_EQ(postOffice.calls, "");
}

TEST_F(PostOfficeTest, WithoutAMarkerFileItOpensAndStaysOpenUntilItIsClosed) {
  EXPECT_EQ(open(), "open open;\n");
  EXPECT_EQ(open(), "open \n");
  unsigned int status = 0;
  postOffice.close(status);
  postOffice.close(status);
  EXPECT_EQ(postOffice.calls, "close;");
  // A marker file without a directory stands in the current one, which is always there.
  ASSERT_EQ(configure("[Main]\nPODownFile=gma-no-such-marker.txt\n"), 0U);
  EXPECT_EQ(open(), "open open;\n");
}

TEST_F(PostOfficeTest, FollowsTheMarkerFileAndLogsEachChangeOnce) {
  const std::string file = directory + "down.txt";
  ASSERT_EQ(configure("[Main]\nPODownFile=" + file + "\n"), 0U);
  const std::string marker = "0 8/1 Post office marker file \"" + file + "\" ";
  const std::string disabled =
      marker + "exists.\n0 8/1   Post office \"Main\" disabled (Group \"Group\").\n";
  const std::string enabled =
      marker + "removed.\n0 8/1   Post office \"Main\" enabled (Group \"Group\").\n";
  writeFile("down.txt", "");
  EXPECT_EQ(open(), "closed \n" + disabled);
  EXPECT_EQ(open(), "closed \n");
  std::filesystem::remove(file);
  EXPECT_EQ(open(), "open open;\n" + enabled);
  EXPECT_EQ(open(), "open \n");
  writeFile("down.txt", "");
  EXPECT_EQ(open(), "closed close;\n" + disabled);
}

TEST_F(PostOfficeTest, IsDownWhileTheMarkerDirectoryCannotBeReached) {
  ASSERT_EQ(configure("[Main]\nPODownFile=" + directory + "server/down.txt\n"), 0U);
  EXPECT_TRUE(open().starts_with("closed \n0 8/1 Post office directory \""));
  EXPECT_TRUE(gmatest::logText().ends_with(
      "server\\\" no longer accessible, network server maybe down.\n"));
  EXPECT_EQ(open(), "closed \n");
  std::filesystem::create_directory(directory + "server");
  EXPECT_TRUE(open().starts_with("open open;\n"));
  EXPECT_TRUE(gmatest::logText().ends_with(
      "server\\\" now accessible again, network server has recovered.\n"));
  EXPECT_EQ(open(), "open \n");
}

TEST_F(PostOfficeTest, AMarkerThatCannotBeTestedLeavesItsCodeAndDoesNotCountAsDown) {
  std::filesystem::create_directory(directory + "down.txt");
  ASSERT_EQ(configure("[Main]\nPODownFile=" + directory + "down.txt\n"), 0U);
  unsigned int status = 0;
  postOffice.open(status);
  EXPECT_EQ(status, 124U);
  EXPECT_FALSE(postOffice.isOpen());
  EXPECT_EQ(gmatest::logText(), "");
}
