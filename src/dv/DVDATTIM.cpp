// Dates with times of day.
#include "dv/DVDATTIM.h"

#include <cstdio>

#include "dv/DVDECODE.h"
#include "gen/GENCODES.h"
#include "gen/GENWNT.h"
#include "plat/PlatClock.h"

namespace {

constexpr char SOURCE[] = "DVDATTIM";
constexpr unsigned int LINE_SIZE = 362;
constexpr unsigned int LINE_MONTH_OF_DATE = 371;
constexpr unsigned int LINE_MONTH_WITH_TIME = 392;

constexpr unsigned int MIN_SIZE = 6;
constexpr unsigned int DATE_SIZE = 12;
constexpr unsigned int SECONDS_SIZE = 21;
constexpr unsigned int HUNDREDTHS_SIZE = 24;

struct DateTimeRecord {
  std::uint32_t hasDate, day, month, year;
  std::uint32_t hasTime, hours, minutes, hasSeconds, seconds, hasHundredths, hundredths;
};
static_assert(sizeof(DateTimeRecord) == 44);

constexpr char PATTERN[] =
    " [%U-{+JAN|FEB|MAR|APR|MAY|JUN|JUL|AUG|SEP|OCT|NOV|DEC}-%U] [%U:%U[:%U[.%U]]] ";

// The texts of 12 characters and more, which show the date.
void formatWithDate(const DV_Date& date, const DV_Time& time, char* buffer, unsigned int size) {
  const auto [year, month, day] = date.fields();
  if (month < 1 || month > 12) {
    GENAssert(GEN_VALUE_RANGE, SOURCE,
              size >= SECONDS_SIZE ? LINE_MONTH_WITH_TIME : LINE_MONTH_OF_DATE);
  }
  const auto [h, m, s, cc] = time.fields();
  const char* const name = dv::MONTH_NAMES[month - 1];
  if (size >= HUNDREDTHS_SIZE) {
    std::snprintf(buffer, size, "%2u-%3.3s-%4u %02u:%02u:%02u.%02u", day, name, year, h, m, s, cc);
  } else if (size >= SECONDS_SIZE) {
    std::snprintf(buffer, size, "%2u-%3.3s-%4u %02u:%02u:%02u", day, name, year, h, m, s);
  } else {
    std::snprintf(buffer, size, "%2u-%3.3s-%4u", day, name, year);
  }
}

}  // namespace

constinit const DV_DateTime DV_DateTime::NULL_VALUE(DV_Date(0, 0, 0), DV_Time::zero());
constinit const DV_DateTime DV_DateTime::FIRST(DV_Date(1900, 1, 1), DV_Time::zero());
constinit const DV_DateTime DV_DateTime::LAST(DV_Date(2078, 12, 31),
                                              DV_Time(23, 59, 59, 0, DV_Time::Unchecked{}));

DV_DateTime::DV_DateTime() : DV_DateTime(NULL_VALUE) {
  setNow();
}

bool DV_DateTime::isNull() const noexcept {
  return compare(NULL_VALUE) == 0;
}

void DV_DateTime::setNow() {
  plat::LocalTime local;
  if (!plat::localNow(local)) {
    *this = NULL_VALUE;
    m_date.m_error = 1;
    m_time.m_error = 1;
    return;
  }
  m_date.setLocal(local);
  m_time.setLocal(local);
}

int DV_DateTime::add(std::int32_t years, std::int32_t months, std::int32_t days) noexcept {
  return m_date.add(years, months, days);
}

int DV_DateTime::addTime(std::int32_t hours, std::int32_t minutes, std::int32_t seconds,
                         std::int32_t hundredths) {
  return m_date.add(0, 0, m_time.add(hours, minutes, seconds, hundredths)) < 0 ? -1 : 0;
}

void DV_DateTime::difference(const DV_DateTime& other, DV_TimeOffset& offset) const {
  DV_Number days;
  m_date.difference(other.m_date, days);
  const std::int32_t carried = m_time.difference(other.m_time, offset.time());
  offset.setDays(days.get() + carried);
}

int DV_DateTime::addOffset(const DV_TimeOffset& offset) {
  const auto [h, m, s, cc] = offset.time().fields();
  DV_Time time = m_time;
  const std::int32_t carried =
      time.add(static_cast<std::int32_t>(h), static_cast<std::int32_t>(m),
               static_cast<std::int32_t>(s), static_cast<std::int32_t>(cc));
  if (m_date.addNumber(DV_Number(offset.days()), carried) < 0) {
    return -1;
  }
  m_time = time;
  return 0;
}

int DV_DateTime::compare(const DV_DateTime& other) const noexcept {
  const int dates = m_date.compare(other.m_date);
  return dates != 0 ? dates : m_time.compare(other.m_time);
}

bool DV_DateTime::parse(const SCL_StringRef& text) {
  int decodeResult = 0;
  return parse(text, decodeResult);
}

bool DV_DateTime::parse(const SCL_StringRef& text, int& decodeResult) {
  decodeResult = dv::NO_MATCH;
  if (SCL_trimmed(text).empty()) {
    return false;
  }
  DateTimeRecord record;
  int furthest = 0;
  decodeResult = dv::decode(PATTERN, false, &record, sizeof record, furthest, text);
  if (decodeResult == dv::NO_MATCH) {
    return false;
  }
  DV_DateTime value = *this;
  if (record.hasDate != 0) {
    value.m_date.set(record.year, record.month, record.day);
    value.m_time = DV_Time::zero();
  } else if (record.hasTime != 0) {
    value.setNow();
  }
  if (record.hasTime != 0) {
    value.m_time.set(record.hours, record.minutes, record.seconds, record.hundredths);
  }
  *this = value;  // only now, because a time out of its range is an assertion
  return true;
}

void DV_DateTime::format(char* buffer, unsigned int size) const {
  if (size < MIN_SIZE) {
    GENAssert(GEN_INDEX_RANGE, SOURCE, LINE_SIZE);
  }
  if (isNull()) {
    std::snprintf(buffer, size, "Never");
  } else if (size >= DATE_SIZE) {
    formatWithDate(m_date, m_time, buffer, size);
  } else {
    m_time.format(buffer, size);
  }
}

bool DV_DateTime::hadError() noexcept {
  const bool ofDate = m_date.hadError();
  const bool ofTime = m_time.hadError();
  return ofDate || ofTime;
}
