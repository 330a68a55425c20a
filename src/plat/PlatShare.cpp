// Whether others hold a file open. Locks are advisory here and a writer that knows nothing of us
// takes none; but the kernel grants a lease only when nobody is in its way, so asking for one
// tells. Where no lease is to be had, a lock and the file's age must do.
#include "plat/PlatShare.h"

#include <cerrno>
#include <csignal>

#include <fcntl.h>
#include <linux/magic.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/statfs.h>

#include "plat/PlatClock.h"
#include "plat/PlatSpool.h"
#include "plat/PlatSystem.h"

namespace plat {

namespace {

// A writer that takes no lock has most probably finished with a file that it left alone for this
// long.
constexpr std::int64_t QUIET_MILLISECONDS = 2000;
// The clocks of a network differ by minutes, by an hour where one of them missed summer time. A
// file from farther in the future was stamped wrongly, and must not count as in use until then.
constexpr std::int64_t FUTURE_MILLISECONDS = std::int64_t{2} * 3600 * 1000;

// Takes a lease and gives it back at once. Somebody who opens the file in that moment makes the
// kernel tell us by a signal: SIGIO, the default, would end the host, SIGURG is ignored by default.
int testLease(int descriptor, int type) {
  if (repeatInterrupted([&] { return ::fcntl(descriptor, F_SETSIG, SIGURG); }) < 0 ||
      repeatInterrupted([&] { return ::fcntl(descriptor, F_SETLEASE, type); }) < 0) {
    return errno;
  }
  repeatInterrupted([&] { return ::fcntl(descriptor, F_SETLEASE, F_UNLCK); });
  return 0;
}

bool isOnNfs(int descriptor) {
  struct statfs system {};
  return ::fstatfs(descriptor, &system) == 0 && system.f_type == NFS_SUPER_MAGIC;
}

// A foreign file without CAP_LEASE, or a file system that knows no leases. One that knows them only
// while its server has delegated the file answers otherwise as if somebody held it.
bool leaseUnavailable(int descriptor, int error) {
  return error == EACCES || error == EINVAL || error == ENOLCK || error == EOPNOTSUPP ||
         error == ENOSYS || (error == EAGAIN && isOnNfs(descriptor));
}

// Held elsewhere is the only answer that counts: what cannot be locked at all tells nothing.
bool isLocked(int descriptor, int operation) {
  if (repeatInterrupted([&] { return ::flock(descriptor, operation | LOCK_NB); }) == 0) {
    ::flock(descriptor, LOCK_UN);
    return false;
  }
  return errno == EWOULDBLOCK;
}

int testQuiet(int descriptor) {
  struct stat file {};
  if (::fstat(descriptor, &file) < 0) {
    return errno;
  }
  const Moment current = now();
  const std::int64_t age = (current.seconds - file.st_mtim.tv_sec) * 1000 + current.milliseconds -
                           file.st_mtim.tv_nsec / 1'000'000;
  return age < QUIET_MILLISECONDS && age > -FUTURE_MILLISECONDS ? EBUSY : 0;
}

int testNobodyElse(int descriptor) {
  const int error = testLease(descriptor, F_WRLCK);
  if (!leaseUnavailable(descriptor, error)) {
    return error == EAGAIN ? EBUSY : error;
  }
  return isLocked(descriptor, LOCK_EX) ? EBUSY : testQuiet(descriptor);
}

// A read lease would count our own writing descriptor as a writer.
int testNoWriter(int descriptor, bool writable) {
  const int error = writable ? EINVAL : testLease(descriptor, F_RDLCK);
  if (!leaseUnavailable(descriptor, error)) {
    return error == EAGAIN ? EBUSY : error;
  }
  return isLocked(descriptor, LOCK_SH) ? EBUSY : 0;
}

}  // namespace

int testShare(int descriptor, bool writable, Share share) {
  switch (share) {
    case Share::denyAll:
      return testNobodyElse(descriptor);
    case Share::denyWrite:
      return testNoWriter(descriptor, writable);
    case Share::all:
      break;
  }
  return 0;
}

int testLeases(std::string_view directory) {
  OpenMode mode;
  mode.write = true;
  mode.create = true;
  mode.exclusive = true;
  mode.lateName = true;  // never committed, so the name is never there or goes again
  mode.noFollow = true;
  mode.permissions = 0600;
  File probe;
  const std::string path =
      std::string(directory) + "/.krxprobe" + std::to_string(static_cast<long>(::getpid()));
  const int error = probe.open(path, mode);
  return error != 0 ? error : testLease(probe.descriptor(), F_WRLCK);
}

}  // namespace plat
