// The token scanner: one small function for each kind of token.
#include "rfc/rfcscan.h"

#include <new>

#include "gen/GENWNT.h"

namespace {

constexpr std::size_t TYPICAL_TOKENS = 16;

std::uint32_t kindOf(char first, std::uint16_t specials) noexcept {
  switch (first) {
    case '(':
      return RFC_Symbol::comment;
    case '"':
      return RFC_Symbol::quotedString;
    case '[':
      return RFC_Symbol::domainLiteral;
    default:
      return rfc::is(first, specials) ? RFC_Symbol::special : RFC_Symbol::atom;
  }
}

}  // namespace

RFC_TokenScanner::RFC_TokenScanner(char first, int mode) noexcept
    : m_kind(RFC_Symbol::atom),
      m_specials(mode == RFC_MODE_822 ? rfc::SPECIAL : rfc::MIME_SPECIAL) {
  m_kind = kindOf(first, m_specials);
}

std::size_t RFC_TokenScanner::take(std::string_view text) noexcept {
  switch (m_kind) {
    case RFC_Symbol::comment:
      return takeComment(text);
    case RFC_Symbol::quotedString:
      return takeQuoted(text);
    case RFC_Symbol::domainLiteral:
      return takeLiteral(text);
    case RFC_Symbol::special:
      return end(1);
    default:
      return takeAtom(text);
  }
}

unsigned int RFC_TokenScanner::endStatus() const noexcept {
  switch (m_kind) {
    case RFC_Symbol::comment:
      return RFC_OPEN_COMMENT;
    case RFC_Symbol::quotedString:
      return RFC_OPEN_QUOTE;
    case RFC_Symbol::domainLiteral:
      return RFC_OPEN_LITERAL;
    default:
      return 0;
  }
}

std::size_t RFC_TokenScanner::takeComment(std::string_view text) noexcept {
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (m_escaped) {
      m_escaped = false;
    } else if (text[i] == '\\') {
      m_escaped = true;
    } else if (text[i] == '(') {
      ++m_depth;
    } else if (text[i] == ')' && --m_depth == 0) {
      return end(i + 1);
    }
  }
  return text.size();
}

std::size_t RFC_TokenScanner::takeQuoted(std::string_view text) noexcept {
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (m_escaped) {
      m_escaped = false;
    } else if (text[i] == '\\') {
      m_escaped = true;
    } else if (text[i] == '"' && m_depth++ != 0) {
      return end(i + 1);
    }
  }
  return text.size();
}

std::size_t RFC_TokenScanner::takeLiteral(std::string_view text) noexcept {
  const std::size_t close = text.find(']');
  return close == std::string_view::npos ? text.size() : end(close + 1);
}

std::size_t RFC_TokenScanner::takeAtom(std::string_view text) noexcept {
  const auto stops = static_cast<std::uint16_t>(m_specials | rfc::CTL | rfc::LWSP);
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (rfc::is(text[i], stops)) {
      return end(i);
    }
  }
  return text.size();
}

unsigned int rfc_scan_all(std::string_view text, int mode, bool keepComments,
                          std::vector<RFC_Token>& tokens) {
  try {
    tokens.clear();
    tokens.reserve(TYPICAL_TOKENS);
    return rfc_scan(text, mode, keepComments, [&](std::uint32_t kind, std::string_view token) {
      tokens.push_back({kind, token});
    });
  } catch (const std::bad_alloc&) {
    GENAssert(GEN_NULL_POINTER, "rfcfuncs", __LINE__);
  }
}
