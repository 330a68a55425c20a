// The access test and the queries on paths and drives.
#include "fl/FLSTATUS.h"

#include <algorithm>
#include <cerrno>
#include <limits>
#include <string>

#include "dv/DVDATTIM.h"
#include "fl/FLPATH.h"
#include "gen/GENCODES.h"
#include "plat/PlatClock.h"
#include "plat/PlatDrive.h"
#include "plat/PlatFile.h"
#include "scl/SCLASCII.h"

namespace {

unsigned int statusOfCheck(int result) noexcept {
  switch (result) {
    case 0:
      return 0;
    case -2:
      return FL_PATTERN;
    case -3:
      return FL_NOT_FOUND;
    case -4:
      return FL_DIRECTORY;
    default:
      return FL_MALFORMED;
  }
}

unsigned int statusOfAccess(int error) noexcept {
  switch (error) {
    case 0:
      return 0;
    case ENOENT:
    case ENOTDIR:
      return FL_NOT_FOUND;
    case EACCES:
    case EPERM:
    case EROFS:
      return FL_DENIED;
    default:
      return FL_MALFORMED;
  }
}

// The check takes a file that has its extension in the other letter case for the one asked for.
unsigned int existenceOf(const SCL_StringRef& path) {
  const unsigned int status = statusOfCheck(dv::checkFile(path));
  plat::FileStatus found;
  const bool isOther =
      status == 0 && plat::status(path, found) == 0 && found.kind == plat::Kind::missing;
  return isOther ? FL_NOT_FOUND : status;
}

unsigned int absenceOf(unsigned int existence) noexcept {
  switch (existence) {
    case 0:
      return FL_EXISTS;
    case FL_NOT_FOUND:
      return 0;
    default:
      return existence;
  }
}

// The path with its extension wholly in the other letter case; empty when nothing changes.
std::string otherSpelling(const SCL_StringRef& path) {
  dv::PathRecord record;
  if (!fl::decodeWhole(record, path)) {
    return {};
  }
  std::string result(record.path);
  const auto begin = result.begin() + record.extension.offset;
  const auto end = begin + record.extension.length;
  const bool toUpper = std::any_of(begin, end, SCL_isLower);
  std::transform(begin, end, begin, toUpper ? SCL_toUpper : SCL_toLower);
  return result == record.path ? std::string() : result;
}

// Cuts the last segment off; false when only the root is left.
bool toParent(std::string& path, std::size_t rootLength) {
  std::size_t length = path.size();
  while (length > rootLength && path[length - 1] == '\\') {
    --length;
  }
  while (length > rootLength && path[length - 1] != '\\') {
    --length;
  }
  const bool shorter = length < path.size();
  path.resize(length);
  return shorter;
}

std::size_t rootLength(const dv::PathRecord& record) noexcept {
  const std::size_t prefix = std::size_t{record.server.length} + record.drive.length;
  return prefix + (record.path[prefix] == '\\' ? 1 : 0);
}

// Asks about the file system that holds the path, or will hold it. 0, an errno value, or -1 for a
// malformed path.
template <class Query>
int askDrive(const SCL_StringRef& path, Query query) {
  dv::PathRecord record;
  if (!fl::decodeWhole(record, path)) {
    return -1;
  }
  std::string place(record.path);
  for (;;) {
    const int error = query(place.empty() ? std::string(".") : place);
    if ((error != ENOENT && error != ENOTDIR) || !toParent(place, rootLength(record))) {
      return error;
    }
  }
}

unsigned int kindNumber(plat::DriveKind kind) noexcept {
  switch (kind) {
    case plat::DriveKind::removable:
      return fl::DRIVE_REMOVABLE;
    case plat::DriveKind::fixed:
      return fl::DRIVE_FIXED;
    case plat::DriveKind::remote:
      return fl::DRIVE_REMOTE;
    case plat::DriveKind::cdrom:
      return fl::DRIVE_CDROM;
    case plat::DriveKind::ramDisk:
      return fl::DRIVE_RAM_DISK;
    case plat::DriveKind::unknown:
      break;
  }
  return 0;
}

template <class Wide>
std::uint32_t saturated(Wide value) noexcept {
  constexpr auto MAXIMUM = std::numeric_limits<std::uint32_t>::max();
  return static_cast<std::uint32_t>(std::min<Wide>(value, MAXIMUM));
}

unsigned int query(const SCL_StringRef& path, plat::FileStatus& result) {
  dv::PathRecord record;
  if (!fl::decodeWhole(record, path)) {
    return FL_MALFORMED;
  }
  const int error = plat::status(path, result, true, true);
  if (error != 0) {
    return error == ENOTDIR ? FL_NOT_FOUND : FL_MALFORMED;
  }
  return result.kind == plat::Kind::missing ? FL_NOT_FOUND : 0;
}

}  // namespace

