#include <csignal>
#include <thread>

#include <gmock/gmock.h>
#include <sched.h>
#include <sys/mount.h>

#include "krx/krxrasif.h"
#include "plat/PlatLibrary.h"
#include "plat/Scene.h"
#include "ras/Dialler.h"

namespace rastest {
namespace {

using testing::HasSubstr;
using testing::Not;

class Service : public testing::Test {
 protected:
  Service() : m_dialler("pppd") {
    std::string error;
    m_library = plat::loadLibrary(KRX_RAS_LIBRARY_NAME, error);
    EXPECT_NE(m_library, nullptr) << error;
  }
  ~Service() override { plat::freeLibrary(m_library); }

  template <class Function>
  Function* operation(const char* name) const {
    return reinterpret_cast<Function*>(plat::librarySymbol(m_library, name));
  }
  void phonebook(const std::string& text) const { m_dialler.write("phonebook.ini", text); }
  std::string pidLine() const { return "PidFile = " + m_dialler.path("pid") + "\n"; }

  std::uint32_t get(const char* entry, std::uint32_t room = sizeof(RasEntryBuffer)) {
    m_buffer = {};
    m_buffer.entry.size = sizeof m_buffer.entry;
    m_size = room;
    return operation<RasGetEntryPropertiesFunction>("RasGetEntryPropertiesA")(
        nullptr, entry, &m_buffer.entry, &m_size, nullptr, nullptr);
  }
  std::uint32_t set(const char* entry, std::uint32_t size) const {
    return operation<RasSetEntryPropertiesFunction>("RasSetEntryPropertiesA")(
        nullptr, entry, &m_buffer.entry, size, nullptr, 0);
  }
  std::uint32_t dial(const char* entry, const char* user = "", const char* password = "") {
    RasDialParameters parameters{};
    parameters.size = sizeof parameters;
    KRX_setRasText(parameters.entryName, entry);
    KRX_setRasText(parameters.userName, user);
    KRX_setRasText(parameters.password, password);
    return operation<RasDialFunction>("RasDialA")(nullptr, nullptr, &parameters, 0, nullptr,
                                                  &m_handle);
  }
  std::uint32_t hangUp(RasHandle handle) const {
    return operation<RasHangUpFunction>("RasHangUpA")(handle);
  }
  // "error N", or the names of the connections.
  std::string connections(std::uint32_t room = 3) const {
    RasConnection found[3] = {};
    found[room % 3].entryName[0] = '?';  // beyond the room
    found[0].size = sizeof found[0];
    std::uint32_t size = room * static_cast<std::uint32_t>(sizeof found[0]);
    std::uint32_t count = 0;
    const std::uint32_t error =
        operation<RasEnumConnectionsFunction>("RasEnumConnectionsA")(found, &size, &count);
    EXPECT_TRUE(room >= 3 || found[room].entryName[0] == '?');
    std::string text = error != 0 ? "error " + std::to_string(error) : "";
    for (std::uint32_t i = 0; error == 0 && i < count; ++i) {
      text += "[" + std::string(KRX_rasText(found[i].entryName)) + "]";
    }
    return text;
  }

  Dialler m_dialler;
  RasEntryBuffer m_buffer{};
  std::uint32_t m_size = 0;
  RasHandle m_handle = 0;

