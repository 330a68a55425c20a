// Case-blind comparison, hashing and trimming of ASCII text.
#include "scl/SCLASCII.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace {

int sign(bool less) noexcept {
  return less ? -1 : 1;
}

constexpr std::size_t WORD = sizeof(std::uint64_t);

template <class Word>
std::uint64_t load(const char* text) noexcept {
  Word word = 0;
  std::memcpy(&word, text, sizeof word);
  return word;
}

// One to eight characters as a number, another one for each text of that length; pieces may
// overlap.
std::uint64_t loadUpToWord(const char* text, std::size_t count) noexcept {
  if (count == WORD) {
    return load<std::uint64_t>(text);
  }
  if (count >= 4) {
    return load<std::uint32_t>(text) | load<std::uint32_t>(text + count - 4) << 32U;
  }
  if (count >= 2) {
    return load<std::uint16_t>(text) | load<std::uint16_t>(text + count - 2) << 16U;
  }
  return load<std::uint8_t>(text);
}

// Up to eight characters with the letters A to Z made small, all at once.
std::uint64_t foldedWord(const char* text, std::size_t count) noexcept {
  constexpr std::uint64_t EACH = 0x0101010101010101U;
  constexpr std::uint64_t LOW_BITS = 0x7F * EACH;
  const std::uint64_t word = loadUpToWord(text, count);
  // The top bit of each byte tells whether its other bits are at least 'A', or above 'Z'.
  const std::uint64_t notBelow = (word & LOW_BITS) + (0x80 - 'A') * EACH;
  const std::uint64_t above = (word & LOW_BITS) + (0x7F - 'Z') * EACH;
  const std::uint64_t capitals = (notBelow ^ above) & ~word & ~LOW_BITS;
  return word | capitals >> 2U;
}

// Both halves of the product, in one.
std::uint64_t mixed(std::uint64_t a, std::uint64_t b) noexcept {
  __extension__ using Wide = unsigned __int128;
  const Wide product = static_cast<Wide>(a) * b;
  return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64U);
}

// Where the loader put the library differs from run to run. Hashes that start from it cannot be
// foreseen by a sender who wants the names of a mail to collide.
std::uint64_t hashSeed() noexcept {
  static const char place = 0;
  return reinterpret_cast<std::uintptr_t>(&place) * 0x9E3779B97F4A7C15U;
}

}  // namespace

int SCL_compareNoCase(std::string_view a, std::string_view b) noexcept {
  const std::size_t common = std::min(a.size(), b.size());
  for (std::size_t i = 0; i < common; ++i) {
    const auto left = static_cast<unsigned char>(SCL_toLower(a[i]));
    const auto right = static_cast<unsigned char>(SCL_toLower(b[i]));
    if (left != right) {
      return sign(left < right);
    }
  }
  return a.size() == b.size() ? 0 : sign(a.size() < b.size());
}

bool SCL_equalNoCase(std::string_view a, std::string_view b) noexcept {
  if (a.size() != b.size()) {
    return false;
  }
  for (std::size_t i = 0; i < a.size(); i += WORD) {
    const std::size_t count = std::min(WORD, a.size() - i);
    if (foldedWord(a.data() + i, count) != foldedWord(b.data() + i, count)) {
      return false;
    }
  }
  return true;
}

std::size_t SCL_hashNoCase(std::string_view text) noexcept {
  const std::uint64_t secret = hashSeed();
  std::uint64_t hash = secret ^ text.size();
  for (std::size_t i = 0; i < text.size(); i += WORD) {
    const std::size_t count = std::min(WORD, text.size() - i);
    hash = mixed(hash ^ foldedWord(text.data() + i, count), secret);
  }
  return static_cast<std::size_t>(hash);
}

std::string_view SCL_trimmed(std::string_view text) noexcept {
  while (!text.empty() && SCL_isSpace(text.front())) {
    text.remove_prefix(1);
  }
  while (!text.empty() && SCL_isSpace(text.back())) {
    text.remove_suffix(1);
  }
  return text;
}
