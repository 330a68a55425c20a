// Times of day: their fields, the arithmetic on them, parsing and printing.
#include "dv/DVTIME.h"

#include <algorithm>
#include <cstdio>

#include "dv/DVDECODE.h"
#include "gen/GENCODES.h"
#include "gen/GENWNT.h"
#include "plat/PlatClock.h"

namespace {

constexpr char SOURCE[] = "DVTIME";
constexpr unsigned int LINE_HOURS = 214;
constexpr unsigned int LINE_MINUTES = 215;
constexpr unsigned int LINE_SECONDS = 216;
constexpr unsigned int LINE_HUNDREDTHS = 217;
constexpr unsigned int LINE_SIZE = 379;
constexpr unsigned int LINE_DAY = 549;

constexpr std::int32_t SECONDS_OF_DAY = 86400;

struct TimeRecord {
  std::uint32_t hours, minutes, hasSeconds, seconds, hasHundredths, hundredths;
};
static_assert(sizeof(TimeRecord) == 24);

constexpr char PATTERN[] = " %U:%U[:%U[.%U]] ";

void checkRange(unsigned int value, unsigned int largest, unsigned int line) {
  if (value > largest) {
    GENAssert(GEN_VALUE_RANGE, SOURCE, line);
  }
}

std::int32_t signedDifference(unsigned int a, unsigned int b) noexcept {
  return static_cast<std::int32_t>(a) - static_cast<std::int32_t>(b);
}

// One field of a difference: brought up to 0 by whole units of the next larger field; how many.
std::int32_t borrow(std::int32_t& field, std::int32_t unit) noexcept {
  const std::int32_t units = field < 0 ? -dv::floorDivide(field, unit) : 0;
  field += units * unit;
  return units;
}

}  // namespace

constinit const DV_Time DV_Time::ZERO = DV_Time::zero();
constinit const DV_Time DV_Time::MIDNIGHT = DV_Time::zero();
constinit const DV_Time DV_Time::NOON(12, 0, 0, 0, Unchecked{});

DV_Time::DV_Time() {
  setNow();
}

DV_Time::DV_Time(unsigned int hours, unsigned int minutes, unsigned int seconds,
                 unsigned int hundredths) {
  set(hours, minutes, seconds, hundredths);
}

void DV_Time::set(unsigned int hours, unsigned int minutes, unsigned int seconds,
                  unsigned int hundredths) {
  checkRange(hours, 23, LINE_HOURS);
  checkRange(minutes, 59, LINE_MINUTES);
  checkRange(seconds, 59, LINE_SECONDS);
  checkRange(hundredths, 99, LINE_HUNDREDTHS);
  put(hours, minutes, seconds, hundredths);
}

void DV_Time::setNow() {
  plat::LocalTime local;
  const bool known = plat::localNow(local);
  setLocal(known ? local : plat::LocalTime());
  m_error = known ? m_error : char{1};
}

// A leap second, which some zones tell, is the second before it once more.
void DV_Time::setLocal(const plat::LocalTime& local) noexcept {
  put(static_cast<unsigned int>(local.hour), static_cast<unsigned int>(local.minute),
      static_cast<unsigned int>(std::min(local.second, 59)),
      static_cast<unsigned int>(local.millisecond / 10));
}

void DV_Time::get(unsigned int& hours, unsigned int& minutes, unsigned int& seconds,
                  unsigned int& hundredths) const noexcept {
  const Fields all = fields();
  hours = all.hours;
  minutes = all.minutes;
  seconds = all.seconds;
  hundredths = all.hundredths;
}

DV_Time::Fields DV_Time::fields() const noexcept {
  return {dv::getDigits(m_digits, 2), dv::getDigits(m_digits + 2, 2),
          dv::getDigits(m_digits + 4, 2), dv::getDigits(m_digits + 6, 2)};
}

