// RFCMsgDa: a view of an embedded message; its one child is the range as a sub-range object.
#pragma once

#include "rfc/RFCView.h"

class RFCMsgDa : public RFC_View {
 public:
  explicit RFCMsgDa(const DAC_BaseDataAccess& source, std::int32_t start = 0,
                    std::int32_t lengthLimit = NO_LIMIT)
      : RFC_View(source, start, lengthLimit, 1) {}

 protected:
  std::unique_ptr<DAC_BaseDataAccess> makeChild(std::uint32_t index, unsigned int& status) override;
};
