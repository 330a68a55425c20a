// What the body views have in common.
#include "rfc/RFCView.h"

#include <algorithm>
#include <new>

#include "dac/DACATTRN.h"
#include "dac/DACMEMDA.h"
#include "dac/DACSubDa.h"
#include "gen/GENCODES.h"
#include "gen/GENWNT.h"

RFC_View::RFC_View(const DAC_BaseDataAccess& source, std::int32_t start, std::int32_t lengthLimit,
                   std::uint32_t children)
    : DAC_BaseDataAccess(CopyOf{}, source),
      m_start(std::max(start, std::int32_t{0})),
      m_lengthLimit(lengthLimit) {
  DACList.setCount(children);
}

DAC_BaseDataAccess* RFC_View::getChild(std::uint32_t index, unsigned int& status) {
  if (status != 0) {
    return nullptr;
  }
  if (DACList.count() == 0) {
    status = DAC_NO_CHILDREN;
    return nullptr;
  }
  if (index >= DACList.count()) {
    status = DAC_CHILD_INDEX;
    return nullptr;
  }
  if (DACList[index] == nullptr) {
    std::unique_ptr<DAC_BaseDataAccess> child = makeChild(index, status);
    if (status != 0) {
      return nullptr;
    }
    setChild(index, child.release(), status);
  }
  return DACList[index];
}

std::unique_ptr<DAC_BaseDataAccess> RFC_View::makeRange(std::int32_t start, std::int32_t length) {
  std::unique_ptr<DAC_BaseDataAccess> child(new (std::nothrow)
                                                DAC_SubRangeDataAccess(*this, start, length));
  if (child == nullptr) {
    GENAssert(GEN_NULL_POINTER, "RFCView", __LINE__);
  }
  child->setIntegerAttribute(dac::ATTACHMENT_SIZE, static_cast<std::uint32_t>(length));
  return child;
}

std::unique_ptr<DAC_BaseDataAccess> RFC_View::makeMemory() {
  std::unique_ptr<DAC_BaseDataAccess> child(new (std::nothrow) DAC_MemoryDataAccess());
  if (child == nullptr) {
    GENAssert(GEN_NULL_POINTER, "RFCView", __LINE__);
  }
  return child;
}

void RFC_View::noteSize(DAC_BaseDataAccess& child, unsigned int& status) {
  const std::int32_t size = child.size(status);
  child.setIntegerAttribute(dac::ATTACHMENT_SIZE, static_cast<std::uint32_t>(size));
}

std::int32_t RFC_View::rangeLength(unsigned int& status) {
  const std::int64_t behindStart = std::int64_t{size(status)} - m_start;
  const std::int64_t length = std::min(behindStart, std::int64_t{m_lengthLimit});
  return static_cast<std::int32_t>(std::max(length, std::int64_t{0}));
}
