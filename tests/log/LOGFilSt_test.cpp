// Log files: names, days, what is written and when it is not.
#include "log/LOGFilSt.h"

#include "dac/DACMEMDA.h"
#include "fl/BrokenDevice.h"
#include "fl/FullDisk.h"
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
    return folder.names();
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
  unsigned copied(const std::string& target) {
    unsigned status = 0;
    stream.copyLogToFile(target.c_str(), status);
    return status;
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
  EXPECT_EQ(set(stream, "FileRootName", folder.path("none/LOG%s.TXT")), 10629U);
  EXPECT_EQ(set(stream, "FileRootName", folder.path("LOG*.TXT")), 122U);
  EXPECT_EQ(set(stream, "FileRootName", folder.path()), 124U);
  EXPECT_EQ(set(stream, "FileRootName", "/dev/full"), 124U);
  EXPECT_EQ(set(stream, "FileRootName", " "), 125U);
  EXPECT_EQ(make("UserFile", "", "Date"), 10625U);
}

TEST_F(FileStream, EntriesAreAppendedAlsoAfterACopyAndAnotherStreams) {
  const std::string name = "50%s.log";  // without a name type the root is the name
  folder.write(name, "before\r\n");
  make("SystemFile", name, "");
  LOG_FileStream other("other");
  LogTest::make(other, "UserFile", name, "");
  unsigned status = 0;
  stream.copyLogToFile(folder.path("early").c_str(), status);  // not open yet
  entry("one\ttext with %n");
  stream.copyLogToFile(folder.path("copy").c_str(), status);
  other.writeEntry(1, 2, 1, "b", false);
  entry("two");
  EXPECT_EQ(folder.names(), name + " copy");
  EXPECT_EQ(read("copy"), std::string("before\n") + OPENED + AT + "one\ttext with %n\n");
  EXPECT_EQ(content(), read("copy") + OPENED + "14:05:09.27 (QDX:002) b\n" + AT + "two\n");
  EXPECT_EQ(content(), read(name));
}

TEST_F(FileStream, EachDayOfAWeekHasItsFileAlsoALeapDayAndWhenTheClockIsSetBack) {
  make("UserFile", "%s", "Date");
  EXPECT_EQ(filesAfter(0), "240228");
  EXPECT_EQ(filesAfter(9 * HOUR), "240228");  // 23:05:09
  EXPECT_EQ(filesAfter(HOUR), "240228 240229");
  EXPECT_EQ(read("240229"),
            "00:05:09.27 (LOG:001) Log file opened on 29-Feb-2024\n00:05:09.27 (KRX:001) x\n");
  for (int day = 0; day < 5; ++day) {
    filesAfter(24 * HOUR);
  }
  clock.set(START);
  EXPECT_EQ(filesAfter(0), "240228 240229 240301 240302 240303 240304 240305");
  EXPECT_EQ(read("240228"),
            std::string(OPENED) + AT + "x\n23:05:09.27 (KRX:001) x\n" + OPENED + AT + "x\n");
}

TEST_F(FileStream, TheDayIsTheLocalOneThroughBothChangesOfSummerTime) {
  setenv("TZ", "CET-1CEST,M3.5.0,M10.5.0/3", 1);
  tzset();
  make("UserFile", "%s", "Date");
  clock.set({1711839540, 0});  // 30 March 2024, 23:59 CET; the next day has 23 hours
  EXPECT_EQ(filesAfter(0), "240330");
  EXPECT_EQ(filesAfter(23 * HOUR), "240330 240331");  // 23:59 CEST
  EXPECT_EQ(filesAfter(HOUR / 60), "240330 240331 240401");
  clock.set({1729979940, 0});  // 26 October 2024, 23:59 CEST; the next day has 25 hours
  EXPECT_EQ(filesAfter(0), "240330 240331 240401 241026");
  EXPECT_EQ(filesAfter(25 * HOUR), "240330 240331 240401 241026 241027");  // 23:59 CET
  EXPECT_EQ(filesAfter(HOUR / 60), "240330 240331 240401 241026 241027 241028");
}

