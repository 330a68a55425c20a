// The caller's record that a match fills: a cursor that lays out one value after the other, and
// stores that never leave the record.
#pragma once

#include <cstdint>
#include <cstring>
#include <string>

namespace dv {

class OutputRecord {
 public:
  using Offset = std::int64_t;  // past the record's end while a pattern asks for more than it has

  // Zeroes the record, which must outlive this object.
  OutputRecord(void* buffer, unsigned int size) noexcept
      : m_buffer(static_cast<char*>(buffer)), m_size(size) {
    if (size != 0) {
      std::memset(buffer, 0, size);
    }
  }

  Offset cursor() const noexcept { return m_cursor; }
  void moveTo(Offset offset) noexcept { m_cursor = offset; }
  bool cursorFits() const noexcept { return m_cursor >= 0 && m_cursor <= m_size; }

  // Moves the cursor past a value of `size` bytes that begins at a multiple of `alignment` from
  // the start of the record; where it begins.
  Offset reserve(unsigned int size, unsigned int alignment) noexcept {
    const Offset begin = (m_cursor + alignment - 1) / alignment * alignment;
    m_cursor = begin + size;
    return begin;
  }

  // The place of a value to write to, null when it does not lie wholly inside the record.
  char* field(Offset offset, unsigned int size) const noexcept {
    return offset >= 0 && offset + size <= m_size ? m_buffer + offset : nullptr;
  }
  // Stores `value` bytewise, because a caller's buffer need not be aligned.
  template <class T>
  void store(Offset offset, const T& value) const noexcept {
    if (char* place = field(offset, sizeof value)) {
      std::memcpy(place, &value, sizeof value);
    }
  }

  // The bytes from `offset` to the record's end, to bring them back when what is tried next fails.
  std::string save(Offset offset) const {
    return offset < m_size
               ? std::string(m_buffer + offset, static_cast<std::size_t>(m_size - offset))
               : std::string();
  }
  void restore(Offset offset, const std::string& saved) const noexcept {
    if (!saved.empty()) {
      std::memcpy(m_buffer + offset, saved.data(), saved.size());
    }
  }

 private:
  char* m_buffer;
  Offset m_size;
  Offset m_cursor = 0;
};

}  // namespace dv
