// DV_Date: a calendar date, held as 8 ASCII digits: year, month, day. Eight zeros are the null
// date; 1900-01-01 to 2078-12-31 are valid. Digits that come from elsewhere may be anything: a
// field with a character that is no digit reads as 0, and the date is not valid.
#pragma once

#include <cstdint>

#include "dv/DVFIELDS.h"
#include "scl/SCLSTRNG.h"

class DV_Number;
namespace plat {
struct LocalTime;
}

class DV_Date {
 public:
  struct Fields {
    unsigned int year, month, day;
  };

  DV_Date();  // today
  constexpr DV_Date(unsigned int year, unsigned int month, unsigned int day) noexcept {
    set(year, month, day);
  }
  explicit DV_Date(const SCL_StringRef& text);  // parse; the null date when it does not match
  static const DV_Date NULL_DATE;
  static const DV_Date FIRST;  // 1900-01-01
  static const DV_Date LAST;   // 2078-12-31

  // Unchecked, but for the digits that there is room for: the year up to 9999, the others to 99.
  constexpr void set(unsigned int year, unsigned int month, unsigned int day) noexcept {
    dv::putDigits(m_digits, 4, year);
    dv::putDigits(m_digits + 4, 2, month);
    dv::putDigits(m_digits + 6, 2, day);
  }
  // The local date. When the platform cannot give it: the null date, and the error flag is set.
  void setToday();
  void get(unsigned int& year, unsigned int& month, unsigned int& day) const noexcept;
  Fields fields() const noexcept;
  bool isValid() const noexcept;
  bool isNull() const noexcept;
  std::int32_t dayNumber() const noexcept;  // days since 1900-01-01, -1 for an invalid date
  // 0, or -1 and unchanged (below 0, beyond the year 9999). Dates after 2078 can be set so, though
  // they are not valid: one who counts days up to a date must not stand still on the last one.
  int setDayNumber(std::int32_t n) noexcept;
  // -1, 0, 1: by year, month, day.
  int compare(const DV_Date& other) const noexcept;
  // Years and months first, then days. 0; or -1 and unchanged when the date with years and months
  // added is not valid (31 January plus one month), or the days leave the range of setDayNumber.
  int add(std::int32_t years, std::int32_t months, std::int32_t days) noexcept;
  void difference(const DV_Date& other,
                  DV_Number& span) const;  // this minus other; 0 when one is invalid
  // Adds number + days. 0; or -1 and unchanged for an invalid date and for a total that
  // setDayNumber refuses. A total before 1900-01-01 is an assertion (4).
  int addNumber(const DV_Number& number, std::int32_t days);
  // " 5-Jan-1998 ", stored unchecked. False when `text` does not match; a number that is out of
  // range matches, as far as it was read. `decodeResult` is that of dv::decode.
  bool parse(const SCL_StringRef& text);
  bool parse(const SCL_StringRef& text, int& decodeResult);
  // " 5-Jan-1998", or "Never" for the null date. A size below 12 is an assertion (3), a month
  // outside 1 to 12 too (4).
  void format(char* buffer, unsigned int size) const;
  bool hadError() noexcept;                                 // read and cleared
  const char* digits() const noexcept { return m_digits; }  // 8 characters, no terminator

 private:
  friend class DV_DateTime;

  void setLocal(const plat::LocalTime& local) noexcept;
  int setDayNumberChecked(std::int64_t n) noexcept;

  char m_digits[8];
  char m_error = 0;
};
static_assert(sizeof(DV_Date) == 9, "dates are stored as they are");