 private:
  void* m_library = nullptr;
};

TEST_F(Service, AlternateNumbersFollowTheRecordInTheSizeThatIsReturned) {
  phonebook(
      "[isp]\nAlternatePhoneNumber = 0,,123\nAlternatePhoneNumber = 456\nIpAddress=10.0.0.1\n");
  EXPECT_EQ(get("isp"), 0U);
  EXPECT_EQ(m_buffer.entry.alternateOffset, 1796U);
  EXPECT_EQ(std::string(m_buffer.following, m_size - 1796), std::string("0,,123\000456\0\0", 12));
  EXPECT_EQ(m_buffer.entry.ipaddr[0], 10);
  // Unterminated numbers end with the record, whatever lies behind it.
  m_buffer.entry.alternateOffset = sizeof m_buffer.entry;
  std::memcpy(m_buffer.following, "123456", 6);
  EXPECT_EQ(set("isp", 1796 + 3), 0U);
  EXPECT_THAT(m_dialler.read("phonebook.ini"), HasSubstr("AlternatePhoneNumber,123\n"));
  phonebook("[isp]\nAlternatePhoneNumber = 0,,123\nAlternatePhoneNumber = 456\n");
  EXPECT_EQ(get("isp", 1807), 603U);
  EXPECT_EQ(m_size, 1808U);
  EXPECT_EQ(get("ISP"), 623U);
}

TEST_F(Service, APhonebookThatSomebodyWritesIsWaitedFor) {
  m_dialler.write("away", "[isp]\n");
  std::thread writer([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(150));
    std::filesystem::rename(m_dialler.path("away"), m_dialler.phonebook());
  });
  EXPECT_EQ(get("isp"), 0U);
  writer.join();
}

TEST_F(Service, WritingChangesWhatDiffersAndNothingElse) {
  const std::string head = "; ours\n \n[other]\nDeviceName= x\n \n[isp]\n";
  phonebook(head + "; the line\nLocalPhoneNumber= 0,123\nFrameSize=1500\nOptions= ff\n");
  EXPECT_EQ(get("isp"), 0U);
  m_buffer.entry.frameSize = 576;
  KRX_setRasText(m_buffer.entry.localPhoneNumber, "0,,9");
  m_buffer.entry.alternateOffset = sizeof m_buffer.entry;
  std::memcpy(m_buffer.following, "1\0002\0", 5);
  EXPECT_EQ(set("isp", 1796 + 5), 0U);
  EXPECT_EQ(m_dialler.read("phonebook.ini"),
            head +
                "; the line\nFrameSize=576\nOptions= ff\nLocalPhoneNumber,0,,9\n"
                "AlternatePhoneNumber,1\nAlternatePhoneNumber,2\n \n");
  EXPECT_EQ(set("isp", 1795), 632U);
  EXPECT_EQ(set("nobody", 1796), 623U);
}

TEST_F(Service, ABadLineSpoilsItsEntryAlone) {
  for (const char* line : {"Comand = x", "FrameSize = 12x", "IpAddress = 1.2.3.256", "Options = g",
                           "AreaCode = 12345678901"}) {
    phonebook(std::string("[bad]\n") + line + "\n[good]\n");
    EXPECT_EQ(get("bad"), 625U) << line;
    EXPECT_EQ(get("good"), 0U) << line;
  }
  phonebook("[isp]\nCommand = dial %x\n");
  EXPECT_EQ(dial("isp"), 625U);
  phonebook("[isp\n");
  EXPECT_EQ(get("isp"), 622U);
  std::filesystem::remove(m_dialler.phonebook());
  EXPECT_EQ(get("isp"), 621U);
}

TEST_F(Service, PppdGetsUserIdleTimeAndLinkNameButNoPassword) {
  phonebook("[My ISP's]\nIdleDisconnectSeconds = 90\n" + pidLine());
  m_dialler.write("interface", "lo\n");
  EXPECT_EQ(dial("My ISP's", "joe", "pass'word"), 0U);
  EXPECT_EQ(m_dialler.read("calls"),
            "call My ISP's linkname krx-My%20ISP%27s updetach idle 90 user joe plugin "
            "passwordfd.so passwordfd 3\n");
  EXPECT_EQ(m_dialler.read("password"), "pass'word");
  EXPECT_THAT(m_dialler.read("seen"), Not(HasSubstr("word'")));
  EXPECT_THAT(m_dialler.read("seen"), Not(HasSubstr("pass'")));
  EXPECT_EQ(connections(), "[My ISP's]");
  EXPECT_EQ(connections(0), "error 632");
  EXPECT_EQ(dial("My ISP's"), 602U);
  EXPECT_EQ(m_handle, 0U);
}

TEST_F(Service, ALinkWithoutItsInterfaceIsNotUp) {
  phonebook("[isp]\n" + pidLine());
  EXPECT_EQ(dial("isp"), 668U);
  EXPECT_EQ(m_handle, static_cast<RasHandle>(m_dialler.line()));
  EXPECT_EQ(connections(), "");
  const auto getStatus = operation<RasGetConnectStatusFunction>("RasGetConnectStatusA");
  RasStatus status{};
  EXPECT_EQ(getStatus(m_handle, &status), 632U);
  status.size = sizeof status;
  EXPECT_EQ(getStatus(m_handle, &status), 0U);
  EXPECT_EQ(status.state, 8193U);
  EXPECT_EQ(hangUp(m_handle), 0U);
  EXPECT_FALSE(Dialler::isRunning(m_dialler.line()));
  EXPECT_EQ(getStatus(m_handle, &status), 6U);
}

TEST_F(Service, AnInterfaceThatIsDownKeepsNoLine) {
  phonebook("[isp]\n" + pidLine());
  m_dialler.write("interface", "lo\n");
  EXPECT_EQ(dial("isp"), 0U);
  scene::elsewhere([&] {  // in a network of its own, where "lo" is down
    scene::require(::unshare(CLONE_NEWNET | CLONE_NEWNS) == 0 &&
                   ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
                   ::mount("sysfs", "/sys", "sysfs", 0, nullptr) == 0);
    EXPECT_EQ(connections(), "");
  });
}

TEST_F(Service, APidFileLeftBehindNamesNoStranger) {
  phonebook("[isp]\nCommand = true\n" + pidLine());
  m_dialler.write("pid", std::to_string(getpid()) + "\n");
  EXPECT_EQ(connections(), "[isp]");
  std::filesystem::last_write_time(
      m_dialler.path("pid"), std::filesystem::file_time_type::clock::now() - std::chrono::hours(1));
  EXPECT_EQ(connections(), "");
  EXPECT_EQ(hangUp(static_cast<RasHandle>(getpid())), 6U);
  EXPECT_EQ(hangUp(0), 6U);
  for (const char* text : {"", "x\n", "1\n", "-1\n", "99999999999\n"}) {
    m_dialler.write("pid", text);
    EXPECT_EQ(connections(), "") << text;
  }
}

TEST_F(Service, ExitCodesBecomeErrorsWithTexts) {
  phonebook("[isp]\n" + pidLine());
  const auto text = operation<RasGetErrorStringFunction>("RasGetErrorStringA");
  char buffer[RAS_ERROR_TEXT_SIZE];
  for (const auto& [code, error] : {std::pair{"5", 631U},
                                    {"6", 633U},
                                    {"7", 608U},
                                    {"11", 691U},
                                    {"12", 628U},
                                    {"13", 628U},
                                    {"15", 721U},
                                    {"16", 629U},
                                    {"19", 691U},
                                    {"1", 635U}}) {
    m_dialler.write("plan", code);
    EXPECT_EQ(dial("isp"), error);
    EXPECT_EQ(text(error, buffer, sizeof buffer), 0U);
  }
  EXPECT_STREQ(buffer, "The dialler failed.");
  EXPECT_EQ(text(635, buffer, 19), 122U);
  EXPECT_EQ(text(1, buffer, sizeof buffer), 87U);
}

TEST_F(Service, AnotherDiallerGetsQuotedTextsAndThePasswordOnItsDescriptorAlone) {
  const std::string user = "joe; touch " + m_dialler.path("injected") + " 'x";
  ::setenv("TMPDIR", m_dialler.path("").c_str(), 1);
  phonebook("[isp]\nCommand = " + m_dialler.path("says") + " %u\n" + pidLine());
  m_dialler.write("says", "#!/bin/sh\ncd " + m_dialler.path("") +
                              "\nprintf '%s' \"$1\" >user\ncat <&3 >password\n"
                              "grep -rlF \"$(cat password)\" . | grep -v password >holders\n"
                              "sleep 60 3<&- &\necho $! >pid\necho $! >>started\n");
  std::filesystem::permissions(m_dialler.path("says"), std::filesystem::perms::owner_all);
  ::signal(SIGCHLD, SIG_IGN);  // a host that reaps its children itself: the line tells
  EXPECT_EQ(dial("isp", user.c_str(), "s3cret"), 0U);
  ::signal(SIGCHLD, SIG_DFL);
  ::unsetenv("TMPDIR");
  EXPECT_EQ(m_dialler.read("user"), user);
  EXPECT_FALSE(std::filesystem::exists(m_dialler.path("injected")));
  EXPECT_EQ(m_dialler.read("password"), "s3cret");
  EXPECT_EQ(m_dialler.read("holders"), "") << "no file holds it while the dialler runs";
  // A bad entry hides no line of a good one, and what has no room is counted and not written.
  phonebook("[bad]\nComand = x\n[isp]\nCommand = true\n" + pidLine() + "[same]\nCommand = true\n" +
            pidLine());
  EXPECT_EQ(connections(), "[isp][same]");
  EXPECT_EQ(connections(1), "error 603");
}

TEST_F(Service, WhatTheDiallerSaidLastIsPartOfItsErrorUnlessThePasswordIsInIt) {
  const auto text = operation<RasGetErrorStringFunction>("RasGetErrorStringA");
  char buffer[RAS_ERROR_TEXT_SIZE];
  for (const auto& [command, wanted] : std::vector<std::pair<std::string, std::string>>{
           {"echo first; echo 'no line, 100%n' >&2; echo; exit 1", ": no line, 100%n"},
           {"printf 'a\\033[2Jb\\r\\n'; exit 1", ": a [2Jb"},
           {"echo \"login with $(cat <&3)\"; exit 1", "."},
           {"head -c 9999 /dev/zero | tr '\\0' x; exit 1", "."},
           {"printf '\\n%0300d' 7; exit 1", ": " + std::string(235, '0')}}) {
    phonebook("[isp]\nCommand = " + m_dialler.path("says") + "\n" + pidLine());
    m_dialler.write("says", "#!/bin/sh\n" + command + "\n");
    std::filesystem::permissions(m_dialler.path("says"), std::filesystem::perms::owner_all);
    EXPECT_EQ(dial("isp", "u", "s3cret"), 635U);
    EXPECT_EQ(text(635, buffer, sizeof buffer), 0U);
    EXPECT_EQ(buffer, "The dialler failed" + wanted) << command;
    EXPECT_EQ(text(691, buffer, sizeof buffer), 0U);
    EXPECT_STREQ(buffer, "The user name or the password was refused.");
  }
}

}  // namespace
}  // namespace rastest
