// The sub-range stream.
#include "dac/DACSubSt.h"

#include <algorithm>

#include "gen/GENCODES.h"

namespace {

void refuse(unsigned int& status) noexcept {
  if (status == 0) {
    status = DAC_READ_ONLY;
  }
}

}  // namespace

DAC_SubRangeStream::DAC_SubRangeStream(DAC_Stream* base, std::int32_t offset,
                                       std::int32_t length) noexcept
    : m_Base(DAC_StreamRef::share(base)),
      m_Offset(std::max(offset, 0)),
      m_Length(std::max(length, 0)) {}

std::int32_t DAC_SubRangeStream::size(unsigned int& status) {
  if (status != 0) {
    return 0;
  }
  const std::int32_t whole = m_Base->size(status);
  return std::clamp(whole - m_Offset, 0, m_Length);
}

std::int32_t DAC_SubRangeStream::read(std::int32_t& position, std::int32_t count, void* buffer,
                                      unsigned int& status) {
  if (status != 0) {
    return 0;
  }
  const std::int64_t start = std::int64_t{m_Offset} + position;
  if (position < 0) {
    status = DAC_NEGATIVE_POSITION;
  } else if (position >= m_Length || start > MAX_SIZE) {
    status = DAC_END;
  }
  auto basePosition = static_cast<std::int32_t>(start);
  const std::int32_t done =
      m_Base->read(basePosition, std::min(count, m_Length - std::max(position, 0)), buffer, status);
  position += done;
  return done;
}

char DAC_SubRangeStream::getChar(std::int32_t& position, unsigned int& status) {
  char byte = '\0';
  return read(position, 1, &byte, status) == 1 ? byte : '\0';
}

std::string_view DAC_SubRangeStream::window(std::int32_t position) {
  const std::int64_t start = std::int64_t{m_Offset} + position;
  if (position < 0 || position >= m_Length || start > MAX_SIZE) {
    return {};
  }
  const std::string_view rest = m_Base->window(static_cast<std::int32_t>(start));
  return rest.substr(0, static_cast<std::size_t>(m_Length - position));
}

void DAC_SubRangeStream::setSize(std::int32_t, unsigned int& status) {
  refuse(status);
}

void DAC_SubRangeStream::write(std::int32_t&, std::int32_t, const void*, unsigned int& status) {
  refuse(status);
}

void DAC_SubRangeStream::putChar(std::int32_t&, char, unsigned int& status) {
  refuse(status);
}
