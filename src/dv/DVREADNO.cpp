// Numbers in any base up to 16, signed and unsigned, without regard to the host's locale.
#include "dv/DVREADNO.h"

#include <limits>

#include "dv/DVDECODE.h"
#include "gen/GENCODES.h"
#include "gen/GENWNT.h"

namespace dv {

namespace {

constexpr std::int64_t LARGEST = std::numeric_limits<std::int32_t>::max();
constexpr std::int64_t NO_DIGIT = LARGEST + 1;  // not below any base

std::int64_t digitValue(char c) noexcept {
  if (SCL_isDigit(c)) {
    return c - '0';
  }
  const char upper = SCL_toUpper(c);
  return upper >= 'A' && upper <= 'F' ? upper - 'A' + 10 : NO_DIGIT;
}

bool isSign(std::string_view text) noexcept {
  return !text.empty() && (text.front() == '+' || text.front() == '-');
}

}  // namespace

int scanNumber(std::int32_t& value, int base, std::string_view text) {
  if (base == 0) {
    GENAssert(GEN_VALUE_RANGE, "DVREADNO", __LINE__);
  }
  const std::size_t start = base < 0 && isSign(text) ? 1 : 0;
  const std::int64_t radix = base < 0 ? -std::int64_t{base} : std::int64_t{base};
  std::int64_t magnitude = 0;
  std::size_t end = start;
  for (; end < text.size(); ++end) {
    const std::int64_t digit = digitValue(text[end]);
    if (digit >= radix) {
      break;
    }
    magnitude = magnitude * radix + digit;
    if (magnitude > LARGEST) {
      return OUT_OF_RANGE;
    }
  }
  if (end == start) {
    return NO_MATCH;
  }
  const bool negative = start == 1 && text.front() == '-';
  value = static_cast<std::int32_t>(negative ? -magnitude : magnitude);
  return static_cast<int>(end);
}

int readNumber(std::int32_t& value, int base, const SCL_StringRef& text) {
  return scanNumber(value, base, text.view());
}

int readSigned(std::int32_t& value, int base, const SCL_StringRef& text) {
  return scanNumber(value, base, text.view());  // no magnitude of 2147483648 gets this far
}

int readUnsigned(std::uint32_t& value, int base, const SCL_StringRef& text) {
  if (base < 1) {
    GENAssert(GEN_VALUE_RANGE, "DVREADNO", __LINE__);
  }
  std::int32_t number = 0;
  const int length = scanNumber(number, base, text.view());
  if (length >= 0) {
    value = static_cast<std::uint32_t>(number);
  }
  return length;
}

}  // namespace dv
