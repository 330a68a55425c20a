// Exclusion between processes: the directory lock of the spool, named mutexes, the named event.
// The run directory for names is KRX_RUN_DIR, else /run/krx when writable, else
// $XDG_RUNTIME_DIR/krx, else /tmp/krx-UID (made 0700, refused unless it is ours with that mode).
#pragma once

#include <string>
#include <string_view>

namespace plat {

// The host's directory-locking service. LockDir: nonzero and a handle on success, 0 while somebody
// else holds the lock (or it cannot be had; then the error is told once through lockDirFailure).
// A lock is flock(LOCK_EX | LOCK_NB) on the directory itself, or on ".krxlock" in it where the file
// system refuses that; the kernel releases it when its holder dies. `timeout` is not waited for.
int LockDir(const char* directory, int timeout, long* handle);
// `flag` points to a byte holding 0.
int UnlockDir(const char* flag, long handle);
// The error number of the last LockDir of this thread that failed for another reason than "locked";
// 0 otherwise. Reading it clears it.
int lockDirFailure() noexcept;

// A mutex of this name for all processes and threads; released when its holder dies.
class NamedMutex {
 public:
  NamedMutex() noexcept = default;
  NamedMutex(const NamedMutex&) = delete;
  NamedMutex& operator=(const NamedMutex&) = delete;
  ~NamedMutex();
  int lock(std::string_view name);  // waits without limit; errno when it cannot be had
  void unlock() noexcept;

 private:
  int m_descriptor = -1;
};

}  // namespace plat
