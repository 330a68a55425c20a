// The sub-range data access object.
#include "dac/DACSubDa.h"

#include "dac/DACSubSt.h"
#include "gen/GENCATCH.h"
#include "gen/GENCODES.h"
#include "gen/GENWNT.h"

DAC_SubRangeDataAccess::DAC_SubRangeDataAccess(const DAC_BaseDataAccess& source,
                                               std::int32_t offset, std::int32_t length) {
  DAC_Stream* base = source.stream();
  if (base == nullptr) {
    GENAssert(GEN_NULL_POINTER, "DACSubDa", __LINE__);
  }
  m_Stream = DAC_StreamRef::adopt(
      GENMake<DAC_SubRangeStream>("DACSubDa", __LINE__, base, offset, length).release());
}
