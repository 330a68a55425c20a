// RFC_ChunkReader: the bytes of a range of an object's content, piece by piece: without a copy
// where the content lies ready in memory, else through a buffer. It reads at a position of its own
// and leaves the object's cursor alone; nothing else may use the object's stream while a piece is
// held.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <string_view>

#include "dac/DACBASDA.h"

class RFC_ChunkReader {
 public:
  static constexpr std::int64_t TO_THE_END = std::numeric_limits<std::int32_t>::max();

  // A length below 0 counts as 0.
  RFC_ChunkReader(DAC_BaseDataAccess& object, std::int32_t position, std::int64_t length) noexcept
      : m_object(object),
        m_position(position),
        m_end(position + std::max(length, std::int64_t{0})) {}

  // What lies ahead, at least one byte; empty at the end of the range or of the content (with the
  // status 0) and when the stream fails (with its status). Valid until it is consumed to its end.
  std::string_view ahead(unsigned int& status);
  void consume(std::size_t count) noexcept {
    m_chunk.remove_prefix(count);
    m_position += static_cast<std::int64_t>(count);
  }
  std::int32_t position() const noexcept { return static_cast<std::int32_t>(m_position); }

 private:
  void fetch(unsigned int& status);

  DAC_BaseDataAccess& m_object;
  std::int64_t m_position;
  std::int64_t m_end;
  std::string_view m_chunk;
  std::array<char, 1024> m_buffer;
};
