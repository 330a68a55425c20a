// Working names: taking a profile, giving it back, and finding one whose owner has died.
#include "pfa/PFAWORK.h"

#include <cerrno>
#include <functional>
#include <map>
#include <utility>
#include <vector>

#include "fl/FLFILES.h"
#include "gen/GENCODES.h"
#include "gen/GENTRC.h"
#include "plat/PlatPath.h"

namespace {

constexpr const char* OWNER_ATTRIBUTE = "user.krx.profile";
constexpr char FIRST_DIGIT = '1';
constexpr char LAST_DIGIT = '9';

// Empty when the profile's name is no path.
std::string workingName(const std::string& profile, char digit) {
  const char extension[] = {'.', '$', '$', digit, '\0'};
  SCL_String name;
  return fl::composeTarget(profile.c_str(), extension, name) == 0 ? name.c_str() : std::string();
}

std::string fullName(const std::string& profile) {
  std::string native = plat::toNative(profile);
  if (!native.empty() && native.front() == '/') {
    return native;
  }
  return plat::toNative(plat::currentDirectory()) + native;
}

bool isMissing(const std::string& path) {
  plat::FileStatus found;
  return plat::status(path, found, false) == 0 && found.kind == plat::Kind::missing;
}

int openExisting(FL_File& file, const std::string& path) {
  plat::OpenMode mode;
  mode.read = true;
  return file.open(path, mode);
}

bool isHeld(int lockResult) noexcept {
  return lockResult == EWOULDBLOCK || lockResult == EACCES;
}

// Between opening a file and locking it, another process may have put a new file under its name.
// A second opening meets our own lock exactly when the name still stands for the locked file.
bool standsForLocked(const std::string& path) {
  FL_File again;
  return openExisting(again, path) == 0 && isHeld(plat::lockFile(again));
}

// The files that stand under working names of the profile, newest first: an owner that died just
// after it had written the profile anew has left the former one as well.
std::vector<std::string> candidatesFor(const std::string& profile) {
  std::multimap<std::pair<std::int64_t, int>, std::string, std::greater<>> byTime;
  for (char digit = FIRST_DIGIT; digit <= LAST_DIGIT; ++digit) {
    std::string name = workingName(profile, digit);
    plat::FileStatus found;
    if (!name.empty() && plat::status(name, found) == 0 && found.kind == plat::Kind::regular) {
      byTime.emplace(std::pair(found.modifiedSeconds, found.modifiedNanoseconds), std::move(name));
    }
  }
  std::vector<std::string> names;
  for (auto& [time, name] : byTime) {
    names.push_back(std::move(name));
  }
  return names;
}

// True when the profile is back.
bool restore(const std::string& profile, const std::string& candidate) {
  FL_File file;
  if (openExisting(file, candidate) != 0 || plat::lockFile(file) != 0 ||
      !standsForLocked(candidate)) {
    return false;
  }
  std::string owner;
  if (plat::getExtendedAttribute(candidate, OWNER_ATTRIBUTE, owner) != 0) {
    gen::traceIfOn(1, "Profile %s is missing, %s may be its working file.", profile.c_str(),
                   candidate.c_str());
    return false;
  }
  if (owner != fullName(profile) || plat::renameNoReplace(candidate, profile) != 0) {
    return false;
  }
  gen::traceIfOn(1, "Profile %s had been left as %s, renamed back.", profile.c_str(),
                 candidate.c_str());
  return true;
}

}  // namespace

void PFA_WorkingFile::recover(const std::string& profile) {
  if (!isMissing(profile)) {
    return;
  }
  for (const std::string& candidate : candidatesFor(profile)) {
    if (restore(profile, candidate)) {
      return;
    }
  }
}

unsigned int PFA_WorkingFile::take(const std::string& profile) {
  FL_File file;
  if (openExisting(file, profile) != 0) {
    return PFA_OPEN;
  }
  // A file system without locks leaves the exclusion to the rename alone.
  const int locked = plat::lockFile(file);
  if (isHeld(locked) || (locked == 0 && !standsForLocked(profile))) {
    return PFA_OPEN;
  }
  m_profile = profile;  // before the rename, after which nothing may fail
  const unsigned int status = rename(profile);
  if (status == 0) {
    m_file = std::move(file);
  }
  return status;
}

unsigned int PFA_WorkingFile::rename(const std::string& profile) {
  bool marked = false;
  for (char digit = FIRST_DIGIT; digit <= LAST_DIGIT; ++digit) {
    m_name = workingName(profile, digit);
    if (m_name.empty()) {
      return PFA_OPEN;
    }
    if (!isMissing(m_name)) {
      continue;
    }
    if (!marked) {  // the mark goes first: it must be there whenever the process dies
      plat::setExtendedAttribute(profile, OWNER_ATTRIBUTE, fullName(profile));
      marked = true;
    }
    const int error = plat::renameNoReplace(profile, m_name);
    if (error != EEXIST) {
      return error == 0 ? 0 : PFA_OPEN;
    }
  }
  return PFA_NO_WORKING_NAME;
}

unsigned int PFA_WorkingFile::giveBack() {
  if (plat::renameNoReplace(m_name, m_profile) != 0) {
    return PFA_OPEN;
  }
  release();
  return 0;
}

void PFA_WorkingFile::discard() {
  plat::remove(m_name);
  release();
}

void PFA_WorkingFile::release() noexcept {
  m_file.close();
  m_name.clear();
  m_profile.clear();
}
