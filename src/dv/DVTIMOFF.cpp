// Signed spans of time: totals, parsing and printing.
#include "dv/DVTIMOFF.h"

#include <cstdio>

#include "dv/DVDECODE.h"
#include "gen/GENCODES.h"
#include "gen/GENWNT.h"

namespace {

constexpr char SOURCE[] = "DVTIMOFF";
constexpr unsigned int LINE_SHORT_FORM = 257;
constexpr unsigned int LINE_SIZE = 262;
constexpr unsigned int LINE_SECONDS = 298;
constexpr unsigned int LINE_HUNDREDTHS = 334;

// The largest day counts whose totals are signed 32-bit numbers.
constexpr std::int32_t MAX_DAYS_IN_SECONDS = 24854;
constexpr std::int32_t MAX_DAYS_IN_HUNDREDTHS = 247;

constexpr std::int32_t MAX_DAYS_IN_TEXT = 99999;
constexpr std::size_t DAYS_TEXT_SIZE = 8;  // a sign, five digits, the terminator

constexpr char PATTERN[] = " [{++|-}%U:]%U:%U[:%U[.%U]] ";
constexpr std::uint32_t MINUS = 2;  // the sign's alternative

std::int32_t secondsOf(const DV_TimeOffset& offset, std::int32_t maxDays, unsigned int line) {
  const std::int32_t days = offset.days();
  if (days < 0 || days > maxDays) {
    GENAssert(GEN_VALUE_RANGE, SOURCE, line);
  }
  return days * 86400 + offset.time().seconds();
}

// At least five characters, the sign of a negative count among them.
void formatDays(std::int32_t days, char (&text)[DAYS_TEXT_SIZE]) {
  if (days > MAX_DAYS_IN_TEXT || days < -MAX_DAYS_IN_TEXT) {
    GENAssert(GEN_VALUE_RANGE, SOURCE, __LINE__);
  }
  std::snprintf(text, sizeof text, "%05d", days);
}

}  // namespace

constinit const DV_TimeOffset DV_TimeOffset::ZERO;

DV_TimeOffset::DV_TimeOffset(std::int32_t days, unsigned int hours, unsigned int minutes,
                             unsigned int seconds, unsigned int hundredths)
    : m_days(days), m_time(hours, minutes, seconds, hundredths) {}

DV_TimeOffset::DV_TimeOffset(const SCL_StringRef& text) : DV_TimeOffset() {
  parse(text);
}

std::int32_t DV_TimeOffset::totalSeconds() const {
  return secondsOf(*this, MAX_DAYS_IN_SECONDS, LINE_SECONDS);
}

std::int32_t DV_TimeOffset::totalHundredths() const {
  return secondsOf(*this, MAX_DAYS_IN_HUNDREDTHS, LINE_HUNDREDTHS) * 100 +
         static_cast<std::int32_t>(m_time.fields().hundredths);
}

int DV_TimeOffset::compare(const DV_TimeOffset& other) const {
  const std::int32_t mine = days();
  const std::int32_t others = other.days();
  if (mine != others) {
    return mine < others ? -1 : 1;
  }
  return m_time.compare(other.m_time);
}

bool DV_TimeOffset::parse(const SCL_StringRef& text) {
  int decodeResult = 0;
  return parse(text, decodeResult);
}

bool DV_TimeOffset::parse(const SCL_StringRef& text, int& decodeResult) {
  DV_TimeOffsetFields fields;
  decodeResult = DV_decodeTimeOffset(text, fields);
  if (decodeResult == dv::NO_MATCH) {
    return false;
  }
  m_time.set(fields.hours, fields.minutes, fields.seconds, fields.hundredths);
  const auto days = static_cast<std::int32_t>(fields.days);
  m_days.set(fields.sign == MINUS ? -days : days);
  return true;
}

void DV_TimeOffset::format(char* buffer, unsigned int size) const {
  if (size < 6) {
    GENAssert(GEN_INDEX_RANGE, SOURCE, LINE_SIZE);
  }
  if (size < 12) {
    if (days() != 0) {
      GENAssert(GEN_VALUE_RANGE, SOURCE, LINE_SHORT_FORM);
    }
    m_time.format(buffer, 6);
    return;
  }
  const auto [h, m, s, cc] = m_time.fields();
  char day[DAYS_TEXT_SIZE];
  formatDays(days(), day);
  int length = 0;
  if (size >= 18) {
    length = std::snprintf(buffer, size, "%s:%02u:%02u:%02u.%02u", day, h, m, s, cc);
  } else if (size >= 15) {
    length = std::snprintf(buffer, size, "%s:%02u:%02u:%02u", day, h, m, s);
  } else {
    length = std::snprintf(buffer, size, "%s:%02u:%02u", day, h, m);
  }
  if (length >= static_cast<int>(size)) {
    GENAssert(GEN_INDEX_RANGE, SOURCE, LINE_SIZE);
  }
}

int DV_decodeTimeOffset(const SCL_StringRef& text, DV_TimeOffsetFields& fields) {
  int furthest = 0;
  return dv::decode(PATTERN, false, &fields, sizeof fields, furthest, text);
}
