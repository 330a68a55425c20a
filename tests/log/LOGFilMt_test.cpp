// Housekeeping of older log files.
#include "log/Support.h"

namespace logtest {
namespace {

class Maintenance : public LogTest {
 protected:
  Maintenance() { std::filesystem::create_directory(folder.path("old")); }

  void make(const char* root, const char* nameType) {
    unsigned status = LogTest::make(stream, "UserFile", root, nameType);
    stream.open(status);
    EXPECT_EQ(status, 0U);
  }
  // "status offset date number done" after passing the older files to old/.
  std::string maintain(bool deleteFiles, const std::string& target = "old/") {
    unsigned status = 0;
    stream.maintain(folder.path(target).c_str(), deleteFiles, progress, status);
    return std::to_string(status) + " " + std::to_string(progress.offset) + " '" + progress.date +
           "' " + std::to_string(progress.number) + (progress.done ? " done" : "");
  }

  LOG_Progress progress;
  LOG_FileStream stream{"Main"};
};

TEST_F(Maintenance, OlderDaysArePassedAndDeletedWhenAsked) {
  folder.write("510101", "1951");
  folder.write("240226", "a");
  folder.write("240227", "");
  folder.write("240229", "tomorrow");
  make("%s", "Date");
  EXPECT_EQ(maintain(false), "0 0 '' 0 done");
  EXPECT_EQ(folder.names("old"), "240226 510101");
  EXPECT_EQ(folder.names(), "240226 240227 240228 240229 510101 old");
  EXPECT_EQ(maintain(true), "0 0 '' 0 done");
  EXPECT_EQ(folder.names(), "240228 240229 old");
  EXPECT_EQ(maintain(true), "10630 0 '' 0 done");
}

TEST_F(Maintenance, NumbersBelowTheOneInUseArePassedOnce) {
  const std::string large(100000, 'n');
  folder.write(".L009.x", large);
  folder.write(".L9.x", "the same number");
  make(".L%03u.x", "NumericSeq");
  EXPECT_EQ(maintain(false), "0 0 '' 0 done");
  EXPECT_EQ(folder.names() + " " + folder.names("old"), ".L009.x .L010.x .L9.x old .L009.x");
  EXPECT_EQ(read("old/.L009.x"), large);
}

TEST_F(Maintenance, AFailureIsRecordedAndTheNextCallGoesOnThere) {
  folder.write("240226", "first");
  folder.write("240227", "second");
  make("%s", "Date");
  std::filesystem::create_directory(folder.path("old/240227"));
  EXPECT_EQ(maintain(false), "122 0 '27-Feb-2024' 0 done");
  std::filesystem::remove(folder.path("old/240227"));
  folder.write("old/240227", "se");
  progress.offset = 2;
  EXPECT_EQ(maintain(false), "0 0 '27-Feb-2024' 0 done");
  EXPECT_EQ(read("old/240226") + read("old/240227"), "firstsecond");
  progress = {3, "25-Feb-2024", 0, false};  // of a file that is gone
  maintain(true);
  EXPECT_EQ(read("old/240226"), "firstfirst");
}

TEST_F(Maintenance, AFileIsNeverPassedToItself) {
  folder.write("1", "precious");
  make("%u", "NumericSeq");
  EXPECT_EQ(maintain(true, ""), "454 0 '' 1");
  EXPECT_EQ(read("1"), "precious");
}

}  // namespace
}  // namespace logtest
