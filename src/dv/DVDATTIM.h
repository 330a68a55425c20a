// DV_DateTime: a date with a time of day. The null value is the null date at 00:00:00.00.
#pragma once

#include <cstdint>

#include "dv/DVDATE.h"
#include "dv/DVTIME.h"
#include "dv/DVTIMOFF.h"

class DV_DateTime {
 public:
  DV_DateTime();  // now
  constexpr DV_DateTime(const DV_Date& date, const DV_Time& time) noexcept
      : m_date(date), m_time(time) {}
  static const DV_DateTime NULL_VALUE;
  static const DV_DateTime FIRST;  // 1900-01-01 00:00:00.00
  static const DV_DateTime LAST;   // 2078-12-31 23:59:59.00

  const DV_Date& date() const noexcept { return m_date; }
  DV_Date& date() noexcept { return m_date; }
  const DV_Time& time() const noexcept { return m_time; }
  DV_Time& time() noexcept { return m_time; }
  bool isNull() const noexcept;
  // One reading of the clock. When it fails: the null value, and the error flag is set.
  void setNow();
  // As DV_Date::add.
  int add(std::int32_t years, std::int32_t months, std::int32_t days) noexcept;
  // As DV_Time::add, with the days carried into the date: 0, or -1 when the date cannot take them
  // and stays (DV_Date::add); the time is set all the same.
  int addTime(std::int32_t hours, std::int32_t minutes, std::int32_t seconds,
              std::int32_t hundredths);
  // This minus other. When one of the dates is invalid, only the times count.
  void difference(const DV_DateTime& other, DV_TimeOffset& offset) const;
  // 0, or -1 and unchanged as DV_Date::addNumber, whose assertion it shares.
  int addOffset(const DV_TimeOffset& offset);
  int compare(const DV_DateTime& other) const noexcept;  // -1, 0, 1: by date, then by time
  // A date, a time or both, as DV_Date and DV_Time read them. A date alone is meant at 00:00, a
  // time alone today. False when `text` is blank or does not match; a field of the time out of its
  // range is an assertion. What dv::decode finds out of range leaves its part of the value as it
  // was, yet is no failure. `decodeResult` is that of dv::decode, -1 for a blank text.
  bool parse(const SCL_StringRef& text);
  bool parse(const SCL_StringRef& text, int& decodeResult);
  // By size: 24 or more " 5-Jan-1998 09:04:03.07", 21 without hundredths, 12 the date, 9
  // "09:04:03", 6 "09:04"; "Never" for the null value. A size below 6 is an assertion (3), with a
  // date also a month outside 1 to 12 (4).
  void format(char* buffer, unsigned int size) const;
  bool hadError() noexcept;  // read and cleared

 private:
  DV_Date m_date;
  DV_Time m_time;
};
static_assert(sizeof(DV_DateTime) == 18, "values are stored as they are");
