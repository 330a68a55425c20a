// Line ends in content: CR, LF, CR LF and LF CR each end one line; CR CR and LF LF end two.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string_view>

namespace dac {

constexpr bool isLineEnd(char c) noexcept {
  return c == '\r' || c == '\n';
}

// Whether `second` directly after `first` belongs to the same line end.
constexpr bool isLineEndPair(char first, char second) noexcept {
  return isLineEnd(first) && isLineEnd(second) && first != second;
}

// The offset of the first CR or LF; the text's size when there is none. It looks at a block at a
// time, so that text which uses one of the two only is not searched to its end for the other.
inline std::size_t findLineEnd(std::string_view text) noexcept {
  constexpr std::size_t BLOCK = 256;
  for (std::size_t start = 0; start < text.size(); start += BLOCK) {
    std::size_t size = std::min(BLOCK, text.size() - start);
    const char* block = text.data() + start;
    const void* lf = std::memchr(block, '\n', size);
    if (lf != nullptr) {
      size = static_cast<std::size_t>(static_cast<const char*>(lf) - block);
    }
    const void* cr = std::memchr(block, '\r', size);
    const void* end = cr != nullptr ? cr : lf;
    if (end != nullptr) {
      return static_cast<std::size_t>(static_cast<const char*>(end) - text.data());
    }
  }
  return text.size();
}

}  // namespace dac
