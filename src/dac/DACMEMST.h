// DAC_MemoryStream: content in memory, in a buffer that grows to powers of two but never more than
// 10,000,000 bytes beyond the need, and never shrinks. The environment variable KRX_MAX_CONTENT
// (bytes, default 1 GiB, also for what is no number; read once) bounds the content: growth beyond
// it is 10011, as is memory that cannot be had. Bytes that a write skips are zero.
#pragma once

#include "dac/DACABSST.h"
#include "plat/PlatMemory.h"

class DAC_MemoryStream : public DAC_Stream {
 public:
  DAC_MemoryStream() noexcept = default;

  std::int32_t size(unsigned int& status) override;  // answers whatever the status
  void setSize(std::int32_t newSize, unsigned int& status) override;
  // The buffer's first byte is 0 when nothing was read.
  std::int32_t read(std::int32_t& position, std::int32_t count, void* buffer,
                    unsigned int& status) override;
  // Other than the default: an unterminated last line comes back with 10014, and a line that just
  // fits the buffer is whole, its line end consumed.
  std::int32_t readLine(std::int32_t& position, std::int32_t size, char* buffer,
                        unsigned int& status) override;
  void write(std::int32_t& position, std::int32_t count, const void* data,
             unsigned int& status) override;
  void fill(std::int32_t& position, std::int32_t count, char byte, unsigned int& status) override;
  char getChar(std::int32_t& position, unsigned int& status) override;
  void putChar(std::int32_t& position, char byte, unsigned int& status) override;
  std::string_view window(std::int32_t position) override;

  std::int32_t capacity() const noexcept { return m_Capacity; }
  // Room for `bytes` of content ahead of the need; without effect when it cannot be had.
  void reserve(std::int32_t bytes) noexcept;

 private:
  void grow(std::int64_t need, unsigned int& status) noexcept;
  char* claim(std::int32_t position, std::int32_t count, unsigned int& status) noexcept;
  void clearTo(std::int32_t position) noexcept;
  bool isReadable(std::int32_t position, unsigned int& status) const noexcept;

  plat::GrowingBlock m_Data;
  std::int32_t m_Capacity = 0;  // by the growth rule; small buffers have more memory behind them
  std::int32_t m_Size = 0;
  std::int32_t m_Touched = 0;  // the end of all that was ever written
};