TEST_F(FileStream, NumberedFilesGoOnBehindTheHighestAndLeaveOutZero) {
  folder.write("LOG9", "");
  make("UserFile", "LOG%u", "NumericSeq");
  folder.write("LOG10", "somebody else's");
  EXPECT_EQ(filesAfter(0), "LOG10 LOG11 LOG9");
  EXPECT_EQ(filesAfter(24 * HOUR), "LOG10 LOG11 LOG9");  // another day is no other number
  EXPECT_EQ(read("LOG10"), "somebody else's");
  close(false);
  folder.write("LOG4294967295", "");
  make("UserFile", "LOG%u", "NumericSeq");
  EXPECT_EQ(filesAfter(0), "LOG1 LOG10 LOG11 LOG4294967295 LOG9");
  close(false);
  std::filesystem::create_directory(folder.path("LOG2"));
  EXPECT_EQ(filesAfter(0), "LOG1 LOG10 LOG11 LOG2 LOG4294967295 LOG9");
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
  object("\r\n" + std::string(130, 'x') + "\r\nlast", false);
  EXPECT_EQ(content(), OPENED + dump + dump + AT + "\n" + AT + std::string(127, 'x') + "\n" + AT +
                           "xxx\n" + AT + "last\n");
}

TEST_F(FileStream, ClosingDeletesUserFilesAndMemoryOnly) {
  make("UserFile", "%s", "Date");
  entry("x");
  EXPECT_EQ(close(true), 0U);
  EXPECT_EQ(folder.names(), "");
  make("TransientFile", "%s", "Date");
  entry("x");
  EXPECT_EQ(filesAfter(24 * HOUR), "");
  EXPECT_EQ(content(), std::string(OPENED) + AT + "x\n" + AT + "x\n");
  EXPECT_EQ(close(true), 0U);
  make("SystemFile", "%s", "Date");
  entry("x");
  EXPECT_EQ(close(true), 10622U);
  EXPECT_EQ(folder.names(), "240229");
}

TEST_F(FileStream, AFailedOpenIsTriedAgainOnceASecond) {
  std::filesystem::create_directory(folder.path("logs"));
  make("UserFile", "logs/%u", "NumericSeq");
  std::filesystem::remove(folder.path("logs"));
  entry("lost");
  std::filesystem::create_directory(folder.path("logs"));
  EXPECT_EQ(filesAfter(999), "logs");
  EXPECT_EQ(folder.names("logs"), "");
  filesAfter(1);
  EXPECT_EQ(folder.names("logs"), "1");
}

TEST_F(FileStream, AFullDiskDropsEntriesUntilThereIsRoomAgain) {
  make("UserFile", "full", "");
  entry("one");
  {
    const FullDisk full(std::filesystem::file_size(folder.path("full")));
    entry("lost");
    object("lost too", true);
  }
  entry("two");
  EXPECT_EQ(read("full"), std::string(OPENED) + AT + "one\n" + AT + "two\n");
}

TEST_F(FileStream, ACopyThatFailsIsToldAndTheLogGoesOn) {
  make("UserFile", "log", "");
  entry("one");
  EXPECT_EQ(copied(folder.path("none/copy")), 490U);
  for (const auto& [call, error, status] : {std::tuple("pwrite", ENOSPC, 444U),
                                            {"pwrite", EIO, 472U},
                                            {"fsync", EIO, 452U},
                                            {"close", EIO, 498U}}) {
    const BrokenDevice broken(call, error);
    EXPECT_EQ(copied(folder.path("copy")), status);
  }
  entry("two");
  EXPECT_EQ(read("log"), std::string(OPENED) + AT + "one\n" + AT + "two\n");

  close(false);
  make("TransientFile", "", "");
  const std::string large(20000, 'x');  // more than is copied at once
  entry(large);
  {
    const FullDisk full(0);
    EXPECT_EQ(copied(folder.path("copy")), 472U);
  }
  entry("end");
  EXPECT_EQ(content(), OPENED + (AT + large) + "\n" + AT + "end\n");
}

// Content that never gets on, as a broken kind of content object might have it.
TEST_F(FileStream, AnObjectWithoutProgressEndsItsEntry) {
  struct Stuck : DAC_MemoryDataAccess {
    std::int32_t readLine(std::int32_t, char*, unsigned& status) override {
      status = 10014;
      return 0;
    }
  } stuck;
  make("UserFile", "log", "");
  const FullDisk bound(100000);
  stream.writeDataObject(11, 1, stuck, false);
  EXPECT_EQ(read("log"), OPENED);
}

TEST_F(FileStream, WithoutRootOnlyAnExplicitOpenAsserts) {
  EXPECT_EQ(make("SystemFile", "", ""), 0U);
  entry("dropped");
  unsigned status = 0;
  EXPECT_EQ(failureOf([&] { stream.open(status); }), "Null pointer in LOGFilSt");
}

}  // namespace
}  // namespace logtest
