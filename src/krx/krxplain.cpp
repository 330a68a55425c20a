// Finds the end of a run of plain lines, 64 bytes at a time where the processor has AVX2.
#include "krx/krxplain.h"

#ifdef __x86_64__
#include <bit>
#include <cstdint>

#include <immintrin.h>

namespace {

constexpr std::size_t BLOCK = 64;

__attribute__((target("avx2"))) std::uint64_t bitsWhere(__m256i low, __m256i high,
                                                        char c) noexcept {
  const __m256i wanted = _mm256_set1_epi8(c);
  const auto first =
      static_cast<std::uint32_t>(_mm256_movemask_epi8(_mm256_cmpeq_epi8(low, wanted)));
  const auto second =
      static_cast<std::uint32_t>(_mm256_movemask_epi8(_mm256_cmpeq_epi8(high, wanted)));
  return std::uint64_t{second} << 32 | first;
}

// One bit for each byte of a block, the first byte's the lowest.
__attribute__((target("avx2"))) std::size_t plainLines(std::string_view text) noexcept {
  std::size_t end = 0;
  std::uint64_t afterCr = 0;  // whether the block before ended in a CR
  std::uint64_t beginsLine = 1;
  for (std::size_t i = 0; i + BLOCK <= text.size(); i += BLOCK) {
    const auto* block = reinterpret_cast<const __m256i*>(text.data() + i);  // NOLINT: to load it
    const __m256i low = _mm256_loadu_si256(block);
    const __m256i high = _mm256_loadu_si256(block + 1);
    const std::uint64_t cr = bitsWhere(low, high, '\r');
    const std::uint64_t lf = bitsWhere(low, high, '\n');
    const std::uint64_t lineStarts = lf << 1 | beginsLine;
    const std::uint64_t unpaired = lf ^ (cr << 1 | afterCr);
    // The lines that begin up to the first line end of another kind.
    for (std::uint64_t left = lineStarts & (unpaired ^ (unpaired - 1)); left != 0;
         left &= left - 1) {
      end = i + static_cast<std::size_t>(std::countr_zero(left));
      if (KRX_needsLook(text[end])) {
        return end;
      }
    }
    if (unpaired != 0) {
      return end;
    }
    afterCr = cr >> (BLOCK - 1);
    beginsLine = lf >> (BLOCK - 1);
  }
  return end;
}

}  // namespace

std::size_t KRX_plainLines(std::string_view text) noexcept {
  static const bool hasAvx2 = __builtin_cpu_supports("avx2") != 0;
  return hasAvx2 ? plainLines(text) : 0;
}

#else

std::size_t KRX_plainLines(std::string_view /*text*/) noexcept {
  return 0;
}

#endif
