// ASCII character tests and case folding that do not follow the host's locale. Bytes from 128 to
// 255 belong to no class and fold to themselves; arguments may be plain (signed) characters.
#pragma once

#include <cstddef>
#include <string_view>

constexpr bool SCL_isSpace(char c) noexcept {
  return c == ' ' || (c >= '\t' && c <= '\r');
}
constexpr bool SCL_isBlank(char c) noexcept {
  return c == ' ' || c == '\t';
}
constexpr bool SCL_isDigit(char c) noexcept {
  return c >= '0' && c <= '9';
}
constexpr bool SCL_isUpper(char c) noexcept {
  return c >= 'A' && c <= 'Z';
}
constexpr bool SCL_isLower(char c) noexcept {
  return c >= 'a' && c <= 'z';
}
constexpr bool SCL_isAlpha(char c) noexcept {
  return SCL_isUpper(c) || SCL_isLower(c);
}
constexpr bool SCL_isControl(char c) noexcept {
  const auto u = static_cast<unsigned char>(c);
  return u < 32 || u == 127;
}
constexpr char SCL_toLower(char c) noexcept {
  return SCL_isUpper(c) ? static_cast<char>(c - 'A' + 'a') : c;
}
constexpr char SCL_toUpper(char c) noexcept {
  return SCL_isLower(c) ? static_cast<char>(c - 'a' + 'A') : c;
}

// -1, 0, 1: byte order after folding letters, a proper prefix orders first.
int SCL_compareNoCase(std::string_view a, std::string_view b) noexcept;
bool SCL_equalNoCase(std::string_view a, std::string_view b) noexcept;

// A hash that is equal for texts that SCL_equalNoCase calls equal.
std::size_t SCL_hashNoCase(std::string_view text) noexcept;

// `text` without leading and trailing white space (SCL_isSpace).
std::string_view SCL_trimmed(std::string_view text) noexcept;
