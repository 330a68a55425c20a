// The dial-up service as tests see it: the real module, a phonebook in a directory of its own, and
// a script that plays the dialler. The "line" is a process that sleeps.
#pragma once

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include <gtest/gtest.h>

#include "plat/PlatPath.h"
#include "plat/PlatTerminal.h"

namespace rastest {

// The module as it was built beside this program.
inline std::string modulePath() {
  return std::filesystem::read_symlink("/proc/self/exe").parent_path().parent_path() / "lib" /
         "RASAPI32.so";
}

class Dialler {
 public:
  // `script` is the name that the dialler is found by, in the front of the path.
  explicit Dialler(const std::string& script = "dial")
      : m_path(plat::toNative(m_directory.path())) {
    // Every run takes the first word of "plan": an exit code, "left" (a failure that leaves the
    // process behind), or nothing for success. "interface" becomes the pid file's second line.
    write(script, "#!/bin/sh\ncd '" + m_path +
                      "'\necho \"$*\" >>calls\ncat <&3 >password\n"
                      "cat /proc/$$/cmdline /proc/$PPID/cmdline /proc/$$/environ >>seen\n"
                      "plan=$(head -n1 plan 2>/dev/null)\nsed -i 1d plan 2>/dev/null\n"
                      "case $plan in [0-9]*) exit $plan;; esac\n"
                      "sleep 60 3<&- &\necho $! >pid\necho $! >>started\n"
                      "cat interface >>pid 2>/dev/null\n"
                      "[ \"$plan\" != left ] || exit 10\n");
    std::filesystem::permissions(m_path + script, std::filesystem::perms::owner_all);
    setenv("PATH", (m_path + ":" + std::getenv("PATH")).c_str(), 1);
    setenv("KRX_PHONEBOOK", phonebook().c_str(), 1);
    setenv("KRX_RAS_LIBRARY", modulePath().c_str(), 1);
  }
  ~Dialler() {
    std::ifstream started(m_path + "started");
    for (pid_t process = 0; started >> process;) {
      ::kill(process, SIGTERM);
    }
  }

  std::string phonebook() const { return m_path + "phonebook.ini"; }
  std::string path(const std::string& name) const { return m_path + name; }
  void write(const std::string& name, const std::string& text) const {
    std::ofstream(m_path + name) << text;
  }
  std::string read(const std::string& name) const {
    std::ifstream file(m_path + name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  }
  // The process that keeps the line; its end may be waited for.
  pid_t line() const { return std::atoi(read("pid").c_str()); }
  static bool isRunning(pid_t process) {
    std::ifstream file("/proc/" + std::to_string(process) + "/stat");
    std::string number, name, state;
    return file >> number >> name >> state && state != "Z";
  }
  void dropLine() const {
    const pid_t process = line();
    ::kill(process, SIGKILL);
    while (isRunning(process)) {
    }
  }

 private:
  plat::TemporaryDirectory m_directory;
  std::string m_path;
};

}  // namespace rastest
