// Reading a pattern: element by element, with counts and sizes.
#include "dv/DVELEM.h"

#include <algorithm>

#include "scl/SCLASCII.h"

namespace dv {

namespace {

// No field of a record is longer; a larger count is a slip and must not make a layout overflow.
constexpr unsigned int MAX_COUNT = 65535;

PatternElement element(ElementKind kind, char code) noexcept {
  PatternElement result;
  result.kind = kind;
  result.code = code;
  return result;
}

}  // namespace

PatternElement PatternReader::next() noexcept {
  if (m_position == m_pattern.size()) {
    return element(ElementKind::end, '\0');
  }
  const char c = m_pattern[m_position++];
  switch (c) {
    case '|':
      return element(ElementKind::alternative, c);
    case '}':
    case ']':
      return element(ElementKind::groupEnd, c);
    case ' ':
    case '\t':
      return element(ElementKind::blank, c);
    case '[':
      return element(ElementKind::group, '*');
    case '{':
      return group();
    case '%':
      return conversion();
    default:
      return element(ElementKind::literal, c);
  }
}

// A blank modifier stays where it is, so that the first alternative begins with it: in
// "{ Brief | Normal }" every alternative skips the blanks round its word.
PatternElement PatternReader::group() noexcept {
  PatternElement result = element(ElementKind::group, '\0');
  result.count = count();
  result.code = peek();
  if (m_position < m_pattern.size() && result.code != ' ') {
    ++m_position;
  }
  return result;
}

PatternElement PatternReader::conversion() noexcept {
  PatternElement result = element(ElementKind::conversion, '\0');
  result.count = count();
  result.size = size();
  if (m_position == m_pattern.size()) {
    return element(ElementKind::end, '\0');
  }
  result.code = m_pattern[m_position++];
  return result;
}

// The count, 1 without one. A second number after a point is read and ignored.
unsigned int PatternReader::count() noexcept {
  if (!SCL_isDigit(peek())) {
    return 1;
  }
  const unsigned int value = digits();
  if (peek() == '.') {
    ++m_position;
    digits();
  }
  return std::max(value, 1U);
}

unsigned int PatternReader::digits() noexcept {
  unsigned int value = 0;
  for (; SCL_isDigit(peek()); ++m_position) {
    value = std::min(value * 10 + static_cast<unsigned int>(peek() - '0'), MAX_COUNT);
  }
  return value;
}

unsigned int PatternReader::size() noexcept {
  const char letter = SCL_toUpper(peek());
  if (letter != 'B' && letter != 'L') {
    return 0;
  }
  ++m_position;
  return letter == 'B' ? 1 : 3;
}

}  // namespace dv
