// A profile's file: opening, reading, and writing it back so that it is always whole.
#include <cerrno>
#include <utility>

#include "fl/FLTEXT.h"
#include "gen/GENCATCH.h"
#include "gen/GENCODES.h"
#include "gen/GENTRC.h"
#include "gen/GENWNT.h"
#include "pfa/PFAPROF.h"
#include "plat/PlatClock.h"
#include "plat/PlatError.h"

namespace {

constexpr unsigned int ATTEMPTS = 3;
constexpr unsigned int PAUSE = 1000;  // milliseconds between them
constexpr std::size_t MAX_FILE_NAME = 255;
constexpr unsigned int PRIVATE = 0600;  // a profile may hold passwords
constexpr unsigned int TEMPORARY_NAMES = 100;

// A file beside the profile that becomes the profile when it is complete; removed otherwise.
class NewFile {
 public:
  NewFile() noexcept = default;
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;
  ~NewFile() {
    if (!m_name.empty()) {
      GENSwallow([this] { plat::remove(m_name); });
    }
  }

  // A file of a crashed process may be in the way, so several names are tried.
  bool create(const std::string& profile) {
    const auto start = static_cast<unsigned long>(plat::now().milliseconds);
    for (unsigned long i = 0; i < TEMPORARY_NAMES; ++i) {
      std::string name = profile + '.' + std::to_string(start + i) + ".tmp";
      if (m_file.createNew(name.c_str(), PRIVATE) == 0) {
        m_name = std::move(name);
        return true;
      }
    }
    return false;
  }
  // True when all that was written is on stable storage under the profile's name.
  bool become(const std::string& profile) {
    const bool committed = m_file.commit() == 0;
    if (m_file.close() != 0 || !committed || plat::rename(m_name, profile) != 0) {
      return false;
    }
    m_name.clear();
    return true;
  }
  FL_TextFile& file() noexcept { return m_file; }

 private:
  FL_TextFile m_file;
  std::string m_name;
};

std::string folderOf(const std::string& path) {
  const std::size_t separator = path.find_last_of("\\/:");
  return separator == std::string::npos ? "." : path.substr(0, separator + 1);
}

}  // namespace

unsigned int PFA_Profile::open(const SCL_StringRef& fileName, bool writable, const char* section) {
  if (!m_open || m_writable != writable || fileName.view() != m_fileName) {
    m_openStatus = reopen(fileName, writable);
    if (m_openStatus != 0) {
      return m_openStatus;
    }
  }
  return section != nullptr ? selectSection(section) : 0;
}

// Flushing comes first also when nothing was changed: the file may stand under its working name.
unsigned int PFA_Profile::reopen(const SCL_StringRef& fileName, bool writable) {
  if (!m_fileName.empty()) {
    if (const unsigned int status = flush(); status != 0) {
      return status;
    }
  }
  discard();
  m_fileName = fileName.view();
  if (m_fileName.size() > MAX_FILE_NAME) {
    return report(PFA_OPEN);
  }
  PFA_WorkingFile::recover(m_fileName);
  const unsigned int status =
      writable ? openWritable() : retried([this] { return load(m_fileName); });
  m_open = status == 0;
  if (!m_open) {
    report(status);
    discard();
  }
  return status;
}

// Whatever fails once the file has its working name gives it its own name back.
unsigned int PFA_Profile::openWritable() {
  if (const auto status = retried([this] { return m_working.take(m_fileName); }); status != 0) {
    return status;
  }
  m_writable = true;
  const unsigned int status = retried([this] { return load(m_working.name()); });
  if (status != 0) {
    m_writable = false;
    m_working.giveBack();
  }
  return status;
}

// A file that cannot be opened may only be busy.
template <class Operation>
unsigned int PFA_Profile::retried(Operation operation) const {
  unsigned int status = operation();
  for (unsigned int attempt = 1; attempt < ATTEMPTS && (m_flags & RETRY_BUSY) != 0; ++attempt) {
    if (status != PFA_OPEN) {
      break;
    }
    plat::sleepMilliseconds(PAUSE);
    status = operation();
  }
  return status;
}

unsigned int PFA_Profile::load(const std::string& path) {
  FL_TextFile file;
  if (file.openForInput(path.c_str(), FL_TextFile::READ) != 0) {
    return PFA_OPEN;
  }
  char line[PFA_Entry::MAX_TEXT + 1];
  int result = file.readLine(sizeof line, line);
  for (; result == 0; result = file.readLine(sizeof line, line)) {
    if (const unsigned int status = loadLine(line, file.lineNumber()); status != 0) {
      return status;
    }
  }
  for (PFA_Section& section : m_sections) {
    section.finishLoad();
  }
  return result < 0 ? PFA_READ : 0;
}

