// Reads lines from memory where it can.
#include "rfc/rfcline.h"

#include <algorithm>

#include "dac/DACBASDA.h"
#include "dac/DACLINE.h"
#include "dac/DACSTRNG.h"
#include "gen/GENCODES.h"

bool RFC_LineReader::next(std::int32_t maximum, unsigned int& status) {
  if (status != 0) {
    return false;
  }
  m_lineStart = m_position;
  const auto length = static_cast<std::size_t>(maximum);
  if (maximum > 0) {
    if (takeFrom(ready(), length)) {
      return true;
    }
    m_window = m_object.window(m_position);
    m_windowStart = m_position;
    if (takeFrom(m_window, length)) {
      return true;
    }
  }
  return readThroughObject(maximum, status);
}

std::string_view RFC_LineReader::nextStretch(std::int64_t end) {
  constexpr std::int64_t STRETCH = 4096;
  if (m_position < m_noStretchBefore) {
    return {};
  }
  if (ready().size() < STRETCH) {
    m_window = m_object.window(m_position);
    m_windowStart = m_position;
  }
  const std::int64_t wanted = std::clamp(end - m_position, std::int64_t{0}, STRETCH);
  const std::string_view text = ready().substr(0, static_cast<std::size_t>(wanted));
  std::size_t length = text.size();
  // What follows a line end and is none itself begins a line, however the line ends before it pair.
  while (length > 1 && (dac::isLineEnd(text[length - 1]) || !dac::isLineEnd(text[length - 2]))) {
    --length;
  }
  if (length <= 1) {
    m_noStretchBefore = m_position + static_cast<std::int64_t>(text.size());
    return {};
  }
  m_position += static_cast<std::int32_t>(length - 1);
  return text.substr(0, length - 1);
}

std::string_view RFC_LineReader::ready() const noexcept {
  const std::int64_t offset = m_position - m_windowStart;
  if (offset < 0 || offset >= static_cast<std::int64_t>(m_window.size())) {
    return {};
  }
  return m_window.substr(static_cast<std::size_t>(offset));
}

// Takes a line only where its end is certain: a line end at the very edge may be half of a pair.
bool RFC_LineReader::takeFrom(std::string_view ahead, std::size_t maximum) noexcept {
  const std::size_t end = dac::findLineEnd(ahead.substr(0, maximum + 1));
  if (end > maximum) {
    take(ahead, maximum, 0, true);
    return true;
  }
  if (end + 1 >= ahead.size()) {
    return false;
  }
  take(ahead, end, dac::isLineEndPair(ahead[end], ahead[end + 1]) ? 2 : 1, false);
  return true;
}

void RFC_LineReader::take(std::string_view ahead, std::size_t length, std::size_t lineEnd,
                          bool cut) noexcept {
  m_line = ahead.substr(0, length);
  m_position += static_cast<std::int32_t>(length + lineEnd);
  m_cut = cut;
}

bool RFC_LineReader::readThroughObject(std::int32_t maximum, unsigned int& status) {
  refresh();  // what lay ready may be gone after this
  m_cut = false;
  m_text.clear();  // the reader sets it only when the line is not empty
  m_object.seek(DAC_BaseDataAccess::FROM_START, m_position, status);
  dac::readStringLineLimited(m_object, maximum, m_text, m_cut, status);
  m_line = m_text.view();
  m_position = m_object.getPosition();
  if (status != DAC_END) {
    return status == 0;
  }
  status = 0;
  return !m_line.empty();
}
