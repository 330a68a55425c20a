// The checks whether a path names a file or a directory.
#include <cerrno>
#include <string>

#include "dv/DVPATH.h"
#include "dv/DVPATHRD.h"
#include "gen/GENCODES.h"
#include "gen/GENWNT.h"
#include "plat/PlatFile.h"
#include "plat/PlatPath.h"

namespace dv {

namespace {

constexpr int FOUND = 0;
constexpr int INVALID = -1;
constexpr int WILDCARDS = -2;
constexpr int ABSENT = -3;
constexpr int NOT_A_FILE = -4;
constexpr int EMPTY = -5;

constexpr int CHECK_MODE = MODE_UNC | MODE_DRIVE;
constexpr char SEPARATOR = '\\';

bool hasWildcard(std::string_view text) noexcept {
  return text.find_first_of("*?") != std::string_view::npos;
}

bool hasWildcard(const PathRecord& record, const PathPart& part) noexcept {
  return hasWildcard(partOf(record, part));
}

// Decodes a text that has to be a path from end to end.
bool decodeWhole(PathRecord& record, std::string_view text) {
  const int length = scanPath(record, text, CHECK_MODE);
  return length >= 0 && static_cast<std::size_t>(length) == text.size();
}

// A server that cannot be reached has to look like a path that does not exist, because that is
// what callers wait on, and each kind of network says it in another way; any other failure will not
// go away by itself.
int resultOfError(int error) noexcept {
  switch (error) {
    case ENOENT:
    case ENOTDIR:
    case EACCES:
    case EIO:
    case ESTALE:
    case EHOSTDOWN:
    case EHOSTUNREACH:
    case ETIMEDOUT:
    case ENOTCONN:
      return ABSENT;
    default:
      return INVALID;
  }
}

// The current drive and directory of the process. False when they cannot be written as a path.
bool currentPlace(PathRecord& record) {
  return decodeWhole(record, plat::currentDrive() + plat::currentDirectory());
}

// A path on another drive than the current one begins at that drive's root, because no directory is
// the current one there.
bool isOnOtherDrive(const PathRecord& path) {
  return path.drive.length != 0 && !SCL_equalNoCase(partOf(path, path.drive), plat::currentDrive());
}

// Completes a directory path. One that begins at a root needs no current directory, so a strange
// one does no harm to it.
int complete(const PathRecord& path, PathRecord& result) {
  PathRecord place;
  result = path;
  if (isOnOtherDrive(path)) {
    return 0;
  }
  if (currentPlace(place)) {
    return mergePath(path, place, result);
  }
  return isRooted(path) ? 0 : INVALID;
}

// The path without its last separator, unless it is a root.
SCL_String withoutLastSeparator(const PathRecord& record) {
  SCL_String path = composePath(record, PART_ALL);
  const bool isRoot =
      record.directory.length == 0 || (record.directory.length == 1 && isRooted(record));
  if (!isRoot && SCL_lastChar(path) == SEPARATOR) {
    path.removeLast();
  }
  return path;
}

int checkExistingDirectory(const SCL_StringRef& path) {
  plat::FileStatus status;
  if (const int error = plat::status(path, status)) {
    return resultOfError(error);
  }
  switch (status.kind) {
    case plat::Kind::directory:
      return FOUND;
    case plat::Kind::missing:
      return ABSENT;
    default:
      return INVALID;
  }
}

}  // namespace

int checkFileForm(const SCL_StringRef& path) {
  PathRecord record;
  if (SCL_trimmed(path).empty()) {
    return EMPTY;
  }
  if (!decodeWhole(record, path) || hasWildcard(record, record.server) ||
      hasWildcard(record, record.directory)) {
    return INVALID;
  }
  const bool extensionOnly = record.name.length == 0 && record.extension.length != 0;
  if (extensionOnly || hasWildcard(record, record.name) || hasWildcard(record, record.extension)) {
    return WILDCARDS;
  }
  return record.name.length == 0 || isDirectoryLink(record) ? NOT_A_FILE : FOUND;
}

int checkFile(const SCL_StringRef& path) {
  const int form = checkFileForm(path);
  if (form != FOUND) {
    return form;
  }
  plat::FileStatus status;
  if (const int error = plat::status(path, status, true, true)) {
    return resultOfError(error);
  }
  switch (status.kind) {
    case plat::Kind::regular:
      return FOUND;
    case plat::Kind::missing:
      return ABSENT;
    default:
      return NOT_A_FILE;
  }
}

int checkFile(const char* path) {
  if (path == nullptr) {
    GENAssert(GEN_NULL_POINTER, "DVPATCHK", __LINE__);
  }
  return checkFile(SCL_StringRef(path));
}

int checkDirectory(unsigned int size, const SCL_StringRef& path) {
  PathRecord record;
  if (!decodeWhole(record, path)) {
    return INVALID;
  }
  SCL_String directory(path);
  if (record.name.length != 0 || record.extension.length != 0) {
    directory += SEPARATOR;
  }
  if (directory.length() >= size || hasWildcard(directory) || !decodeWhole(record, directory)) {
    return INVALID;
  }
  PathRecord whole;
  if (complete(record, whole) < 0) {
    return INVALID;
  }
  return checkExistingDirectory(withoutLastSeparator(whole));
}

}  // namespace dv
