// RFC_PartList: what the Encoding field of RFC 1154 says: (line count or -1, body type) pairs, in
// the order of the field. Used by one thread at a time.
#pragma once

#include <cstdint>

#include "scl/SCLPVEC.h"
#include "scl/SCLSTRNG.h"

struct RFC_PartEntry {
  std::int32_t number;
  SCL_String text;
};

class RFC_PartList {
 public:
  RFC_PartList() noexcept : m_parts(10) {}

  std::uint16_t count() const noexcept { return m_parts.count(); }
  // The entry stays the list's and is valid until the list is cleared. An index at or beyond the
  // count is the assertion "Part list index out of range.".
  const RFC_PartEntry& get(std::uint16_t index) const;
  // Appends a copy. Without memory the assertion 1; the 65,536th entry the assertion 3.
  void add(std::int32_t number, const SCL_StringRef& text);
  void clear() noexcept { m_parts.clear(); }

 private:
  SCL_PtrVector<RFC_PartEntry> m_parts;
};
