// RFC_BlockWriter: gathers decoded bytes and writes them to an object in blocks.
#pragma once

#include <array>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "dac/DACBASDA.h"

class RFC_BlockWriter {
 public:
  static constexpr std::size_t BLOCK = 4096;

  // Writes at the object's cursor; a status, once set, ends all writing.
  RFC_BlockWriter(DAC_BaseDataAccess& object, unsigned int& status) noexcept
      : m_object(object), m_status(status) {}
  RFC_BlockWriter(const RFC_BlockWriter&) = delete;
  RFC_BlockWriter& operator=(const RFC_BlockWriter&) = delete;

  void put(char c) {
    *room(1) = c;
    use(1);
  }
  void append(std::string_view bytes) {
    if (bytes.size() > BLOCK) {
      flush();
      return write(bytes);
    }
    std::memcpy(room(bytes.size()), bytes.data(), bytes.size());
    use(bytes.size());
  }
  // At least `count` bytes (at most BLOCK) to be filled by the caller, who then tells how many.
  char* room(std::size_t count) {
    if (m_used + count > BLOCK) {
      flush();
    }
    return m_block.data() + m_used;
  }
  void use(std::size_t count) noexcept { m_used += count; }
  void flush() {
    write({m_block.data(), m_used});
    m_used = 0;
  }

 private:
  void write(std::string_view bytes) {
    if (!bytes.empty()) {
      m_object.write(static_cast<std::int32_t>(bytes.size()), bytes.data(), m_status);
    }
  }

  DAC_BaseDataAccess& m_object;
  unsigned int& m_status;
  std::size_t m_used = 0;
  std::array<char, BLOCK> m_block;
};
