// Keeps pairs and puts them back.
#include "host/Quarantine.h"

#include <cstdio>
#include <sstream>

#include "dv/DVPATH.h"
#include "fl/FLSEARCH.h"
#include "host/PostOffices.h"
#include "host/Receiver.h"
#include "plat/PlatClock.h"
#include "plat/PlatFile.h"
#include "plat/PlatLock.h"

namespace host {
namespace {

constexpr char REASON_EXTENSION[] = ".txt";
constexpr int LOCK_TIMEOUT = 100;

std::string baseOf(const std::string& name) {
  return name.substr(0, name.rfind('.'));
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

std::string oneLine(std::string text) {
  for (char& c : text) {
    if (SCL_isControl(c)) {
      c = ' ';
    }
  }
  return text;
}

std::string localTime(std::int64_t seconds) {
  plat::LocalTime local;
  if (!plat::clock().toLocal({seconds, 0}, local)) {
    return {};
  }
  char text[64];
  std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d", local.year, local.month,
                local.day, local.hour, local.minute, local.second);
  return text;
}

// Empty when there is none. Whoever may write into the source directory may have put a FIFO or a
// link there.
std::string readReasonFile(const std::string& path) {
  plat::OpenMode mode;
  mode.read = true;
  mode.noFollow = true;
  plat::File file;
  std::string text(65536, '\0');
  std::size_t length = 0;
  if (file.open(path, mode) != 0 || file.readAt(0, text.data(), text.size(), length) != 0) {
    return {};
  }
  text.resize(length);
  return text;
}

Reason readReason(const std::string& path) {
  Reason reason;
  std::istringstream file(readReasonFile(path));
  std::string line;
  while (std::getline(file, line)) {
    std::istringstream fields(line);
    std::string name;
    fields >> name;
    if (name == "Status:") {
      fields >> reason.status;
    } else if (name == "Time:") {
      fields >> reason.time;
    } else if (name == "Tries:") {
      fields >> reason.tries;
    } else if (name == "File:") {
      fields >> reason.device >> reason.inode;
    } else if (name == "Reason:") {
      reason.text = line.substr(name.size() + 1 < line.size() ? name.size() + 1 : line.size());
    }
  }
  return reason;
}

// Written under another name first: a reason file is whole or not there.
bool writeReason(const std::string& path, const Reason& reason) {
  std::ostringstream text;
  text << "Status: " << reason.status << "\nReason: " << oneLine(reason.text)
       << "\nTime: " << reason.time << " (" << localTime(reason.time)
       << ")\nTries: " << reason.tries << "\nFile: " << reason.device << " " << reason.inode
       << "\n";
  const std::string content = text.str();
  const std::string temporary = path + "~";
  plat::OpenMode mode;
  mode.write = true;
  mode.create = true;
  mode.truncate = true;
  mode.noFollow = true;
  mode.permissions = 0660;
  plat::File file;
  return file.open(temporary, mode) == 0 && file.writeAt(0, content.data(), content.size()) == 0 &&
         file.commit() == 0 && file.close() == 0 && plat::rename(temporary, path) == 0;
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
  std::string envelope;
  if (!keepCopy(message, m_source, envelope, failure)) {
    return false;
  }
  const std::string path = reasonFile(baseOf(envelope));
  Reason reason = readReason(path);
  reason.status = status;
  reason.text = why;
  reason.time = plat::now().seconds;
  ++reason.tries;
  if (const std::optional<KeptPair> kept = examine(envelope)) {
    plat::FileStatus file;
    if (plat::status(receiver() + kept->message, file, false) == 0) {
      reason.device = file.device;
      reason.inode = file.inode;
    }
  }
  writeReason(path, reason);  // without it the pair is kept all the same, and only by hand put back
  m_open.erase(baseOf(envelope));
  return true;
}

void Quarantine::delivered(const std::string& envelope) {
  const std::string base = baseOf(envelope);
  if (m_open.erase(base) != 0) {
    plat::remove(reasonFile(base));
  }
}

std::optional<KeptPair> Quarantine::examine(const std::string& envelope) const {
  KeptPair pair;
  pair.envelope = envelope;
  pair.reason = readReason(reasonFile(baseOf(envelope)));
  const bool lower = SCL_isLower(envelope.back());
  for (const char* extension : {lower ? ".msg" : ".MSG", lower ? ".MSG" : ".msg"}) {
    pair.message = baseOf(envelope) + extension;
    for (const std::string& directory : {receiver(), m_source}) {
      plat::FileStatus file;
      if (plat::status(directory + pair.message, file, false) != 0 ||
          file.kind != plat::Kind::regular) {
        continue;
      }
      // In the source directory only a file that an interrupted move left there is ours.
      if (directory != m_source ||
          (file.inode == pair.reason.inode && file.device == pair.reason.device)) {
        return pair;
      }
    }
  }
  return std::nullopt;
}

std::vector<KeptPair> Quarantine::list() const {
  std::vector<KeptPair> pairs;
  FL_Search search;
  search.startSearch((receiver() + "*.RCP").c_str(), 0);
  char path[dv::PATH_SIZE];
  while (search.nextMatch(sizeof path, path) == 0) {
    const std::string name(path);
    if (std::optional<KeptPair> pair = examine(name.substr(name.find_last_of("\\/") + 1))) {
      pairs.push_back(std::move(*pair));
    }
  }
  return pairs;
}

// A reason without its pair: the pair was put back, here or by another process.
void Quarantine::findOpenReasons() {
  FL_Search search;
  search.startSearch((receiver() + "*" + REASON_EXTENSION).c_str(), 0);
  char path[dv::PATH_SIZE];
  while (search.nextMatch(sizeof path, path) == 0) {
    const std::string name(path);
    const std::string base = baseOf(name.substr(name.find_last_of("\\/") + 1));
    if (!isThere(receiver() + base + ".RCP") && !isThere(receiver() + base + ".rcp")) {
      m_open.insert(base);
    }
  }
}

unsigned int Quarantine::putBackDue() {
  const std::int64_t now = plat::now().seconds;
  unsigned int count = 0;
  findOpenReasons();
  for (const KeptPair& pair : list()) {
    const bool due = pair.reason.tries > 0 && pair.reason.tries <= m_retries &&
                     pair.reason.time + m_pause <= now;
    if (due && move(pair)) {
      ++count;
    }
  }
  return count;
}

bool Quarantine::putBack(const std::string& base) {
  for (const KeptPair& pair : list()) {
    if (pair.envelope == base || baseOf(pair.envelope) == base) {
      return move(pair);
    }
  }
  return false;
}

// The message file first, the envelope last, and never over another pair of the name.
bool Quarantine::move(const KeptPair& pair) {
  const TriedLock lock(m_source);
  if (!lock.isHeld() || !moveMessage(pair)) {
    return false;
  }
  if (plat::renameNoReplace(receiver() + pair.envelope, m_source + pair.envelope) != 0) {
    plat::renameNoReplace(m_source + pair.message, receiver() + pair.message);
    return false;
  }
  plat::commitDirectory(m_source);
  plat::commitDirectory(receiver());
  m_open.insert(baseOf(pair.envelope));
  return true;
}

bool Quarantine::moveMessage(const KeptPair& pair) {
  plat::FileStatus other;
  if (plat::status(m_source + pair.envelope, other, false) != 0 ||
      other.kind != plat::Kind::missing) {
    return false;
  }
  if (plat::status(receiver() + pair.message, other, false) != 0) {
    return false;
  }
  return other.kind == plat::Kind::missing ||  // an earlier move left it in the source directory
         plat::renameNoReplace(receiver() + pair.message, m_source + pair.message) == 0;
}

}  // namespace host
