// DV_TimeOffset: a signed span of time: days (signed), then hours to hundredths within the day. The
// sign is that of the days alone: one second less than nothing is -1 day and 23:59:59.
#pragma once

#include <cstdint>

#include "dv/DVNUMBER.h"
#include "dv/DVTIME.h"

class DV_TimeOffset {
 public:
  constexpr DV_TimeOffset() noexcept : m_time(DV_Time::zero()) {}
  // The ranges are those of DV_Number::set and DV_Time::set.
  DV_TimeOffset(std::int32_t days, unsigned int hours, unsigned int minutes, unsigned int seconds,
                unsigned int hundredths);
  explicit DV_TimeOffset(const SCL_StringRef& text);  // parse; zero when it does not match
  static const DV_TimeOffset ZERO;

  std::int32_t days() const { return m_days.get(); }
  void setDays(std::int32_t days) { m_days.set(days); }
  const DV_Time& time() const noexcept { return m_time; }
  DV_Time& time() noexcept { return m_time; }
  std::int32_t totalSeconds() const;              // days outside 0 to 24854 are an assertion (4)
  std::int32_t totalHundredths() const;           // days outside 0 to 247 are an assertion (4)
  int compare(const DV_TimeOffset& other) const;  // -1, 0, 1: by days, then by time
  // "+3:12:00:00.00": a day count needs its sign, without it the days are 0; seconds and hundredths
  // are optional. False when `text` does not match; a field out of its range is an assertion. A
  // number that dv::decode finds out of range matches, as far as it was read.
  bool parse(const SCL_StringRef& text);
  bool parse(const SCL_StringRef& text, int& decodeResult);
  // By size: 18 or more "00003:12:00:00.00", 15 without hundredths, 12 without seconds, 6 "12:00"
  // only, for which the days must be 0 (assertion 4). Negative days print as "-0003". A size below
  // 6, or too small for days below -9999, is an assertion (3), more than 99999 days too (4).
  void format(char* buffer, unsigned int size) const;

 private:
  DV_Number m_days;
  DV_Time m_time;
};

// The record of the offset pattern, for callers that check the fields before they are set. The
// selectors are 0 or 1 but for `sign`: 1 is "+", 2 is "-".
struct DV_TimeOffsetFields {
  std::uint32_t hasDays, sign, days, hours, minutes, hasSeconds, seconds, hasHundredths, hundredths;
};
static_assert(sizeof(DV_TimeOffsetFields) == 36);
// As dv::decode with the offset pattern.
int DV_decodeTimeOffset(const SCL_StringRef& text, DV_TimeOffsetFields& fields);
