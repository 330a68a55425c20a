// DV_Time: a time of day, held as 8 ASCII digits: hours, minutes, seconds, hundredths. Digits that
// come from elsewhere may be anything: a field with a character that is no digit reads as 0, and
// the time is not valid.
#pragma once

#include <cstdint>

#include "dv/DVFIELDS.h"
#include "scl/SCLSTRNG.h"

namespace plat {
struct LocalTime;
}

class DV_Time {
 public:
  struct Fields {
    unsigned int hours, minutes, seconds, hundredths;
  };

  DV_Time();  // now
  DV_Time(unsigned int hours, unsigned int minutes, unsigned int seconds, unsigned int hundredths);
  static constexpr DV_Time zero() noexcept { return DV_Time(0, 0, 0, 0, Unchecked{}); }
  static const DV_Time ZERO;      // 00:00
  static const DV_Time MIDNIGHT;  // 00:00
  static const DV_Time NOON;      // 12:00

  // A field out of its range is an assertion (4); the time is then unchanged.
  void set(unsigned int hours, unsigned int minutes, unsigned int seconds, unsigned int hundredths);
  // The local time. When the platform cannot give it: 00:00, and the error flag is set.
  void setNow();
  void get(unsigned int& hours, unsigned int& minutes, unsigned int& seconds,
           unsigned int& hundredths) const noexcept;
  Fields fields() const noexcept;
  bool isValid() const noexcept;
  std::int32_t seconds() const noexcept;  // since midnight
  // Seconds since midnight; 24 hours or more, or less than 0, are an assertion (14).
  void setSeconds(std::int32_t seconds, unsigned int hundredths);
  // Adds a span, whose fields may have any size and sign; the days carried, negative when borrowed.
  std::int32_t add(std::int32_t hours, std::int32_t minutes, std::int32_t seconds,
                   std::int32_t hundredths);
  // This minus other, field by field into `result`; the days borrowed, 0 or -1 for valid times.
  std::int32_t difference(const DV_Time& other, DV_Time& result) const;
  int compare(const DV_Time& other) const noexcept;  // -1, 0, 1
  // " 12:30:15.05 ", seconds and hundredths optional; ".5" are 5 hundredths. False when `text` does
  // not match; a field out of its range is an assertion. A number that dv::decode finds out of
  // range matches, as far as it was read. `decodeResult` is that of dv::decode.
  bool parse(const SCL_StringRef& text);
  bool parse(const SCL_StringRef& text, int& decodeResult);
  // By size: 13 or more "12:30:15.005" (the hundredths in three digits), 12 "12:30:15.05",
  // 9 "12:30:15", 6 "12:30"; below 6 it is an assertion (3).
  void format(char* buffer, unsigned int size) const;
  bool hadError() noexcept;                                 // read and cleared
  const char* digits() const noexcept { return m_digits; }  // 8 characters, no terminator

 private:
  friend class DV_DateTime;

  struct Unchecked {};
  constexpr DV_Time(unsigned int hours, unsigned int minutes, unsigned int seconds,
                    unsigned int hundredths, Unchecked) noexcept {
    put(hours, minutes, seconds, hundredths);
  }
  constexpr void put(unsigned int hours, unsigned int minutes, unsigned int seconds,
                     unsigned int hundredths) noexcept {
    dv::putDigits(m_digits, 2, hours);
    dv::putDigits(m_digits + 2, 2, minutes);
    dv::putDigits(m_digits + 4, 2, seconds);
    dv::putDigits(m_digits + 6, 2, hundredths);
  }
  void setLocal(const plat::LocalTime& local) noexcept;

  char m_digits[8];
  char m_error = 0;
};
static_assert(sizeof(DV_Time) == 9, "times are stored as they are");
