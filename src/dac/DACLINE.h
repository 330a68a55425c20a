// Line ends in content: CR, LF, CR LF and LF CR each end one line; CR CR and LF LF end two.
#pragma once

#include <bit>
#include <cstddef>
#include <cstring>
#include <string_view>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace dac {

constexpr bool isLineEnd(char c) noexcept {
  return c == '\r' || c == '\n';
}

// Whether `second` directly after `first` belongs to the same line end.
constexpr bool isLineEndPair(char first, char second) noexcept {
  return isLineEnd(first) && isLineEnd(second) && first != second;
}

// The offset of the first CR or LF; the text's size when there is none.
inline std::size_t findLineEnd(std::string_view text) noexcept {
  std::size_t i = 0;
#ifdef __SSE2__
  // Lines are short: two calls of memchr for each would cost more than the search itself.
  constexpr std::size_t BLOCK = sizeof(__m128i);
  const __m128i cr = _mm_set1_epi8('\r');
  const __m128i lf = _mm_set1_epi8('\n');
  for (; i + BLOCK <= text.size(); i += BLOCK) {
    __m128i block;
    std::memcpy(&block, text.data() + i, BLOCK);
    const __m128i hits = _mm_or_si128(_mm_cmpeq_epi8(block, cr), _mm_cmpeq_epi8(block, lf));
    if (const int mask = _mm_movemask_epi8(hits); mask != 0) {
      return i + static_cast<std::size_t>(std::countr_zero(static_cast<unsigned int>(mask)));
    }
  }
#endif
  while (i < text.size() && !isLineEnd(text[i])) {
    ++i;
  }
  return i;
}

}  // namespace dac
