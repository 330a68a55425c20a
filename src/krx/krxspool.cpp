// The spool directories' lock and what removes files from them.
#include "krx/krxspool.h"

#include <cerrno>

#include "gen/GENCATCH.h"
#include "gen/GENCODES.h"
#include "krx/krxapi.h"
#include "log/LOGGLB.h"
#include "log/LOGLOG.h"
#include "plat/PlatClock.h"
#include "plat/PlatError.h"
#include "plat/PlatFile.h"
#include "plat/PlatLock.h"

namespace {

SCL_String withoutFinalSeparator(const SCL_StringRef& directory) {
  SCL_String path(directory);
  const char last = SCL_lastChar(path);
  if (last == '\\' || last == '/') {
    path.removeLast();
  }
  return path;
}

}  // namespace

KRX_DirectoryLock::KRX_DirectoryLock(const SCL_StringRef& directory) {
  const SCL_String path = withoutFinalSeparator(directory);
  int error = 0;
  for (int attempt = 1; attempt <= ATTEMPTS && !m_held; ++attempt) {
    if (attempt > 1) {
      plat::sleepMilliseconds(PAUSE_MILLISECONDS);
    }
    m_held = plat::LockDir(path.c_str(), TIMEOUT_SECONDS, &m_handle) != 0;
    if (const int failure = plat::lockDirFailure(); !m_held && failure != 0 && error == 0) {
      error = failure;
      LOG_globalLog().writeText(KRX_LOG_ALL, KRX_FACILITY, LOG_Logging::BRIEF,
                                "Directory %s cannot be locked, %s.", path.c_str(),
                                plat::errorText(error).c_str());
    }
  }
}

KRX_DirectoryLock::~KRX_DirectoryLock() {
  if (m_held) {
    const char flag = 0;
    plat::UnlockDir(&flag, m_handle);
  }
}

unsigned int KRX_DirectoryLock::status() const noexcept {
  return m_held ? 0 : KRX_STILL_LOCKED;
}

bool KRX_StuckPairs::keyOf(const SCL_StringRef& directory, const SCL_StringRef& envelope,
                           Key& key) {
  plat::FileStatus file;
  if (plat::status((directory + envelope).view(), file, false) != 0 ||
      file.kind == plat::Kind::missing) {
    return false;
  }
  key = Key(envelope.c_str(), file.inode, file.modifiedSeconds, file.modifiedNanoseconds);
  return true;
}

void KRX_StuckPairs::add(const SCL_StringRef& directory, const SCL_StringRef& envelope) {
  Key key;
  if (keyOf(directory, envelope, key)) {
    m_pairs.insert(std::move(key));
  }
}

bool KRX_StuckPairs::contains(const SCL_StringRef& directory, const SCL_StringRef& envelope) const {
  Key key;
  return !m_pairs.empty() && keyOf(directory, envelope, key) && m_pairs.count(key) != 0;
}

KRX_FileGuard::KRX_FileGuard(KRX_FileGuard&& other) noexcept
    : m_path(std::move(other.m_path)), m_owned(std::exchange(other.m_owned, false)) {}

KRX_FileGuard::~KRX_FileGuard() {
  if (m_owned) {
    GENSwallow([this] { plat::remove(m_path.view()); });
  }
}

int KRX_removeSpoolFile(const SCL_StringRef& path) {
  unsigned int bits = 0;
  if (const int error = plat::attributes(path.view(), bits); error != 0) {
    return error == ENOENT ? 0 : error;
  }
  if ((bits & plat::ATTRIBUTE_READ_ONLY) != 0) {
    return EACCES;
  }
  const int error = plat::remove(path.view());
  return error == ENOENT ? 0 : error;
}
