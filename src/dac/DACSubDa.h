// DAC_SubRangeDataAccess: a read-only view of a range of another object's stream
// (dac/DACSubSt.h); the source object itself is not referred to afterwards.
#pragma once

#include "dac/DACBASDA.h"

class DAC_SubRangeDataAccess : public DAC_BaseDataAccess {
 public:
  // A source without a stream, and memory that cannot be had, are an assertion (1).
  DAC_SubRangeDataAccess(const DAC_BaseDataAccess& source, std::int32_t offset,
                         std::int32_t length);
};
