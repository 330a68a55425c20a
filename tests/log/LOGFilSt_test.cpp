// Log files: names, days, what is written and when it is not.
#include "log/LOGFilSt.h"

#include <csignal>

#include <sys/resource.h>

#include "dac/DACMEMDA.h"
#include "gen/GENWNT.h"
#include "log/Support.h"
#include "scl/Failure.h"

namespace logtest {
namespace {

constexpr char OPENED[] = "14:05:09.27 (LOG:001) Log file opened on 28-Feb-2024\n";
constexpr char AT[] = "14:05:09.27 (KRX:001) ";

class FileStream : public LogTest {
 protected:
  unsigned make(const char* type, const std::string& root, const char* nameType) {
    return LogTest::make(stream, type, root, nameType);
  }
  void entry(const std::string& text, bool raw = false) {
    stream.writeEntry(11, 1, static_cast<unsigned>(text.size()), text.data(), raw);
  }
  // Moves the clock, writes an entry and tells what files there are then.
  std::string filesAfter(std::int64_t milliseconds) {
    clock.advance(milliseconds);
    entry("x");
    return files();
  }
  unsigned close(bool deleteFile) {
    unsigned status = 0;
    stream.close(deleteFile, status);
    return status;
  }
  std::string content() {
    DAC_MemoryDataAccess target;
    unsigned status = 0;
    stream.readLog(target, status);
    return shown(std::string(target.window(0)));
  }
  void object(std::string_view bytes, bool raw) {
    DAC_MemoryDataAccess data;
    unsigned status = 0;
    data.write(static_cast<std::int32_t>(bytes.size()), bytes.data(), status);
    stream.writeDataObject(11, 1, data, raw);
  }

