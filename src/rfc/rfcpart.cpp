// The list of the parts that an Encoding field names.
#include "rfc/rfcpart.h"

#include <memory>
#include <new>

#include "gen/GENCODES.h"
#include "gen/GENWNT.h"

const RFC_PartEntry& RFC_PartList::get(std::uint16_t index) const {
  if (index >= count()) {
    GENAssertText("Part list index out of range.", "rfcpart", __LINE__);
  }
  return *m_parts[index];
}

void RFC_PartList::add(std::int32_t number, const SCL_StringRef& text) {
  std::unique_ptr<RFC_PartEntry> entry(new (std::nothrow) RFC_PartEntry{number, SCL_String(text)});
  if (entry == nullptr) {
    GENAssert(GEN_NULL_POINTER, "rfcpart", __LINE__);
  }
  m_parts.append(std::move(entry));
}
