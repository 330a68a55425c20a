// Keeps pairs and puts them back.
#include "host/Quarantine.h"

#include <algorithm>
#include <limits>

#include "dv/DVPATH.h"
#include "fl/FLSEARCH.h"
#include "gen/GENCODES.h"
#include "gma/GMAMSG.h"
#include "gma/GMAPAIR.h"
#include "host/Log.h"
#include "host/PostOffices.h"
#include "host/Receiver.h"
#include "log/LOGGLB.h"
#include "plat/PlatClock.h"
#include "plat/PlatError.h"
#include "plat/PlatFile.h"
#include "plat/PlatLock.h"

namespace host {
namespace {

constexpr char REASON_EXTENSION[] = ".txt";
constexpr int LOCK_TIMEOUT = 100;

std::string baseOf(const std::string& name) {
  return name.substr(0, name.rfind('.'));
}

// A name of the receiver directory as the source directory has it.
std::string sourceName(const KeptPair& pair, const std::string& name) {
  return pair.base + name.substr(name.rfind('.'));
}

// A reason file is text that anybody may have put there; what it calls a name need not be one.
bool isBaseName(std::string_view name) {
  return !name.empty() && name.front() != '.' && name.size() <= dv::PATH_LENGTH &&
         std::none_of(name.begin(), name.end(), [](char c) {
           return static_cast<unsigned char>(c) < 0x20 ||
                  std::string_view("\\/:*?\"<>|").find(c) != std::string_view::npos;
         });
}

// Calls `visit` with each name in the directory that matches. One that is too long for a path is
// passed over: it is no name that a pair is kept under.
template <class Visitor>
void forEachName(const std::string& directory, const std::string& pattern, Visitor visit) {
  FL_Search search;
  search.startSearch((directory + pattern).c_str(), 0);
  char path[dv::PATH_SIZE];
  unsigned int status = 0;
  while (status == 0 || status == FL_SHORT_BUFFER) {
    status = search.nextMatch(sizeof path, path);
    if (status == 0) {
      const std::string name(path);
      visit(name.substr(name.find_last_of("\\/") + 1));
    }
  }
}

std::uint32_t oneMore(std::uint32_t tries) {
  return tries == std::numeric_limits<std::uint32_t>::max() ? tries : tries + 1;
}

bool isThere(const std::string& path) {
  plat::FileStatus file;
  return plat::status(path, file, false) == 0 && file.kind != plat::Kind::missing;
}

// The directory's lock, if it is free: what waits here can wait for the next poll.
class TriedLock {
 public:
  explicit TriedLock(const std::string& directory) {
    const std::string path = directory.substr(0, directory.size() - 1);
    m_held = plat::LockDir(path.c_str(), LOCK_TIMEOUT, &m_handle) != 0;
  }
  TriedLock(const TriedLock&) = delete;
  TriedLock& operator=(const TriedLock&) = delete;
  ~TriedLock() {
    if (m_held) {
      const char flag = 0;
      plat::UnlockDir(&flag, m_handle);
    }
  }
  bool isHeld() const noexcept { return m_held; }

