// The substring handle: reading and replacing a range of a string.
#include <ostream>

#include "gen/GENWNT.h"
#include "scl/SCLSTRNG.h"

SCL_String SCL_SubString::read() const {
  return m_string->extract(m_start, m_count);
}

void SCL_SubString::check() const {
  const unsigned int length = m_string->length();
  if (m_start > length) {
    GENAssertText("Start of substring out of string range.", "SCLSTRNG", __LINE__);
  }
  const std::uint64_t end = static_cast<std::uint64_t>(m_start) + m_count;
  if (end == 0 || end > length) {
    GENAssertText("End of substring out of string range.", "SCLSTRNG", __LINE__);
  }
}

void SCL_SubString::replace(const SCL_StringRef& text) {
  check();
  if (m_string->holds(text)) {
    return replace(SCL_String(text));
  }
  const std::uint64_t length = m_string->length();
  const std::uint64_t tail = static_cast<std::uint64_t>(m_start) + m_count;
  const std::uint64_t total = length + text.length() - m_count;
  if (!m_string->makeReady(total)) {
    m_string->grow(total);
  }
  char* buffer = m_string->buffer();
  std::memmove(buffer + m_start + text.length(), buffer + tail, length - tail);
  text.view().copy(buffer + m_start, text.length());
  m_string->terminate(total);
}

std::ostream& operator<<(std::ostream& stream, const SCL_SubString& range) {
  return stream << range.m_string->slice(range.m_start, range.m_count);
}