namespace fl {

unsigned int checkAccessExact(const SCL_StringRef& path, int mode) {
  const unsigned int existence = existenceOf(path);
  const bool mayBeCreated = (mode & ACCESS_CREATABLE) != 0;
  if ((mode & ACCESS_ABSENT) != 0 || (mayBeCreated && existence == FL_NOT_FOUND)) {
    return absenceOf(existence);
  }
  if (existence != 0) {
    return existence;
  }
  const bool write = mayBeCreated || (mode & ACCESS_WRITE) != 0;
  const bool read = !mayBeCreated && (mode & ACCESS_READ) != 0;
  return statusOfAccess(plat::checkReadWrite(path, read, write));
}

unsigned int checkAccess(const SCL_StringRef& path, int mode) {
  const unsigned int status = checkAccessExact(path, mode);
  if (status != FL_NOT_FOUND) {
    return status;
  }
  const std::string other = otherSpelling(path);
  return other.empty() ? status : checkAccessExact(other.c_str(), mode);
}

unsigned int driveType(const SCL_StringRef& path, unsigned int& kind) {
  auto found = plat::DriveKind::unknown;
  const int error =
      askDrive(path, [&](const std::string& place) { return plat::driveKind(place, found); });
  if (error < 0) {
    return FL_MALFORMED;
  }
  if (error != 0) {
    return error == ENOENT || error == ENOTDIR ? FL_NO_DRIVE : FL_DRIVE_TYPE;
  }
  if (found == plat::DriveKind::unknown) {
    return FL_DRIVE_TYPE;
  }
  kind = kindNumber(found);
  return 0;
}

unsigned int freeSpace64(const SCL_StringRef& path, std::uint64_t& bytes) {
  std::uint64_t found = 0;
  const int error =
      askDrive(path, [&](const std::string& place) { return plat::freeSpace(place, found); });
  if (error < 0) {
    return FL_MALFORMED;
  }
  if (error != 0) {
    return error == ENOMEDIUM || error == ENODEV ? FL_NOT_READY : FL_FREE_SPACE;
  }
  bytes = found;
  return 0;
}

unsigned int freeSpace(const SCL_StringRef& path, std::uint32_t& bytes) {
  std::uint64_t found = 0;
  const unsigned int status = freeSpace64(path, found);
  if (status == 0) {
    bytes = saturated(found);
  }
  return status;
}

unsigned int fileTime(const SCL_StringRef& path, DV_DateTime& time) {
  plat::FileStatus found;
  if (const unsigned int status = query(path, found); status != 0) {
    return status;
  }
  const plat::Moment moment{found.modifiedSeconds, found.modifiedNanoseconds / 1'000'000};
  plat::LocalTime local;
  if (!plat::clock().toLocal(moment, local)) {
    return FL_MALFORMED;
  }
  const auto number = [](int value) { return static_cast<unsigned int>(value); };
  time.date().set(number(local.year), number(local.month), number(local.day));
  time.time().set(number(local.hour), number(local.minute), number(std::min(local.second, 59)),
                  number(local.millisecond / 10));
  return 0;
}

unsigned int fileSize(const SCL_StringRef& path, std::uint32_t& bytes) {
  plat::FileStatus found;
  const unsigned int status = query(path, found);
  if (status == 0) {
    bytes = saturated(found.size);
  }
  return status;
}

}  // namespace fl
