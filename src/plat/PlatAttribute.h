// For the sources of this folder only: the attribute bits of a name in an open directory, and of an
// open file.
#pragma once

struct stat;

namespace plat {

// 0 or an errno value, not recorded. `native` is the same name as a path: extended attributes
// cannot be read relative to a directory.
int attributesAt(int directory, const char* name, const char* native, unsigned int& bits);
// `file` is what fstat told of the descriptor.
unsigned int attributesOf(int descriptor, const struct stat& file);

}  // namespace plat
