// The decimal fields of dates and times: fixed numbers of ASCII digits without a terminator.
#pragma once

#include <cstddef>
#include <cstring>

namespace dv {

// Writes `value` as `count` digits; a value that needs more is written as the largest that fits,
// so that it can neither overrun its field nor pass for another value.
constexpr void putDigits(char* field, std::size_t count, unsigned int value) noexcept {
  unsigned int largest = 9;
  for (std::size_t i = 1; i < count; ++i) {
    largest = largest * 10 + 9;
  }
  if (value > largest) {
    value = largest;
  }
  while (count-- > 0) {
    field[count] = static_cast<char>('0' + value % 10);
    value /= 10;
  }
}

constexpr bool allDigits(const char* field, std::size_t count) noexcept {
  for (std::size_t i = 0; i < count; ++i) {
    if (field[i] < '0' || field[i] > '9') {
      return false;
    }
  }
  return true;
}

// The value of a field; 0 when a character in it is no digit.
constexpr unsigned int getDigits(const char* field, std::size_t count) noexcept {
  unsigned int value = 0;
  for (std::size_t i = 0; allDigits(field, count) && i < count; ++i) {
    value = value * 10 + static_cast<unsigned int>(field[i] - '0');
  }
  return value;
}

// -1, 0, 1: two values of 8 digits, most significant first.
inline int compareDigits(const char* a, const char* b) noexcept {
  const int order = std::memcmp(a, b, 8);
  return (order > 0 ? 1 : 0) - (order < 0 ? 1 : 0);
}

// Division that rounds towards minus infinity.
template <class T>
constexpr T floorDivide(T value, T divisor) noexcept {
  return value / divisor - (value % divisor < 0 ? 1 : 0);
}

// Texts print the first three letters.
inline constexpr const char* MONTH_NAMES[] = {"January",   "February", "March",    "April",
                                              "May",       "June",     "July",     "August",
                                              "September", "October",  "November", "December"};

}  // namespace dv
