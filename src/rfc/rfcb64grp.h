// Whole groups of Base64 characters (RFC 2045 section 6.8), the fast part of the decoder.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace rfc {

inline constexpr std::uint8_t B64_PAD = 64;
inline constexpr std::uint8_t B64_SKIP = 128;  // no character of the alphabet

// The value of a character, 0 to 63, or one of the two above.
std::uint8_t base64Value(char c) noexcept;

// Room that a decoding of `length` characters needs at its output: what it gives, and a little
// behind it that is overwritten.
constexpr std::size_t base64Room(std::size_t length) noexcept {
  return length / 4 * 3 + 8;
}

struct Base64Step {
  std::size_t taken = 0;  // characters
  std::size_t put = 0;    // bytes
};

// Decodes the groups of four at the front of `text` that are nothing but values, and steps over CR
// LF between them, to `out`, which has base64Room of the text.
Base64Step decodeBase64Groups(std::string_view text, char* out) noexcept;
// The same without the processor's vector instructions; it stops at each line end.
Base64Step decodeBase64GroupsPlain(std::string_view text, char* out) noexcept;

}  // namespace rfc
