// For the sources of this folder only: the directory of the names that processes share.
#pragma once

#include <string>

namespace plat {

// 0 and the directory without a trailing slash, or an errno value: EACCES when the directory of
// last resort is not ours alone. Where the names go is told in PlatLock.h.
int runDirectory(std::string& directory);

}  // namespace plat
