// Day-number arithmetic on plain integers: days since 1 January 1900. It stands this low because
// both the unique token and the date values are made of it. The calendar is the system's own:
// every fourth year but 1900 is a leap year, 1900 to 2078 are valid.
#pragma once

struct SCL_CalendarDate {
  int year;
  int month;
  int day;
};

// A date from 1900-01-01 to 2078-12-31 whose day exists.
bool SCL_isValidDate(int year, int month, int day) noexcept;
// Days since 1900-01-01; -1 for an invalid date.
int SCL_dayNumber(int year, int month, int day) noexcept;
// The inverse, for 0 to 2,958,523 (the year 9999).
SCL_CalendarDate SCL_dateOfDayNumber(int dayNumber) noexcept;
