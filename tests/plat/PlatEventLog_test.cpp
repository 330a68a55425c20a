// Events as lines of a file and as datagrams on real sockets.
#include "plat/PlatEventLog.h"

#include <gmock/gmock.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

#include "plat/Scene.h"

namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;

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

struct PlatEventLog : scene::Directory {
  static plat::Event event(const std::string& text, const std::string& data = "") {
    return {"QDX.EXE", plat::EventType::error, 7, 0xC0000020, {text}, data};
  }
  const scene::Environment journalSocket{"KRX_JOURNAL_SOCKET", at("journal")};
  const scene::Environment syslogSocket{"KRX_SYSLOG_SOCKET", at("log")};
};

TEST_F(PlatEventLog, FileGetsOneLineAnEventWhateverTheText) {
  const scene::Environment file("KRX_EVENTLOG", at("events"));
  EXPECT_TRUE(plat::reportEvent(event("first")));
  EXPECT_TRUE(plat::reportEvent(event("a \"b\" \\ %s\r\n\xE9", std::string("\0\xFF", 2))));
  EXPECT_THAT(content("events"),
              AllOf(HasSubstr("\"strings\": [\"first\"], \"data\": \"\"}\n{\"time\": \""),
                    EndsWith("\", \"source\": \"QDX.EXE\", \"type\": \"error\", \"category\": 7, "
                             "\"id\": 3221225504, \"strings\": [\"a \\\"b\\\" \\\\ "
                             "%s\\u000d\\u000a\\u00e9\"], \"data\": \"00ff\"}\n")));
}

TEST_F(PlatEventLog, JournalGetsTheFieldsAndNoLineOfTextBecomesAField) {
  const Daemon journal(at("journal"));
  EXPECT_TRUE(plat::reportEvent(event("two\nPRIORITY=0", std::string("\0\n", 2))));
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
  EXPECT_TRUE(plat::reportEvent(event("two\r\nlines")));
  EXPECT_THAT(syslog.received(), testing::MatchesRegex("<19>... .. ..:..:.. QDX.EXE.[0-9]*.: event "
                                                       "0xC0000020 category 7: two  lines"));
}

TEST_F(PlatEventLog, WhereNothingTakesItTheEventIsDropped) {
  EXPECT_FALSE(plat::reportEvent(event("x"))) << "nobody listens";
  EXPECT_EQ(::mkfifo(at("fifo").c_str(), 0600), 0);
  for (const std::string& place :
       {at("none/events"), path(), at("fifo"), std::string("/dev/full")}) {
    const scene::Environment file("KRX_EVENTLOG", place);
    EXPECT_FALSE(plat::reportEvent(event("x"))) << place;
  }
}

TEST_F(PlatEventLog, DaemonThatDoesNotReadCostsTheEventNotTheMail) {
  const Daemon journal(at("journal"));
  for (int i = 0; i < 100'000 && plat::reportEvent(event("x")); ++i) {
  }
  EXPECT_EQ(plat::lastFailure().error, EAGAIN) << "the queue is full";
}

}  // namespace
