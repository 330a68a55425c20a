// Named events between processes, for the retry-now event. A signal is for everyone: each process
// that has created the event by then gets it once, however many wait, and whoever was not waiting
// gets it with its next wait. Several signals since the last wait count as one.
#pragma once

#include <cstdint>
#include <string_view>

namespace plat {

// Sets the event of this name when it exists; ENOENT when nobody has made it.
int setNamedEvent(std::string_view name);

// Creates the event (or opens it) for waiting. It is a file in the run directory (PlatRunDir.h).
class NamedEvent {
 public:
  NamedEvent() noexcept = default;
  NamedEvent(const NamedEvent&) = delete;
  NamedEvent& operator=(const NamedEvent&) = delete;
  ~NamedEvent();
  int create(std::string_view name);
  // True when the event was set before the time ran out; the signal is consumed. False also when a
  // signal handler of the process interrupted the wait, so that a program that was asked to end
  // need not sit it out.
  bool wait(unsigned int milliseconds);

 private:
  std::uint32_t* m_signals = nullptr;  // shared by all processes: how many there have been
  std::uint32_t m_seen = 0;
};

}  // namespace plat
