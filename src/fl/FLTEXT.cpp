// Text files, line by line, on positional reads and writes.
#include "fl/FLTEXT.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <new>

#include "dv/DVPATH.h"
#include "fl/FLSTATUS.h"
#include "gen/GENCODES.h"
#include "gen/GENWNT.h"

namespace {

constexpr std::size_t FORMATTED_SIZE = 256;

plat::Share shareOf(unsigned int mode) noexcept {
  return (mode & FL_TextFile::WRITERS_EXCLUDED) != 0 ? plat::Share::denyWrite : plat::Share::all;
}

// 2, 3, 5, 7, 9 and 11 may also do the other of reading and writing.
plat::OpenMode openMode(unsigned int mode) {
  plat::OpenMode result;
  const unsigned int low = mode & 15U;
  if (low == 0 || low > 11) {
    GENAssert(GEN_BAD_SWITCH_VALUE, "FLTEXT", __LINE__);
  }
  result.read = low <= 3 || low % 2 == 1;
  result.write = low > 1;
  result.create = low >= 4;
  result.truncate = low >= 4 && low < 8;
  result.append = low >= 8;
  result.share = shareOf(mode);
  return result;
}

// A valid file name, whether or not the file exists.
bool isOutputName(const SCL_StringRef& path) {
  const int check = dv::checkFile(path);
  return check == 0 || check == -3;
}

// The first LF or CR, or null. The search for CR never passes the LF, so that lines cost what they
// are long.
const char* findLineEnd(const char* text, std::size_t count) noexcept {
  const auto* feed = static_cast<const char*>(std::memchr(text, '\n', count));
  const std::size_t limit = feed != nullptr ? static_cast<std::size_t>(feed - text) : count;
  const auto* ret = static_cast<const char*>(std::memchr(text, '\r', limit));
  return ret != nullptr ? ret : feed;
}

}  // namespace

FL_TextFile::~FL_TextFile() {
  close();
}

int FL_TextFile::openForInput(const SCL_StringRef& path, unsigned int mode) {
  plat::OpenMode how = openMode(mode);
  how.otherCase = true;
  return fl::checkAccess(path, 0) == 0 ? openFile(path, how) : -1;
}

int FL_TextFile::openForOutput(const SCL_StringRef& path, unsigned int mode,
                               unsigned int permissions) {
  plat::OpenMode how = openMode(mode);
  how.permissions = permissions;
  return isOutputName(path) ? openFile(path, how) : -1;
}

int FL_TextFile::createNew(const SCL_StringRef& path, unsigned int permissions) {
  plat::OpenMode how = openMode(WRITE);
  how.exclusive = true;
  how.permissions = permissions;
  return isOutputName(path) ? openFile(path, how) : -1;
}

int FL_TextFile::openFile(const SCL_StringRef& path, const plat::OpenMode& mode) {
  close();
  if (m_buffer == nullptr) {
    m_buffer.reset(new (std::nothrow) char[BUFFER_SIZE]);
    if (m_buffer == nullptr) {
      GENAssert(GEN_NULL_POINTER, "FLTEXT", __LINE__);
    }
  }
  m_append = mode.append;
  return m_file.open(path, mode) == 0 ? 0 : -1;
}

int FL_TextFile::readLine(unsigned int size, char* buffer) {
  if (size < 1) {
    GENAssert(GEN_INDEX_RANGE, "FLTEXT", __LINE__);
  }
  buffer[0] = '\0';
  if (startReading() != 0) {
    return -1;
  }
  m_lineNumber = m_lineEnds + 1;
  std::size_t length = 0;
  bool ended = false;
  int filled = 0;
  while (!ended && filled == 0 && length < size - 1) {
    filled = m_next < m_used ? 0 : fill();
    if (filled == 0) {
      ended = takePart(size - 1 - length, buffer, length);
    }
  }
  buffer[length] = '\0';
  if (filled < 0) {
    return -1;
  }
  return ended || length > 0 ? 0 : 1;
}

