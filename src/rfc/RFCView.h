// RFC_View: the base of the four body views: a copy of a source object (cursor, attributes, parent,
// shared stream) whose children are made on demand from a range of the content. Only the level that
// somebody asks for is taken apart: a child is never a view of its own accord.
//
//   RFCQprDa view(body);
//   DAC_BaseDataAccess* decoded = view.getChild(0, status);   // stays the view's
//
// Used by one thread at a time, together with everything that shares the stream.
#pragma once

#include <cstdint>
#include <limits>
#include <memory>

#include "dac/DACBASDA.h"

class RFC_View : public DAC_BaseDataAccess {
 public:
  static constexpr std::int32_t NO_LIMIT = std::numeric_limits<std::int32_t>::max();

  // 10010 without children, 10015 beyond the count; a child is made on the first request, kept and
  // owned by the view. A child that cannot be made leaves its slot empty, and the status.
  DAC_BaseDataAccess* getChild(std::uint32_t index, unsigned int& status) override;

 protected:
  // A negative start counts as 0.
  RFC_View(const DAC_BaseDataAccess& source, std::int32_t start, std::int32_t lengthLimit,
           std::uint32_t children);

  // The new child of `index`, which is below the count; null with a status when it cannot be made.
  virtual std::unique_ptr<DAC_BaseDataAccess> makeChild(std::uint32_t index,
                                                        unsigned int& status) = 0;
  // What makeChild is made of, each with the child's AttachmentSize: a part of this content as it
  // stands, and an object in memory, empty as yet, whose size is noted when it is filled.
  std::unique_ptr<DAC_BaseDataAccess> makeRange(std::int32_t start, std::int32_t length);
  static std::unique_ptr<DAC_BaseDataAccess> makeMemory();
  static void noteSize(DAC_BaseDataAccess& child, unsigned int& status);

  // The view's size minus start, at most the limit, never below 0.
  std::int32_t rangeLength(unsigned int& status);
  std::int32_t start() const noexcept { return m_start; }
  std::int32_t lengthLimit() const noexcept { return m_lengthLimit; }

 private:
  std::int32_t m_start;
  std::int32_t m_lengthLimit;
};
