// Housekeeping of older log files.
#include "log/Support.h"

namespace logtest {
namespace {

class Maintenance : public LogTest {
 protected:
  Maintenance() { std::filesystem::create_directory(directory + "old"); }

  void make(const char* root, const char* nameType) {
    unsigned status = LogTest::make(stream, "UserFile", root, nameType);
    stream.open(status);
    EXPECT_EQ(status, 0U);
  }
  // "status offset date number done" after passing the older files to old/.
  std::string maintain(bool deleteFiles, const std::string& target = "old/") {
    unsigned status = 0;
    stream.maintain((directory + target).c_str(), deleteFiles, progress, status);
    return std::to_string(status) + " " + std::to_string(progress.offset) + " '" + progress.date +
           "' " + std::to_string(progress.number) + (progress.done ? " done" : "");
  }

  LOG_Progress progress;
  LOG_FileStream stream{"Main"};
};

TEST_F(Maintenance, OlderDaysArePassedAndDeletedWhenAsked) {
  write("510101", "1951");
  write("240226", "a");
  write("240227", "");
  write("240229", "tomorrow");
  make("%s", "Date");
  EXPECT_EQ(maintain(false), "0 0 '' 0 done");
  EXPECT_EQ(files("old"), "240226 510101 ");
  EXPECT_EQ(files(), "240226 240227 240228 240229 510101 old ");
  EXPECT_EQ(maintain(true), "0 0 '' 0 done");
  EXPECT_EQ(files(), "240228 240229 old ");
  EXPECT_EQ(maintain(true), "10630 0 '' 0 done");
}

TEST_F(Maintenance, NumbersBelowTheOneInUseArePassed) {
  const std::string large(100000, 'n');
  write("9", large);
  make("%u", "NumericSeq");
  EXPECT_EQ(maintain(true), "0 0 '' 0 done");
  EXPECT_EQ(files(), "10 old ");
  EXPECT_EQ(read("old/9"), large);
}

TEST_F(Maintenance, AFailureIsRecordedAndTheNextCallGoesOnThere) {
  write("240226", "first");
  write("240227", "second");
  make("%s", "Date");
  std::filesystem::create_directory(directory + "old/240227");
  EXPECT_EQ(maintain(false), "122 0 '27-Feb-2024' 0 done");
  std::filesystem::remove(directory + "old/240227");
  write("old/240227", "se");
  progress.offset = 2;
  EXPECT_EQ(maintain(false), "0 0 '27-Feb-2024' 0 done");
  EXPECT_EQ(read("old/240226") + read("old/240227"), "firstsecond");
  progress = {3, "25-Feb-2024", 0, false};  // of a file that is gone
  maintain(true);
  EXPECT_EQ(read("old/240226"), "firstfirst");
}

TEST_F(Maintenance, AFileIsNeverPassedToItself) {
  write("1", "precious");
  make("%u", "NumericSeq");
  EXPECT_EQ(maintain(true, ""), "454 0 '' 1");
  EXPECT_EQ(read("1"), "precious");
}

}  // namespace
}  // namespace logtest
