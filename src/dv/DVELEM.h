// The elements of a pattern and the reader that takes them from its text.
#pragma once

#include <cstddef>
#include <string_view>

namespace dv {

enum class ElementKind { end, alternative, groupEnd, blank, literal, group, conversion };

struct PatternElement {
  ElementKind kind = ElementKind::end;
  char code = '\0';        // conversion letter, group modifier ('\0' for none) or literal character
  unsigned int count = 1;  // 1 to 65,535
  unsigned int size = 0;   // 1 after "b", 3 after "l"

  bool endsSequence() const noexcept {
    return kind == ElementKind::end || kind == ElementKind::alternative ||
           kind == ElementKind::groupEnd;
  }
  bool isByte() const noexcept { return size == 1; }
  bool isLong() const noexcept { return size == 3; }
};

// Reads element by element and never past the end, where every further element is the end. The
// pattern must outlive the reader.
class PatternReader {
 public:
  explicit PatternReader(std::string_view pattern) noexcept : m_pattern(pattern) {}
  PatternElement next() noexcept;
  std::size_t position() const noexcept { return m_position; }
  void seek(std::size_t position) noexcept { m_position = position; }

 private:
  char peek() const noexcept {
    return m_position < m_pattern.size() ? m_pattern[m_position] : '\0';
  }
  PatternElement group() noexcept;
  PatternElement conversion() noexcept;
  unsigned int count() noexcept;
  unsigned int digits() noexcept;
  unsigned int size() noexcept;

  std::string_view m_pattern;
  std::size_t m_position = 0;
};

}  // namespace dv
