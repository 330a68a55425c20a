// The fixed vocabulary of the RFC 822 and MIME library: character classes (RFC 822 section 3.3,
// RFC 2045 section 5.1) and the table from header field names to header type codes and back.
#pragma once

#include <array>
#include <cstdint>

#include "scl/SCLSTRNG.h"

namespace rfc {

inline constexpr std::uint16_t CHAR = 0x01;
inline constexpr std::uint16_t ALPHA = 0x02;
inline constexpr std::uint16_t DIGIT = 0x04;
inline constexpr std::uint16_t CTL = 0x08;
inline constexpr std::uint16_t LWSP = 0x10;
inline constexpr std::uint16_t SPECIAL = 0x20;       // RFC 822 specials
inline constexpr std::uint16_t MIME_SPECIAL = 0x40;  // RFC 2045 tspecials

namespace detail {

constexpr bool isIn(char c, const char* set) noexcept {
  while (*set != '\0' && *set != c) {
    ++set;
  }
  return *set != '\0';
}

constexpr std::uint16_t classesOf(char c) noexcept {
  unsigned int classes = CHAR;
  classes |= SCL_isAlpha(c) ? ALPHA : 0U;
  classes |= SCL_isDigit(c) ? DIGIT : 0U;
  classes |= SCL_isControl(c) ? CTL : 0U;
  classes |= SCL_isBlank(c) ? LWSP : 0U;
  classes |= isIn(c, "()<>@,;:\\\".[]") ? SPECIAL : 0U;
  classes |= isIn(c, "()<>@,;:\\\"/[]?=") ? MIME_SPECIAL : 0U;
  return static_cast<std::uint16_t>(classes);
}

// Twice the 128 entries, so that an 8-bit character finds its empty set without a test.
inline constexpr std::array<std::uint16_t, 256> CLASSES = [] {
  std::array<std::uint16_t, 256> classes{};
  for (unsigned int c = 0; c < 128; ++c) {
    classes[c] = classesOf(static_cast<char>(c));
  }
  return classes;
}();

}  // namespace detail

// The classes of a character; none for 128 to 255, which therefore belong to atoms.
inline std::uint16_t characterClass(char c) noexcept {
  return detail::CLASSES[static_cast<unsigned char>(c)];
}
inline bool is(char c, std::uint16_t classes) noexcept {
  return (characterClass(c) & classes) != 0;
}

}  // namespace rfc

// Fills the process's header name table with a vocabulary ("SMTP", also for null, or "HTTP", in any
// letter case; any other knows "Bad-Header" only). Does nothing when the table is filled already:
// the vocabulary asked for first decides it until the process ends. Threads may race for it.
void rfc_build_header_table(const char* vocabulary);

// The type code of a field name, in any letter case; 83 for an X- field, 86 for an X400- field, 46
// for an unknown name. Fills the table with "SMTP" when it is empty, as rfc_header_name does.
std::uint32_t rfc_header_type(const SCL_StringRef& name);
// The first field name of a type code; empty when the vocabulary has none.
SCL_String rfc_header_name(std::uint32_t type);
bool rfc_is_x_header(const SCL_StringRef& name) noexcept;     // "X-" and at least one more
bool rfc_is_x400_header(const SCL_StringRef& name) noexcept;  // "X400-" and at least one more
