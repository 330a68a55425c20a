// The memory data access object.
#include "dac/DACMEMDA.h"

#include "dac/DACMEMST.h"
#include "gen/GENCATCH.h"

DAC_MemoryDataAccess::DAC_MemoryDataAccess(std::int32_t reserve) {
  auto stream = GENMake<DAC_MemoryStream>("DACMEMDA", __LINE__);
  stream->reserve(reserve);
  m_Stream = DAC_StreamRef::adopt(stream.release());
}
