// The unique token "%u.%u.%u" (day number, seconds since midnight, running counter) that the
// writer makes MIME boundaries of.
#pragma once

#include "scl/SCLSTRNG.h"

void SCL_uniqueToken(SCL_String& token);
