// The lines of a mail that need no look at them, which are nearly all: they go into a part's
// content as they stand.
#pragma once

#include <cstddef>
#include <string_view>

// Whether a line that begins so may be a boundary, a full stop, or dot-stuffed.
constexpr bool KRX_needsLook(char first) noexcept {
  return first == '.' || first == '-';
}

// The bytes of the lines at the front of `text`, which begins a line, that end in CR LF and need no
// look. It may stop at any line before the first other one.
std::size_t KRX_plainLines(std::string_view text) noexcept;
