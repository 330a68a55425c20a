// The file stream: configuration, opening, writing, reading back.
#include "log/LOGFilSt.h"

#include <algorithm>
#include <utility>

#include "dac/DACATTRN.h"
#include "dac/DACFILDA.h"
#include "dac/DACMEMDA.h"
#include "dac/DACTOFIL.h"
#include "dv/DVDECODE.h"
#include "dv/DVPATH.h"
#include "fl/FLFILES.h"
#include "gen/GENCATCH.h"
#include "gen/GENCODES.h"
#include "gen/GENWNT.h"
#include "log/LOGLINE.h"

namespace {

enum Key : unsigned int { FILE_ROOT_NAME = 1, NAME_TYPE };

constexpr unsigned int LONGEST_ROOT = 254;
constexpr unsigned int OWN_FACILITY = 5;
constexpr unsigned int BRIEF = 1;
constexpr std::int64_t RETRY_MILLISECONDS = 1000;
constexpr std::int32_t OBJECT_LINE_SIZE = 128;
constexpr unsigned int DATE_TEXT_SIZE = 12;

DV_Date dateOf(const plat::LocalTime& now) {
  return DV_Date(static_cast<unsigned int>(now.year), static_cast<unsigned int>(now.month),
                 static_cast<unsigned int>(now.day));
}

plat::LocalTime localNow() {
  plat::LocalTime now;
  plat::localNow(now);
  return now;
}

// A name that may be opened: a file, or nothing yet.
unsigned int checkLogName(const SCL_StringRef& name) {
  const unsigned int status = dv::decodeStatus(dv::checkFile(name));
  return status == DV_NOT_FOUND ? 0 : status;
}

unsigned int checkDirectoryOf(const SCL_StringRef& path) {
  dv::PathRecord record;
  if (dv::decodePath(record, path, dv::MODE_UNC | dv::MODE_DRIVE) < 0) {
    return DV_NO_MATCH;
  }
  const SCL_String directory = dv::composePath(record, dv::PART_FOLDER);
  if (directory.isEmpty()) {
    return 0;
  }
  const unsigned int status = dv::decodeStatus(dv::checkDirectory(dv::PATH_SIZE, directory));
  return status == DV_NOT_FOUND ? LOG_NO_DIRECTORY : status;
}

std::unique_ptr<DAC_FileDataAccess> openLogFile(const SCL_StringRef& name, unsigned int& status) {
  auto file = GENMake<DAC_FileDataAccess>("LOGFilSt", __LINE__, name,
                                          DAC_FileDataAccess::CREATE | DAC_FileDataAccess::LOG_FILE,
                                          status);
  if (status != 0) {
    file.reset();
  }
  return file;
}

}  // namespace

LOG_FileStream::LOG_FileStream(const char* name) : LOG_Stream(name) {}

LOG_FileStream::~LOG_FileStream() = default;

void LOG_FileStream::configureKey(const SCL_StringRef& key, const SCL_StringRef& value,
                                  unsigned int& status) {
  if (status != 0) {
    return;
  }
  switch (dv::keywordIndex("{ FileRootName | NameType }", key)) {
    case FILE_ROOT_NAME:
      return setRootName(value, status);
    case NAME_TYPE:
      m_nameType = static_cast<Kind>(dv::keywordIndex("{ Date | NumericSeq }", value));
      status = m_nameType != Kind::none ? 0 : LOG_NAME_TYPE;
      return;
    default:
      LOG_Stream::configureKey(key, value, status);
  }
}

void LOG_FileStream::setRootName(const SCL_StringRef& value, unsigned int& status) {
  if (value.length() > LONGEST_ROOT) {
    status = LOG_NAME_TOO_LONG;
    return;
  }
  status = checkLogName(value);
  if (status == 0) {
    status = checkDirectoryOf(value);
  }
  if (status == 0) {
    m_root = value.view();
  }
}

void LOG_FileStream::endOfConfiguration(unsigned int& status) {
  if (status != 0) {
    return;
  }
  if (m_nameType != Kind::none && m_root.empty()) {
    status = LOG_NO_ROOT_NAME;
    return;
  }
  status = m_names.parse(m_root, m_nameType);
  if (status == 0 && m_nameType != Kind::none) {
    findExisting(status);
  }
}

void LOG_FileStream::findExisting(unsigned int& status) {
  std::vector<std::uint32_t> keys;
  status = m_names.forEachFile([&](std::uint32_t key) { keys.push_back(key); });
  if (m_nameType == Kind::date) {
    keys.push_back(static_cast<std::uint32_t>(DV_Date().dayNumber()));
  }
  if (status == 0 && !keys.empty()) {
    const auto [lowest, highest] = std::minmax_element(keys.begin(), keys.end());
    m_lowest = *lowest;
    m_highest = *highest;
  }
}

