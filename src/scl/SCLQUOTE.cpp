// Quoting of text with backslash escapes, and the reverse.
#include "scl/SCLSTRNG.h"

namespace {

constexpr std::string_view CONTROLS = "\a\b\f\n\r\t\v";
constexpr std::string_view CONTROL_LETTERS = "abfnrtv";
constexpr std::string_view SPECIALS = "\"?*\\";

char octalDigit(unsigned int value) noexcept {
  return static_cast<char>('0' + value % 8);
}

void quoteCharacter(char c, SCL_String& result) {
  const std::size_t control = CONTROLS.find(c);
  if (SPECIALS.find(c) != std::string_view::npos) {
    const char escape[] = {'\\', c};
    result.append(std::string_view(escape, sizeof escape));
  } else if (control != std::string_view::npos) {
    const char escape[] = {'\\', CONTROL_LETTERS[control]};
    result.append(std::string_view(escape, sizeof escape));
  } else if (const auto code = static_cast<unsigned char>(c); code < 32) {
    const char escape[] = {'\\', '0', octalDigit(code / 8), octalDigit(code)};
    result.append(std::string_view(escape, sizeof escape));
  } else {
    result.append(c);
  }
}

bool startsWithThreeDigits(std::string_view text) noexcept {
  return text.size() >= 3 && SCL_isDigit(text[0]) && SCL_isDigit(text[1]) && SCL_isDigit(text[2]);
}

// Takes one escape, whose backslash is already taken, off a text that is not empty.
char takeEscape(std::string_view& rest) noexcept {
  if (startsWithThreeDigits(rest)) {
    const int code = (rest[0] - '0') * 64 + (rest[1] - '0') * 8 + (rest[2] - '0');
    rest.remove_prefix(3);
    return static_cast<char>(static_cast<unsigned char>(code));
  }
  const char c = rest.front();
  rest.remove_prefix(1);
  const std::size_t control = CONTROL_LETTERS.find(c);
  return control != std::string_view::npos ? CONTROLS[control] : c;
}

// Takes characters into `result` up to and with the closing quote; false when there is none.
bool takeQuoted(std::string_view& rest, SCL_String& result) {
  while (!rest.empty()) {
    const char c = rest.front();
    rest.remove_prefix(1);
    if (c == '"') {
      return true;
    }
    if (c != '\\') {
      result.append(c);
    } else if (!rest.empty()) {
      result.append(takeEscape(rest));
    }
  }
  return false;
}

std::string_view between(const char* begin, const char* end) noexcept {
  return {begin, static_cast<std::size_t>(end - begin)};
}

}  // namespace

void SCL_quote(const char* begin, const char* end, SCL_String& result) {
  SCL_String copy;
  std::string_view text = between(begin, end);
  if (result.holds(text)) {
    text = copy.append(text);
  }
  result.clear();
  result.append('"');
  for (const char c : text) {
    quoteCharacter(c, result);
  }
  result.append('"');
}

unsigned int SCL_unquote(const char* begin, const char* end, SCL_String& result) {
  SCL_String copy;
  std::string_view text = between(begin, end);
  if (result.holds(text)) {
    text = copy.append(text);
  }
  result.clear();
  if (SCL_firstChar(text) != '"') {
    return 0;
  }
  std::string_view rest = text.substr(1);
  if (!takeQuoted(rest, result)) {
    result.clear();
    return 0;
  }
  return static_cast<unsigned int>(text.size() - rest.size());
}
