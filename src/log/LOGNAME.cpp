// The names of a series of log files: parsing the root, composing and recognising names.
#include "log/LOGNAME.h"

#include <algorithm>
#include <charconv>
#include <cstdio>

#include "gen/GENCODES.h"
#include "scl/SCLASCII.h"

namespace {

constexpr std::size_t DATE_DIGITS = 6;
constexpr unsigned int CENTURY_SPLIT = 50;  // a two-digit year above it lies in the 1900s

std::size_t startOfName(std::string_view path) {
  const std::size_t separator = path.find_last_of("/\\");
  return separator == std::string_view::npos ? 0 : separator + 1;
}

bool allDigits(std::string_view text) {
  return !text.empty() && std::all_of(text.begin(), text.end(), SCL_isDigit);
}

unsigned int twoDigits(std::string_view text, std::size_t at) {
  return static_cast<unsigned int>(10 * (text[at] - '0') + (text[at + 1] - '0'));
}

}  // namespace

unsigned int LOG_NamePattern::parse(std::string_view root, Kind kind) {
  m_kind = kind;
  m_prefix.assign(root.substr(0, root.find('%')));
  m_suffix.clear();
  m_width = 0;
  if (kind == Kind::none) {
    m_prefix.assign(root);
    return 0;
  }
  if (!parseConversion(root.substr(m_prefix.size()))) {
    return LOG_NO_CONVERSION;
  }
  return root.size() + m_width > MAX_LENGTH ? LOG_NAME_TOO_LONG : 0;
}

// `conversion` begins at the first "%" of the root and reaches to its end.
bool LOG_NamePattern::parseConversion(std::string_view conversion) {
  const std::size_t letter = conversion.find_first_not_of("0123456789", 1);
  if (letter == std::string_view::npos) {
    return false;
  }
  const std::string_view digits = conversion.substr(1, letter - 1);
  const bool wanted = m_kind == Kind::date ? digits.empty() && conversion[letter] == 's'
                                           : conversion[letter] == 'u';
  m_suffix.assign(conversion.substr(letter + 1));
  if (!wanted || m_suffix.find('%') != std::string::npos) {
    return false;
  }
  m_padding = digits.starts_with('0') ? '0' : ' ';
  for (const char digit : digits) {  // a width beyond the limit needs no exact value
    m_width = std::min(m_width * 10 + static_cast<std::size_t>(digit - '0'), MAX_LENGTH + 1);
  }
  return true;
}

std::string LOG_NamePattern::nameOf(const DV_Date& day) const {
  if (m_kind == Kind::none) {
    return m_prefix;
  }
  return m_prefix + std::string(day.digits() + 2, DATE_DIGITS) + m_suffix;
}

std::string LOG_NamePattern::nameOf(std::uint32_t key) const {
  if (m_kind != Kind::number) {
    DV_Date day = DV_Date::NULL_DATE;
    day.setDayNumber(static_cast<std::int32_t>(key));
    return nameOf(day);
  }
  const std::string digits = std::to_string(key);
  return m_prefix + std::string(m_width - std::min(m_width, digits.size()), m_padding) + digits +
         m_suffix;
}

bool LOG_NamePattern::keyOf(std::string_view path, std::uint32_t& key) const {
  const std::string_view name = path.substr(startOfName(path));
  const std::string_view prefix = std::string_view(m_prefix).substr(startOfName(m_prefix));
  if (name.size() < prefix.size() + m_suffix.size() ||
      !SCL_equalNoCase(name.substr(0, prefix.size()), prefix) ||
      !SCL_equalNoCase(name.substr(name.size() - m_suffix.size()), m_suffix)) {
    return false;
  }
  const std::string_view digits =
      name.substr(prefix.size(), name.size() - prefix.size() - m_suffix.size());
  return m_kind == Kind::date ? dayOf(digits, key) : numberOf(digits, key);
}

bool LOG_NamePattern::dayOf(std::string_view digits, std::uint32_t& key) const {
  if (digits.size() != DATE_DIGITS || !allDigits(digits)) {
    return false;
  }
  const unsigned int year = twoDigits(digits, 0);
  const DV_Date day(year + (year > CENTURY_SPLIT ? 1900 : 2000), twoDigits(digits, 2),
                    twoDigits(digits, 4));
  key = static_cast<std::uint32_t>(day.dayNumber());
  return day.isValid();
}

bool LOG_NamePattern::numberOf(std::string_view digits, std::uint32_t& key) const {
  if (m_padding == ' ') {  // our own names with a width begin with blanks
    digits.remove_prefix(std::min(digits.find_first_not_of(' '), digits.size()));
  }
  return allDigits(digits) &&
         std::from_chars(digits.data(), digits.data() + digits.size(), key).ec == std::errc();
}
