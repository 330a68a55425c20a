#include "krx/krxras.h"

#include <gmock/gmock.h>

#include "gen/GENREG.h"
#include "gen/Variable.h"
#include "krx/Support.h"
#include "log/LOGGLB.h"
#include "log/LOGLOG.h"
#include "plat/PlatClock.h"
#include "plat/PlatCommand.h"
#include "plat/PlatEvent.h"
#include "ras/Dialler.h"

namespace krxtest {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

// What the third stream of the log gets, where the entry's properties are listed: one line an
// entry, data as its length.
class Listing : public LOG_Stream {
 public:
  Listing() : LOG_Stream("Listing") { setMaximumLevel(LOG_Logging::DEBUG); }
  void writeDataObject(unsigned int, unsigned int, DAC_BaseDataAccess&, bool) override {}
  void writeEntry(unsigned int, unsigned int, unsigned int length, const char* text,
                  bool raw) override {
    lines += raw ? std::to_string(length) + " bytes" : std::string(text, length);
    lines += "\n";
  }
  static std::string take() { return std::exchange(lines, ""); }

 private:
  static inline std::string lines;
};

// Once for the process, because the log has no way to take a stream out.
void attachListing() {
  static const bool attached = [] {
    unsigned int status = 0;
    LOG_globalLog().attach(2, std::make_unique<Listing>(), status);
    return status == 0;
  }();
  ASSERT_TRUE(attached);
}

class DialUp : public Spool {
 protected:
  DialUp() : m_clock(plat::now()), m_dialled(&m_group, "PO") {
    setenv("KRX_REGISTRY", m_dialler.path("registry.db").c_str(), 1);
    plat::setClock(&m_clock);
    phonebook("IdleDisconnectSeconds=30\n");
    m_dialler.write("interface", "lo\n");
    attachListing();
  }
  ~DialUp() override { plat::setClock(nullptr); }

