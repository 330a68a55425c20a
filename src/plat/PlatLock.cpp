// Locks between processes. All of them are flock()s on descriptors of their own, so that threads
// exclude each other like processes do and the kernel releases what a dead holder held.
#include "plat/PlatLock.h"

#include <cerrno>
#include <climits>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include "plat/PlatRunDir.h"
#include "plat/PlatSystem.h"

namespace plat {

namespace {

constexpr char LOCK_NAME[] = ".krxlock";
constexpr int LOCK_FILE_FLAGS = O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK;

thread_local int t_lockDirFailure = 0;

int lockNow(int descriptor, int operation) {
  return repeatInterrupted([&] { return ::flock(descriptor, operation); }) < 0 ? errno : 0;
}

// LOCK_UN before the close: a process that the host forked meanwhile may still hold the descriptor.
void unlockAndClose(int descriptor) {
  ::flock(descriptor, LOCK_UN);
  ::close(descriptor);
}

// A network file system that makes byte-range locks of these refuses them on what cannot be
// written, and that is so for every directory.
bool refusesDirectories(int error) {
  return error == EBADF || error == EINVAL || error == EISDIR || error == ENOLCK ||
         error == ENOSYS || error == EOPNOTSUPP;
}

// A locked descriptor of the directory or of the lock file in it; or 0 or -1 and an errno value.
int takeDirectory(const NativePath& path, int& error) {
  Descriptor directory(
      repeatInterrupted([&] { return ::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); }));
  if (!directory.isOpen()) {
    error = path.fail("open", errno);
    return -1;
  }
  error = lockNow(directory.get(), LOCK_EX | LOCK_NB);
  if (error == 0) {
    return directory.release();
  }
  if (!refusesDirectories(error)) {
    path.fail("flock", error);
    return -1;
  }
  Descriptor file(repeatInterrupted(
      [&] { return ::openat(directory.get(), LOCK_NAME, LOCK_FILE_FLAGS, 0660); }));
  error = file.isOpen() ? lockNow(file.get(), LOCK_EX | LOCK_NB) : errno;
  if (error != 0) {
    path.fail("lock file", error);
    return -1;
  }
  return file.release();
}

// Is the locked file still the one of that name? Who removes old files may have taken it away while
// we waited, and others then lock another one.
bool isCurrent(int descriptor, const std::string& name) {
  struct stat held {};
  struct stat named {};
  return ::fstat(descriptor, &held) == 0 && ::lstat(name.c_str(), &named) == 0 &&
         held.st_dev == named.st_dev && held.st_ino == named.st_ino;
}

}  // namespace

int LockDir(const char* directory, int /*timeout*/, long* handle) {
  t_lockDirFailure = 0;
  int error = 0;
  const int descriptor = takeDirectory(NativePath::ofDirectory(directory), error);
  if (descriptor < 0) {
    t_lockDirFailure = error == EWOULDBLOCK ? 0 : error;
    return 0;
  }
  *handle = descriptor;
  return 1;
}

int UnlockDir(const char* /*flag*/, long handle) {
  if (handle < 0 || handle > INT_MAX) {
    return 0;
  }
  unlockAndClose(static_cast<int>(handle));
  return 1;
}

int lockDirFailure() noexcept {
  return std::exchange(t_lockDirFailure, 0);
}

NamedMutex::~NamedMutex() {
  unlock();
}

int NamedMutex::lock(std::string_view name) {
  if (m_descriptor >= 0) {
    return fail("mutex", name, EDEADLK);
  }
  std::string path;
  if (const int error = runDirectory(path); error != 0) {
    return error;
  }
  path += '/' + asFileName(name) + ".mutex";
  for (;;) {
    Descriptor file(repeatInterrupted([&] { return ::open(path.c_str(), LOCK_FILE_FLAGS, 0600); }));
    if (!file.isOpen()) {
      return fail("open", path, errno);
    }
    if (const int error = lockNow(file.get(), LOCK_EX); error != 0) {
      return fail("flock", path, error);
    }
    if (isCurrent(file.get(), path)) {
      m_descriptor = file.release();
      return 0;
    }
  }
}

void NamedMutex::unlock() noexcept {
  if (m_descriptor >= 0) {
    unlockAndClose(std::exchange(m_descriptor, -1));
  }
}

}  // namespace plat
