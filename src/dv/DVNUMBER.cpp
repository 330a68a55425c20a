// Signed integers as hexadecimal digits in sign and magnitude form.
#include "dv/DVNUMBER.h"

#include <cstdlib>
#include <limits>
#include <string_view>

#include "gen/GENCODES.h"
#include "gen/GENWNT.h"

namespace {

constexpr char SOURCE[] = "DVNUMBER";
constexpr unsigned int LINE_MAGNITUDE = 106;
constexpr unsigned int LINE_DIGIT = 180;

constexpr std::string_view DIGITS = "0123456789ABCDEF";
constexpr std::uint32_t SIGN = 0x80000000;

}  // namespace

void DV_Number::set(std::int32_t value) {
  if (value == std::numeric_limits<std::int32_t>::min()) {
    GENAssert(GEN_VALUE_RANGE, SOURCE, LINE_MAGNITUDE);
  }
  std::uint32_t bits = static_cast<std::uint32_t>(std::abs(value)) | (value < 0 ? SIGN : 0);
  for (std::size_t i = sizeof m_digits; i-- > 0; bits /= 16) {
    m_digits[i] = DIGITS[bits % 16];
  }
}

std::int32_t DV_Number::get() const {
  std::uint32_t bits = 0;
  for (const char c : m_digits) {
    const std::size_t digit = DIGITS.find(c);
    if (digit == std::string_view::npos) {
      GENAssert(GEN_UNEXPECTED_VALUE, SOURCE, LINE_DIGIT);
    }
    bits = bits * 16 + static_cast<std::uint32_t>(digit);
  }
  const auto magnitude = static_cast<std::int32_t>(bits & ~SIGN);
  return (bits & SIGN) != 0 ? -magnitude : magnitude;
}
