// Open files: opening with an access and a sharing mode, transfers at a position, commit, close.
#include "plat/PlatFile.h"

#include <cerrno>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>

#include "plat/PlatShare.h"
#include "plat/PlatSystem.h"

namespace plat {

namespace {

bool writes(const OpenMode& mode) {
  return mode.write || mode.append;
}

// O_TRUNC is not among them: a file that somebody holds must not be emptied before we know.
int flagsOf(const OpenMode& mode) {
  const int access = !writes(mode) ? O_RDONLY : mode.read ? O_RDWR : O_WRONLY;
  int flags = access | O_CLOEXEC | O_NOCTTY | O_NONBLOCK;  // a FIFO without a writer would block
  flags |= mode.append ? O_APPEND : 0;
  flags |= mode.noFollow ? O_NOFOLLOW : 0;
  flags |= mode.create ? O_CREAT : 0;
  flags |= mode.create && mode.exclusive ? O_EXCL : 0;
  return flags;
}

int openOnce(const std::string& native, const OpenMode& mode) {
  return repeatInterrupted(
      [&] { return ::open(native.c_str(), flagsOf(mode), static_cast<mode_t>(mode.permissions)); });
}

// The descriptor, or -1 with errno.
int openPatiently(const std::string& native, const OpenMode& mode) {
  return waitOutLease([&] { return openOnce(native, mode); },
                      mode.share == Share::denyAll ? 1 : LEASE_ATTEMPTS);
}

// A missing file may stand there with its extension in the other letter case; `native` becomes the
// name that was found.
int openEither(std::string& native, const OpenMode& mode) {
  const int descriptor = openPatiently(native, mode);
  if (descriptor >= 0 || errno != ENOENT || !mode.otherCase || mode.create) {
    return descriptor;
  }
  std::string other = withOtherCase(native);
  const int second = other.empty() ? -1 : openPatiently(other, mode);
  if (second < 0 && (other.empty() || errno == ENOENT)) {
    errno = ENOENT;
    return -1;
  }
  native = std::move(other);
  return second;
}

// Can a new file of this name do without it until it is committed? A name that is taken, or that
// the file system cannot have, has to be refused now, as for any other file.
bool canBeNameless(const std::string& native) {
  return !native.empty() && ::access("/proc/self/fd", X_OK) == 0 &&
         ::faccessat(AT_FDCWD, native.c_str(), F_OK, AT_SYMLINK_NOFOLLOW) < 0;
}

// A file without a name in the directory of `native`; or -1 where there are none, and then the file
// is to be opened as any other.
int openNameless(const std::string& native, const OpenMode& mode) {
  if (!mode.lateName || !canBeNameless(native)) {
    return -1;
  }
  const std::size_t slash = native.rfind('/');
  const std::string directory =
      slash == std::string::npos ? std::string(".") : native.substr(0, slash + 1);
  return repeatInterrupted([&] {
    return ::open(directory.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC,
                  static_cast<mode_t>(mode.permissions));
  });
}

int checkRegular(int descriptor, std::int64_t& size) {
  struct stat file {};
  if (::fstat(descriptor, &file) < 0) {
    return errno;
  }
  if (S_ISREG(file.st_mode)) {
    size = file.st_size;
    return 0;
  }
  return S_ISDIR(file.st_mode) ? EISDIR : EINVAL;
}

// What is opened on purpose may be a terminal or a pipe, whose transfers are to wait.
int makeBlocking(int descriptor) {
  const int flags = ::fcntl(descriptor, F_GETFL);
  return flags < 0 || ::fcntl(descriptor, F_SETFL, flags & ~O_NONBLOCK) < 0 ? errno : 0;
}

// Everything that is asked of the file once it is open.
int settle(int descriptor, const OpenMode& mode, std::int64_t& size) {
  size = 0;
  if (const int error =
          mode.regularOnly ? checkRegular(descriptor, size) : makeBlocking(descriptor);
      error != 0) {
    return error;
  }
  if (const int error = testShare(descriptor, writes(mode), mode.share); error != 0) {
    return error;
  }
  if (mode.truncate) {
    size = 0;
    return repeatInterrupted([&] { return ::ftruncate(descriptor, 0); }) < 0 ? errno : 0;
  }
  return 0;
}

// The error number of an open that failed: a FIFO without a reader and a socket answer ENXIO.
int openError(const OpenMode& mode) {
  return errno == ENXIO && mode.regularOnly ? EINVAL : errno;
}

}  // namespace

File::File(File&& other) noexcept
    : m_descriptor(std::exchange(other.m_descriptor, -1)),
      m_name(std::exchange(other.m_name, Name::settled)),
      m_sizeAtOpen(other.m_sizeAtOpen),
      m_path(std::move(other.m_path)) {}

File& File::operator=(File&& other) noexcept {
  if (this != &other) {
    close();
    m_descriptor = std::exchange(other.m_descriptor, -1);
    m_name = std::exchange(other.m_name, Name::settled);
    m_sizeAtOpen = other.m_sizeAtOpen;
    m_path = std::move(other.m_path);
  }
  return *this;
}

File::~File() {
  close();
}

int File::open(std::string_view path, const OpenMode& mode) {
  close();
  const NativePath native(path);
  m_path = native.text();
  const int nameless = openNameless(m_path, mode);
  Descriptor opened(nameless >= 0 ? nameless : openEither(m_path, mode));
  const int error = opened.isOpen() ? settle(opened.get(), mode, m_sizeAtOpen) : openError(mode);
  if (error != 0) {
    if (opened.isOpen() && nameless < 0 && mode.create && mode.exclusive) {
      ::unlink(m_path.c_str());  // our own, and of no use to anyone
    }
    return m_path.empty() ? native.fail("open", error) : fail("open", m_path, error);
  }
  m_descriptor = opened.release();
  m_name = nameless >= 0 ? Name::missing : mode.lateName ? Name::provisional : Name::settled;
  return 0;
}

int File::readAt(std::int64_t position, void* buffer, std::size_t count, std::size_t& done) {
  done = 0;
  while (done < count) {
    const ssize_t got = repeatInterrupted([&] {
      return ::pread(m_descriptor, static_cast<char*>(buffer) + done, count - done,
                     position + static_cast<off_t>(done));
    });
    if (got < 0) {
      return fail("read", m_path, errno);
    }
    if (got == 0) {
      break;
    }
    done += static_cast<std::size_t>(got);
  }
  return 0;
}

int File::writeAt(std::int64_t position, const void* data, std::size_t count) {
  std::size_t done = 0;
  while (done < count) {
    const ssize_t put = repeatInterrupted([&] {
      return ::pwrite(m_descriptor, static_cast<const char*>(data) + done, count - done,
                      position + static_cast<off_t>(done));
    });
    if (put <= 0) {
      return fail("write", m_path, put < 0 ? errno : EIO);
    }
    done += static_cast<std::size_t>(put);
  }
  return 0;
}

int File::size(std::int64_t& bytes) const {
  struct stat file {};
  if (::fstat(m_descriptor, &file) < 0) {
    return fail("fstat", m_path, errno);
  }
  bytes = file.st_size;
  return 0;
}

int File::setSize(std::int64_t bytes) {
  const int result = repeatInterrupted([&] { return ::ftruncate(m_descriptor, bytes); });
  return result < 0 ? fail("ftruncate", m_path, errno) : 0;
}

int File::commit() {
  if (!commitDisabled() && repeatInterrupted([&] { return ::fsync(m_descriptor); }) < 0) {
    return fail("fsync", m_path, errno);
  }
  if (m_name == Name::missing) {
    return takeName();
  }
  m_name = Name::settled;
  return 0;
}

int File::takeName() {
  const std::string self = "/proc/self/fd/" + std::to_string(m_descriptor);
  if (repeatInterrupted([&] {
        return ::linkat(AT_FDCWD, self.c_str(), AT_FDCWD, m_path.c_str(), AT_SYMLINK_FOLLOW);
      }) < 0) {
    return fail("link", m_path, errno);
  }
  m_name = Name::settled;
  return 0;
}

int File::close() {
  if (m_descriptor < 0) {
    return 0;
  }
  if (std::exchange(m_name, Name::settled) == Name::provisional) {
    ::unlink(m_path.c_str());
  }
  // The descriptor is gone whatever the answer; an interrupted close is not repeated, because the
  // number may by then be somebody else's.
  const int result = ::close(std::exchange(m_descriptor, -1));
  return result < 0 && errno != EINTR ? fail("close", m_path, errno) : 0;
}

}  // namespace plat
