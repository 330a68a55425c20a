// Configuration of the log and of its streams' common keys; the binding of the global log.
#include <optional>

#include "dac/DACMEMDA.h"
#include "gen/GENWNT.h"
#include "log/LOGGLB.h"
#include "log/Support.h"
#include "scl/Failure.h"

namespace logtest {
namespace {

class Configuration : public LogTest {
 protected:
  // The status of configuring a new log from [Log], and its active mask. "%M" is a memory stream.
  std::string configure(std::string text, bool writable = false) {
    for (std::size_t at = 0; (at = text.find("%M", at)) != std::string::npos;) {
      text.replace(at, 2, "StreamType = TransientFile\n");
    }
    write("log.ini", text);
    log.emplace();
    unsigned status = 0;
    PFA_Profile profile((directory + "log.ini").c_str(), writable);
    log->configure(profile, "Log", status);
    return std::to_string(status) + " " + std::to_string(log->activeMask());
  }
  std::string logged(unsigned mask) {
    DAC_MemoryDataAccess target;
    unsigned status = 0;
    log->readLog(mask, target, status);
    return shown(std::string(target.window(0)));
  }
  // Applies directives ("+11" includes, "-11" excludes) and tells which facilities then pass.
  static std::string passing(std::initializer_list<const char*> directives) {
    LOG_FileStream stream("s");
    for (const char* directive : directives) {
      const char* key = *directive == '+' ? "IncludeFacility" : "ExcludeFacility";
      EXPECT_EQ(set(stream, key, directive + 1), 0U);
    }
    std::string text;
    for (const unsigned facility : {0U, 2U, 11U, 50U, 60U}) {
      text += stream.passesFacility(facility) ? std::to_string(facility) + " " : "";
    }
    return text;
  }

  std::optional<LOG_Logging> log;
};

TEST_F(Configuration, StreamsTakeTheirSlotLevelAndFilterFromTheirSections) {
  EXPECT_EQ(configure("[Log]\nMain = 0\nMain Log = 15\n[MAIN]\nMaxLevel = Brief\n"
                      "streamtype = transientfile\nIncludeFacility = KRX\n"
                      "[ Main Log ]\nMaxLevel = Debug\n%M"),
            "0 32769");
  log->writeText(0xFFFF, 11, 1, "brief");
  log->writeText(0xFFFF, 8, 4, "debug");
  log->writeText(0xFFFF, 8, 1, "other");
  const std::string opened = "14:05:09.27 (LOG:001) Log file opened on 28-Feb-2024\n";
  EXPECT_EQ(logged(1), opened + "14:05:09.27 (KRX:001) brief\n");
  EXPECT_EQ(logged(1U << 15), opened +
                                  "14:05:09.27 (KRX:001) brief\n14:05:09.27 (GMA:004) debug\n"
                                  "14:05:09.27 (GMA:001) other\n");
}

TEST_F(Configuration, FaultsKeepTheStreamsThatAreGood) {
  const auto with = [&](const std::string& entries) {
    return configure("[Log]\nMain = 0\n" + entries +
                     "[Main]\n%M[Events]\nStreamType = AppEvent\n[Typeless]\nMaxLevel = Brief\n"
                     "[Odd]\nStreamType = Printer\n[Loud]\n%MMaxLevel = Loud\n"
                     "[Red]\n%MColour = red\n");
  };
  EXPECT_EQ(with("Events = 1\n"), "0 3");
  EXPECT_EQ(with("Events = 0\n"), "10616 1");
  EXPECT_EQ(with("Events = two\n"), "10615 1");
  EXPECT_EQ(with("Events = 16\nOdd = 1\n"), "10615 1");
  EXPECT_EQ(with("Events = 1\nOdd = 2\n"), "10623 3");
  EXPECT_EQ(with("Typeless = 1\nEvents = 2\n"), "1831 1");
  EXPECT_EQ(with("Missing = 1\n"), "1830 1");
  EXPECT_EQ(with("Loud = 1\nRed = 2\nEvents = 3\n"), "10628 9");
  EXPECT_EQ(with("Red = 1\nLoud = 2\nEvents = 3\n"), "121 9");
}

TEST_F(Configuration, CommentsOfAWritableProfileArePassedOver) {
  EXPECT_EQ(configure("[Log]\n; the streams, of which there is only one so far\nMain = 0\n"
                      "[Main]\n; kept in memory\n%M; end\n",
                      true),
            "0 1");
}

TEST_F(Configuration, FacilityDirectivesFilterFromTheFirstOneOn) {
  EXPECT_EQ(passing({}), "0 2 11 50 60 ");
  EXPECT_EQ(passing({"+XYZ"}), "60 ");
  EXPECT_EQ(passing({"+-5", "+51", "+99999999999", "+krx", "+"}), "60 ");
  EXPECT_EQ(passing({"+11", "+002", "-2"}), "11 60 ");
  EXPECT_EQ(passing({"-KRX", "-?\?\?", "+0"}), "0 2 50 60 ");
}

// The one test of the process that binds a global log.
TEST_F(Configuration, TheGlobalLogIsBoundOnce) {
  EXPECT_EQ(failureOf([] { LOG_globalLog(); }), "Global log has not been initialised. in LOGGLB");
  EXPECT_EQ(failureOf([] { LOG_setGlobalLog(nullptr); }),
            failureOf([] { GENAssert(1, "LOGGLB", 1); }));
  write("log.ini",
        "[Bad]\nMain = 0\nOdd = 1\n[Good]\nMain = 0\n[Main]\nStreamType = TransientFile\n"
        "[Odd]\nStreamType = Printer\n");
  PFA_Profile profile((directory + "log.ini").c_str());
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
