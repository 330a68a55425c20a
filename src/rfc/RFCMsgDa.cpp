// The view of an embedded message.
#include "rfc/RFCMsgDa.h"

std::unique_ptr<DAC_BaseDataAccess> RFCMsgDa::makeChild(std::uint32_t /*index*/,
                                                        unsigned int& status) {
  const std::int32_t length = rangeLength(status);
  return status == 0 ? makeRange(start(), length) : nullptr;
}