bool LOG_FileStream::isReady(const plat::LocalTime& now) {
  closeAtNewDay(now);
  if (m_object != nullptr) {
    return true;
  }
  const std::int64_t clock = plat::clock().monotonicMilliseconds();
  if (clock < m_retryAt) {
    return false;
  }
  m_retryAt = clock + RETRY_MILLISECONDS;  // before the attempt, which may also end in a throw
  unsigned int status = 0;
  openLog(now, status);
  return m_object != nullptr;
}

// What a TransientFile holds lives as long as the stream.
void LOG_FileStream::closeAtNewDay(const plat::LocalTime& now) {
  if (m_object != nullptr && m_nameType == Kind::date && type() != LOG_TRANSIENT_FILE &&
      m_openDate.compare(dateOf(now)) != 0) {
    m_object.reset();
  }
}

void LOG_FileStream::openLog(const plat::LocalTime& now, unsigned int& status) {
  const DV_Date today = dateOf(now);
  m_object = makeLog(today, status);
  if (m_object == nullptr) {
    return;
  }
  m_retryAt = 0;
  m_openDate = today;
  m_object->setStringAttribute(dac::CONTENT_TITLE, name().c_str());
  m_object->setStringAttribute(dac::CONTAINER_NAME, "LoggingStream");
  char date[DATE_TEXT_SIZE];
  today.format(date, sizeof date);
  unsigned int written = 0;  // the log is open, whether or not its first line finds room
  m_object->seek(DAC_BaseDataAccess::FROM_END, 0, written);
  writeLine(now, OWN_FACILITY, BRIEF, std::string("Log file opened on ") + date, written);
  m_object->flush(written);
}

std::unique_ptr<DAC_BaseDataAccess> LOG_FileStream::makeLog(const DV_Date& today,
                                                            unsigned int& status) {
  switch (type()) {
    case LOG_SYSTEM_FILE:
    case LOG_USER_FILE:
      return openFile(today, status);
    case LOG_TRANSIENT_FILE:
      return GENMake<DAC_MemoryDataAccess>("LOGFilSt", __LINE__);
    default:
      return nullptr;
  }
}

std::unique_ptr<DAC_BaseDataAccess> LOG_FileStream::openFile(const DV_Date& today,
                                                             unsigned int& status) {
  if (m_root.empty()) {
    GENAssert(GEN_NULL_POINTER, "LOGFilSt", __LINE__);
  }
  std::uint32_t number = m_highest;
  const std::string path =
      m_nameType == Kind::number ? nextNumberedName(number, status) : m_names.nameOf(today);
  if (status == 0) {
    status = checkLogName(path.c_str());
  }
  std::unique_ptr<DAC_FileDataAccess> file = openLogFile(path.c_str(), status);
  // Only a file that existed is open for appending. One that was just made is opened again, so
  // that two processes that log into it never write over each other's lines.
  if (file != nullptr && !file->stream()->appendOnly()) {
    unsigned int again = 0;
    std::unique_ptr<DAC_FileDataAccess> appending = openLogFile(path.c_str(), again);
    if (appending != nullptr) {
      file = std::move(appending);
    }
  }
  if (file != nullptr) {
    m_highest = number;
  }
  return file;
}

// The first name behind `number` that no file has; 0 is left out when the number wraps.
std::string LOG_FileStream::nextNumberedName(std::uint32_t& number, unsigned int& status) const {
  std::string path;
  int found = 0;
  while (found == 0) {
    number = number == UINT32_MAX ? 1 : number + 1;
    path = m_names.nameOf(number);
    found = dv::checkFile(path.c_str());
  }
  const unsigned int failure = dv::decodeStatus(found);
  status = failure == DV_NOT_FOUND ? 0 : failure;
  return path;
}

// Runs write(now, status) with the log open and its cursor at the end, and hands the result to the
// system. Nothing leaves: an entry that cannot be written is dropped.
template <class Write>
void LOG_FileStream::append(Write write) {
  GENSwallow([&] {
    const std::lock_guard guard(m_lock);
    const plat::LocalTime now = localNow();
    if (!isReady(now)) {
      return;
    }
    unsigned int status = 0;
    m_object->seek(DAC_BaseDataAccess::FROM_END, 0, status);
    write(now, status);
    m_object->flush(status);
  });
}

