// File names: taking a path apart into server and share, drive, directory, name and extension;
// putting it together again; and the checks whether it names a file or a directory.
#pragma once

#include <cstdint>

#include "scl/SCLSTRNG.h"

namespace dv {

inline constexpr unsigned int PATH_SIZE = 260;    // a buffer for a path, terminator included
inline constexpr unsigned int PATH_LENGTH = 258;  // the longest normalised path

// Bits of decodePath's mode.
inline constexpr int MODE_UNC = 1;        // the form "\\server\share\" is recognised
inline constexpr int MODE_DRIVE = 2;      // one letter before ":" is a drive
inline constexpr int MODE_NEED_ROOT = 4;  // a path without drive or server is refused
inline constexpr int MODE_NEED_NAME = 8;  // a path without a name is refused

// Bits of composePath's mask.
inline constexpr unsigned int PART_SERVER = 1;
inline constexpr unsigned int PART_DRIVE = 2;
inline constexpr unsigned int PART_DIRECTORY = 4;
inline constexpr unsigned int PART_NAME = 8;
inline constexpr unsigned int PART_EXTENSION = 16;
inline constexpr unsigned int PART_FOLDER = PART_SERVER | PART_DRIVE | PART_DIRECTORY;
inline constexpr unsigned int PART_FILE = PART_NAME | PART_EXTENSION;
inline constexpr unsigned int PART_ALL = 127;

struct PathPart {
  std::uint16_t offset;
  std::uint16_t length;
};

// What decodePath and the %P conversion write: the normalised path (every "/" is "\") and where
// its components lie in it. A component that is missing has the length 0. The server excludes the
// drive. A last segment "." or ".." is a name without an extension.
struct alignas(4) PathRecord {
  PathPart server;     // "\\server\share\"
  PathPart drive;      // "C:"
  PathPart directory;  // ends in "\"
  PathPart name;
  PathPart extension;  // with its point
  char path[PATH_SIZE];
};
static_assert(sizeof(PathRecord) == 280, "the %P conversion lays it out so");

// Takes the path at the start of `text` apart, up to the first character that a path cannot hold.
// The length of the normalised path, which is that of the text that was read; or -1 and an empty
// record when the path is empty, longer than PATH_LENGTH or refused by `mode`. Nothing is trimmed
// or collapsed: blanks and empty segments belong to the path.
int decodePath(PathRecord& record, const SCL_StringRef& text, int mode);
// Writes the components that `mask` selects, in order, NUL-terminated; 0, or -1 and nothing written
// when they do not fit `size` characters.
int composePath(const PathRecord& record, unsigned int mask, unsigned int size, char* buffer);
// The same into a string.
SCL_String composePath(const PathRecord& record, unsigned int mask);

// 0 an existing regular file (through links); -1 not a valid path; -2 wildcards in name or
// extension, or an extension without a name; -3 does not exist, or cannot be reached; -4 a
// directory or a path without a name, or anything that is no regular file; -5 empty or blank. A
// missing file is tried once with its extension in the other letter case. A null text is an
// assertion (1), a null view counts as empty.
int checkFile(const SCL_StringRef& path);
int checkFile(const char* path);
// What the path's form alone tells of this: 0 when the file system has to be asked.
int checkFileForm(const SCL_StringRef& path);
// 0 an existing directory; -1 not valid or not a directory; -3 does not exist or cannot be reached.
// `size` is the size of the buffer that the path with a last separator would have to fit. A
// relative path is completed from the current drive and directory of the process, one on another
// drive begins at that drive's root.
int checkDirectory(unsigned int size, const SCL_StringRef& path);
// Completes `path`: every component that it lacks comes from `defaults`, and a relative directory
// continues the default one. 0; or -1 and `result` unchanged when the complete path would reach 260
// characters. `result` may be one of the two.
int mergePath(const PathRecord& path, const PathRecord& defaults, PathRecord& result);
// 0 the same place, judged by the texts: without regard to case, "." and ".." resolved, links not
// followed. Else, by which of the two still holds a further separator after the longest common
// leading part: -6 neither, -7 only `b`, -8 only `a`, -9 both. -1 when one is no valid path or
// cannot be completed. `defaults` may be null.
int comparePaths(const SCL_StringRef& a, const SCL_StringRef& b, const PathRecord* defaults);

}  // namespace dv
