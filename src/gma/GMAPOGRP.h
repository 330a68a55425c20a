// GMA_POGroup: the host's group of post offices. It belongs to the host; this library reads its
// name for the log.
#pragma once

#include "scl/SCLSTRNG.h"

class GMA_POGroup {
 public:
  explicit GMA_POGroup(const SCL_StringRef& name) : m_name(name) {}
  const SCL_String& name() const noexcept { return m_name; }

 private:
  SCL_String m_name;
};
