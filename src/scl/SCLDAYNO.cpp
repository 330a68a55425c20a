// Day numbers of the system's calendar, which begins on 1 January 1900.
#include "scl/SCLDAYNO.h"

namespace {

constexpr int FIRST_YEAR = 1900;
constexpr int LAST_YEAR = 2078;
constexpr int DAYS_OF_JANUARY = 31;
constexpr int DAYS_BEFORE_MARCH_1900 = 59;
constexpr int DAYS_OF_FOUR_YEARS = 1461;
// Months of a year that begins with March have 153 days in each group of five.
constexpr int DAYS_OF_FIVE_MONTHS = 153;

int daysOfMonth(int year, int month) noexcept {
  switch (month) {
    case 2:
      return year % 4 == 0 && year != FIRST_YEAR ? 29 : 28;
    case 4:
    case 6:
    case 9:
    case 11:
      return 30;
    default:
      return month >= 1 && month <= 12 ? 31 : 0;
  }
}

}  // namespace

bool SCL_isValidDate(int year, int month, int day) noexcept {
  return day >= 1 && year >= FIRST_YEAR && year <= LAST_YEAR && day <= daysOfMonth(year, month);
}

int SCL_dayNumber(int year, int month, int day) noexcept {
  if (!SCL_isValidDate(year, month, day)) {
    return -1;
  }
  if (year == FIRST_YEAR && month <= 2) {
    return month == 1 ? day - 1 : day - 1 + DAYS_OF_JANUARY;
  }
  const bool beforeMarch = month <= 2;
  const int marchMonth = beforeMarch ? month + 9 : month - 3;
  const int marchYear = year - FIRST_YEAR - (beforeMarch ? 1 : 0);
  return (DAYS_OF_FIVE_MONTHS * marchMonth + 2) / 5 + DAYS_OF_FOUR_YEARS * marchYear / 4 + day +
         DAYS_BEFORE_MARCH_1900 - 1;
}

SCL_CalendarDate SCL_dateOfDayNumber(int dayNumber) noexcept {
  if (dayNumber < DAYS_OF_JANUARY) {
    return {FIRST_YEAR, 1, dayNumber + 1};
  }
  if (dayNumber < DAYS_BEFORE_MARCH_1900) {
    return {FIRST_YEAR, 2, dayNumber - DAYS_OF_JANUARY + 1};
  }
  const int quarterDays = 4 * dayNumber - (4 * DAYS_BEFORE_MARCH_1900 - 3);
  const int year = FIRST_YEAR + quarterDays / DAYS_OF_FOUR_YEARS;
  const int dayOfYear = quarterDays % DAYS_OF_FOUR_YEARS / 4 * 5 + 2;
  const int marchMonth = dayOfYear / DAYS_OF_FIVE_MONTHS;
  const int day = dayOfYear % DAYS_OF_FIVE_MONTHS / 5 + 1;
  return marchMonth > 9 ? SCL_CalendarDate{year + 1, marchMonth - 9, day}
                        : SCL_CalendarDate{year, marchMonth + 3, day};
}
