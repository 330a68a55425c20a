// The conversions of the pattern language: what each one reads, and what it stores.
#include <charconv>
#include <system_error>

#include "dv/DVDECODE.h"
#include "dv/DVMATCH.h"
#include "dv/DVPATHRD.h"
#include "dv/DVREADNO.h"
#include "scl/SCLASCII.h"

namespace dv {

namespace {

constexpr char QUOTE = '"';
constexpr unsigned int PATH_ALIGNMENT = 4;

// What a text conversion found: the input that it covers, and the part of it that is stored.
struct Span {
  int consumed = NO_MATCH;
  std::string_view content;
};

bool isNameStart(char c) noexcept {
  return SCL_isAlpha(c) || c == '_';
}

bool isNamePart(char c) noexcept {
  return isNameStart(c) || SCL_isDigit(c);
}

bool isTokenPart(char c) noexcept {
  return isNamePart(c) || c == '$';
}

template <class Test>
std::size_t runLength(std::string_view text, Test test) noexcept {
  std::size_t length = 0;
  while (length < text.size() && test(text[length])) {
    ++length;
  }
  return length;
}

Span leading(std::string_view text, std::size_t length) noexcept {
  const std::string_view content = text.substr(0, length);
  return {static_cast<int>(content.size()), content};
}

Span spanOfName(std::string_view text) noexcept {
  return text.empty() || !isNameStart(text.front()) ? Span()
                                                    : leading(text, runLength(text, isNamePart));
}

Span spanOfToken(std::string_view text) noexcept {
  const std::size_t length = runLength(text, isTokenPart);
  return length == 0 ? Span() : leading(text, length);
}

// The content is what stands between the quotes, inner quotes still doubled.
Span spanOfQuoted(std::string_view text) noexcept {
  if (text.empty() || text.front() != QUOTE) {
    return {};
  }
  std::size_t end = text.find(QUOTE, 1);
  while (end != std::string_view::npos && end + 1 < text.size() && text[end + 1] == QUOTE) {
    end = text.find(QUOTE, end + 2);
  }
  if (end == std::string_view::npos) {
    return {};
  }
  return {static_cast<int>(end + 1), text.substr(1, end - 1)};
}

Span spanOf(char letter, unsigned int count, std::string_view text) noexcept {
  switch (letter) {
    case 'C':
      return leading(text, count);
    case 'N':
      return spanOfName(text);
    case 'Q':
      return spanOfQuoted(text);
    case 'T':
      return spanOfToken(text);
    default:
      return leading(text, text.size());
  }
}

// Writes a field of `count` bytes: C and N pad with spaces, the others end in at least one zero.
void storeText(char letter, std::string_view content, unsigned int count, char* field) noexcept {
  const bool padded = letter == 'C' || letter == 'N';
  std::memset(field, padded ? ' ' : '\0', count);
  const char* const end = field + (padded ? count : count - 1);
  for (std::size_t i = 0; i < content.size() && field != end; ++i) {
    *field++ = content[i];
    if (letter == 'Q' && content[i] == QUOTE) {
      ++i;  // the second of two quotes
    }
  }
}

bool fitsByte(std::int32_t value, bool isSigned) noexcept {
  return isSigned ? value >= -128 && value <= 127 : value <= 255;
}

std::size_t signLength(std::string_view text) noexcept {
  return !text.empty() && (text.front() == '+' || text.front() == '-') ? 1 : 0;
}

// "e", an optional sign and digits; nothing when there are no digits.
std::size_t exponentLength(std::string_view text) noexcept {
  if (text.empty() || SCL_toLower(text.front()) != 'e') {
    return 0;
  }
  const std::size_t start = 1 + signLength(text.substr(1));
  const std::size_t digits = runLength(text.substr(start), SCL_isDigit);
  return digits == 0 ? 0 : start + digits;
}

// The length of a decimal fraction, 0 when there is none.
std::size_t floatLength(std::string_view text) noexcept {
  const std::size_t start = signLength(text);
  std::size_t digits = runLength(text.substr(start), SCL_isDigit);
  std::size_t end = start + digits;
  if (end < text.size() && text[end] == '.') {
    const std::size_t decimals = runLength(text.substr(end + 1), SCL_isDigit);
    digits += decimals;
    end += 1 + decimals;
  }
  return digits == 0 ? 0 : end + exponentLength(text.substr(end));
}

}  // namespace

int Matcher::convert(const PatternElement& element, std::size_t offset, bool live) {
  switch (SCL_toUpper(element.code)) {
    case 'U':
    case 'D':
      return convertNumber(element, 10, offset, live);
    case 'I':
      return convertNumber(element, -10, offset, live);
    case 'H':
      return convertNumber(element, 16, offset, live);
    case 'O':
      return convertNumber(element, 8, offset, live);
    case 'F':
      return element.isLong() ? convertFloat<double>(offset, live)
                              : convertFloat<float>(offset, live);
    case 'A':
      return convertAnswer(offset, live);
    case 'C':
    case 'N':
    case 'Q':
    case 'S':
    case 'T':
      return convertText(element, offset, live);
    case 'P':
      return convertPath(element, offset, live);
    case '+':
      return moveCursor(std::int64_t{element.count});
    case '-':
      return moveCursor(-std::int64_t{element.count});
    case '=':
      return storeCount(element.count, live);
    default:
      return matchLiteral(element.code, offset, live);
  }
}

int Matcher::convertNumber(const PatternElement& element, int base, std::size_t offset, bool live) {
  const unsigned int size = element.isByte() ? 1 : 4;
  const OutputRecord::Offset place = m_output.reserve(size, size);
  if (!live) {
    return 0;
  }
  std::int32_t value = 0;
  const int length = scanNumber(value, base, rest(offset));
  if (length < 0) {
    return length;
  }
  if (!element.isByte()) {
    m_output.store(place, value);
  } else if (fitsByte(value, base < 0)) {
    m_output.store(place, static_cast<std::uint8_t>(value));
  } else {
    return OUT_OF_RANGE;
  }
  return length;
}

template <class T>
int Matcher::convertFloat(std::size_t offset, bool live) {
  const OutputRecord::Offset place = m_output.reserve(sizeof(T), sizeof(T));
  if (!live) {
    return 0;
  }
  const std::string_view text = rest(offset).substr(0, floatLength(rest(offset)));
  if (text.empty()) {
    return NO_MATCH;
  }
  const char* const begin = text.data() + (text.front() == '+' ? 1 : 0);
  T value = 0;
  if (std::from_chars(begin, text.data() + text.size(), value).ec != std::errc()) {
    return OUT_OF_RANGE;
  }
  m_output.store(place, value);
  return static_cast<int>(text.size());
}

int Matcher::convertAnswer(std::size_t offset, bool live) {
  const OutputRecord::Offset place = m_output.reserve(1, 1);
  if (!live) {
    return 0;
  }
  std::uint32_t selector = 0;
  Matcher nested("{+Y{/ES}|N{/O}}|", m_caseSensitive, OutputRecord(&selector, sizeof selector),
                 rest(offset));
  const int length = nested.match();
  if (length >= 0) {
    m_output.store(place, static_cast<std::uint8_t>(selector == 1));
  }
  return length;
}

// A text that is longer than its field is consumed whole and stored as far as it fits.
int Matcher::convertText(const PatternElement& element, std::size_t offset, bool live) {
  const OutputRecord::Offset place = m_output.reserve(element.count, 1);
  if (!live) {
    return 0;
  }
  const char letter = SCL_toUpper(element.code);
  const Span span = spanOf(letter, element.count, rest(offset));
  char* const field = m_output.field(place, element.count);
  if (span.consumed >= 0 && field != nullptr) {
    storeText(letter, span.content, element.count, field);
  }
  return span.consumed;
}

int Matcher::convertPath(const PatternElement& element, std::size_t offset, bool live) {
  const OutputRecord::Offset place = m_output.reserve(sizeof(PathRecord), PATH_ALIGNMENT);
  if (!live) {
    return 0;
  }
  const int mode = element.isLong() ? MODE_UNC | MODE_DRIVE : MODE_DRIVE;
  PathRecord record;
  const int length = scanPath(record, rest(offset), mode);
  if (length >= 0) {
    m_output.store(place, record);
  }
  return length;
}

int Matcher::moveCursor(std::int64_t distance) noexcept {
  m_output.moveTo(m_output.cursor() + distance);
  return m_output.cursor() < 0 ? NO_ROOM : 0;
}

int Matcher::storeCount(unsigned int count, bool live) noexcept {
  const OutputRecord::Offset place = m_output.reserve(sizeof count, sizeof count);
  if (live) {
    m_output.store(place, count);
  }
  return 0;
}

}  // namespace dv
