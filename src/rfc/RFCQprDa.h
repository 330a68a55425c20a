// RFCQprDa: a view of a quoted-printable body; its one child is the decoded content, in memory.
// After the child was asked for, BadData on the view tells when the encoding was not in order.
#pragma once

#include "rfc/RFCView.h"

class RFCQprDa : public RFC_View {
 public:
  explicit RFCQprDa(const DAC_BaseDataAccess& source, std::int32_t start = 0,
                    std::int32_t lengthLimit = NO_LIMIT)
      : RFC_View(source, start, lengthLimit, 1) {}

 protected:
  std::unique_ptr<DAC_BaseDataAccess> makeChild(std::uint32_t index, unsigned int& status) override;
};
