// Reads a range of content piece by piece.
#include "rfc/rfcchunk.h"

#include "gen/GENCODES.h"

std::string_view RFC_ChunkReader::ahead(unsigned int& status) {
  if (m_chunk.empty() && status == 0 && m_position < m_end) {
    fetch(status);
  }
  return m_chunk;
}

void RFC_ChunkReader::fetch(unsigned int& status) {
  const auto left = static_cast<std::size_t>(m_end - m_position);
  m_chunk = m_object.window(position()).substr(0, left);
  if (!m_chunk.empty()) {
    return;
  }
  std::int32_t from = position();
  const std::size_t wanted = std::min(left, m_buffer.size());
  const std::int32_t count =
      m_object.readAt(from, static_cast<std::int32_t>(wanted), m_buffer.data(), status);
  if (count > 0) {
    m_chunk = {m_buffer.data(), static_cast<std::size_t>(count)};
  }
  if (status == DAC_END) {
    status = 0;
  }
}
