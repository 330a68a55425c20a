// The system's clock, the one that replaces it in tests, and the choice between them.
#include "plat/PlatClock.h"

#include <atomic>
#include <cerrno>
#include <new>

#include <time.h>

namespace plat {

namespace {

bool localTime(const Moment& moment, LocalTime& local) {
  const time_t seconds = moment.seconds;
  struct tm fields {};
  if (::localtime_r(&seconds, &fields) == nullptr) {
    return false;
  }
  local = {fields.tm_year + 1900, fields.tm_mon + 1, fields.tm_mday,     fields.tm_hour,
           fields.tm_min,         fields.tm_sec,     moment.milliseconds};
  return true;
}

class SystemClock : public Clock {
 public:
  Moment now() override {
    struct timespec time {};
    ::clock_gettime(CLOCK_REALTIME, &time);
    return {time.tv_sec, static_cast<int>(time.tv_nsec / 1'000'000)};
  }
  bool toLocal(const Moment& moment, LocalTime& local) override { return localTime(moment, local); }
  void sleep(unsigned int milliseconds) override;
  std::int64_t monotonicMilliseconds() override {
    struct timespec time {};
    ::clock_gettime(CLOCK_MONOTONIC, &time);
    return std::int64_t{time.tv_sec} * 1000 + time.tv_nsec / 1'000'000;
  }
};

// Until a moment, not for a time: a signal in between must not make the sleep longer.
void SystemClock::sleep(unsigned int milliseconds) {
  struct timespec until {};
  ::clock_gettime(CLOCK_MONOTONIC, &until);
  until.tv_sec += milliseconds / 1000;
  until.tv_nsec += long{1'000'000} * (milliseconds % 1000);
  if (until.tv_nsec >= 1'000'000'000) {
    until.tv_nsec -= 1'000'000'000;
    ++until.tv_sec;
  }
  while (::clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &until, nullptr) == EINTR) {
  }
}

std::atomic<Clock*> g_replacement{nullptr};

}  // namespace

// The system's clock is never destroyed: what dies at the end of the process, a log that writes its
// last line, still asks for the time.
Clock& clock() noexcept {
  alignas(SystemClock) static unsigned char place[sizeof(SystemClock)];
  static Clock* const system = new (place) SystemClock;
  Clock* replacement = g_replacement.load(std::memory_order_acquire);
  return replacement != nullptr ? *replacement : *system;
}

Clock* setClock(Clock* clock) noexcept {
  return g_replacement.exchange(clock);
}

bool localNow(LocalTime& local) {
  Clock& source = clock();
  return source.toLocal(source.now(), local);
}

bool ManualClock::toLocal(const Moment& moment, LocalTime& local) {
  return localTime(moment, local);
}

void ManualClock::advance(std::int64_t milliseconds) noexcept {
  m_slept += milliseconds;
  std::int64_t total = m_now.milliseconds + milliseconds;
  std::int64_t carry = total / 1000;
  total %= 1000;
  if (total < 0) {
    total += 1000;
    --carry;
  }
  m_now.seconds += carry;
  m_now.milliseconds = static_cast<int>(total);
}

}  // namespace plat
