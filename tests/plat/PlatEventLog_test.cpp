// Events as lines of a file and as datagrams on real sockets.
#include "plat/PlatEventLog.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/socket.h>
#include <sys/un.h>

#include "plat/PlatClock.h"
#include "plat/Scene.h"

namespace {

using testing::EndsWith;
using testing::StartsWith;

// A log daemon: a datagram socket of this name.
class Daemon {
 public:
  explicit Daemon(const std::string& path)
      : m_socket(::socket(AF_UNIX, SOCK_DGRAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0)) {
    struct sockaddr_un address {};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    EXPECT_EQ(::bind(m_socket, reinterpret_cast<struct sockaddr*>(&address), sizeof address), 0);
  }
  Daemon(const Daemon&) = delete;
  Daemon& operator=(const Daemon&) = delete;
  ~Daemon() { ::close(m_socket); }
  std::string received() const {
    char buffer[20'000];
    const ssize_t size = ::recv(m_socket, buffer, sizeof buffer, 0);
    return size < 0 ? "nothing" : std::string(buffer, static_cast<std::size_t>(size));
  }

 private:
  int m_socket;
};

class PlatEventLog : public scene::Directory {
 protected:
  PlatEventLog()
      : m_journal("KRX_JOURNAL_SOCKET", at("journal")), m_syslog("KRX_SYSLOG_SOCKET", at("log")) {}
  static plat::Event event(const std::string& text) {
    plat::Event event;
    event.source = "QDX.EXE";
    event.id = 0xC0000020;
    event.category = 7;
    event.strings = {text};
    return event;
  }

 private:
  scene::Environment m_journal;
  scene::Environment m_syslog;
};

TEST_F(PlatEventLog, FileGetsOneLineAnEventWhateverTheText) {
  const scene::Environment file("KRX_EVENTLOG", at("events"));
  plat::Event odd = event("a \"b\" \\ %s\r\n\xE9");
  odd.strings.push_back("");
  odd.type = plat::EventType::warning;
  odd.data = std::string("\0\xFF", 2);
  EXPECT_TRUE(plat::reportEvent(odd));
  EXPECT_TRUE(plat::reportEvent(event("second")));
  const std::string text = content("events");
  const std::size_t end = text.find('\n');
  EXPECT_THAT(text, StartsWith("{\"time\": \""));
  EXPECT_THAT(
      text.substr(0, end),
      EndsWith("\", \"source\": \"QDX.EXE\", \"type\": \"warning\", \"category\": 7, \"id\": "
               "3221225504, \"strings\": [\"a \\\"b\\\" \\\\ %s\\u000d\\u000a\\u00e9\", "
               "\"\"], \"data\": \"00ff\"}"));
  EXPECT_THAT(text.substr(end), EndsWith("\"strings\": [\"second\"], \"data\": \"\"}\n"));
  const scene::Environment unwritable("KRX_EVENTLOG", at("none/events"));
  EXPECT_FALSE(plat::reportEvent(event("lost")));
}

TEST_F(PlatEventLog, JournalGetsTheFieldsAndNoLineOfTextBecomesAField) {
  const Daemon journal(at("journal"));
  plat::Event forged = event("two\nPRIORITY=0");
  forged.data = std::string("\0\n", 2);
  EXPECT_TRUE(plat::reportEvent(forged));
  const std::string text = std::string("\x0E\0\0\0\0\0\0\0two\nPRIORITY=0\n", 23);
  EXPECT_EQ(journal.received(), "MESSAGE\n" + text +
                                    "PRIORITY=3\nSYSLOG_FACILITY=2\nSYSLOG_IDENTIFIER=QDX.EXE\n"
                                    "KRX_EVENT_TYPE=error\nKRX_EVENT_CATEGORY=7\n"
                                    "KRX_EVENT_ID=3221225504\nKRX_EVENT_STRING\n" +
                                    text + "KRX_EVENT_DATA\n" +
                                    std::string("\x02\0\0\0\0\0\0\0\0\n\n", 11));
}

TEST_F(PlatEventLog, SyslogGetsOneLineWhereThereIsNoJournal) {
  { const Daemon gone(at("journal")); }  // its name is still there, nobody behind it
  const Daemon syslog(at("log"));
  plat::ManualClock manual({0, 0});
  plat::Clock* before = plat::setClock(&manual);
  EXPECT_TRUE(plat::reportEvent(event("two\r\nlines")));
  plat::setClock(before);
  EXPECT_THAT(syslog.received(), testing::MatchesRegex("<19>(Jan  1|Dec 31) ..:..:00 QDX.EXE.[0-9]"
                                                       "*.: event 0xC0000020 category 7: two  "
                                                       "lines"));
  EXPECT_TRUE(plat::reportEvent(event(std::string(9000, 'x'))));
  EXPECT_EQ(syslog.received().size(), 8192U);
}

TEST_F(PlatEventLog, DaemonThatDoesNotReadCostsTheEventNotTheMail) {
  EXPECT_FALSE(plat::reportEvent(event("nobody is there")));
  const Daemon journal(at("journal"));
  const std::int64_t start = plat::clock().monotonicMilliseconds();
  int sent = 0;
  while (plat::reportEvent(event("x")) && sent < 100'000) {
    ++sent;
  }
  EXPECT_LT(sent, 100'000) << "the queue is full";
  EXPECT_EQ(plat::lastFailure().error, EAGAIN);
  EXPECT_LT(plat::clock().monotonicMilliseconds() - start, 5000);
}

}  // namespace
