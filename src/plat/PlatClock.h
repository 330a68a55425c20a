// The one clock of the process; every time in the system comes from it. Tests replace it.
#pragma once

#include <cstdint>

namespace plat {

struct LocalTime {
  int year = 0;   // 1998
  int month = 0;  // 1 to 12
  int day = 0;
  int hour = 0;
  int minute = 0;
  int second = 0;
  int millisecond = 0;
};

struct Moment {
  std::int64_t seconds = 0;  // since 1970-01-01 00:00 UTC
  int milliseconds = 0;
};

class Clock {
 public:
  virtual ~Clock() = default;
  virtual Moment now() = 0;
  // False when the platform cannot give the local time.
  virtual bool toLocal(const Moment& moment, LocalTime& local) = 0;
  virtual void sleep(unsigned int milliseconds) = 0;
  virtual std::int64_t monotonicMilliseconds() = 0;
};

Clock& clock() noexcept;
// Replaces the clock of the process; null brings the system's back. Returns the one before.
Clock* setClock(Clock* clock) noexcept;

inline Moment now() {
  return clock().now();
}
bool localNow(LocalTime& local);  // one reading for date and time together
inline void sleepMilliseconds(unsigned int milliseconds) {
  clock().sleep(milliseconds);
}

// What the test harness uses: a clock that stands still until it is moved; sleeping moves it.
class ManualClock : public Clock {
 public:
  explicit ManualClock(const Moment& start) noexcept : m_now(start) {}
  Moment now() override { return m_now; }
  bool toLocal(const Moment& moment, LocalTime& local) override;  // in the zone of the process
  void sleep(unsigned int milliseconds) override { advance(milliseconds); }
  std::int64_t monotonicMilliseconds() override { return m_slept; }
  void advance(std::int64_t milliseconds) noexcept;
  void set(const Moment& moment) noexcept { m_now = moment; }

 private:
  Moment m_now;
  std::int64_t m_slept = 0;
};

}  // namespace plat
