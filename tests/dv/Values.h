// A small vocabulary for the tests of dates and times: values as texts, and the clock held still.
#pragma once

#include <string>

#include "dv/DVDATTIM.h"
#include "gen/GENCATCH.h"
#include "plat/PlatClock.h"

inline std::string shown(const DV_Date& date) {
  return std::string(date.digits(), 8);
}
inline std::string shown(const DV_Time& time) {
  return std::string(time.digits(), 8);
}
inline std::string shown(const DV_DateTime& value) {
  return shown(value.date()) + " " + shown(value.time());
}
inline std::string shown(const DV_TimeOffset& offset) {
  return std::to_string(offset.days()) + " " + shown(offset.time());
}

// What `value` prints into a buffer of `size`; the byte behind the buffer has to stay.
template <class T>
std::string formatted(const T& value, unsigned int size) {
  std::string buffer(size + 1, '#');
  value.format(buffer.data(), size);
  return buffer.back() == '#' ? std::string(buffer.c_str()) : "overrun";
}

// The assertion that `operation` raises, "none" without one. The lines in it are fixed.
template <class Operation>
std::string assertionOf(Operation&& operation) {
  const std::string text = GENCatch(std::forward<Operation>(operation)).value_or("none");
  return text.rfind("!!Assert: ", 0) == 0 ? text.substr(10) : text;
}

// The clock of the process for the life of this object: it tells this time, or fails.
class HeldClock : public plat::Clock {
 public:
  HeldClock() : m_before(plat::setClock(this)) {}
  HeldClock(const HeldClock&) = delete;
  HeldClock& operator=(const HeldClock&) = delete;
  ~HeldClock() override { plat::setClock(m_before); }
  plat::Moment now() override {
    ++readings;
    return {};
  }
  bool toLocal(const plat::Moment&, plat::LocalTime& local) override {
    local = time;
    return !fails;
  }
  void sleep(unsigned int) override {}
  std::int64_t monotonicMilliseconds() override { return 0; }

  plat::LocalTime time{1998, 12, 31, 23, 59, 60, 999};
  bool fails = false;
  int readings = 0;

 private:
  plat::Clock* m_before;
};