bool DV_Time::isValid() const noexcept {
  const auto [h, m, s, cc] = fields();
  return dv::allDigits(m_digits, sizeof m_digits) && h <= 23 && m <= 59 && s <= 59;
}

std::int32_t DV_Time::seconds() const noexcept {
  const auto [h, m, s, cc] = fields();
  return static_cast<std::int32_t>((h * 60 + m) * 60 + s);
}

void DV_Time::setSeconds(std::int32_t seconds, unsigned int hundredths) {
  if (seconds < 0 || seconds >= SECONDS_OF_DAY) {
    GENAssert(GEN_INCONSISTENT_VALUE, SOURCE, LINE_DAY);
  }
  const auto total = static_cast<unsigned int>(seconds);
  set(total / 3600, total / 60 % 60, total % 60, hundredths);
}

std::int32_t DV_Time::add(std::int32_t hours, std::int32_t minutes, std::int32_t seconds,
                          std::int32_t hundredths) {
  const std::int64_t parts = std::int64_t{fields().hundredths} + hundredths;
  const std::int64_t carried = dv::floorDivide<std::int64_t>(parts, 100);
  const std::int64_t total =
      this->seconds() + std::int64_t{hours} * 3600 + std::int64_t{minutes} * 60 + seconds + carried;
  const std::int64_t days = dv::floorDivide<std::int64_t>(total, SECONDS_OF_DAY);
  setSeconds(static_cast<std::int32_t>(total - days * SECONDS_OF_DAY),
             static_cast<unsigned int>(parts - carried * 100));
  return static_cast<std::int32_t>(days);
}

std::int32_t DV_Time::difference(const DV_Time& other, DV_Time& result) const {
  const Fields mine = fields();
  const Fields others = other.fields();
  std::int32_t hours = signedDifference(mine.hours, others.hours);
  std::int32_t minutes = signedDifference(mine.minutes, others.minutes);
  std::int32_t seconds = signedDifference(mine.seconds, others.seconds);
  std::int32_t hundredths = signedDifference(mine.hundredths, others.hundredths);
  seconds -= borrow(hundredths, 100);
  minutes -= borrow(seconds, 60);
  hours -= borrow(minutes, 60);
  const std::int32_t days = dv::floorDivide(hours, 24);
  result.set(static_cast<unsigned int>(hours - days * 24), static_cast<unsigned int>(minutes),
             static_cast<unsigned int>(seconds), static_cast<unsigned int>(hundredths));
  return days;
}

int DV_Time::compare(const DV_Time& other) const noexcept {
  return dv::compareDigits(m_digits, other.m_digits);
}

bool DV_Time::parse(const SCL_StringRef& text) {
  int decodeResult = 0;
  return parse(text, decodeResult);
}

bool DV_Time::parse(const SCL_StringRef& text, int& decodeResult) {
  TimeRecord record;
  int furthest = 0;
  decodeResult = dv::decode(PATTERN, false, &record, sizeof record, furthest, text);
  if (decodeResult == dv::NO_MATCH) {
    return false;
  }
  set(record.hours, record.minutes, record.seconds, record.hundredths);
  return true;
}

void DV_Time::format(char* buffer, unsigned int size) const {
  const auto [h, m, s, cc] = fields();
  if (size >= 13) {
    std::snprintf(buffer, size, "%02u:%02u:%02u.%03u", h, m, s, cc);
  } else if (size >= 12) {
    std::snprintf(buffer, size, "%02u:%02u:%02u.%02u", h, m, s, cc);
  } else if (size >= 9) {
    std::snprintf(buffer, size, "%02u:%02u:%02u", h, m, s);
  } else if (size >= 6) {
    std::snprintf(buffer, size, "%02u:%02u", h, m);
  } else {
    GENAssert(GEN_INDEX_RANGE, SOURCE, LINE_SIZE);
  }
}

bool DV_Time::hadError() noexcept {
  const bool error = m_error != 0;
  m_error = 0;
  return error;
}
