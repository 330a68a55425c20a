// The time that a piece of work takes.
#pragma once

#include <chrono>
#include <ctime>

namespace bench {

// By the process's processor time, which does not see what else runs on the machine; for work that
// waits for a disk, by the wall clock.
class Stopwatch {
 public:
  double processorSeconds() const noexcept {
    return static_cast<double>(std::clock() - m_processor) / CLOCKS_PER_SEC;
  }
  double wallSeconds() const noexcept {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - m_wall).count();
  }

 private:
  std::clock_t m_processor = std::clock();
  std::chrono::steady_clock::time_point m_wall = std::chrono::steady_clock::now();
};

}  // namespace bench
