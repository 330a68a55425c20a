// Parsers of structured header values, each over the tokens of the whole value.
#include "rfc/rfcvalue.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

#include "atr/ATRATLST.h"
#include "gen/GENCODES.h"
#include "rfc/rfcpart.h"
#include "rfc/rfcscan.h"

namespace {

// The tokens of a value and a place among them; every look ahead is safe at the end.
class Tokens {
 public:
  // False when the value cannot be taken into tokens to its end.
  bool scan(const SCL_StringRef& value, int mode) {
    return rfc_scan_all(value, mode, false, m_tokens) == 0;
  }

  bool atEnd() const noexcept { return m_next == m_tokens.size(); }
  bool isKind(std::uint32_t kind) const noexcept { return !atEnd() && m_tokens[m_next].is(kind); }
  bool isSpecial(char c) const noexcept { return !atEnd() && m_tokens[m_next].isSpecial(c); }
  std::string_view take() noexcept { return m_tokens[m_next++].text; }
  bool takeSpecial(char c) noexcept {
    const bool found = isSpecial(c);
    m_next += found ? 1 : 0;
    return found;
  }
  bool takeAtom(SCL_String& text) {
    const bool found = isKind(RFC_Symbol::atom);
    if (found) {
      text.assign(take());
    }
    return found;
  }
  // The run of atoms here, joined with single blanks and appended to `text`.
  void takeAtoms(SCL_String& text) {
    while (isKind(RFC_Symbol::atom)) {
      if (!text.isEmpty()) {
        text += ' ';
      }
      text.append(take());
    }
  }

 private:
  std::vector<RFC_Token> m_tokens;
  std::size_t m_next = 0;
};

bool takeMediaType(Tokens& tokens, SCL_String& type, SCL_String& subtype) {
  if (tokens.takeAtom(type) && tokens.takeSpecial('/') && tokens.takeAtom(subtype)) {
    return true;
  }
  type.clear();
  subtype.clear();
  return false;
}

bool takeParameterValue(Tokens& tokens, SCL_String& value) {
  if (tokens.isKind(RFC_Symbol::quotedString)) {
    const std::string_view quoted = tokens.take();
    SCL_unquote(quoted.data(), quoted.data() + quoted.size(), value);
    return true;
  }
  if (tokens.isKind(RFC_Symbol::domainLiteral)) {
    value.assign(tokens.take());
    return true;
  }
  const bool found = tokens.isKind(RFC_Symbol::atom);
  tokens.takeAtoms(value);
  return found;
}

// Takes parameters, each after one or more ";", as far as there are any.
bool takeParameters(Tokens& tokens, ATR_AttributeList& parameters) {
  while (tokens.isSpecial(';')) {
    while (tokens.takeSpecial(';')) {
    }
    SCL_String name;
    SCL_String value;
    if (!tokens.takeAtom(name) || !tokens.takeSpecial('=') || !takeParameterValue(tokens, value)) {
      return false;
    }
    parameters.setString(name, value);
  }
  return true;
}

std::int32_t lineCount(std::string_view text) noexcept {
  constexpr std::int64_t MOST = std::numeric_limits<std::int32_t>::max();
  const bool negative = text.front() == '-';
  std::int64_t number = 0;
  for (const char c : text) {
    number = SCL_isDigit(c) ? std::min(number * 10 + (c - '0'), MOST) : number;
  }
  return static_cast<std::int32_t>(negative ? -number : number);
}

// One entry of an Encoding list, for example "2 text".
bool takeEncodingEntry(Tokens& tokens, RFC_PartList& parts) {
  SCL_String type;
  if (!tokens.takeAtom(type)) {
    return false;
  }
  std::int32_t lines = -1;
  const bool counted = SCL_isInteger(type);
  if (counted) {
    lines = lineCount(type);
    type.clear();
  }
  tokens.takeAtoms(type);
  if (!counted && !tokens.atEnd()) {
    return false;
  }
  parts.add(lines, type);
  return true;
}

}  // namespace

unsigned int rfc_parse_content_type(const SCL_StringRef& value, SCL_String& type,
                                    SCL_String& subtype, ATR_AttributeList& parameters) {
  type.clear();
  subtype.clear();
  parameters.clear();
  Tokens tokens;
  const bool valid = tokens.scan(value, RFC_MODE_MIME) && takeMediaType(tokens, type, subtype) &&
                     takeParameters(tokens, parameters);
  return valid ? 0 : RFC_BAD_CONTENT_TYPE;
}

unsigned int rfc_parse_disposition(const SCL_StringRef& value, SCL_String& disposition,
                                   ATR_AttributeList& parameters) {
  disposition.clear();
  parameters.clear();
  Tokens tokens;
  const bool valid = tokens.scan(value, RFC_MODE_MIME) && tokens.takeAtom(disposition) &&
                     takeParameters(tokens, parameters) && tokens.atEnd();
  return valid ? 0 : RFC_BAD_DISPOSITION;
}

unsigned int rfc_parse_word(const SCL_StringRef& value, SCL_String& word) {
  word.clear();
  Tokens tokens;
  SCL_String atom;
  if (!tokens.scan(value, RFC_MODE_MIME) || !tokens.takeAtom(atom) || !tokens.atEnd()) {
    return RFC_BAD_WORD;
  }
  word = std::move(atom);
  return 0;
}

unsigned int rfc_parse_encoding_list(const SCL_StringRef& value, RFC_PartList& parts) {
  parts.clear();
  Tokens tokens;
  if (!tokens.scan(value, RFC_MODE_822)) {
    return RFC_BAD_ENCODING_LIST;
  }
  do {
    if (!takeEncodingEntry(tokens, parts)) {
      return RFC_BAD_ENCODING_LIST;
    }
  } while (tokens.takeSpecial(','));
  return tokens.atEnd() ? 0 : RFC_BAD_ENCODING_LIST;
}
