// The spool directories: their lock, the names of a pair, and the pairs that cannot be removed.
#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <tuple>
#include <utility>

#include "scl/SCLSTRNG.h"

// Holds the lock of a spool directory for as long as it lives. Taking it waits up to 100 seconds,
// 50 attempts 2 seconds apart.
class KRX_DirectoryLock {
 public:
  static constexpr int ATTEMPTS = 50;
  static constexpr unsigned int PAUSE_MILLISECONDS = 2000;
  static constexpr int TIMEOUT_SECONDS = 100;

  // `directory` may end in a backslash.
  explicit KRX_DirectoryLock(const SCL_StringRef& directory);
  KRX_DirectoryLock(const KRX_DirectoryLock&) = delete;
  KRX_DirectoryLock& operator=(const KRX_DirectoryLock&) = delete;
  ~KRX_DirectoryLock();

  bool isHeld() const noexcept { return m_held; }
  // 0, or 11973 when the directory stayed locked.
  unsigned int status() const noexcept;

 private:
  long m_handle = 0;
  bool m_held = false;
};

// The two files of a pair, names without directory, as they stand in it.
struct KRX_PairNames {
  SCL_String envelope;
  SCL_String message;
};

// The pairs of one post office that could not be removed after their message was done with. They
// are not fetched again: the same mail would be delivered at every poll. Shared by the post office
// and its messages, because a message may outlive its post office.
class KRX_StuckPairs {
 public:
  void add(const SCL_StringRef& directory, const SCL_StringRef& envelope);
  bool contains(const SCL_StringRef& directory, const SCL_StringRef& envelope) const;

 private:
  using Key = std::tuple<std::string, std::uint64_t, std::int64_t, int>;  // name, inode, modified
  static bool keyOf(const SCL_StringRef& directory, const SCL_StringRef& envelope, Key& key);
  std::set<Key> m_pairs;
};

// Removes a file at the end of its life, unless it does not own it (any more).
class KRX_FileGuard {
 public:
  KRX_FileGuard() noexcept = default;
  explicit KRX_FileGuard(SCL_String&& path) noexcept : m_path(std::move(path)) {}
  KRX_FileGuard(KRX_FileGuard&& other) noexcept;
  KRX_FileGuard(const KRX_FileGuard&) = delete;
  KRX_FileGuard& operator=(const KRX_FileGuard&) = delete;
  ~KRX_FileGuard();

  const SCL_String& path() const noexcept { return m_path; }
  // Only of a guard that owns nothing.
  void setPath(SCL_String path) noexcept { m_path = std::move(path); }
  void own() noexcept { m_owned = true; }
  void disown() noexcept { m_owned = false; }

 private:
  SCL_String m_path;
  bool m_owned = false;
};

// Removes a spool file if it exists and is not marked read-only, whoever owns it. 0 or an errno
// value; a file that is not there counts as removed.
int KRX_removeSpoolFile(const SCL_StringRef& path);