// Moves buffered text up to a line end, at most `room` characters; true when the line ended.
bool FL_TextFile::takePart(std::size_t room, char* buffer, std::size_t& length) {
  const char* from = m_buffer.get() + m_next;
  const std::size_t count = std::min(room, m_used - m_next);
  const char* end = findLineEnd(from, count);
  const std::size_t taken = end != nullptr ? static_cast<std::size_t>(end - from) : count;
  std::memcpy(buffer + length, from, taken);
  length += taken;
  m_next += taken;
  if (taken > 0) {
    m_afterReturn = false;
  }
  if (end == nullptr) {
    return false;
  }
  ++m_next;
  countLineEnd(*end);
  return true;
}

void FL_TextFile::countLineEnd(char end) noexcept {
  if (end == '\r' || !m_afterReturn) {
    ++m_lineEnds;
  }
  m_afterReturn = end == '\r';
}

// 0 when there is more to read, 1 at the end, -1 on an error.
int FL_TextFile::fill() {
  std::size_t done = 0;
  if (m_file.readAt(m_position, m_buffer.get(), BUFFER_SIZE, done) != 0) {
    return -1;
  }
  m_position += static_cast<std::int64_t>(done);
  m_next = 0;
  m_used = done;
  return done > 0 ? 0 : 1;
}

int FL_TextFile::startReading() {
  if (!m_file.isOpen()) {
    return -1;
  }
  const int result = m_writing ? flush() : 0;
  m_writing = false;
  return result;
}

int FL_TextFile::startWriting() {
  if (!m_file.isOpen()) {
    return -1;
  }
  if (!m_writing) {  // what was read ahead is given back
    m_position -= static_cast<std::int64_t>(m_used - m_next);
    m_used = 0;
    m_next = 0;
    m_writing = true;
  }
  return 0;
}

int FL_TextFile::writeLine(const SCL_StringRef& text) {
  if (startWriting() != 0) {
    return -1;
  }
  const std::string_view line = text.view();
  return put(line.data(), line.size()) == 0 && put("\n", 1) == 0 ? 0 : -1;
}

int FL_TextFile::writeFormatted(const char* format, ...) {
  char line[FORMATTED_SIZE];
  std::va_list arguments;
  va_start(arguments, format);
  const int length = std::vsnprintf(line, sizeof line, format, arguments);
  va_end(arguments);
  if (length < 0 || static_cast<std::size_t>(length) >= sizeof line) {
    GENAssert(GEN_INDEX_RANGE, "FLTEXT", __LINE__);
  }
  return writeLine(line);
}

int FL_TextFile::put(const char* text, std::size_t count) {
  while (count > 0) {
    if (m_used == BUFFER_SIZE && flush() != 0) {
      return -1;
    }
    const std::size_t taken = std::min(count, BUFFER_SIZE - m_used);
    std::memcpy(m_buffer.get() + m_used, text, taken);
    m_used += taken;
    text += taken;
    count -= taken;
  }
  return 0;
}

int FL_TextFile::flush() {
  if (m_used > 0) {
    m_failed = m_file.writeAt(m_position, m_buffer.get(), m_used) != 0 || m_failed;
    if (!m_append) {
      m_position += static_cast<std::int64_t>(m_used);
    }
    m_used = 0;
  }
  return m_failed ? -1 : 0;
}

int FL_TextFile::commit() {
  if (!m_file.isOpen() || (m_writing && flush() != 0)) {
    return -1;
  }
  return m_file.commit() == 0 ? 0 : -1;
}

int FL_TextFile::close() {
  const bool lost = (m_writing && flush() != 0) || m_failed;
  const bool closed = m_file.close() == 0;
  reset();
  return !lost && closed ? 0 : -1;
}

void FL_TextFile::reset() noexcept {
  m_used = 0;
  m_next = 0;
  m_position = 0;
  m_append = false;
  m_writing = false;
  m_failed = false;
  m_lineNumber = 0;
  m_lineEnds = 0;
  m_afterReturn = false;
}