unsigned int PFA_Profile::loadLine(std::string_view line, unsigned int lineNumber) {
  while (!line.empty() && SCL_isSpace(line.front())) {
    line.remove_prefix(1);
  }
  if (line.empty()) {
    return 0;
  }
  if (line.front() == '[') {
    return loadHeader(line);
  }
  if (line.front() != ';' || m_writable || (m_flags & KEEP_COMMENTS) != 0) {
    loadEntry(line, lineNumber);
  }
  return 0;
}

unsigned int PFA_Profile::loadHeader(std::string_view line) {
  line = SCL_trimmed(line);
  if (line.back() != ']') {
    return PFA_HEADER;
  }
  m_sections.emplace_back(line.substr(1, line.size() - 2));
  return 0;
}

void PFA_Profile::loadEntry(std::string_view line, unsigned int lineNumber) {
  if (m_sections.empty()) {
    m_sections.emplace_back("");
  }
  if (!m_sections.back().load(line, lineNumber).hasProperIndex()) {
    gen::traceIfOn(1, "Profile %s, line %u: the index is not 1 to 5 digits.", m_fileName.c_str(),
                   lineNumber);
  }
}

// A profile that a dead owner has left under its working name exists: a new file would hide it.
unsigned int PFA_Profile::create(const SCL_StringRef& fileName) {
  if (!m_fileName.empty()) {
    if (const unsigned int status = flush(); status != 0) {
      return status;
    }
  }
  PFA_WorkingFile::recover(fileName.c_str());
  plat::OpenMode mode;
  mode.write = true;
  mode.create = true;
  mode.exclusive = true;
  mode.permissions = PRIVATE;
  FL_File file;
  const int error = file.open(fileName, mode);
  if (error != 0) {
    return error == EEXIST ? PFA_EXISTS : PFA_CREATE;
  }
  file.close();
  return open(fileName, true);
}

unsigned int PFA_Profile::flush() {
  if (m_fileName.empty()) {
    return PFA_NO_FILE_NAME;
  }
  unsigned int status = 0;
  if (m_modified) {
    status = writeBack();
  } else if (m_working.isTaken()) {
    status = m_working.giveBack();
  }
  if (status != 0) {
    return report(status);
  }
  m_modified = false;
  m_writable = false;
  return 0;
}

// The new file is complete and on disk before it takes the profile's name, and has that name for
// good before the working file goes: at every moment one of them is whole.
unsigned int PFA_Profile::writeBack() {
  NewFile next;
  if (!next.create(m_fileName)) {
    return PFA_OPEN;
  }
  copyOwnership(next.file());
  if (!writeSections(next.file()) || !next.become(m_fileName) ||
      plat::commitDirectory(folderOf(m_fileName)) != 0) {
    return PFA_OPEN;
  }
  if (m_working.isTaken()) {
    m_working.discard();
  }
  return 0;
}

// Without the right to give the file away it stays ours alone.
void PFA_Profile::copyOwnership(FL_TextFile& file) {
  FL_File current;
  plat::OpenMode mode;
  mode.read = true;
  if (!m_working.isTaken() && current.open(m_fileName, mode) != 0) {
    return;
  }
  FL_File& from = m_working.isTaken() ? m_working.file() : current;
  if (plat::copyOwnership(file.file(), from) != 0) {
    gen::traceIfOn(1, "Profile %s: owner and mode could not be kept.", m_fileName.c_str());
  }
}

// Only a nameless section at the top needs no header to be read back as itself.
bool PFA_Profile::writeSections(FL_TextFile& file) const {
  bool first = true;
  bool good = true;
  for (const PFA_Section& section : m_sections) {
    if (section.isDeleted()) {
      continue;
    }
    if (!first || !section.name().empty()) {
      good = good && file.writeLine(('[' + section.name() + ']').c_str()) == 0;
    }
    first = false;
    for (const PFA_Entry& entry : section.entries()) {
      good = good && (entry.isDeleted() || file.writeLine(entry.text().data()) == 0);
    }
    good = good && file.writeLine(" ") == 0;
  }
  return good;
}

// A report that the host has not yet looked at is the older cause, and stays.
unsigned int PFA_Profile::report(unsigned int status) const {
  unsigned int pending = 0;
  int val1 = 0;
  int val2 = 0;
  GENGetStatus(pending, val1, val2);
  if (pending == 0) {
    GENSetStatus(status, plat::lastFailure().error, 0, m_fileName.c_str());
  }
  return status;
}

void PFA_Profile::discard() noexcept {
  makeCurrent(m_sections.end());
  m_sections.clear();
  makeCurrent(m_sections.end());
  m_open = false;
}
