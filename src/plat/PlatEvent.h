// Named events between processes (at most one pending signal), for the retry-now event. An event
// outlives the process that made it, until the system is started again.
#pragma once

#include <string_view>

namespace plat {

// Sets the event of this name when it exists; ENOENT when nobody has made it.
int setNamedEvent(std::string_view name);

// Creates the event (or opens it) for waiting.
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
  void* m_handle = nullptr;
};

}  // namespace plat