 private:
  long m_handle = 0;
  bool m_held = false;
};

void tellUnwritten(const std::string& path, const char* effect) {
  LOG_globalLog().writeText(ALL_STREAMS, HOST_FACILITY, LOG_Logging::BRIEF,
                            "%s cannot be written, %s: %s.", path.c_str(),
                            plat::errorText(plat::lastFailure().error).c_str(), effect);
}

}  // namespace

Quarantine::Quarantine(const std::string& sourceDirectory, const Config& config)
    : m_source(withSeparator(sourceDirectory)),
      m_retries(config.retries),
      m_pause(config.retryPause) {}

std::string Quarantine::receiver() const {
  return m_source + RECEIVER_DIRECTORY;
}

std::string Quarantine::reasonFile(const std::string& base) const {
  return receiver() + base + REASON_EXTENSION;
}

bool Quarantine::keep(GMA_Message& message, unsigned int status, const std::string& why,
                      std::string& failure) {
  const std::optional<KeptCopy> copy = keepCopy(message, m_source, failure);
  if (!copy) {
    return false;
  }
  const std::string kept = baseOf(copy->envelope);
  const std::string base =
      baseOf(dynamic_cast<const GMA_FilePair&>(message).fetchedEnvelope().c_str());
  Reason reason = readReason(reasonFile(kept));
  reason.status = status;
  reason.text = why;
  reason.time = plat::now().seconds;
  reason.name = copy->shortened ? base : std::string();
  // The try of a pair that was put back is counted already.
  const bool isCounted = closeReason(copy->shortened ? base : kept, kept) && reason.tries != 0;
  reason.tries = isCounted ? reason.tries : oneMore(reason.tries);
  if (const std::optional<KeptPair> pair = examine(copy->envelope)) {
    plat::FileStatus file;
    if (plat::status(receiver() + pair->message, file, false) == 0) {
      reason.device = file.device;
      reason.inode = file.inode;
    }
  }
  // Without it the pair is kept all the same, and only by hand put back.
  if (!writeReason(reasonFile(kept), reason)) {
    tellUnwritten(reasonFile(kept), "tells nothing of this failure");
  }
  return true;
}

void Quarantine::delivered(const std::string& envelope) {
  const auto [first, last] = m_open.equal_range(baseOf(envelope));
  if (first == last || !hasReceiver(m_source)) {
    return;
  }
  for (auto reason = first; reason != last; ++reason) {
    plat::remove(reasonFile(reason->second));
  }
  m_open.erase(first, last);
}

// Whether the reason was open.
bool Quarantine::closeReason(const std::string& base, const std::string& kept) {
  const auto [first, last] = m_open.equal_range(base);
  const auto found = std::find(first, last, OpenReasons::value_type(base, kept));
  if (found == last) {
    return false;
  }
  m_open.erase(found);
  return true;
}

std::optional<KeptPair> Quarantine::examine(const std::string& envelope) const {
  KeptPair pair;
  pair.envelope = envelope;
  pair.reason = readReason(reasonFile(baseOf(envelope)));
  pair.base = isBaseName(pair.reason.name) ? pair.reason.name : baseOf(envelope);
  const bool lower = SCL_isLower(envelope.back());
  for (const char* extension : {lower ? ".msg" : ".MSG", lower ? ".MSG" : ".msg"}) {
    pair.message = baseOf(envelope) + extension;
    plat::FileStatus file;
    const auto isFile = [&](const std::string& path) {
      return plat::status(path, file, false) == 0 && file.kind == plat::Kind::regular;
    };
    // In the source directory only a file that an interrupted move left there is ours.
    if (isFile(receiver() + pair.message) ||
        (isFile(m_source + sourceName(pair, pair.message)) && file.inode == pair.reason.inode &&
         file.device == pair.reason.device)) {
      return pair;
    }
  }
  return std::nullopt;
}

std::vector<KeptPair> Quarantine::list() const {
  std::vector<KeptPair> pairs;
  if (hasReceiver(m_source)) {
    forEachName(receiver(), "*.RCP", [&](const std::string& name) {
      if (std::optional<KeptPair> pair = examine(name)) {
        pairs.push_back(std::move(*pair));
      }
    });
  }
  return pairs;
}

// A reason without its pair: the pair was put back, here or by another process.
void Quarantine::findOpenReasons() {
  m_open.clear();
  if (!hasReceiver(m_source)) {
    return;
  }
  forEachName(receiver(), std::string("*") + REASON_EXTENSION, [&](const std::string& name) {
    const std::string kept = baseOf(name);
    if (!isThere(receiver() + kept + ".RCP") && !isThere(receiver() + kept + ".rcp")) {
      const Reason reason = readReason(reasonFile(kept));
      m_open.emplace(isBaseName(reason.name) ? reason.name : kept, kept);
    }
  });
}

// A time that cannot be, because somebody wrote it or the clock was set, makes nobody wait.
bool Quarantine::isDue(const Reason& reason) const {
  const std::int64_t now = plat::now().seconds;
  const bool pauses = reason.time >= 0 && reason.time <= now && now - reason.time < m_pause;
  return reason.tries > 0 && reason.tries <= m_retries && !pauses;
}

unsigned int Quarantine::putBackDue() {
  unsigned int count = 0;
  findOpenReasons();
  for (const KeptPair& pair : list()) {
    if (isDue(pair.reason) && move(pair)) {
      ++count;
    }
  }
  return count;
}

bool Quarantine::putBack(const std::string& name) {
  for (const KeptPair& pair : list()) {
    if (pair.envelope == name || baseOf(pair.envelope) == name) {
      return move(pair);
    }
  }
  return false;
}

// Never over another pair of the name.
bool Quarantine::move(const KeptPair& pair) {
  const TriedLock lock(m_source);
  if (!lock.isHeld() || !isNameFree(pair) || !countTry(pair)) {
    return false;
  }
  if (!moveFiles(pair)) {
    writeReason(reasonFile(baseOf(pair.envelope)), pair.reason);
    return false;
  }
  plat::commitDirectory(m_source);
  plat::commitDirectory(receiver());
  m_open.emplace(pair.base, baseOf(pair.envelope));
  return true;
}

bool Quarantine::isNameFree(const KeptPair& pair) const {
  plat::FileStatus kept;
  if (isThere(m_source + sourceName(pair, pair.envelope)) ||
      plat::status(receiver() + pair.message, kept, false) != 0) {
    return false;
  }
  return kept.kind == plat::Kind::missing ||  // an earlier move left it in the source directory
         !isThere(m_source + sourceName(pair, pair.message));
}

// Before the try, so that it counts however it ends.
bool Quarantine::countTry(const KeptPair& pair) {
  Reason counted = pair.reason;
  counted.tries = oneMore(counted.tries);
  const std::string base = baseOf(pair.envelope);
  const bool isWritten = writeReason(reasonFile(base), counted);
  if (isWritten) {
    m_uncounted.erase(base);
  } else if (m_uncounted.insert(base).second) {
    tellUnwritten(reasonFile(base), "its pair is not put back");
  }
  return isWritten;
}

// The message file first, the envelope last.
bool Quarantine::moveFiles(const KeptPair& pair) {
  const std::string message = m_source + sourceName(pair, pair.message);
  plat::FileStatus kept;
  if (plat::status(receiver() + pair.message, kept, false) != 0 ||
      (kept.kind != plat::Kind::missing &&
       plat::renameNoReplace(receiver() + pair.message, message) != 0)) {
    return false;
  }
  if (plat::renameNoReplace(receiver() + pair.envelope,
                            m_source + sourceName(pair, pair.envelope)) != 0) {
    plat::renameNoReplace(message, receiver() + pair.message);
    return false;
  }
  return true;
}

}  // namespace host
