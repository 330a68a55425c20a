// A disk without room: while one lives, no file of this process grows beyond the size.
#pragma once

#include <csignal>
#include <cstdint>

#include <sys/resource.h>

class FullDisk {
 public:
  explicit FullDisk(std::uintmax_t size) : m_handler(std::signal(SIGXFSZ, SIG_IGN)) {
    getrlimit(RLIMIT_FSIZE, &m_before);
    const rlimit full{size, m_before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &full);
  }
  FullDisk(const FullDisk&) = delete;
  FullDisk& operator=(const FullDisk&) = delete;
  ~FullDisk() {
    setrlimit(RLIMIT_FSIZE, &m_before);
    std::signal(SIGXFSZ, m_handler);
  }

 private:
  void (*m_handler)(int);
  rlimit m_before{};
};
