// Deleting, copying, renaming, making directories. Nothing here ever overwrites
// a file.
#pragma once

#include "scl/SCLSTRNG.h"

namespace fl {

// The statuses of the write test of checkAccess, 481 when removing fails.
unsigned int deleteFile(const SCL_StringRef& path);
// Deletes every plain file (search filter 0) that matches. `count`: the files
// deleted, also on failure; the first failure ends it. 452 when there was none.
unsigned int deleteMatching(const SCL_StringRef& pattern, unsigned int& count);
// The source must pass the read test, the target must not exist (454). 475 one
// of them cannot be opened; 473 reading, 472 writing failed (the partial target
// stays); 498 closing failed. The copy gets no permission that the source
// lacks, but for its owner's.
unsigned int copyFile(const SCL_StringRef& source, const SCL_StringRef& target);
// The same, but the copy is on stable storage before it has its name, and no
// partial target stays: with any status but 0 and 498 there is no file of ours.
unsigned int copyFileWhole(const SCL_StringRef& source, const SCL_StringRef& target);
// As deleteMatching; 451 when a target name cannot be composed.
unsigned int copyMatching(const SCL_StringRef& pattern, const SCL_StringRef& targetTemplate,
                          unsigned int& count);
// Renames within a file system. The source must pass the read test; 451 the
// target cannot be composed; 454 it exists; 478 denied; 479 on another device;
// 480 failed for another reason. The target's missing parts come from the
// source, so a bare extension renames in place.
unsigned int moveFile(const SCL_StringRef& source, const SCL_StringRef& targetTemplate);
// One directory; a trailing separator is no matter. 482 it exists; 454 a file
// has its name; 451, 457 a malformed path, a pattern; 483 it cannot be made.
unsigned int makeDirectory(const SCL_StringRef& path);
// Every directory along the path that is missing, its last segment included;
// existing ones are fine.
unsigned int makePath(const SCL_StringRef& path);
// The target name that copyMatching and moveFile make: 0, or 451 when it cannot
// be composed. Parts are drive or server, directory, name and extension; a
// relative directory of the template takes no drive from the source.
unsigned int composeTarget(const SCL_StringRef& source, const SCL_StringRef& targetTemplate,
                           SCL_String& target);

}  // namespace fl
