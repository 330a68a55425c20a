// The token scanner of RFC 822 (section 3.3) and MIME (RFC 2045 section 5.1) values, on plain
// bytes. It is fed a value in one piece or in many; comments nest by a counter, so that no mail can
// exhaust the stack.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "gen/GENCODES.h"
#include "rfc/rfclimit.h"
#include "rfc/rfcsym.h"
#include "rfc/rfctable.h"
#include "rfc/rfctoken.h"

// The length of the run of white space, to the tokenizer every control character, at the front.
inline std::size_t rfc_white_space(std::string_view text) noexcept {
  std::size_t i = 0;
  while (i < text.size() && rfc::is(text[i], rfc::CTL | rfc::LWSP)) {
    ++i;
  }
  return i;
}

// The state of one token.
class RFC_TokenScanner {
 public:
  // `first` is the token's first character, which is then fed with the rest.
  RFC_TokenScanner(char first, int mode) noexcept;

  std::uint32_t kind() const noexcept { return m_kind; }
  // How many bytes at the front of `text` belong to the token.
  std::size_t take(std::string_view text) noexcept;
  // Whether the token ended within what was fed.
  bool ended() const noexcept { return m_ended; }
  // What the end of the data here means: 0, 12003, 12005 or 12007.
  unsigned int endStatus() const noexcept;

 private:
  std::size_t takeComment(std::string_view text) noexcept;
  std::size_t takeQuoted(std::string_view text) noexcept;
  std::size_t takeLiteral(std::string_view text) noexcept;
  std::size_t takeAtom(std::string_view text) noexcept;
  std::size_t end(std::size_t length) noexcept {
    m_ended = true;
    return length;
  }

  std::uint32_t m_kind;
  std::uint16_t m_specials;  // the class of the mode's specials
  unsigned int m_depth = 0;  // open parentheses; for a quoted string, its opening quote
  bool m_escaped = false;    // a backslash stands before the next character
  bool m_ended = false;
};

// More tokens than a symbol list holds are not scanned.
inline constexpr std::size_t RFC_MAX_TOKENS = 65535;

// Calls sink(kind, text) for every token, comments only when they are kept. 0, 12003, 12005, 12007,
// or 3 when there are more than 65,535.
template <class Sink>
unsigned int rfc_scan(std::string_view text, int mode, bool keepComments, Sink&& sink) {
  std::size_t count = 0;
  for (;;) {
    text.remove_prefix(rfc_white_space(text));
    if (text.empty()) {
      return 0;
    }
    RFC_TokenScanner scanner(text.front(), mode);
    const std::string_view token = text.substr(0, scanner.take(text));
    if (!scanner.ended() && scanner.endStatus() != 0) {
      return scanner.endStatus();
    }
    text.remove_prefix(token.size());
    if (scanner.kind() == RFC_Symbol::comment && !keepComments) {
      continue;
    }
    if (++count > RFC_MAX_TOKENS) {
      rfc_note_limit("tokens");
      return GEN_INDEX_RANGE;
    }
    sink(scanner.kind(), token);
  }
}

// A token as a view into the scanned text.
struct RFC_Token {
  std::uint32_t kind;
  std::string_view text;

  bool is(std::uint32_t wanted) const noexcept { return kind == wanted; }
  bool isSpecial(char c) const noexcept { return kind == RFC_Symbol::special && text.front() == c; }
};

// All tokens at once; the status of rfc_scan.
unsigned int rfc_scan_all(std::string_view text, int mode, bool keepComments,
                          std::vector<RFC_Token>& tokens);
