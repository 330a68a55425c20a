// The address grammar: finds the address in a text (RFC 822 section 6.1), joins its tokens into
// user and location, and undoes the relayed forms.
#include "krx/krxaddr.h"

#include <vector>

#include "gen/GENCODES.h"
#include "rfc/rfctable.h"
#include "rfc/rfctoken.h"

namespace {

// An address may name another one inside /RFC-822, as often as gateways were chained; more than
// this is nobody's gateway.
constexpr int MAX_NESTED_ADDRESSES = 8;

struct Token {
  std::uint32_t kind;
  std::string_view text;
  std::size_t begin;  // where it stands in the source text
};

// The tokens of `text` without comments, each with its place. A token's text is as written, so its
// place is the next one that is neither white space nor control character.
bool tokenise(const SCL_StringRef& text, RFC_SymbolList& symbols, std::vector<Token>& tokens) {
  if (rfc_tokenise(text, RFC_MODE_822, true, symbols) != 0) {
    return false;
  }
  const std::string_view source = text.view();
  std::size_t at = 0;
  tokens.reserve(symbols.count());
  for (std::uint16_t i = 0; i < symbols.count(); ++i) {
    const RFC_Symbol& symbol = symbols.get(i);
    while (at < source.size() && rfc::is(source[at], rfc::CTL | rfc::LWSP)) {
      ++at;
    }
    if (symbol.kind != RFC_Symbol::comment) {
      tokens.push_back({symbol.kind, symbol.text.view(), at});
    }
    at += symbol.text.length();
  }
  return !tokens.empty();
}

bool isSpecial(const Token& token, char c) {
  return token.kind == RFC_Symbol::special && token.text.size() == 1 && token.text[0] == c;
}

std::size_t findSpecial(const std::vector<Token>& tokens, char c, std::size_t start) {
  while (start < tokens.size() && !isSpecial(tokens[start], c)) {
    ++start;
  }
  return start;
}

struct Range {
  std::size_t begin;
  std::size_t end;
};

// The tokens that hold the address: inside the angle brackets, after a source route if there is
// one.
bool findRange(const std::vector<Token>& tokens, Range& range) {
  range = {0, tokens.size()};
  const std::size_t open = findSpecial(tokens, '<', 0);
  if (open == tokens.size()) {
    return true;
  }
  range.end = findSpecial(tokens, '>', open + 1);
  if (range.end >= tokens.size()) {
    return false;
  }
  range.begin = range.end;
  while (range.begin > open + 1 && tokens[range.begin - 1].text != ":") {
    --range.begin;
  }
  return range.end - range.begin >= 2;
}

void join(const std::vector<Token>& tokens, std::size_t begin, std::size_t end, SCL_String& out) {
  out.clear();
  SCL_String unquoted;
  for (std::size_t i = begin; i < end; ++i) {
    const Token& token = tokens[i];
    if (token.kind == RFC_Symbol::quotedString) {
      SCL_unquote(token.text.data(), token.text.data() + token.text.size(), unquoted);
      out += unquoted;
    } else {
      out.append(token.text);
    }
  }
}

// The local part. An X.400 attribute list is taken as it stands in the source: its values may hold
// blanks and what would else be a comment.
void localPart(std::string_view source, const std::vector<Token>& tokens, std::size_t begin,
               std::size_t end, SCL_String& user) {
  const Token& first = tokens[begin];
  if (first.kind != RFC_Symbol::atom || SCL_firstChar(first.text) != '/') {
    join(tokens, begin, end, user);
    return;
  }
  const std::size_t stop = end < tokens.size() ? tokens[end].begin : source.size();
  user.assign(SCL_trimmed(source.substr(first.begin, stop - first.begin)));
}

// user@host without quotes, comments or anything else that only the tokens tell apart: as nearly
// every recipient is.
bool splitPlain(std::string_view text, KRX_ParsedAddress& address) {
  constexpr std::size_t LONGEST = 1024;  // far from the limit of tokens
  const std::size_t at = text.find('@');
  if (at == std::string_view::npos || at == 0 || at + 1 == text.size() || text.size() > LONGEST) {
    return false;
  }
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool isPlain = text[i] == '.' || !rfc::is(text[i], rfc::CTL | rfc::LWSP | rfc::SPECIAL);
    if (!isPlain && i != at) {
      return false;
    }
  }
  address.user.assign(text.substr(0, at));
  address.location.assign(text.substr(at + 1));
  return true;
}

bool splitAddress(const SCL_StringRef& text, const SCL_StringRef& domain,
                  KRX_ParsedAddress& address) {
  if (splitPlain(text, address)) {
    return true;
  }
  RFC_SymbolList symbols;
  std::vector<Token> tokens;
  Range range{};
  if (!tokenise(text, symbols, tokens) || !findRange(tokens, range)) {
    return false;
  }
  const std::size_t at = findSpecial(tokens, '@', range.begin);
  if (at >= range.end) {
    localPart(text.view(), tokens, range.begin, range.end, address.user);
    address.location = domain;
    return true;
  }
  if (at == range.begin) {
    return false;
  }
  localPart(text.view(), tokens, range.begin, at, address.user);
  join(tokens, at + 1, range.end, address.location);
  return true;
}

// host!user and user%host@relay: the last hop's user, the address behind the relay.
bool undoRelay(KRX_ParsedAddress& address) {
  bool relayed = false;
  const std::string_view user = address.user.view();
  if (const auto bang = user.rfind('!'); bang != std::string_view::npos) {
    address.user = SCL_String(user.substr(bang + 1));
    relayed = true;
  }
  const std::string_view rest = address.user.view();
  if (const auto percent = rest.find('%'); percent != std::string_view::npos) {
    const std::string_view hosts = rest.substr(percent + 1);
    address.location.assign(hosts.substr(0, hosts.find('%')));
    address.user = SCL_String(rest.substr(0, percent));
    relayed = true;
  }
  address.relayed = address.relayed || relayed;
  return relayed;
}

}  // namespace

void KRX_parseRfcAddress(const SCL_StringRef& text, const SCL_StringRef& domain,
                         KRX_ParsedAddress& address, unsigned int& status) {
  if (status != 0) {
    return;
  }
  SCL_String inner;
  SCL_StringRef current = text;
  for (int level = 0; level <= MAX_NESTED_ADDRESSES; ++level) {
    if (!splitAddress(current, domain, address)) {
      break;
    }
    if (undoRelay(address)) {
      return;
    }
    std::optional<SCL_String> nested = KRX_mapX400Local(address.user);
    if (!nested) {
      return;
    }
    inner = std::move(*nested);
    current = inner;
  }
  status = GMA_BAD_ADDRESS;
}
