// The console: the standard streams, or the controlling terminal where the host has closed them.
#include "plat/PlatConsole.h"

#include <cerrno>
#include <csignal>
#include <ctime>

#include <fcntl.h>
#include <pthread.h>
#include <termios.h>

#include "plat/PlatSystem.h"

namespace plat {

namespace {

int g_output = -1;
int g_input = -1;

bool openStream(int standard, int& stream) {
  if (stream < 0 && ::fcntl(standard, F_GETFD) >= 0) {
    stream = standard;
  }
  if (stream < 0) {
    stream = ::open("/dev/tty", O_RDWR | O_NOCTTY | O_CLOEXEC);
  }
  return stream >= 0;
}

// A reader that went away (SIGPIPE) or a terminal that belongs to another job (SIGTTIN, SIGTTOU)
// must not end or stop the host: the call fails instead. Blocked in this thread only.
class QuietSignals {
 public:
  QuietSignals() noexcept {
    ::sigemptyset(&m_pipe);
    ::sigaddset(&m_pipe, SIGPIPE);
    sigset_t quiet = m_pipe;
    ::sigaddset(&quiet, SIGTTIN);
    ::sigaddset(&quiet, SIGTTOU);
    m_hadPipe = pipePending();
    ::pthread_sigmask(SIG_BLOCK, &quiet, &m_before);
  }
  QuietSignals(const QuietSignals&) = delete;
  QuietSignals& operator=(const QuietSignals&) = delete;
  ~QuietSignals() {
    if (!m_hadPipe && pipePending()) {
      const struct timespec atOnce {};
      ::sigtimedwait(&m_pipe, nullptr, &atOnce);
    }
    ::pthread_sigmask(SIG_SETMASK, &m_before, nullptr);
  }

 private:
  static bool pipePending() noexcept {
    sigset_t pending;
    ::sigemptyset(&pending);
    ::sigpending(&pending);
    return ::sigismember(&pending, SIGPIPE) == 1;
  }

  sigset_t m_pipe;
  sigset_t m_before;
  bool m_hadPipe = false;
};

// A terminal in the mode that lines need, and back again; nothing for other streams.
class LineMode {
 public:
  explicit LineMode(int stream) noexcept : m_stream(stream) {
    if (::tcgetattr(stream, &m_before) < 0) {
      return;
    }
    struct termios wanted = m_before;
    wanted.c_iflag |= ICRNL;
    wanted.c_oflag |= OPOST | ONLCR;
    wanted.c_lflag |= ICANON | ECHO | ECHOE;
    m_changed = (wanted.c_iflag != m_before.c_iflag || wanted.c_oflag != m_before.c_oflag ||
                 wanted.c_lflag != m_before.c_lflag) &&
                ::tcsetattr(stream, TCSADRAIN, &wanted) == 0;
  }
  LineMode(const LineMode&) = delete;
  LineMode& operator=(const LineMode&) = delete;
  ~LineMode() {
    if (m_changed) {
      ::tcsetattr(m_stream, TCSADRAIN, &m_before);
    }
  }

 private:
  int m_stream;
  bool m_changed = false;
  struct termios m_before {};
};

}  // namespace

bool consoleOpenOutput() {
  return openStream(STDOUT_FILENO, g_output);
}
bool consoleOpenInput() {
  return openStream(STDIN_FILENO, g_input);
}

bool consoleWrite(std::string_view text) {
  const QuietSignals quiet;
  const LineMode mode(g_output);
  while (!text.empty()) {
    const ssize_t put =
        repeatInterrupted([&] { return ::write(g_output, text.data(), text.size()); });
    if (put <= 0) {
      fail("write", "console", put < 0 ? errno : EIO);
      return false;
    }
    text.remove_prefix(static_cast<std::size_t>(put));
  }
  return true;
}

bool consoleReadLine(std::size_t limit, std::string& line) {
  const QuietSignals quiet;
  const LineMode mode(g_input);
  line.clear();
  // One by one: what follows the line may be meant for the host.
  while (line.size() < limit && (line.empty() || line.back() != '\n')) {
    char c = '\0';
    const ssize_t got = repeatInterrupted([&] { return ::read(g_input, &c, 1); });
    if (got < 0) {
      fail("read", "console", errno);
      return false;
    }
    if (got == 0) {
      break;
    }
    line += c;
  }
  return !line.empty();
}

}  // namespace plat
