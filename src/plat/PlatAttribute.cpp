// What hangs on a file besides its bytes: owner and mode, extended attributes, the attribute bits
// of the file search, an advisory lock.
#include "plat/PlatAttribute.h"

#include <cerrno>
#include <charconv>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/xattr.h>

#include "plat/PlatFile.h"
#include "plat/PlatSystem.h"

namespace plat {

namespace {

constexpr char DOS_ATTRIBUTES[] = "user.DOSATTRIB";
constexpr mode_t ANY_WRITE = S_IWUSR | S_IWGRP | S_IWOTH;

ssize_t getExtended(const char* native, const char* name, char* value, std::size_t size) {
  return ::getxattr(native, name, value, size);
}
ssize_t getExtended(int descriptor, const char* name, char* value, std::size_t size) {
  return ::fgetxattr(descriptor, name, value, size);
}

// Of a path or an open file. 0 or an errno value. The value may grow between the two calls.
template <class Place>
int readExtended(Place place, const char* name, std::string& value) {
  for (;;) {
    const ssize_t size = getExtended(place, name, nullptr, 0);
    if (size < 0) {
      return errno == EOPNOTSUPP ? ENODATA : errno;
    }
    value.resize(static_cast<std::size_t>(size) + 1);  // a size of 0 would be another question
    const ssize_t got = getExtended(place, name, value.data(), value.size());
    if (got >= 0) {
      value.resize(static_cast<std::size_t>(got));
      return 0;
    }
    if (errno != ERANGE) {
      return errno;
    }
  }
}

// Hidden and system from the hexadecimal text that file servers keep with shared files ("0x22"). A
// newer server writes more behind a NUL, which ends the number as any other character does.
template <class Place>
unsigned int dosBits(Place place) {
  char text[64];
  const ssize_t size = getExtended(place, DOS_ATTRIBUTES, text, sizeof text);
  std::string value;
  if (size < 0 && errno == ERANGE && readExtended(place, DOS_ATTRIBUTES, value) != 0) {
    return 0;
  }
  std::string_view digits =
      size >= 0 ? std::string_view(text, static_cast<std::size_t>(size)) : std::string_view(value);
  if (digits.starts_with("0x") || digits.starts_with("0X")) {
    digits.remove_prefix(2);
  }
  unsigned int bits = 0;
  std::from_chars(digits.data(), digits.data() + digits.size(), bits, 16);
  return bits & (ATTRIBUTE_HIDDEN | ATTRIBUTE_SYSTEM);
}

unsigned int modeBits(mode_t mode) noexcept {
  return ((mode & ANY_WRITE) == 0 ? ATTRIBUTE_READ_ONLY : 0) |
         (S_ISDIR(mode) ? ATTRIBUTE_DIRECTORY : 0);
}

}  // namespace

int attributesAt(int directory, const char* name, const char* native, unsigned int& bits) {
  struct stat file {};
  if (::fstatat(directory, name, &file, 0) < 0) {
    return errno == ELOOP ? ENOENT : errno;  // a ring of links points nowhere, too
  }
  bits = modeBits(file.st_mode) | dosBits(native);
  return 0;
}

unsigned int attributesOf(int descriptor, const struct stat& file) {
  return modeBits(file.st_mode) | dosBits(descriptor);
}

int attributes(std::string_view path, unsigned int& bits) {
  const NativePath native(path);
  const int error = attributesAt(AT_FDCWD, native.c_str(), native.c_str(), bits);
  return error == 0 ? 0 : native.fail("stat", error);
}

int copyOwnership(const File& to, const File& from) {
  struct stat wanted {};
  struct stat present {};
  if (::fstat(from.descriptor(), &wanted) < 0) {
    return fail("fstat", from.nativePath(), errno);
  }
  if (::fstat(to.descriptor(), &present) < 0) {
    return fail("fstat", to.nativePath(), errno);
  }
  // Before the mode: while the file has the wrong owner or group, its bits are for the wrong ones.
  const bool sameOwner = present.st_uid == wanted.st_uid && present.st_gid == wanted.st_gid;
  if (!sameOwner && ::fchown(to.descriptor(), wanted.st_uid, wanted.st_gid) < 0) {
    return fail("fchown", to.nativePath(), errno);
  }
  if (::fchmod(to.descriptor(), wanted.st_mode & 07777) < 0) {
    return fail("fchmod", to.nativePath(), errno);
  }
  return 0;
}

int getExtendedAttribute(std::string_view path, const char* name, std::string& value) {
  const NativePath native(path);
  const int error = readExtended(native.c_str(), name, value);
  return error == 0 ? 0 : native.fail("getxattr", error);
}

int setExtendedAttribute(std::string_view path, const char* name, std::string_view value) {
  const NativePath native(path);
  return native.check("setxattr", ::setxattr(native.c_str(), name, value.data(), value.size(), 0));
}

int lockFile(const File& file) {
  const int result =
      repeatInterrupted([&] { return ::flock(file.descriptor(), LOCK_EX | LOCK_NB); });
  return result < 0 ? fail("flock", file.nativePath(), errno) : 0;
}

}  // namespace plat
