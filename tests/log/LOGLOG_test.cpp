// The log: which streams an entry reaches, and what its operations answer.
#include "log/LOGLOG.h"

#include <algorithm>
#include <sstream>
#include <thread>

#include "dac/DACMEMDA.h"
#include "gen/GENWNT.h"
#include "log/Support.h"
#include "scl/Failure.h"

namespace logtest {
namespace {

// Notes what it is asked and gives one answer; for 1 it raises an assertion.
class Recorder : public LOG_Stream {
 public:
  Recorder(const char* name, std::string& record, std::uint32_t maximum, unsigned answer)
      : LOG_Stream(name), m_record(record), m_answer(answer) {
    setMaximumLevel(maximum);
  }
  void writeDataObject(unsigned, unsigned level, DAC_BaseDataAccess&, bool) override {
    note(std::to_string(level) + " object");
  }
  void writeEntry(unsigned, unsigned level, unsigned length, const char* text, bool raw) override {
    note(std::to_string(level) + (raw ? " raw " : " ") + std::string(text, length));
  }
  void maintain(const SCL_StringRef&, bool, LOG_Progress&, unsigned& status) override {
    status = note("maintain");
  }
  void open(unsigned& status) override { status = note("open"); }
  void copyLogToFile(const SCL_StringRef&, unsigned& status) override { status = note("copy"); }

 private:
  unsigned note(const std::string& what) {
    if (m_answer == 1) {
      GENAssert(1, "TEST", 1);
    }
    m_record += name() + " " + what + "\n";
    return m_answer;
  }
  std::string& m_record;
  unsigned m_answer;
};

class Logging : public LogTest {
 protected:
  unsigned attach(unsigned slot, const char* name, std::uint32_t maximum = 4, unsigned answer = 0) {
    unsigned status = 0;
    log.attach(slot, std::make_unique<Recorder>(name, record, maximum, answer), status);
    return status;
  }
  // The statuses of maintain, open, close, copyLogToFile and readLog.
  std::string answers(unsigned mask) {
    LOG_Progress progress;
    unsigned status[5] = {};
    log.maintain(mask, "", false, progress, status[0]);
    log.open(mask, status[1]);
    log.close(mask, false, status[2]);
    log.copyLogToFile(mask, "x", status[3]);
    log.readLog(mask, target, status[4]);
    std::string text;
    for (const unsigned answer : status) {
      text += std::to_string(answer) + " ";
    }
    return text;
  }
  std::string taken() { return std::exchange(record, std::string()); }

  std::string record;
  DAC_MemoryDataAccess target;
  LOG_Logging log;
};

TEST_F(Logging, EntriesReachTheSelectedStreamsUpToTheirLevel) {
  EXPECT_EQ(attach(0, "brief", 1) + attach(2, "normal", 2) + attach(15, "debug", 4), 0U);
  EXPECT_EQ(attach(0, "second"), 10616U);
  EXPECT_EQ(attach(16, "beyond"), 10615U);
  for (unsigned level = 1; level <= 4; ++level) {
    log.writeText(0xFFFF, 11, level, "%u", level);
  }
  EXPECT_EQ(taken(),
            "brief 1 1\nnormal 1 1\ndebug 1 1\nnormal 2 2\ndebug 2 2\ndebug 3 3\ndebug 4 4\n");
  log.writeText(1, 8, 1, "%s", std::string(2000, 'x').c_str());
  EXPECT_EQ(taken(), "brief 1 " + std::string(1023, 'x') + "\n");
  DAC_MemoryDataAccess object;
  log.writeData(4, 11, 2, 3, "abc");
  log.writeDataObject(1U << 15, 11, 4, object, true);
  EXPECT_EQ(taken(), "normal 2 raw abc\ndebug 4 object\n");
  EXPECT_TRUE(log.wants(5, 2) && !log.wants(5, 3));
}

TEST_F(Logging, AThrowReachesNeitherOtherStreamsNorTheWriterAndLeavesTheLockFree) {
  attach(0, "bad", 4, 1);
  attach(1, "good");
  EXPECT_EQ(failureOf([&] { answers(1); }), "Null pointer in TEST");
  std::thread([&] { log.writeText(3, 11, 1, "entry"); }).join();
  EXPECT_EQ(taken(), "good 1 entry\n");
}

TEST_F(Logging, EntriesOfEightThreadsComeWholeAndOnce) {
  constexpr unsigned THREADS = 8;
  constexpr unsigned ENTRIES = 100;
  auto stream = std::make_unique<LOG_FileStream>("s");
  make(*stream, "UserFile", "log", "");
  unsigned status = 0;
  log.attach(0, std::move(stream), status);
  std::vector<std::thread> writers;
  std::vector<std::string> wanted = {"14:05:09.27 (LOG:001) Log file opened on 28-Feb-2024"};
  for (unsigned thread = 0; thread < THREADS; ++thread) {
    writers.emplace_back([this, thread] {
      for (unsigned entry = 0; entry < ENTRIES; ++entry) {
        log.writeText(1, 11, 1, "%u of %u", entry, thread);
      }
    });
    for (unsigned entry = 0; entry < ENTRIES; ++entry) {
      wanted.push_back("14:05:09.27 (KRX:001) " + std::to_string(entry) + " of " +
                       std::to_string(thread));
    }
  }
  for (std::thread& writer : writers) {
    writer.join();
  }
  std::vector<std::string> lines;
  std::istringstream file(read("log"));
  for (std::string line; std::getline(file, line);) {
    lines.push_back(line);
  }
  std::sort(lines.begin(), lines.end());
  std::sort(wanted.begin(), wanted.end());
  EXPECT_EQ(lines, wanted);
}

TEST_F(Logging, OperationsTellWhenNothingIsSelectedAndStopAtAFailure) {
  attach(0, "idle", 4, 10630);
  attach(1, "done");
  attach(2, "bad", 4, 481);
  attach(3, "never");
  EXPECT_EQ(answers(16), "10612 10612 10612 10610 10610 ");
  EXPECT_EQ(answers(1), "10630 10630 0 10630 0 ");  // had nothing to maintain
  EXPECT_EQ(target.window(0), std::string_view("Message log not accessible", 27));
  EXPECT_EQ(answers(3), "0 10630 0 10630 0 ");
  taken();
  EXPECT_EQ(answers(14), "481 481 0 0 0 ");
  EXPECT_EQ(taken(), "done maintain\nbad maintain\ndone open\nbad open\ndone copy\n");
}

TEST_F(Logging, ControlCharactersOfMailTextBecomeBlanks) {
  EXPECT_STREQ(LOG_Clean("a\r\nb\tc\x7f\xe9").c_str(), "a  b c \xe9");
}

}  // namespace
}  // namespace logtest