  // The entry "isp", dialled by the script.
  void phonebook(const std::string& lines) {
    m_dialler.write("phonebook.ini",
                    "; ours\n \n[isp]\nCommand= dial %e %u %n %i %l, %%\nPidFile= " +
                        m_dialler.path("pid") + "\n" + lines);
  }
  void give(const std::string& name, const std::string& value) {
    unsigned int status = 0;
    m_dialled.configDirective(name.c_str(), value.c_str(), status);
    EXPECT_EQ(status, 0U) << name;
  }
  unsigned int validate() {
    unsigned int status = 0;
    m_dialled.validate(status);
    return status;
  }
  // Configures the post office; an event is due every 40 seconds.
  unsigned int configure() {
    give("SourceDir", in());
    give("DestDir", out());
    give("MailDomain", "here");
    give("ContainerClass", "Class");
    give("RasSchedule", "+00:00:40");
    give("RasPhoneBookEntry", "isp");
    give("RasUserName", "joe");
    give("RasPassword", "open sesame");
    takeLog();
    Listing::take();
    return validate();
  }
  // Checks an entry on its own: the status and what was logged.
  std::string check(const char* name, std::uint32_t idleTime = 30) {
    SCL_DynamicLibrary library;
    KRX_RasApi api;
    RasHandle connection = 0;
    const SCL_String office("PO"), entry(name), none;
    unsigned int status = 0;
    KRX_bindRas(library, api, status);
    KRX_RasLine({office, entry, none, none, none, idleTime, 1, 1}, api, connection).check(status);
    return std::to_string(status) + " " + takeLogText();
  }
  // Lets the next event fall due and polls; what was logged about the line.
  std::string poll() {
    m_clock.advance(41'000);
    takeLog();
    unsigned int status = 0;
    m_fetched.reset(m_dialled.nextMessage(status));
    EXPECT_EQ(status, 0U);
    std::string text;
    for (const std::string& line : takeLog()) {
      text += line.find("RAS Event") == std::string::npos ? line + "\n" : "";
    }
    return text;
  }
  std::string calls() const { return m_dialler.read("calls"); }

  rastest::Dialler m_dialler;
  // Of its own, or else any host on this machine takes the event.
  const Variable m_runDirectory{"KRX_RUN_DIR", m_dialler.path("run")};
  plat::ManualClock m_clock;
  KRX_PostOffice m_dialled;
  std::unique_ptr<GMA_Message> m_fetched;
};

constexpr char DIALLED[] = "11:3 Start RASDialUp isp\n11:3 RASDialUp completed isp\n";
constexpr char CALL[] = "isp joe  30 krx-isp, %\n";

TEST_F(DialUp, ADueEventDialsOnceRunsTheCommandAndSignals) {
  plat::NamedEvent event;
  EXPECT_EQ(event.create("Torvanix-Brindlemark-RetryNow"), 0);
  give("RasCommand", "exit 3");
  EXPECT_EQ(configure(), 0U);
  EXPECT_EQ(poll(), std::string(DIALLED) + "11:3 RasCommand result 3\n");
  EXPECT_EQ(calls(), CALL);
  EXPECT_EQ(m_dialler.read("password"), "open sesame");
  EXPECT_THAT(m_dialler.read("seen"), Not(HasSubstr("sesame")));
  EXPECT_THAT(Listing::take(), Not(HasSubstr("sesame")));
  EXPECT_TRUE(event.wait(0));
  std::uint32_t value = 0;
  unsigned int status = 0;
  gen::regReadSoftwareNumber("Torvanix\\Brindlemark", "RetryNow", value, status);
  EXPECT_EQ(value, 1U);
  poll();
  EXPECT_EQ(calls(), CALL);  // the healthy line is kept
  give("RasCommand", "\"exit 4");
  EXPECT_EQ(poll(), DIALLED);  // half a command is none
}

TEST_F(DialUp, FailedAttemptsPauseAndMailIsFetchedAllTheSame) {
  give("RasRetryCount", "3");
  give("RasRetryDelay", "7");
  EXPECT_EQ(configure(), 0U);
  m_dialler.write("plan", "16\n8\nleft\n19\n");
  put("M", "Subject: x\n\nbody\n");
  const std::int64_t before = m_clock.now().seconds;
  const std::string prefix = "11:1 PO:Error in initiating RAS dial up connection RasError ";
  EXPECT_EQ(poll(), "11:3 Start RASDialUp isp\n" + prefix + "The other side hung up.\n" + prefix +
                        "The modem or its connect script reported an error.\n" + prefix +
                        "The negotiation with the other side failed.\n");
  EXPECT_FALSE(rastest::Dialler::isRunning(m_dialler.line()));
  EXPECT_NE(m_fetched, nullptr);
  EXPECT_EQ(m_clock.now().seconds - before, 41 + 3 * 7);
  EXPECT_EQ(poll(), "11:3 Start RASDialUp isp\n" + prefix +
                        "The user name or the password was refused.\n11:3 RASDialUp completed "
                        "isp\n");
}

TEST_F(DialUp, ALineOfAnotherProgramIsAdopted) {
  EXPECT_EQ(configure(), 0U);
  int error = 0;
  EXPECT_EQ(plat::runCommand("exec 3</dev/null >/dev/null 2>&1; dial other", error), 0);
  EXPECT_EQ(poll(), DIALLED);
  EXPECT_EQ(calls(), "other\n");
}

TEST_F(DialUp, ALineThatDroppedOrIsUnusableIsDialledAnew) {
  EXPECT_EQ(configure(), 0U);
  poll();
  m_dialler.dropLine();
  EXPECT_EQ(poll(), DIALLED);
  EXPECT_EQ(calls(), std::string(CALL) + CALL);
  const pid_t unusable = m_dialler.line();
  m_dialler.write("pid", std::to_string(unusable) + "\ngone0\n");
  EXPECT_EQ(poll(), DIALLED);
  EXPECT_EQ(calls(), std::string(CALL) + CALL + CALL);
  EXPECT_FALSE(rastest::Dialler::isRunning(unusable));
}

TEST_F(DialUp, AServiceThatCannotBeBoundReplacesAnEarlierStatus) {
  setenv("KRX_RAS_LIBRARY", "/nowhere/RASAPI32.so", 1);
  give("RasSchedule", "08:30");
  EXPECT_EQ(validate(), 11924U);
  const std::string log = takeLogText();
  EXPECT_THAT(log, HasSubstr("no source directory has been specified.\n11:1 RASAPI32.DLL cannot be "
                             "loaded, /nowhere/RASAPI32.so: "));
  EXPECT_THAT(log, HasSubstr("11:1 Failed to link to the RAS API, is it installed?\n"));
  setenv("KRX_RAS_LIBRARY", "libm.so.6", 1);
  EXPECT_EQ(validate(), 11924U);
  EXPECT_THAT(takeLogText(), HasSubstr("11:1 Failed to get entry points for one or more RAS API "
                                       "functions,Is the correct version installed\n"));
  m_clock.advance(24 * 3'600'000);
  EXPECT_THAT(poll(), Not(HasSubstr("RASDialUp")));
}

TEST_F(DialUp, AnEntryThatCannotBeReadIsTold) {
  EXPECT_EQ(check(""),
            "11922 11:1 Error in configuration section PO, RAS dialups are scheduled but "
            "no phone book entry is given.\n");
  EXPECT_EQ(check("nobody"),
            "11919 11:1 Error in configuration section PO,Phonebook entry "
            "\"nobody\" does not exist.\n");
  phonebook("FrameSize = x\n");
  EXPECT_EQ(check("isp"),
            "11920 11:1 PO:Calling RasGetEntryProperties RasError A line of the "
            "phonebook entry is not valid.\n");
  std::filesystem::remove(m_dialler.phonebook());
  EXPECT_EQ(check("isp"),
            "11920 11:1 Error in configuration section PO,Cannot open RAS phonebook, "
            "is RAS installed.\n");
}

TEST_F(DialUp, TheIdleTimeIsWrittenBackAndTheEntryListed) {
  const std::string rest =
      "LocalPhoneNumber= 0,,123\nAlternatePhoneNumber= 456\nDeviceInfo= ATZ\nOptions= 1F\n"
      "IpAddress= 10.0.0.255\n";
  phonebook("IdleDisconnectSeconds=60\n" + rest);
  const std::string before = m_dialler.read("phonebook.ini");
  EXPECT_EQ(configure(), 0U);
  std::string after = before;
  after.replace(after.find("=60"), 3, "=30");
  EXPECT_EQ(m_dialler.read("phonebook.ini"), after + " \n");
  const std::string listing = Listing::take();
  EXPECT_THAT(listing, testing::StartsWith(
                           "Phonebook entry \"isp\".\n\tOptions 1F\n\tCountryId 0\n\tCountryCode "
                           "0\n\tAreaCode \n\tLocalPhoneNumber 0,,123\n\tAlternateOffset 1796\n"
                           "\tipaddr 10.0.0.255\n\tipaddrDns 0.0.0.0\n\tipaddrDnsAlt 0.0.0.0\n"
                           "\tipaddrWins 0.0.0.0\n\tipaddrWinsAlt 0.0.0.0\n\tFrameSize 0\n"
                           "\tfNetProtocols 0\n\tFramingProtocol 0\n\tScript \n\tAutodialDll \n"
                           "\tAutodialFunc \n\tDeviceType \n\tDeviceName \n\tX25PadType \n"
                           "\tX25Address \n\tX25Facilities \n\tX25UserData \n\tChannels 0\n"
                           "\tSubEntries 0\n\tDialMode 0\n\tDialExtraPercent 0\n"
                           "\tDialExtraSampleSeconds 0\n\tHangUpExtraPercent 0\n"
                           "\tHangUpExtraSampleSeconds 0\n\tIdleDisconnectSeconds 60\n"
                           "Alternate phonenumbers.\n5 bytes\nDeviceInfo.\n3 bytes\n"
                           "Updated Phonebook entry \"isp\".\n\tOptions 1F\n"));
  EXPECT_THAT(listing, testing::EndsWith("\tIdleDisconnectSeconds 30\n"));
}

TEST_F(DialUp, AnEqualIdleTimeWritesNothingAndAPhonebookThatCannotBeWrittenIsTold) {
  for (char digit = '1'; digit <= '9'; ++digit) {
    m_dialler.write(std::string("phonebook.$$") + digit, "");
  }
  EXPECT_EQ(check("isp", 30), "0 ");
  EXPECT_EQ(check("isp", 31),
            "11923 11:1 PO:Calling RasSetEntryProperties RasError The phonebook "
            "cannot be written.\n");
}

TEST_F(DialUp, AServiceThatLiesAboutSizesIsNotBelieved) {
  KRX_RasApi api;
  api.getEntryProperties = [](const char*, const char*, RasEntry* entry, std::uint32_t* size,
                              std::uint8_t*, std::uint32_t* deviceInfoSize) {
    std::memset(entry->x25Facilities, 'x', sizeof entry->x25Facilities);
    std::memset(entry->x25UserData, 'y', sizeof entry->x25UserData);
    entry->idleDisconnectSeconds = 30;
    *size = *deviceInfoSize = UINT32_MAX;
    return std::uint32_t{0};
  };
  api.enumConnections = [](RasConnection* connections, std::uint32_t*, std::uint32_t* count) {
    std::memset(connections[19].entryName, 'x', sizeof connections[19].entryName);
    *count = UINT32_MAX;
    return std::uint32_t{0};
  };
  api.dial = [](const void*, const char*, const RasDialParameters* parameters, std::uint32_t,
                const void*, RasHandle*) { return parameters->password[255] == 'p' ? 777U : 1U; };
  api.getErrorString = [](std::uint32_t, char*, std::uint32_t) { return 87U; };
  const SCL_String office("PO"), entry("isp"), none;
  const SCL_String password(std::string(300, 'p').c_str());
  RasHandle connection = 0;
  KRX_RasLine line({office, entry, none, password, none, 30, 1, 1}, api, connection);
  unsigned int status = 0;
  Listing::take();
  line.check(status);
  EXPECT_EQ(status, 0U);
  EXPECT_THAT(Listing::take(),
              testing::AllOf(HasSubstr("X25Facilities " + std::string(201, 'x') + "\n"),
                             HasSubstr("X25UserData " + std::string(201, 'y')),
                             HasSubstr("2048 bytes\nDeviceInfo.\n1024 bytes\n")));
  takeLog();
  line.raise();
  EXPECT_THAT(takeLog(), ElementsAre("11:3 Start RASDialUp isp",
                                     "11:1 PO:Error in initiating RAS dial up connection RasError "
                                     "Error Code 777"));
  api.getErrorString = [](std::uint32_t, char* text, std::uint32_t size) {
    std::memset(text, 'x', size);
    return 0U;
  };
  line.raise();
  EXPECT_THAT(takeLog().back(),
              testing::EndsWith("RasError " + std::string(RAS_ERROR_TEXT_SIZE - 1, 'x')));
}

}  // namespace
}  // namespace krxtest
