// Configuration of the log and of its streams' common keys; the binding of the global log.
#include <optional>
#include <set>

#include "dac/DACMEMDA.h"
#include "gen/GENCATCH.h"
#include "log/LOGGLB.h"
#include "log/Support.h"
#include "scl/FailingMemory.h"
#include "scl/Failure.h"

namespace logtest {
namespace {

class Configuration : public LogTest {
 protected:
  // The status of configuring a new log from [Log], and its active mask. "%M" is a memory stream.
  // The profile is open for writing, so comments are entries of it.
  std::string configure(const std::string& text) {
    folder.write("log.ini",
                 std::regex_replace(text, std::regex("%M"), "StreamType=TransientFile\n"));
    log.emplace();
    unsigned status = 0;
    PFA_Profile profile(folder.path("log.ini").c_str(), true);
    log->configure(profile, "Log", status);
    return std::to_string(status) + " " + std::to_string(log->activeMask());
  }
  std::string logged(unsigned mask) {
    DAC_MemoryDataAccess target;
    unsigned status = 0;
    log->readLog(mask, target, status);
    return shown(std::string(target.window(0)));
  }

  std::optional<LOG_Logging> log;
};

TEST_F(Configuration, StreamsTakeTheirSlotLevelAndFilterFromTheirSections) {
  EXPECT_EQ(configure("[Log]\n; a comment that is longer than any name\nMain = 0\nMain Log = 15\n"
                      "[MAIN]\n; kept in memory\nMaxLevel = Brief\nIncludeFacility = KRX\n"
                      "streamtype = transientfile\n[ Main Log ]\nMaxLevel = Debug\n%M"),
            "0 32769");
  log->writeText(0xFFFF, 11, 1, "brief");
  log->writeText(0xFFFF, 8, 4, "debug");
  log->writeText(0xFFFF, 8, 1, "other");
  const std::string common =
      "14:05:09.27 (LOG:001) Log file opened on 28-Feb-2024\n"
      "14:05:09.27 (KRX:001) brief\n";
  EXPECT_EQ(logged(1), common);
  EXPECT_EQ(logged(1U << 15),
            common + "14:05:09.27 (GMA:004) debug\n14:05:09.27 (GMA:001) other\n");
  log->writeText(0xFFFF, 11, 0xFFFFFFFF, "beyond all levels");
  EXPECT_EQ(logged(1), common);
  EXPECT_EQ(configure("[Log]\n[Main]\n%M"), "0 0");
  // A name as it stands goes before one that would have to lose its blanks.
  EXPECT_EQ(configure("[Log]\nMain Log = 0\n[Main Log]\nStreamType = x\n[MainLog]\n%M"), "0 1");
}

TEST_F(Configuration, AStreamThatThereIsNoMemoryForIsAStatus) {
  folder.write("log.ini", "[Log]\nMain = 0\n[Main]\nStreamType = TransientFile\n");
  std::set<unsigned> statuses;
  failing::eachAllocation([&](int, const auto& during) {
    log.emplace();
    unsigned status = 0;
    PFA_Profile profile(folder.path("log.ini").c_str(), true);
    during([&] { GENSwallow([&] { log->configure(profile, "Log", status); }); });
    statuses.insert(status);
  });
  EXPECT_TRUE(statuses.contains(10601)) << testing::PrintToString(statuses);
  EXPECT_EQ(log->activeMask(), 1U);
}

TEST_F(Configuration, FaultsKeepTheStreamsThatAreGood) {
  const auto with = [&](const std::string& entries) {
    return configure("[Log]\nMain = 0\n" + entries +
                     "[Main]\n%M[Events]\nStreamType = AppEvent\nEventId = 7\n"
                     "[Typeless]\nMaxLevel = Brief\n[Long]\n%MFileRootName = " +
                     std::string(128, 'x') +
                     "\n"
                     "[Odd]\nStreamType = Printer\n[Loud]\n%MMaxLevel = Loud\n"
                     "[Red]\n%MColour = red\n");
  };
  EXPECT_EQ(with("Events = 0\n"), "10616 1");
  EXPECT_EQ(with("Events = 16\nOdd = 1\n"), "10615 1");
  EXPECT_EQ(with("Events = 1\nOdd = 2\n"), "10623 3");
  EXPECT_EQ(with("Missing = 1\n"), "1830 1");
  EXPECT_EQ(with("Events = 2\nTypeless = 1\n"), "1831 5");
  EXPECT_EQ(with("Long = 1\nEvents = 2\n"), "1820 5");
  EXPECT_EQ(with("Loud = 1\nRed = 2\nEvents = 3\n"), "10628 9");
  EXPECT_EQ(with("Red = 1\nLoud = 2\nEvents = 3\n"), "121 9");
}

TEST_F(Configuration, ASectionThatIsReadToItsEndNamesItsFiles) {
  const std::string file = "StreamType = UserFile\nNameType = Date\n";
  EXPECT_EQ(configure("[Log]\nDay = 0\nNone = 1\n[Day]\n" + file +
                      "FileRootName = " + folder.path("LOG%s") + "\n[None]\n" + file),
            "10625 1");
  log->writeText(1, 11, 1, "x");
  EXPECT_EQ(folder.names(), "LOG240228 log.ini");
}

TEST_F(LogTest, FacilityDirectivesFilterFromTheFirstOneOn) {
  // Which facilities pass after directives ("+11" includes, "-11" excludes).
  const auto passing = [](std::initializer_list<const char*> directives) {
    LOG_FileStream stream("s");
    for (const char* directive : directives) {
      set(stream, *directive == '+' ? "IncludeFacility" : "ExcludeFacility", directive + 1);
    }
    std::string text;
    for (const unsigned facility : {0U, 2U, 11U, 50U, 60U}) {
      text += stream.passesFacility(facility) ? std::to_string(facility) + " " : "";
    }
    return text;
  };
  EXPECT_EQ(passing({}), "0 2 11 50 60 ");
  EXPECT_EQ(passing({"+-5", "+51", "+99999999999", "+krx", "+"}), "60 ");
  EXPECT_EQ(passing({"+11", "+002", "-2"}), "11 60 ");
  EXPECT_EQ(passing({"-KRX", "-?\?\?", "+0"}), "0 2 50 60 ");
}

// The one test of the process that binds a global log.
TEST_F(Configuration, TheGlobalLogIsBoundOnce) {
  EXPECT_EQ(failureOf([] { LOG_globalLog(); }), "Global log has not been initialised. in LOGGLB");
  EXPECT_EQ(failureOf([] { LOG_setGlobalLog(nullptr); }), "Null pointer in LOGGLB");
  folder.write("log.ini",
               "[Bad]\nMain = 0\nOdd = 1\n[Good]\nMain = 0\n[Main]\nStreamType = TransientFile\n"
               "[Odd]\nStreamType = Printer\n");
  PFA_Profile profile(folder.path("log.ini").c_str());
  unsigned status = 0;
  LOG_createGlobalLog(profile, "Bad", status);  // its good stream does not save it
  EXPECT_EQ(status, 10623U);
  EXPECT_FALSE(LOG_hasGlobalLog());

  status = 0;
  LOG_createGlobalLog(profile, "Good", status);
  LOG_Logging& first = LOG_globalLog();
  EXPECT_EQ(first.activeMask(), 1U);
  LOG_setGlobalLog(&log.emplace());
  LOG_createGlobalLog(profile, "Bad", status);
  EXPECT_EQ(status, 0U);
  EXPECT_EQ(&LOG_globalLog(), &first);
}

}  // namespace
}  // namespace logtest
