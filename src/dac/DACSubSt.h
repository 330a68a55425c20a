// DAC_SubRangeStream: a read-only view of a range of another stream, on which it holds a reference.
// What the base holds of the range is seen, also when that changes. setSize and every write give
// 10038.
#pragma once

#include "dac/DACABSST.h"

class DAC_SubRangeStream : public DAC_Stream {
 public:
  // Takes a reference on `base`, which must not be null; a negative offset or length counts as 0.
  DAC_SubRangeStream(DAC_Stream* base, std::int32_t offset, std::int32_t length) noexcept;

  std::int32_t size(unsigned int& status) override;  // what the base holds of the range
  void setSize(std::int32_t newSize, unsigned int& status) override;
  std::int32_t read(std::int32_t& position, std::int32_t count, void* buffer,
                    unsigned int& status) override;
  void write(std::int32_t& position, std::int32_t count, const void* data,
             unsigned int& status) override;
  char getChar(std::int32_t& position, unsigned int& status) override;
  void putChar(std::int32_t& position, char byte, unsigned int& status) override;
  std::string_view window(std::int32_t position) override;

 private:
  DAC_StreamRef m_Base;
  std::int32_t m_Offset;
  std::int32_t m_Length;
};
