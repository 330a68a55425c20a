// Deleting, copying, renaming and making directories, with the library's
// statuses.
#include "fl/FLFILES.h"

#include <algorithm>
#include <cerrno>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "fl/FLFILE.h"
#include "fl/FLPATH.h"
#include "fl/FLSEARCH.h"
#include "fl/FLSTATUS.h"
#include "gen/GENCODES.h"
#include "gen/GENWNT.h"

namespace {

constexpr std::size_t COPY_BUFFER = 4096;
constexpr std::size_t SMALLEST_COPY_BUFFER = 1024;

std::string_view part(const dv::PathRecord& record, const dv::PathPart& which) noexcept {
  return std::string_view(record.path).substr(which.offset, which.length);
}

std::string_view partOr(const dv::PathRecord& first, const dv::PathRecord& second,
                        dv::PathPart dv::PathRecord::*which) noexcept {
  const std::string_view own = part(first, first.*which);
  return own.empty() ? part(second, second.*which) : own;
}

std::string_view rootOf(const dv::PathRecord& record) noexcept {
  return std::string_view(record.path)
      .substr(0, std::size_t{record.server.length} + record.drive.length);
}

// The matches are collected first: what is done to them changes the directory
// that is walked, and a copy could otherwise meet its own output for ever.
unsigned int collectMatches(const SCL_StringRef& pattern, std::vector<std::string>& matches) {
  FL_Search search;
  search.startSearch(pattern, 0);
  char path[dv::PATH_SIZE];
  unsigned int status = search.nextMatch(sizeof path, path);
  for (; status == 0; status = search.nextMatch(sizeof path, path)) {
    matches.emplace_back(path);
  }
  return status;
}

// Runs `operation` on each match and counts its successes; a name that has
// vanished is skipped.
template <class Operation>
unsigned int forEachMatch(const SCL_StringRef& pattern, unsigned int& count, Operation operation) {
  count = 0;
  std::vector<std::string> matches;
  const unsigned int end = collectMatches(pattern, matches);
  for (const std::string& path : matches) {
    const unsigned int status = operation(SCL_StringRef(path.c_str()));
    if (status == 0) {
      ++count;
    } else if (status != FL_NOT_FOUND) {
      return status;
    }
  }
  if (!fl::isSearchEnd(end)) {
    return end;
  }
  return count > 0 ? 0 : FL_NOT_FOUND;
}

std::unique_ptr<char[]> copyBuffer(std::size_t& size) {
  for (size = COPY_BUFFER; size >= SMALLEST_COPY_BUFFER; size /= 2) {
    if (auto* buffer = new (std::nothrow) char[size]; buffer != nullptr) {
      return std::unique_ptr<char[]>(buffer);
    }
  }
  GENAssert(GEN_NULL_POINTER, "FLFILES", __LINE__);
}

unsigned int copyContent(FL_File& source, FL_File& target) {
  std::size_t size = 0;
  const std::unique_ptr<char[]> buffer = copyBuffer(size);
  std::size_t done = size;
  for (std::int64_t position = 0; done == size; position += static_cast<std::int64_t>(done)) {
    if (source.readAt(position, buffer.get(), size, done) != 0) {
      return FL_COPY_READ;
    }
    if (target.writeAt(position, buffer.get(), done) != 0) {
      return FL_COPY_WRITE;
    }
  }
  return 0;
}

unsigned int openSource(FL_File& file, const SCL_StringRef& path) {
  plat::OpenMode mode;
  mode.read = true;
  mode.otherCase = true;
  mode.share = plat::Share::denyWrite;
  const int error = file.open(path, mode);
  if (error == 0) {
    return 0;
  }
  return error == ENOENT ? FL_NOT_FOUND : FL_COPY_OPEN;
}

unsigned int openTarget(FL_File& file, const SCL_StringRef& path, const SCL_StringRef& source,
                        bool lateName) {
  plat::FileStatus like;
  if (plat::status(source, like, true, true) != 0) {
    return FL_COPY_OPEN;
  }
  plat::OpenMode mode;
  mode.write = true;
  mode.create = true;
  mode.exclusive = true;
  mode.lateName = lateName;
  mode.permissions = (like.permissions & 0666U) | 0600U;
  const int error = file.open(path, mode);
  if (error == 0) {
    return 0;
  }
  return error == EEXIST ? FL_EXISTS : FL_COPY_OPEN;
}

bool isMissing(const SCL_StringRef& path) {
  plat::FileStatus found;
  return plat::status(path, found, false) == 0 && found.kind == plat::Kind::missing;
}

// `source` may have vanished since it was tested; the rename itself tells that
// first.
unsigned int statusOfRename(int error, const SCL_StringRef& source) {
  switch (error) {
    case 0:
      return 0;
    case EEXIST:
      return FL_EXISTS;
    case EXDEV:
      return FL_RENAME_DEVICE;
    case EACCES:
    case EPERM:
      return FL_RENAME_DENIED;
    case ENOENT:
      return isMissing(source) ? FL_NOT_FOUND : FL_RENAME;
    default:
      return FL_RENAME;
  }
}

unsigned int commitTarget(FL_File& file) {
  const int error = file.commit();
  return error == 0 ? 0 : error == EEXIST ? FL_EXISTS : FL_COPY_WRITE;
}

unsigned int copyOne(const SCL_StringRef& source, const SCL_StringRef& target, bool committed) {
  if (const unsigned int status = fl::checkAccess(source, fl::ACCESS_READ); status != 0) {
    return status;
  }
  if (const unsigned int status = fl::checkAccessExact(target, fl::ACCESS_ABSENT); status != 0) {
    return status;
  }
  FL_File from;
  if (const unsigned int status = openSource(from, source); status != 0) {
    return status;
  }
  FL_File to;
  if (const unsigned int status = openTarget(to, target, source, committed); status != 0) {
    return status;
  }
  unsigned int status = copyContent(from, to);
  if (status == 0 && committed) {
    status = commitTarget(to);
  }
  const int closeTarget = to.close();
  const int closeSource = from.close();
  return status == 0 && (closeTarget != 0 || closeSource != 0) ? FL_CLOSE : status;
}

unsigned int decodeDirectory(const SCL_StringRef& path, dv::PathRecord& record) {
  if (!fl::decodeWhole(record, path)) {
    return FL_MALFORMED;
  }
  return std::string_view(record.path).find_first_of("*?") == std::string_view::npos ? 0
                                                                                     : FL_PATTERN;
}

// Whatever mkdir answers, a directory that is there counts as existing: some
// file systems refuse for another reason first.
unsigned int makeOne(const std::string& path) {
  const int error = plat::makeDirectory(path);
  if (error == 0) {
    return 0;
  }
  plat::FileStatus found;
  if (plat::status(path, found) == 0 && found.kind == plat::Kind::directory) {
    return FL_DIRECTORY_EXISTS;
  }
  return error == EEXIST ? FL_EXISTS : FL_MAKE_DIRECTORY;
}

}  // namespace

