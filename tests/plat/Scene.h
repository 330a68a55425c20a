// The vocabulary of these tests: a directory of their own, environment variables for a while,
// other processes, and a kernel that refuses a call.
#pragma once

#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <optional>
#include <string>

#include <gtest/gtest.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include "plat/PlatError.h"

namespace scene {

// A directory that goes with the test; readable for everybody, whatever the umask.
class Directory : public testing::Test {
 protected:
  Directory() : m_path(testing::TempDir() + "platXXXXXX") {
    ::mkdtemp(m_path.data());
    std::filesystem::permissions(m_path, std::filesystem::perms(0755));
  }
  ~Directory() override { std::filesystem::remove_all(m_path); }

  const std::string& path() const { return m_path; }
  std::string at(const std::string& name) const { return m_path + "/" + name; }
  std::string make(const std::string& name, const std::string& content = "text") const {
    std::ofstream(at(name)) << content;
    return at(name);
  }
  std::string content(const std::string& name) const {
    std::ifstream file(at(name));
    return {std::istreambuf_iterator<char>(file), {}};
  }

 private:
  std::string m_path;
};

class Environment {
 public:
  Environment(const char* name, const std::string& value) : m_name(name) {
    if (const char* before = std::getenv(name); before != nullptr) {
      m_before = before;
    }
    ::setenv(name, value.c_str(), 1);
  }
  ~Environment() { m_before ? ::setenv(m_name, m_before->c_str(), 1) : ::unsetenv(m_name); }

 private:
  const char* m_name;
  std::optional<std::string> m_before;
};

// Starts a process that does `work`, expectations included; end() gives its exit code.
class Work {
 public:
  explicit Work(const std::function<void()>& work) : m_id((std::fflush(nullptr), ::fork())) {
    if (m_id == 0) {
      ::prctl(PR_SET_PDEATHSIG, SIGKILL);
      work();
      std::fflush(nullptr);
      ::_exit(testing::Test::HasFailure() ? 1 : 0);
    }
  }
  int end() {
    int result = 0;
    ::waitpid(m_id, &result, 0);
    return WIFEXITED(result) ? WEXITSTATUS(result) : 128 + WTERMSIG(result);
  }
  pid_t id() const { return m_id; }

 protected:
  pid_t m_id;
};

// One that has done `work` when the constructor returns, then stands still, and is killed with this
// object.
class Process : Work {
 public:
  explicit Process(const std::function<void()>& work) : Work([&] { work(), ::raise(SIGSTOP); }) {
    ::waitpid(m_id, nullptr, WUNTRACED);
  }
  ~Process() {
    ::kill(m_id, SIGKILL);
    end();
  }
};

constexpr int CANNOT = 77;

// The test is about what `work` finds in a process of its own. Skipped where the machine does not
// let that process make its scene.
inline void elsewhere(const std::function<void()>& work) {
  if (const int code = Work(work).end(); code == CANNOT) {
    GTEST_SKIP() << "this machine does not allow the scene";
  } else {
    EXPECT_EQ(code, 0);
  }
}

// For processes of their own only.
inline void require(bool possible) {
  if (!possible) {
    ::_exit(CANNOT);
  }
}

// From now on the kernel answers `call` with `error` (when its argument of this index has that
// value, if one is given).
inline void refuse(unsigned int call, int error, std::optional<unsigned int> argument = {},
                   unsigned int value = 0) {
  const auto no = static_cast<unsigned int>(SECCOMP_RET_ERRNO) | static_cast<unsigned int>(error);
  const unsigned int at =
      static_cast<unsigned int>(offsetof(struct seccomp_data, args)) + 8 * argument.value_or(0);
  struct sock_filter program[] = {
      BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(struct seccomp_data, nr)),
      BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, call, 0, 3),
      BPF_STMT(BPF_LD | BPF_W | BPF_ABS, at),
      BPF_JUMP(BPF_JMP | (argument ? BPF_JEQ : BPF_JGE) | BPF_K, value, 0, 1),
      BPF_STMT(BPF_RET | BPF_K, no),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
  };
  const struct sock_fprog filter { static_cast<unsigned short>(std::size(program)), program };
  require(::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
          ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter) == 0);
}

// Another user, without any capability.
inline void becomeUser(unsigned int user) {
  require(::setresgid(user, user, user) == 0 && ::setresuid(user, user, user) == 0);
}

}  // namespace scene
