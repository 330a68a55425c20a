// DAC_MemoryDataAccess: content in memory (dac/DACMEMST.h).
#pragma once

#include "dac/DACBASDA.h"

class DAC_MemoryDataAccess : public DAC_BaseDataAccess {
 public:
  // A new memory stream, empty, with room for `reserve` bytes. Assertion 1 when it cannot be had.
  explicit DAC_MemoryDataAccess(std::int32_t reserve = 0);
};
