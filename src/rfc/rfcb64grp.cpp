// Whole groups of Base64 characters, 32 characters at a time where the processor has AVX2.
#include "rfc/rfcb64grp.h"

#include <array>
#include <bit>

#ifdef __x86_64__
#include <immintrin.h>
#endif

namespace rfc {

namespace {

constexpr std::array<std::uint8_t, 256> makeValues() noexcept {
  constexpr std::string_view ALPHABET =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::array<std::uint8_t, 256> values{};
  values.fill(B64_SKIP);
  for (std::size_t i = 0; i < ALPHABET.size(); ++i) {
    values[static_cast<unsigned char>(ALPHABET[i])] = static_cast<std::uint8_t>(i);
  }
  values['='] = B64_PAD;
  return values;
}

constexpr std::array<std::uint8_t, 256> VALUES = makeValues();

constexpr unsigned int FIRST_NO_VALUE = B64_PAD;

unsigned int valueOf(char c) noexcept {
  return VALUES[static_cast<unsigned char>(c)];
}

char low8(unsigned int bits) noexcept {
  return static_cast<char>(static_cast<unsigned char>(bits));
}

#ifdef __x86_64__

// One row of 16 in both halves of a vector.
__attribute__((target("avx2"))) __m256i twice(const std::array<std::int8_t, 16>& row) noexcept {
  const auto* half = reinterpret_cast<const __m128i*>(row.data());  // NOLINT: how rows are loaded
  return _mm256_broadcastsi128_si256(_mm_loadu_si128(half));
}

// What to add to a character for its value depends on its high four bits alone, but for '/'; and
// which high and low four bits may go together is told by one bit for each class of characters.
constexpr std::array<std::int8_t, 16> LOW_CLASSES{0x15, 0x11, 0x11, 0x11, 0x11, 0x11, 0x11, 0x11,
                                                  0x11, 0x11, 0x13, 0x1A, 0x1B, 0x1B, 0x1B, 0x1A};
constexpr std::array<std::int8_t, 16> HIGH_CLASSES{0x10, 0x10, 0x01, 0x02, 0x04, 0x08, 0x04, 0x08,
                                                   0x10, 0x10, 0x10, 0x10, 0x10, 0x10, 0x10, 0x10};
constexpr std::array<std::int8_t, 16> OFFSETS{0, 16, 19, 4, -65, -65, -71, -71,
                                              0, 0,  0,  0, 0,   0,   0,   0};
constexpr std::array<std::int8_t, 16> PACKED_ORDER{2, 1,  0,  6,  5,  4,  10, 9,
                                                   8, 14, 13, 12, -1, -1, -1, -1};
constexpr std::size_t BLOCK = 32;

// The blocks at the front of the text. 32 bytes are stored for each block, of which those of the
// values before the first other character count.
__attribute__((target("avx2"))) Base64Step decodeBlocks(std::string_view text, char* out) noexcept {
  const __m256i lowClasses = twice(LOW_CLASSES);
  const __m256i highClasses = twice(HIGH_CLASSES);
  const __m256i offsets = twice(OFFSETS);
  const __m256i byteOrder = twice(PACKED_ORDER);
  const __m256i nibble = _mm256_set1_epi8(0x0F);
  const __m256i slash = _mm256_set1_epi8('/');
  Base64Step step;
  while (step.taken + BLOCK <= text.size()) {
    const char* const block = text.data() + step.taken;
    const auto* from = reinterpret_cast<const __m256i*>(block);  // NOLINT: as above
    const __m256i in = _mm256_loadu_si256(from);
    const __m256i high = _mm256_and_si256(_mm256_srli_epi32(in, 4), nibble);
    const __m256i low = _mm256_and_si256(in, nibble);
    const __m256i classes = _mm256_and_si256(_mm256_shuffle_epi8(lowClasses, low),
                                             _mm256_shuffle_epi8(highClasses, high));
    const __m256i row = _mm256_add_epi8(_mm256_cmpeq_epi8(in, slash), high);
    const __m256i values = _mm256_add_epi8(in, _mm256_shuffle_epi8(offsets, row));
    const __m256i pairs = _mm256_maddubs_epi16(values, _mm256_set1_epi32(0x01400140));
    const __m256i groups = _mm256_madd_epi16(pairs, _mm256_set1_epi32(0x00011000));
    const __m256i bytes = _mm256_shuffle_epi8(groups, byteOrder);
    const __m256i packed =
        _mm256_permutevar8x32_epi32(bytes, _mm256_setr_epi32(0, 1, 2, 4, 5, 6, 3, 7));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(out + step.put), packed);  // NOLINT: as above
    const auto isValue = static_cast<std::uint32_t>(
        _mm256_movemask_epi8(_mm256_cmpeq_epi8(classes, _mm256_setzero_si256())));
    if (isValue == UINT32_MAX) {  // by far the most: kept apart, so that no block waits for another
      step.taken += BLOCK;
      step.put += BLOCK / 4 * 3;
      continue;
    }
    const auto valueCount = static_cast<std::size_t>(std::countr_one(isValue));
    step.taken += valueCount / 4 * 4;
    step.put += valueCount / 4 * 3;
    if (!text.substr(step.taken).starts_with("\r\n")) {
      break;
    }
    step.taken += 2;
  }
  return step;
}

// A vector that is stored runs past what it gives by 8 bytes, which base64Room counts in.
Base64Step decodeFast(std::string_view text, char* out) noexcept {
  static const bool hasAvx2 = __builtin_cpu_supports("avx2") != 0;
  return hasAvx2 ? decodeBlocks(text, out) : Base64Step();
}

#else

Base64Step decodeFast(std::string_view /*text*/, char* /*out*/) noexcept {
  return {};
}

#endif

}  // namespace

std::uint8_t base64Value(char c) noexcept {
  return VALUES[static_cast<unsigned char>(c)];
}

Base64Step decodeBase64GroupsPlain(std::string_view text, char* out) noexcept {
  const char* in = text.data();
  const std::size_t end = text.size() / 4 * 4;
  std::size_t i = 0;
  for (; i < end; i += 4, in += 4, out += 3) {
    const unsigned int c0 = valueOf(in[0]);
    const unsigned int c1 = valueOf(in[1]);
    const unsigned int c2 = valueOf(in[2]);
    const unsigned int c3 = valueOf(in[3]);
    if ((c0 | c1 | c2 | c3) >= FIRST_NO_VALUE) {
      break;
    }
    out[0] = low8(c0 << 2 | c1 >> 4);
    out[1] = low8(c1 << 4 | c2 >> 2);
    out[2] = low8(c2 << 6 | c3);
  }
  return {i, i / 4 * 3};
}

Base64Step decodeBase64Groups(std::string_view text, char* out) noexcept {
  const Base64Step fast = decodeFast(text, out);
  const Base64Step rest = decodeBase64GroupsPlain(text.substr(fast.taken), out + fast.put);
  return {fast.taken + rest.taken, fast.put + rest.put};
}

}  // namespace rfc