namespace fl {

unsigned int deleteFile(const SCL_StringRef& path) {
  if (const unsigned int status = checkAccessExact(path, ACCESS_WRITE); status != 0) {
    return status;
  }
  const int error = plat::remove(path);
  if (error == 0) {
    return 0;
  }
  return error == ENOENT ? FL_NOT_FOUND : FL_DELETE;
}

unsigned int deleteMatching(const SCL_StringRef& pattern, unsigned int& count) {
  return forEachMatch(pattern, count, deleteFile);
}

unsigned int copyFile(const SCL_StringRef& source, const SCL_StringRef& target) {
  return copyOne(source, target, false);
}

unsigned int copyFileWhole(const SCL_StringRef& source, const SCL_StringRef& target) {
  return copyOne(source, target, true);
}

unsigned int copyMatching(const SCL_StringRef& pattern, const SCL_StringRef& targetTemplate,
                          unsigned int& count) {
  return forEachMatch(pattern, count, [&](const SCL_StringRef& match) {
    SCL_String target;
    const unsigned int status = composeTarget(match, targetTemplate, target);
    return status != 0 ? status : copyFile(match, target);
  });
}

unsigned int moveFile(const SCL_StringRef& source, const SCL_StringRef& targetTemplate) {
  if (const unsigned int status = checkAccessExact(source, ACCESS_READ); status != 0) {
    return status;
  }
  SCL_String target;
  if (const unsigned int status = composeTarget(source, targetTemplate, target); status != 0) {
    return status;
  }
  if (const unsigned int status = checkAccessExact(target, ACCESS_ABSENT); status != 0) {
    return status;
  }
  return statusOfRename(plat::renameNoReplace(source, target), source);
}

unsigned int makeDirectory(const SCL_StringRef& path) {
  dv::PathRecord record;
  if (const unsigned int status = decodeDirectory(path, record); status != 0) {
    return status;
  }
  std::string place(record.path);
  const bool endsInDirectory = record.name.length == 0 && record.extension.length == 0;
  if (endsInDirectory && record.directory.length > 1) {  // the root keeps its separator
    place.pop_back();
  }
  return makeOne(place);
}

unsigned int makePath(const SCL_StringRef& path) {
  dv::PathRecord record;
  if (const unsigned int status = decodeDirectory(path, record); status != 0) {
    return status;
  }
  const std::string whole(record.path);
  std::size_t at = rootOf(record).size();
  while ((at = whole.find_first_not_of('\\', at)) != std::string::npos) {
    at = std::min(whole.find('\\', at), whole.size());
    const unsigned int status = makeOne(whole.substr(0, at));
    if (status != 0 && status != FL_DIRECTORY_EXISTS) {
      return status;
    }
  }
  return 0;
}

unsigned int composeTarget(const SCL_StringRef& source, const SCL_StringRef& targetTemplate,
                           SCL_String& target) {
  dv::PathRecord from;
  dv::PathRecord to;
  if (!fl::decodeWhole(from, source) || !fl::decodeWhole(to, targetTemplate)) {
    return FL_MALFORMED;
  }
  const std::string_view directory = part(to, to.directory);
  const bool relative = !directory.empty() && directory.front() != '\\';
  std::string result(rootOf(to).empty() && !relative ? rootOf(from) : rootOf(to));
  result += partOr(to, from, &dv::PathRecord::directory);
  result += partOr(to, from, &dv::PathRecord::name);
  result += partOr(to, from, &dv::PathRecord::extension);
  if (result.size() > dv::PATH_LENGTH) {
    return FL_MALFORMED;
  }
  target.assign(result);
  return 0;
}

}  // namespace fl
