// The operations on names: what stands there, removing, renaming, making directories, commit.
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>

#include "plat/PlatFile.h"
#include "plat/PlatSystem.h"

namespace plat {

namespace {

constexpr mode_t ANY_WRITE = S_IWUSR | S_IWGRP | S_IWOTH;
constexpr mode_t PERMISSIONS = 07777;

Kind kindOf(mode_t mode) {
  if (S_ISREG(mode)) {
    return Kind::regular;
  }
  return S_ISDIR(mode) ? Kind::directory : Kind::other;
}

FileStatus statusOf(const struct stat& file) {
  FileStatus result;
  result.kind = kindOf(file.st_mode);
  result.size = file.st_size;
  result.modifiedSeconds = file.st_mtim.tv_sec;
  result.modifiedNanoseconds = static_cast<int>(file.st_mtim.tv_nsec);
  result.device = file.st_dev;
  result.inode = file.st_ino;
  result.permissions = file.st_mode & PERMISSIONS;
  result.owner = file.st_uid;
  return result;
}

// 0 or the error number; the record of the last failure is left alone.
int readStatus(const std::string& native, bool follow, FileStatus& result) {
  struct stat file {};
  const int flags = follow ? 0 : AT_SYMLINK_NOFOLLOW;
  if (::fstatat(AT_FDCWD, native.c_str(), &file, flags) < 0) {
    return errno;
  }
  result = statusOf(file);
  return 0;
}

// For file systems that cannot rename without replacing: the second name is made by link(), which
// never replaces either.
int linkAndUnlink(const NativePath& from, const NativePath& to) {
  if (::link(from.c_str(), to.c_str()) < 0) {
    return from.fail("link", errno);
  }
  if (::unlink(from.c_str()) == 0) {
    return 0;
  }
  const int error = errno;
  ::unlink(to.c_str());
  return from.fail("unlink", error);
}

}  // namespace

int status(std::string_view path, FileStatus& result, bool follow, bool otherCase) {
  const NativePath native(path);
  result = FileStatus();
  int error = readStatus(native.text(), follow, result);
  if (error == ENOENT && otherCase) {
    if (const std::string other = withOtherCase(native.text()); !other.empty()) {
      error = readStatus(other, follow, result);
    }
  }
  return error == 0 || error == ENOENT ? 0 : native.fail("stat", error);
}

int checkReadWrite(std::string_view path, bool read, bool write) {
  const NativePath native(path);
  struct stat file {};
  if (::stat(native.c_str(), &file) < 0) {
    return native.fail("stat", errno);
  }
  // The kernel lets root write everything, yet a file without a write bit is marked read-only.
  if (write && (file.st_mode & ANY_WRITE) == 0) {
    return native.fail("access", EACCES);
  }
  const int wanted = (read ? R_OK : 0) | (write ? W_OK : 0);
  if (::faccessat(AT_FDCWD, native.c_str(), wanted, AT_EACCESS) == 0) {
    return 0;
  }
  return native.fail("access", errno == EROFS || errno == EPERM ? EACCES : errno);
}

int remove(std::string_view path) {
  const NativePath native(path);
  return native.check("unlink", ::unlink(native.c_str()));
}

int removeDirectory(std::string_view path) {
  const NativePath native(path);
  return native.check("rmdir", ::rmdir(native.c_str()));
}

int makeDirectory(std::string_view path, unsigned int permissions) {
  const NativePath native(path);
  return native.check("mkdir", ::mkdir(native.c_str(), static_cast<mode_t>(permissions)));
}

int rename(std::string_view from, std::string_view to) {
  const NativePath source(from);
  return source.check("rename", ::rename(source.c_str(), NativePath(to).c_str()));
}

int renameNoReplace(std::string_view from, std::string_view to) {
  const NativePath source(from);
  const NativePath target(to);
  if (::renameat2(AT_FDCWD, source.c_str(), AT_FDCWD, target.c_str(), RENAME_NOREPLACE) == 0) {
    return 0;
  }
  if (errno == EINVAL || errno == ENOSYS) {
    return linkAndUnlink(source, target);
  }
  return source.fail("rename", errno);
}

bool commitDisabled() noexcept {
  const char* value = setting("KRX_COMMIT");
  return value != nullptr && std::strcmp(value, "0") == 0;
}

int commitDirectory(std::string_view directory) {
  if (commitDisabled()) {
    return 0;
  }
  const NativePath native = NativePath::ofDirectory(directory);
  const Descriptor opened(repeatInterrupted(
      [&] { return ::open(native.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); }));
  if (!opened.isOpen()) {
    return native.fail("open", errno);
  }
  // EINVAL: the file system writes its directories through and has nothing to commit.
  if (repeatInterrupted([&] { return ::fsync(opened.get()); }) < 0 && errno != EINVAL) {
    return native.fail("fsync", errno);
  }
  return 0;
}

}  // namespace plat
