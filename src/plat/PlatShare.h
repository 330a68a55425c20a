// For the sources of this folder only: the test whether others hold an open file.
#pragma once

#include "plat/PlatFile.h"

namespace plat {

// 0; EBUSY when somebody else holds the open regular file in the way that `share` excludes; or the
// error number of the test. Nothing stays locked. `writable`: our own descriptor can write.
int testShare(int descriptor, bool writable, Share share);

}  // namespace plat
