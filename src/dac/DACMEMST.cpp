// The memory stream.
#include "dac/DACMEMST.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <functional>

#include "dac/DACLINE.h"
#include "gen/GENCODES.h"

namespace {

constexpr std::int64_t MAX_SURPLUS = 10000000;
constexpr std::int64_t DEFAULT_CONTENT_LIMIT = 1073741824;
constexpr const char* CONTENT_LIMIT_VARIABLE = "KRX_MAX_CONTENT";

// One mail must end in a status and not in the kernel's out-of-memory killer. What is no number as
// a whole ("512M") does not count, since its digits alone would refuse nearly every mail.
std::int64_t readContentLimit() noexcept {
  const char* set = std::getenv(CONTENT_LIMIT_VARIABLE);
  const std::string_view text = set != nullptr ? set : "";
  const char* const end = text.data() + text.size();
  std::int64_t limit = 0;
  const bool isNumber = std::from_chars(text.data(), end, limit).ptr == end;
  return std::min(isNumber && limit > 0 ? limit : DEFAULT_CONTENT_LIMIT, DAC_Stream::MAX_SIZE);
}

std::int64_t contentLimit() noexcept {
  static const std::int64_t limit = readContentLimit();
  return limit;
}

// The least power of two that holds `need`, held down to a surplus that does not hurt.
std::int32_t capacityFor(std::int64_t need) noexcept {
  const auto power = static_cast<std::int64_t>(std::bit_ceil(static_cast<std::uint64_t>(need)));
  return static_cast<std::int32_t>(std::min({power, need + MAX_SURPLUS, contentLimit()}));
}

// The memory behind a capacity: content that is written in small pieces does not move at each.
std::size_t memoryFor(std::int32_t capacity) noexcept {
  constexpr std::int32_t LEAST = 256;
  return static_cast<std::size_t>(std::max(capacity, LEAST));
}

}  // namespace

void DAC_MemoryStream::grow(std::int64_t need, unsigned int& status) noexcept {
  if (need <= m_Capacity) {
    return;
  }
  if (need > contentLimit()) {
    status = DAC_NO_MEMORY;
    return;
  }
  const std::int32_t capacity = capacityFor(need);
  if (!m_Data.grow(memoryFor(capacity), static_cast<std::size_t>(m_Touched))) {
    status = DAC_NO_MEMORY;
    return;
  }
  m_Capacity = capacity;
}

void DAC_MemoryStream::reserve(std::int32_t bytes) noexcept {
  unsigned int ignored = 0;
  grow(bytes, ignored);
}

// Makes `count` bytes at `position` part of the content, for the caller to set; null with a status.
char* DAC_MemoryStream::claim(std::int32_t position, std::int32_t count,
                              unsigned int& status) noexcept {
  const std::int64_t end = std::int64_t{position} + count;
  grow(end, status);
  if (status != 0) {
    return nullptr;
  }
  clearTo(position);
  if (count > 0) {
    m_Touched = std::max(m_Touched, static_cast<std::int32_t>(end));
  }
  m_Size = std::max(m_Size, static_cast<std::int32_t>(end));
  return m_Data.data() + position;
}

// Zeros from the end of the content to `position`, where they are not there already.
void DAC_MemoryStream::clearTo(std::int32_t position) noexcept {
  const std::int32_t end = m_Data.comesZeroed() ? std::min(position, m_Touched) : position;
  if (end > m_Size) {
    std::memset(m_Data.data() + m_Size, 0, static_cast<std::size_t>(end - m_Size));
    m_Touched = std::max(m_Touched, end);
  }
}

std::int32_t DAC_MemoryStream::size(unsigned int&) {
  return m_Size;
}

void DAC_MemoryStream::setSize(std::int32_t newSize, unsigned int& status) {
  if (status != 0) {
    return;
  }
  if (newSize < 0) {
    status = DAC_NEGATIVE_POSITION;
  } else if (newSize > m_Size) {
    claim(newSize, 0, status);
  } else {
    m_Size = newSize;
  }
}

bool DAC_MemoryStream::isReadable(std::int32_t position, unsigned int& status) const noexcept {
  if (status == 0 && position < 0) {
    status = DAC_NEGATIVE_POSITION;
  } else if (status == 0 && position >= m_Size) {
    status = DAC_END;
  }
  return status == 0;
}

std::int32_t DAC_MemoryStream::read(std::int32_t& position, std::int32_t count, void* buffer,
                                    unsigned int& status) {
  if (status == 0 && count > 0) {
    *static_cast<char*>(buffer) = '\0';
  }
  if (!isReadable(position, status) || count <= 0) {
    return 0;
  }
  const std::int32_t taken = std::min(count, m_Size - position);
  std::memcpy(buffer, m_Data.data() + position, static_cast<std::size_t>(taken));
  position += taken;
  return taken;
}

std::int32_t DAC_MemoryStream::readLine(std::int32_t& position, std::int32_t size, char* buffer,
                                        unsigned int& status) {
  if (status != 0) {
    return 0;
  }
  if (size > 0) {
    *buffer = '\0';
  }
  if (!isReadable(position, status)) {
    return 0;
  }
  if (size < 1) {
    status = DAC_LINE_TOO_LONG;
    return 0;
  }
  const std::string_view rest = DAC_MemoryStream::window(position);
  const std::size_t length = dac::findLineEnd(rest.substr(0, static_cast<std::size_t>(size - 1)));
  rest.copy(buffer, length);
  buffer[length] = '\0';
  std::size_t consumed = length;
  if (length < rest.size() && dac::isLineEnd(rest[length])) {
    ++consumed;
    consumed += consumed < rest.size() && dac::isLineEndPair(rest[length], rest[consumed]) ? 1 : 0;
  } else {
    status = DAC_LINE_TOO_LONG;
  }
  position += static_cast<std::int32_t>(consumed);
  return static_cast<std::int32_t>(length);
}

void DAC_MemoryStream::write(std::int32_t& position, std::int32_t count, const void* data,
                             unsigned int& status) {
  if (status != 0) {
    return;
  }
  if (position < 0) {
    status = DAC_NEGATIVE_POSITION;
    return;
  }
  if (count <= 0) {
    return;
  }
  const auto* source = static_cast<const char*>(data);
  const char* const own = m_Data.data();
  const bool isOwn =
      own != nullptr && !std::less<>()(source, own) && std::less<>()(source, own + m_Size);
  const std::ptrdiff_t offset = isOwn ? source - own : 0;
  if (char* target = claim(position, count, status)) {
    std::memmove(target, isOwn ? m_Data.data() + offset : source, static_cast<std::size_t>(count));
    position += count;
  }
}

void DAC_MemoryStream::fill(std::int32_t& position, std::int32_t count, char byte,
                            unsigned int& status) {
  if (status != 0) {
    return;
  }
  if (position < 0) {
    status = DAC_NEGATIVE_POSITION;
    return;
  }
  if (count <= 0) {
    return;
  }
  if (char* target = claim(position, count, status)) {
    std::memset(target, byte, static_cast<std::size_t>(count));
    position += count;
  }
}

char DAC_MemoryStream::getChar(std::int32_t& position, unsigned int& status) {
  return isReadable(position, status) ? m_Data.data()[position++] : '\0';
}

void DAC_MemoryStream::putChar(std::int32_t& position, char byte, unsigned int& status) {
  fill(position, 1, byte, status);
}

std::string_view DAC_MemoryStream::window(std::int32_t position) {
  if (position < 0 || position >= m_Size) {
    return {};
  }
  return {m_Data.data() + position, static_cast<std::size_t>(m_Size - position)};
}
