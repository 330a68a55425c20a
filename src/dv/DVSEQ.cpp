// Matching a sequence of elements, and the elements that are neither groups nor conversions.
#include <algorithm>
#include <limits>

#include "dv/DVDECODE.h"
#include "dv/DVMATCH.h"
#include "scl/SCLASCII.h"

namespace dv {

// The layout does not depend on the input, so a record that is too small is the caller's mistake
// whether or not this input would have matched.
int Matcher::match() {
  if (m_input.size() > std::numeric_limits<int>::max()) {
    return NO_MATCH;  // its length could not be told
  }
  const int result = matchSequence(0, Mode::match);
  return result >= NO_MATCH && !m_output.cursorFits() ? NO_ROOM : result;
}

// There is no way back: what an element has consumed stays consumed when a later one fails.
int Matcher::matchSequence(std::size_t start, Mode mode) {
  std::size_t offset = start;
  bool live = mode != Mode::layOut;
  PatternElement element;
  do {
    element = m_pattern.next();
    const int result = matchElement(element, offset, live);
    if (result < NO_MATCH) {
      return result;
    }
    if (result == NO_MATCH) {
      live = false;
    } else {
      offset += static_cast<std::size_t>(result);
      m_furthest = std::max(m_furthest, offset);
    }
  } while (!element.endsSequence());
  m_last = element.kind;
  return live || mode != Mode::match ? static_cast<int>(offset - start) : NO_MATCH;
}

int Matcher::matchElement(const PatternElement& element, std::size_t offset, bool live) {
  switch (element.kind) {
    case ElementKind::end:
      return matchEnd(offset, live);
    case ElementKind::blank:
      return skipBlanks(offset, live);
    case ElementKind::literal:
      return matchLiteral(element.code, offset, live);
    case ElementKind::group:
      return matchGroup(element, offset, live);
    case ElementKind::conversion:
      return convert(element, offset, live);
    case ElementKind::alternative:
    case ElementKind::groupEnd:
      break;
  }
  return 0;
}

int Matcher::matchEnd(std::size_t offset, bool live) const noexcept {
  return live && offset != m_input.size() ? NO_MATCH : 0;
}

int Matcher::skipBlanks(std::size_t offset, bool live) const noexcept {
  std::size_t end = offset;
  while (live && end < m_input.size() && SCL_isBlank(m_input[end])) {
    ++end;
  }
  return static_cast<int>(end - offset);
}

int Matcher::matchLiteral(char literal, std::size_t offset, bool live) const noexcept {
  if (!live) {
    return 0;
  }
  if (offset == m_input.size()) {
    return NO_MATCH;
  }
  const char c = m_input[offset];
  const bool equal = c == literal || (!m_caseSensitive && SCL_toLower(c) == SCL_toLower(literal));
  return equal ? 1 : NO_MATCH;
}

}  // namespace dv
