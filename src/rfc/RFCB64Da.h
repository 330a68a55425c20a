// RFCB64Da: a view of a Base64 body; its one child is the decoded content, in memory. A body that
// some gateway replaced by the note "Message body suppressed" is not decoded: its child is empty.
// After the child was asked for, BadData on the view tells when the encoding was not in order.
#pragma once

#include "rfc/RFCView.h"

class RFCB64Da : public RFC_View {
 public:
  explicit RFCB64Da(const DAC_BaseDataAccess& source, std::int32_t start = 0,
                    std::int32_t lengthLimit = NO_LIMIT)
      : RFC_View(source, start, lengthLimit, 1) {}

 protected:
  std::unique_ptr<DAC_BaseDataAccess> makeChild(std::uint32_t index, unsigned int& status) override;

 private:
  bool isSuppressedNote(unsigned int& status);
};
