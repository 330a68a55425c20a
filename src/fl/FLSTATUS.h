// Tests and queries on paths: access, time, size, drives. Paths are in the system's form; each
// operation returns a status, 0 for success, and leaves outputs as they were on failure.
#pragma once

#include <cstdint>

#include "scl/SCLSTRNG.h"

class DV_DateTime;

namespace fl {

inline constexpr int ACCESS_READ = 1;
inline constexpr int ACCESS_WRITE = 2;
inline constexpr int ACCESS_ABSENT = 4;     // the path must not exist
inline constexpr int ACCESS_CREATABLE = 8;  // may be written or created

// 0; 451 a malformed path, or the test failed for another reason; 452 not found; 454 exists, where
// it must not; 457 a pattern; 458 a directory; 460 denied. A name that is missing, where it must
// not be, is tried once more with its extension wholly in the other letter case. A file without any
// write bit is not writable, whoever asks.
unsigned int checkAccess(const SCL_StringRef& path, int mode);
// The same for the name exactly as it is spelled: what deleting, renaming and creating ask.
unsigned int checkAccessExact(const SCL_StringRef& path, int mode);

inline constexpr unsigned int DRIVE_REMOVABLE = 1;
inline constexpr unsigned int DRIVE_FIXED = 2;
inline constexpr unsigned int DRIVE_REMOTE = 4;
inline constexpr unsigned int DRIVE_CDROM = 0x4003;
inline constexpr unsigned int DRIVE_RAM_DISK = 5;

// A path's drive is the file system that holds it; a path that does not exist yet belongs to the
// drive of its nearest existing parent. 451 malformed; 440 the kind cannot be told; 441 no such
// drive.
unsigned int driveType(const SCL_StringRef& path, unsigned int& kind);
// Bytes available to this process; 0xFFFFFFFF when the value does not fit. 451 malformed; 499 the
// drive is not ready; 442 any other failure.
unsigned int freeSpace(const SCL_StringRef& path, std::uint32_t& bytes);
unsigned int freeSpace64(const SCL_StringRef& path, std::uint64_t& bytes);
// Last modification in local time, and size (0xFFFFFFFF when it does not fit), of a file or a
// directory. 451 malformed or not to be asked; 452 does not exist.
unsigned int fileTime(const SCL_StringRef& path, DV_DateTime& time);
unsigned int fileSize(const SCL_StringRef& path, std::uint32_t& bytes);

// The status's place in a search: both "no match at all" and "no further match" end it.
constexpr bool isSearchEnd(unsigned int status) noexcept {
  return status == 452 || status == 485;
}

}  // namespace fl
