// The message's date from its header fields (RFC 822 section 5); the time of day is not read.
#include <cstdlib>
#include <optional>

#include "dv/DVDATE.h"
#include "krx/krxmsg.h"
#include "rfc/rfcread.h"
#include "rfc/rfctoken.h"

namespace {

// A number from 0 to 9999; more has no place in a date.
std::optional<unsigned int> dateNumber(const RFC_SymbolList& tokens, unsigned int index) {
  constexpr unsigned long MAX_NUMBER = 9999;
  if (index >= tokens.count()) {
    return std::nullopt;
  }
  const SCL_String& text = tokens.get(static_cast<std::uint16_t>(index)).text;
  if (!SCL_isInteger(text) || SCL_firstChar(text) == '-') {
    return std::nullopt;
  }
  const unsigned long value = std::strtoul(text.c_str(), nullptr, 10);
  if (value > MAX_NUMBER) {
    return std::nullopt;
  }
  return static_cast<unsigned int>(value);
}

unsigned int monthNumber(const SCL_StringRef& name) {
  static constexpr const char* MONTHS[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                           "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
  unsigned int number = 1;
  for (const char* month : MONTHS) {
    if (SCL_equalNoCase(name, month)) {
      return number;
    }
    ++number;
  }
  return 0;
}

}  // namespace

bool KRX_Message::getDate(DV_Date& date) {
  constexpr unsigned int AFTER_WEEKDAY = 2;
  const GMA_Mhdr* header = m_headers.findByType(gma::RESENTDATE);
  if (header == nullptr) {
    header = m_headers.findByType(gma::SENTDATE);
  }
  if (header == nullptr) {
    return false;
  }
  RFC_SymbolList tokens;
  rfc_tokenise(rfc_unfold(header->value()), RFC_MODE_822, false, tokens);
  const unsigned int at =
      tokens.count() > 0 && SCL_isInteger(tokens.get(0).text) ? 0 : AFTER_WEEKDAY;
  const std::optional<unsigned int> day = dateNumber(tokens, at);
  if (tokens.count() < at + 3 || !day) {
    return false;
  }
  const unsigned int month = monthNumber(tokens.get(static_cast<std::uint16_t>(at + 1)).text);
  if (month == 0) {
    return false;
  }
  unsigned int year = dateNumber(tokens, at + 2).value_or(0);
  if (year < 100 && dateNumber(tokens, at + 2)) {
    year += 1900;
  }
  date.set(year, month, *day);
  return true;
}
