// Running a command line. Not system(): it would make the whole host ignore SIGINT and SIGQUIT
// while the command runs, and hand it the host's descriptors.
#include "plat/PlatCommand.h"

#include <cerrno>
#include <csignal>
#include <string>

#include <spawn.h>
#include <sys/wait.h>

#include "plat/PlatSystem.h"

namespace plat {

namespace {

constexpr char SHELL[] = "/bin/sh";

// How the command starts: signals as if the host had never touched them, standard streams only.
class Start {
 public:
  Start() noexcept {
    m_error = ::posix_spawnattr_init(&m_attributes);
    m_error = m_error != 0 ? m_error : ::posix_spawn_file_actions_init(&m_actions);
    sigset_t signals;
    ::sigemptyset(&signals);
    keep(::posix_spawnattr_setsigmask(&m_attributes, &signals));
    ::sigfillset(&signals);
    ::sigdelset(&signals, SIGKILL);
    ::sigdelset(&signals, SIGSTOP);
    keep(::posix_spawnattr_setsigdefault(&m_attributes, &signals));
    keep(::posix_spawnattr_setflags(&m_attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF));
    keep(::posix_spawn_file_actions_addclosefrom_np(&m_actions, STDERR_FILENO + 1));
  }
  Start(const Start&) = delete;
  Start& operator=(const Start&) = delete;
  ~Start() {
    ::posix_spawn_file_actions_destroy(&m_actions);
    ::posix_spawnattr_destroy(&m_attributes);
  }

  int spawn(std::string& commandLine, pid_t& process) {
    char name[] = "sh";
    char option[] = "-c";
    char* arguments[] = {name, option, commandLine.data(), nullptr};
    keep(m_error != 0
             ? m_error
             : ::posix_spawn(&process, SHELL, &m_actions, &m_attributes, arguments, environ));
    return m_error;
  }

 private:
  void keep(int error) noexcept { m_error = m_error != 0 ? m_error : error; }

  posix_spawnattr_t m_attributes{};
  posix_spawn_file_actions_t m_actions{};
  int m_error = 0;
};

}  // namespace

int runCommand(std::string_view commandLine, int& error) {
  error = 0;
  std::string text(commandLine);
  pid_t process = -1;
  if (error = Start().spawn(text, process); error != 0) {
    fail("spawn", SHELL, error);
    return -1;
  }
  int result = 0;
  if (repeatInterrupted([&] { return ::waitpid(process, &result, 0); }) < 0) {
    error = fail("waitpid", SHELL, errno);
    return -1;
  }
  return WIFSIGNALED(result) ? 128 + WTERMSIG(result) : WEXITSTATUS(result);
}

}  // namespace plat
