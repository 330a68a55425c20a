// Copying text into the fixed buffers of a profile's callers.
#pragma once

#include <algorithm>
#include <cstring>
#include <string_view>

#include "gen/GENCODES.h"

// 0, or 1820 when the text had to be cut to size - 1 characters; always terminated (size 0: 1820).
inline unsigned int PFA_copyText(std::string_view text, char* buffer, unsigned int size) noexcept {
  if (size == 0) {
    return PFA_CUT;
  }
  const std::size_t count = std::min<std::size_t>(text.size(), size - 1);
  std::memcpy(buffer, text.data(), count);
  buffer[count] = '\0';
  return count == text.size() ? 0 : PFA_CUT;
}

// What can stand in one line: `text` up to its first CR or LF.
inline std::string_view PFA_firstLine(std::string_view text) noexcept {
  return text.substr(0, text.find_first_of("\r\n"));
}
