// Printable strings of X.400 addresses (RFC 1327 section 3.4).
#include <cstdint>

#include "gen/GENWNT.h"
#include "rfc/rfcwrite.h"

namespace {

// The character for the letter of "(a)"; NUL when it stands for none.
char letterMeaning(char letter) noexcept {
  switch (SCL_toUpper(letter)) {
    case 'A':
      return '@';
    case 'P':
      return '%';
    case 'B':
      return '!';
    case 'Q':
      return '"';
    case 'U':
      return '_';
    case 'L':
      return '(';
    case 'R':
      return ')';
    default:
      return '\0';
  }
}

bool isLetterEscape(std::string_view rest) noexcept {
  return rest.size() >= 3 && rest[0] == '(' && rest[2] == ')' && letterMeaning(rest[1]) != '\0';
}

bool isCodeEscape(std::string_view rest) noexcept {
  return rest.size() >= 5 && rest[0] == '(' && rest[4] == ')' && SCL_isDigit(rest[1]) &&
         SCL_isDigit(rest[2]) && SCL_isDigit(rest[3]);
}

char codeMeaning(std::string_view escape) noexcept {
  const int code = (escape[1] - '0') * 100 + (escape[2] - '0') * 10 + (escape[3] - '0');
  return static_cast<char>(static_cast<unsigned char>(code % 256));
}

}  // namespace

SCL_String rfc_ps_decode(const SCL_StringRef& text) {
  SCL_String result;
  std::string_view rest = text;
  while (!rest.empty()) {
    std::size_t length = 1;
    if (isLetterEscape(rest)) {
      result += letterMeaning(rest[1]);
      length = 3;
    } else if (isCodeEscape(rest)) {
      result += codeMeaning(rest);
      length = 5;
    } else {
      result += rest.front();
    }
    rest.remove_prefix(length);
  }
  return result;
}

SCL_String rfc_ps_encode(const SCL_StringRef& /*text*/) {
  GENAssertText("rfc_ps_encode() not yet implemented.", "rfcfuncs", __LINE__);
}