void LOG_FileStream::writeEntry(unsigned int facility, unsigned int level, unsigned int length,
                                const char* text, bool raw) {
  append([&](const plat::LocalTime& now, unsigned int& status) {
    const std::string_view entry(text, length);
    if (raw) {
      writeDump(now, facility, level, 0, entry, status);
    } else {
      writeLine(now, facility, level, entry, status);
    }
  });
}

void LOG_FileStream::writeDataObject(unsigned int facility, unsigned int level,
                                     DAC_BaseDataAccess& object, bool raw) {
  append([&](const plat::LocalTime& now, unsigned int& status) {
    object.seek(DAC_BaseDataAccess::FROM_START, 0, status);
    if (raw) {
      writeDumpOf(object, now, facility, level, status);
    } else {
      writeLinesOf(object, now, facility, level, status);
    }
  });
}

void LOG_FileStream::writeLine(const plat::LocalTime& now, unsigned int facility,
                               unsigned int level, std::string_view text, unsigned int& status) {
  char prefix[logging::PREFIX_SIZE];
  m_line.assign(prefix, logging::formatPrefix(prefix, sizeof prefix, now, facility, level));
  m_line.append(text).append("\r\n");
  m_object->write(static_cast<std::int32_t>(m_line.size()), m_line.data(), status);
}

void LOG_FileStream::writeDump(const plat::LocalTime& now, unsigned int facility,
                               unsigned int level, std::uint32_t offset, std::string_view bytes,
                               unsigned int& status) {
  for (std::size_t at = 0; at < bytes.size() && status == 0; at += logging::DUMP_BYTES) {
    const std::string_view piece = bytes.substr(at, logging::DUMP_BYTES);
    char dump[logging::DUMP_SIZE];
    const unsigned int length =
        logging::formatDump(dump, offset + static_cast<std::uint32_t>(at), piece.data(),
                            static_cast<unsigned int>(piece.size()));
    writeLine(now, facility, level, {dump, length}, status);
  }
}

// Content without a line end at its end, and a line that does not fit, answer 10014; so may an
// empty piece, which cannot be told from no progress and ends the walk.
void LOG_FileStream::writeLinesOf(DAC_BaseDataAccess& object, const plat::LocalTime& now,
                                  unsigned int facility, unsigned int level, unsigned int& status) {
  while (status == 0) {
    char line[OBJECT_LINE_SIZE];
    unsigned int result = 0;
    const std::int32_t length = object.readLine(sizeof line, line, result);
    const bool isPiece = result == DAC_LINE_TOO_LONG && length > 0;
    if (result != 0 && !isPiece) {
      return;
    }
    writeLine(now, facility, level, {line, static_cast<std::size_t>(length)}, status);
  }
}

void LOG_FileStream::writeDumpOf(DAC_BaseDataAccess& object, const plat::LocalTime& now,
                                 unsigned int facility, unsigned int level, unsigned int& status) {
  std::uint32_t offset = 0;
  while (status == 0) {
    char bytes[logging::DUMP_BYTES];
    unsigned int result = 0;
    const std::int32_t count = object.read(sizeof bytes, bytes, result);
    if (count <= 0 || (result != 0 && result != DAC_END)) {
      return;
    }
    writeDump(now, facility, level, offset, {bytes, static_cast<std::size_t>(count)}, status);
    offset += static_cast<std::uint32_t>(count);
  }
}

void LOG_FileStream::close(bool deleteFile, unsigned int& status) {
  const std::lock_guard guard(m_lock);
  if (status != 0) {
    return;
  }
  if (deleteFile && type() == LOG_SYSTEM_FILE) {
    status = LOG_SYSTEM_FILE_KEPT;
    return;
  }
  SCL_String path;
  if (m_object != nullptr && deleteFile && type() == LOG_USER_FILE) {
    m_object->getStringAttribute(dac::CONTENT_PATH, path, status);
  }
  m_object.reset();
  if (status == 0 && !path.isEmpty()) {
    status = fl::deleteFile(path);
  }
}

void LOG_FileStream::open(unsigned int& status) {
  const std::lock_guard guard(m_lock);
  if (status != 0) {
    return;
  }
  const plat::LocalTime now = localNow();
  closeAtNewDay(now);
  if (m_object == nullptr) {
    openLog(now, status);
  }
}

void LOG_FileStream::copyLogToFile(const SCL_StringRef& path, unsigned int& status) {
  const std::lock_guard guard(m_lock);
  if (status == 0 && m_object != nullptr) {
    dac::copyToFile(m_object.get(), path, status);
  }
}

void LOG_FileStream::readLog(DAC_BaseDataAccess& target, unsigned int& status) {
  const std::lock_guard guard(m_lock);
  if (status == 0 && m_object != nullptr) {
    m_object->copyAllTo(&target, 0, status);
  }
}
