// Free space and kind of the file system that holds a path.
#pragma once

#include <cstdint>
#include <string_view>

namespace plat {

enum class DriveKind { unknown, removable, fixed, remote, cdrom, ramDisk };

// Bytes available to us (not root's reserve).
int freeSpace(std::string_view path, std::uint64_t& bytes);
int driveKind(std::string_view path, DriveKind& kind);

}  // namespace plat
