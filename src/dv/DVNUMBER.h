// DV_Number: a signed 32-bit integer as 8 upper-case hexadecimal digits in sign and magnitude form,
// most significant first; the first digit has 8 added when the number is negative.
#pragma once

#include <cstdint>

class DV_Number {
 public:
  constexpr DV_Number() noexcept = default;  // 0
  explicit DV_Number(std::int32_t value) { set(value); }
  void set(std::int32_t value);  // -2147483648 is an assertion (4)
  std::int32_t get() const;      // a character that is no such digit is an assertion (8)
  const char* digits() const noexcept { return m_digits; }  // 8 characters, no terminator
  char* digits() noexcept { return m_digits; }              // for values read from files

 private:
  char m_digits[8] = {'0', '0', '0', '0', '0', '0', '0', '0'};
};
static_assert(sizeof(DV_Number) == 8, "numbers are stored as they are");
