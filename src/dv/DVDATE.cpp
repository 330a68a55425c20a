// Calendar dates: validity, arithmetic, parsing and printing.
#include "dv/DVDATE.h"

#include <cstdio>

#include "dv/DVDECODE.h"
#include "dv/DVNUMBER.h"
#include "gen/GENCODES.h"
#include "gen/GENWNT.h"
#include "plat/PlatClock.h"
#include "scl/SCLDAYNO.h"

namespace {

constexpr char SOURCE[] = "DVDATE";
constexpr unsigned int LINE_SIZE = 581;
constexpr unsigned int LINE_MONTH = 591;
constexpr unsigned int LINE_TOTAL = 875;

constexpr unsigned int TEXT_SIZE = 12;
constexpr std::int64_t FIRST_YEAR = 1900;
constexpr std::int64_t LAST_YEAR = 2078;
constexpr std::int64_t LAST_DAY_NUMBER = 2958523;  // 9999-12-31: the year has four digits

struct DateRecord {
  std::uint32_t day, month, year;
};
static_assert(sizeof(DateRecord) == 12);

constexpr char PATTERN[] = " %U-{+JAN|FEB|MAR|APR|MAY|JUN|JUL|AUG|SEP|OCT|NOV|DEC}-%U ";

// With signed fields, as the calendar computes with them.
SCL_CalendarDate calendarDate(const DV_Date& date) noexcept {
  const auto [year, month, day] = date.fields();
  return {static_cast<int>(year), static_cast<int>(month), static_cast<int>(day)};
}

}  // namespace

constinit const DV_Date DV_Date::NULL_DATE(0, 0, 0);
constinit const DV_Date DV_Date::FIRST(1900, 1, 1);
constinit const DV_Date DV_Date::LAST(2078, 12, 31);

DV_Date::DV_Date() {
  setToday();
}

DV_Date::DV_Date(const SCL_StringRef& text) : DV_Date(0, 0, 0) {
  parse(text);
}

void DV_Date::setToday() {
  plat::LocalTime local;
  const bool known = plat::localNow(local);
  setLocal(known ? local : plat::LocalTime());
  m_error = known ? m_error : char{1};
}

void DV_Date::setLocal(const plat::LocalTime& local) noexcept {
  set(static_cast<unsigned int>(local.year), static_cast<unsigned int>(local.month),
      static_cast<unsigned int>(local.day));
}

void DV_Date::get(unsigned int& year, unsigned int& month, unsigned int& day) const noexcept {
  const Fields all = fields();
  year = all.year;
  month = all.month;
  day = all.day;
}

DV_Date::Fields DV_Date::fields() const noexcept {
  return {dv::getDigits(m_digits, 4), dv::getDigits(m_digits + 4, 2),
          dv::getDigits(m_digits + 6, 2)};
}

bool DV_Date::isValid() const noexcept {
  const auto [year, month, day] = calendarDate(*this);
  return SCL_isValidDate(year, month, day);
}

bool DV_Date::isNull() const noexcept {
  return compare(NULL_DATE) == 0;
}

std::int32_t DV_Date::dayNumber() const noexcept {
  const auto [year, month, day] = calendarDate(*this);
  return SCL_dayNumber(year, month, day);
}

int DV_Date::setDayNumber(std::int32_t n) noexcept {
  return setDayNumberChecked(n);
}

int DV_Date::setDayNumberChecked(std::int64_t n) noexcept {
  if (n < 0 || n > LAST_DAY_NUMBER) {
    return -1;
  }
  const SCL_CalendarDate date = SCL_dateOfDayNumber(static_cast<int>(n));
  set(static_cast<unsigned int>(date.year), static_cast<unsigned int>(date.month),
      static_cast<unsigned int>(date.day));
  return 0;
}

int DV_Date::compare(const DV_Date& other) const noexcept {
  return dv::compareDigits(m_digits, other.m_digits);
}

int DV_Date::add(std::int32_t years, std::int32_t months, std::int32_t days) noexcept {
  const SCL_CalendarDate date = calendarDate(*this);
  const std::int64_t month = std::int64_t{date.month} + months;
  const std::int64_t carried = month > 12 ? (month - 1) / 12 : 0;
  const std::int64_t year = std::int64_t{date.year} + years + carried;
  if (month < 1 || year < FIRST_YEAR || year > LAST_YEAR) {
    return -1;
  }
  const int number =
      SCL_dayNumber(static_cast<int>(year), static_cast<int>(month - 12 * carried), date.day);
  return number < 0 ? -1 : setDayNumberChecked(std::int64_t{number} + days);
}

void DV_Date::difference(const DV_Date& other, DV_Number& span) const {
  const std::int32_t mine = dayNumber();
  const std::int32_t others = other.dayNumber();
  span.set(mine >= 0 && others >= 0 ? mine - others : 0);
}

int DV_Date::addNumber(const DV_Number& number, std::int32_t days) {
  const std::int32_t mine = dayNumber();
  if (mine < 0) {
    return -1;
  }
  const std::int64_t total = std::int64_t{mine} + number.get() + days;
  if (total < 0) {
    GENAssert(GEN_VALUE_RANGE, SOURCE, LINE_TOTAL);
  }
  return setDayNumberChecked(total);
}

bool DV_Date::parse(const SCL_StringRef& text) {
  int decodeResult = 0;
  return parse(text, decodeResult);
}

bool DV_Date::parse(const SCL_StringRef& text, int& decodeResult) {
  DateRecord record;
  int furthest = 0;
  decodeResult = dv::decode(PATTERN, false, &record, sizeof record, furthest, text);
  if (decodeResult == dv::NO_MATCH) {
    return false;
  }
  set(record.year, record.month, record.day);
  return true;
}

void DV_Date::format(char* buffer, unsigned int size) const {
  if (size < TEXT_SIZE) {
    GENAssert(GEN_INDEX_RANGE, SOURCE, LINE_SIZE);
  }
  if (isNull()) {
    std::snprintf(buffer, size, "Never");
    return;
  }
  const auto [year, month, day] = fields();
  if (month < 1 || month > 12) {
    GENAssert(GEN_VALUE_RANGE, SOURCE, LINE_MONTH);
  }
  std::snprintf(buffer, size, "%2u-%3.3s-%4u", day, dv::MONTH_NAMES[month - 1], year);
}

bool DV_Date::hadError() noexcept {
  const bool error = m_error != 0;
  m_error = 0;
  return error;
}
