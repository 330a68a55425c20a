// Case-blind comparison, hashing and trimming of ASCII text.
#include "scl/SCLASCII.h"

#include <algorithm>
#include <cstdint>

namespace {

int sign(bool less) noexcept {
  return less ? -1 : 1;
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
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char left, char right) { return SCL_toLower(left) == SCL_toLower(right); });
}

std::size_t SCL_hashNoCase(std::string_view text) noexcept {
  std::uint64_t hash = hashSeed() ^ text.size();
  for (const char c : text) {
    hash = (hash ^ static_cast<unsigned char>(SCL_toLower(c))) * 0x100000001B3U;
    hash ^= hash >> 29;
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
