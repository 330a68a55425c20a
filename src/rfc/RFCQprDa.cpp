// The view of a quoted-printable body.
#include "rfc/RFCQprDa.h"

#include "rfc/rfccodec.h"

std::unique_ptr<DAC_BaseDataAccess> RFCQprDa::makeChild(std::uint32_t /*index*/,
                                                        unsigned int& status) {
  std::unique_ptr<DAC_BaseDataAccess> child = makeMemory();
  const std::int32_t length = rangeLength(status);
  rfc_qp_decode(*this, *child, start(), length, status);
  noteSize(*child, status);
  return child;
}
