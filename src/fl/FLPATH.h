// Taking a path apart that has to be a path from end to end.
#pragma once

#include "dv/DVPATH.h"

namespace fl {

// False for a malformed path, also when text follows it.
inline bool decodeWhole(dv::PathRecord& record, const SCL_StringRef& path) {
  const int length = dv::decodePath(record, path, dv::MODE_UNC | dv::MODE_DRIVE);
  return length >= 0 && static_cast<unsigned int>(length) == path.length();
}

}  // namespace fl
