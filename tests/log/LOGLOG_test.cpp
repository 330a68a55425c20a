// The log: which streams an entry reaches, and what its operations answer.
#include "log/LOGLOG.h"

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
  Recorder(const char* name, std::string& record, std::uint32_t maximum = 4, unsigned answer = 0)
      : LOG_Stream(name), m_record(record), m_answer(answer) {
    setMaximumLevel(maximum);
  }
  void writeDataObject(unsigned facility, unsigned level, DAC_BaseDataAccess&, bool) override {
    note(std::to_string(facility) + ":" + std::to_string(level) + " object");
  }
  void writeEntry(unsigned facility, unsigned level, unsigned length, const char* text,
                  bool raw) override {
    note(std::to_string(facility) + ":" + std::to_string(level) + (raw ? " raw " : " ") +
         std::string(text, length));
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
  void attach(unsigned slot, const char* name, std::uint32_t maximum = 4, unsigned answer = 0) {
    const auto at = [&](unsigned number) {
      return statusOf([&](unsigned& s) {
        log.attach(number, std::make_unique<Recorder>(name, record, maximum, answer), s);
      });
    };
    EXPECT_EQ(at(slot), 0U);
    EXPECT_EQ(at(slot), 10616U);
    EXPECT_EQ(at(16), 10615U);
  }
  template <class Operation>
  static unsigned statusOf(Operation operation) {
    unsigned status = 0;
    operation(status);
    return status;
  }
  unsigned maintain(unsigned mask) {
    LOG_Progress progress;
    return statusOf([&](unsigned& s) { log.maintain(mask, "", false, progress, s); });
  }
  unsigned open(unsigned mask) {
    return statusOf([&](unsigned& s) { log.open(mask, s); });
  }
  unsigned copy(unsigned mask) {
    return statusOf([&](unsigned& s) { log.copyLogToFile(mask, "x", s); });
  }
  std::string taken() { return std::exchange(record, std::string()); }

  std::string record;
  LOG_Logging log;
};

TEST_F(Logging, EntriesReachTheSelectedStreamsUpToTheirLevel) {
  attach(0, "brief", 1);
  attach(2, "normal", 2);
  attach(15, "debug", 4);
  for (unsigned level = 1; level <= 4; ++level) {
    log.writeText(0xFFFF, 11, level, "%u", level);
  }
  EXPECT_EQ(taken(),
            "brief 11:1 1\nnormal 11:1 1\ndebug 11:1 1\nnormal 11:2 2\ndebug 11:2 2\n"
            "debug 11:3 3\ndebug 11:4 4\n");
  log.writeText(15, 8, 1, "%s", std::string(2000, 'x').c_str());
  const std::string cut(1023, 'x');
  EXPECT_EQ(taken(), "brief 8:1 " + cut + "\nnormal 8:1 " + cut + "\n");
  DAC_MemoryDataAccess object;
  log.writeData(4, 11, 2, 3, "abc");
  log.writeDataObject(1U << 15, 11, 4, object, true);
  EXPECT_EQ(taken(), "normal 11:2 raw abc\ndebug 11:4 object\n");
  EXPECT_TRUE(log.wants(5, 2));
  EXPECT_FALSE(log.wants(5, 3));
}

TEST_F(Logging, OneStreamsThrowReachesNeitherTheOthersNorTheWriter) {
  attach(0, "bad", 4, 1);
  attach(1, "good");
  log.writeText(3, 11, 1, "entry");
  EXPECT_EQ(taken(), "good 11:1 entry\n");
}

TEST_F(Logging, OperationsTellWhenNothingIsSelected) {
  attach(3, "s");
  DAC_MemoryDataAccess target;
  const auto answers = [&](unsigned mask) {
    return std::vector<unsigned>{
        maintain(mask), open(mask), statusOf([&](unsigned& s) { log.close(mask, false, s); }),
        copy(mask), statusOf([&](unsigned& s) { log.readLog(mask, target, s); })};
  };
  EXPECT_EQ(answers(7), (std::vector<unsigned>{10612, 10612, 10612, 10610, 10610}));
  EXPECT_EQ(answers(15), (std::vector<unsigned>{0, 0, 0, 0, 0}));
  EXPECT_EQ(target.window(0), std::string_view("Message log not accessible", 27));
}

TEST_F(Logging, MaintainPassesOverStreamsWithNothingToDoAndStopsAtAFailure) {
  attach(0, "idle", 4, 10630);
  EXPECT_EQ(maintain(1), 10630U);
  attach(1, "done");
  EXPECT_EQ(maintain(3), 0U);
  attach(2, "bad", 4, 481);
  attach(3, "never");
  taken();
  EXPECT_EQ(maintain(15), 481U);
  EXPECT_EQ(taken(), "idle maintain\ndone maintain\nbad maintain\n");
  EXPECT_EQ(open(15), 10630U);
  EXPECT_EQ(copy(12), 481U);
  EXPECT_EQ(taken(), "idle open\nbad copy\n");
}

TEST_F(Logging, EntriesOfSeveralThreadsStayWhole) {
  attach(0, "s");
  const auto writeMany = [&](const char* word) {
    for (int i = 0; i < 500; ++i) {
      log.writeText(1, 1, 1, "%s", word);
    }
  };
  std::thread other(writeMany, "a");
  writeMany("b");
  other.join();
  std::size_t whole = 0;
  for (std::size_t at = 0; at < record.size(); at += 8) {
    whole += record.compare(at, 8, "s 1:1 a\n") == 0 || record.compare(at, 8, "s 1:1 b\n") == 0;
  }
  EXPECT_EQ(whole, 1000U);
}

TEST_F(Logging, ControlCharactersOfMailTextBecomeBlanks) {
  EXPECT_STREQ(LOG_Clean("a\r\nb\tc\x7f\xe9").c_str(), "a  b c \xe9");
}

}  // namespace
}  // namespace logtest