  LOG_FileStream stream{"Main"};
};

TEST_F(FileStream, BadKeysAreRefused) {
  EXPECT_EQ(set(stream, "NameType", "Daily"), 10617U);
  EXPECT_EQ(set(stream, "FileRootName", std::string(255, 'x')), 10626U);
  EXPECT_EQ(set(stream, "FileRootName", directory + "none/LOG%s.TXT"), 10629U);
  EXPECT_EQ(set(stream, "FileRootName", directory + "LOG*.TXT"), 122U);
  EXPECT_EQ(set(stream, "FileRootName", directory), 124U);
  EXPECT_EQ(make("UserFile", "", "Date"), 10625U);
  EXPECT_EQ(make("UserFile", "LOG.TXT", "Date"), 10618U);
}

TEST_F(FileStream, EntriesAreAppendedAlsoAfterACopy) {
  write("LOG240228.TXT", "before\r\n");
  make("SystemFile", "LOG%s.TXT", "Date");
  unsigned status = 0;
  stream.copyLogToFile((directory + "early").c_str(), status);  // not open yet
  entry("one\ttext with %n");
  stream.copyLogToFile((directory + "copy").c_str(), status);
  entry("two");
  EXPECT_EQ(files(), "LOG240228.TXT copy ");
  EXPECT_EQ(read("copy"), std::string("before\n") + OPENED + AT + "one\ttext with %n\n");
  EXPECT_EQ(read("LOG240228.TXT"), read("copy") + AT + "two\n");
  EXPECT_EQ(content(), read("LOG240228.TXT"));
}

TEST_F(FileStream, EachDayHasItsFileAlsoALeapDayAndWhenTheClockIsSetBack) {
  make("UserFile", "%s", "Date");
  EXPECT_EQ(filesAfter(0), "240228 ");
  EXPECT_EQ(filesAfter(9 * HOUR), "240228 ");  // 23:05:09
  EXPECT_EQ(filesAfter(HOUR), "240228 240229 ");
  EXPECT_EQ(read("240229"),
            "00:05:09.27 (LOG:001) Log file opened on 29-Feb-2024\n00:05:09.27 (KRX:001) x\n");
  for (int day = 0; day < 6; ++day) {
    filesAfter(DAY);
  }
  clock.set(START);
  EXPECT_EQ(filesAfter(0), "240228 240229 240301 240302 240303 240304 240305 240306 ");
  EXPECT_EQ(read("240228"),
            std::string(OPENED) + AT + "x\n23:05:09.27 (KRX:001) x\n" + OPENED + AT + "x\n");
}

TEST_F(FileStream, TheDayIsTheLocalOneThroughBothChangesOfSummerTime) {
  setZone("CET-1CEST,M3.5.0,M10.5.0/3");
  make("UserFile", "%s", "Date");
  clock.set({1711839540, 0});  // 30 March 2024, 23:59 CET; the next day has 23 hours
  EXPECT_EQ(filesAfter(0), "240330 ");
  EXPECT_EQ(filesAfter(23 * HOUR), "240330 240331 ");  // 23:59 CEST
  EXPECT_EQ(filesAfter(60 * 1000), "240330 240331 240401 ");
  clock.set({1729979940, 0});  // 26 October 2024, 23:59 CEST; the next day has 25 hours
  entry("x");
  EXPECT_EQ(filesAfter(25 * HOUR), "240330 240331 240401 241026 241027 ");  // 23:59 CET
  EXPECT_EQ(filesAfter(60 * 1000), "240330 240331 240401 241026 241027 241028 ");
}

TEST_F(FileStream, NumberedFilesGoOnBehindTheHighestAndLeaveOutZero) {
  write("LOG4", "");
  write("LOG9", "");
  make("UserFile", "LOG%u", "NumericSeq");
  write("LOG10", "somebody else's");
  EXPECT_EQ(filesAfter(0), "LOG10 LOG11 LOG4 LOG9 ");
  close(false);
  EXPECT_EQ(filesAfter(DAY), "LOG10 LOG11 LOG12 LOG4 LOG9 ");
  EXPECT_EQ(read("LOG10"), "somebody else's");
  close(false);
  write("LOG4294967295", "");
  make("UserFile", "LOG%u", "NumericSeq");
  EXPECT_EQ(filesAfter(0), "LOG1 LOG10 LOG11 LOG12 LOG4 LOG4294967295 LOG9 ");
}

TEST_F(FileStream, TwoStreamsOnOneFileDoNotWriteOverEachOther) {
  make("UserFile", "50%s.log", "");  // without a name type the root is the name
  LOG_FileStream other("other");
  LogTest::make(other, "UserFile", "50%s.log", "");
  entry("a");
  other.writeEntry(1, 2, 1, "b", false);
  entry("c");
  EXPECT_EQ(read("50%s.log"),
            std::string(OPENED) + AT + "a\n" + OPENED + "14:05:09.27 (QDX:002) b\n" + AT + "c\n");
}

TEST_F(FileStream, RawEntriesAreDumpedAndObjectsAlsoWrittenLineByLine) {
  make("TransientFile", "", "");
  const std::string bytes = std::string(19, 'A') + "\n";
  const std::string dump =
      std::string(AT) +
      "0000: 41 41 41 41 41 41 41 41 41 41 41 41 41 41 41 41 |AAAAAAAAAAAAAAAA|\n" + AT +
      "0010: 41 41 41  A " + std::string(36, ' ') + "|AAA^            |\n";
  entry(bytes, true);
  object(bytes, true);
  EXPECT_EQ(content(), OPENED + dump + dump);
  close(false);
  object("one\r\n\r\n" + std::string(130, 'x') + "\r\nlast", false);
  EXPECT_EQ(content(), std::string(OPENED) + AT + "one\n" + AT + "\n" + AT + std::string(127, 'x') +
                           "\n" + AT + "xxx\n" + AT + "last\n");
}

TEST_F(FileStream, ClosingDeletesUserFilesAndMemoryOnly) {
  make("UserFile", "%s", "Date");
  entry("x");
  EXPECT_EQ(close(true), 0U);
  EXPECT_EQ(files(), "");
  make("TransientFile", "%s", "Date");
  entry("x");
  EXPECT_EQ(filesAfter(DAY), "");
  EXPECT_EQ(content(), std::string(OPENED) + AT + "x\n" + AT + "x\n");
  EXPECT_EQ(close(true), 0U);
  EXPECT_EQ(content(), "");
  make("SystemFile", "%s", "Date");
  entry("x");
  EXPECT_EQ(close(true), 10622U);
  EXPECT_EQ(files(), "240229 ");
}

TEST_F(FileStream, AFailedOpenIsTriedAgainOnceASecond) {
  std::filesystem::create_directory(directory + "logs");
  make("UserFile", "logs/%u", "NumericSeq");
  std::filesystem::remove(directory + "logs");
  entry("lost");
  unsigned status = 0;
  stream.open(status);  // the host is told, and asks without waiting
  EXPECT_NE(status, 0U);
  std::filesystem::create_directory(directory + "logs");
  clock.advance(999);
  entry("too soon");
  EXPECT_EQ(files("logs"), "");
  clock.advance(1);
  entry("written");
  EXPECT_EQ(read("logs/1"),
            "14:05:10.27 (LOG:001) Log file opened on 28-Feb-2024\n"
            "14:05:10.27 (KRX:001) written\n");
}

TEST_F(FileStream, AFullDiskDropsEntriesUntilThereIsRoomAgain) {
  make("UserFile", "full", "");
  entry("one");
  rlimit unlimited{};
  getrlimit(RLIMIT_FSIZE, &unlimited);
  const rlimit full{std::filesystem::file_size(directory + "full"), unlimited.rlim_max};
  auto* const handler = std::signal(SIGXFSZ, SIG_IGN);
  setrlimit(RLIMIT_FSIZE, &full);
  entry("lost");
  entry("lost too");
  setrlimit(RLIMIT_FSIZE, &unlimited);
  std::signal(SIGXFSZ, handler);
  entry("two");
  EXPECT_EQ(read("full"), std::string(OPENED) + AT + "one\n" + AT + "two\n");
}

TEST_F(FileStream, WithoutRootOnlyAnExplicitOpenAsserts) {
  EXPECT_EQ(make("SystemFile", "", ""), 0U);
  entry("dropped");
  unsigned status = 0;
  EXPECT_EQ(failureOf([&] { stream.open(status); }),
            failureOf([] { GENAssert(1, "LOGFilSt", 1); }));
}

}  // namespace
}  // namespace logtest
