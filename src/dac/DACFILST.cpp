// The file stream.
#include "dac/DACFILST.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string>
#include <utility>

#include "dac/DACTOFIL.h"
#include "dv/DVPATH.h"
#include "gen/GENCATCH.h"
#include "gen/GENCODES.h"

namespace {

// Results of dv::checkFile.
constexpr int EXISTS = 0;
constexpr int WILDCARDS_IN_NAME = -2;
constexpr int DOES_NOT_EXIST = -3;

// The check is made after the open, for the few that fail; it takes either letter case, which the
// open may not.
unsigned int statusOfFailedOpen(const SCL_StringRef& path, int error) {
  const unsigned int status = dac::fileCheckStatus(dv::checkFile(path));
  if (status != 0) {
    return status;
  }
  return error == ENOENT ? DV_NOT_FOUND : DAC_OPEN;
}

}  // namespace

unsigned int dac::fileCheckStatus(int result) noexcept {
  // The streams number the two kinds of wildcards the other way round than the name check does.
  switch (result) {
    case EXISTS:
      return 0;
    case WILDCARDS_IN_NAME:
      return DV_NO_MATCH;
    case DOES_NOT_EXIST:
      return DV_NOT_FOUND;
    default:
      return DV_PATTERN;
  }
}

DAC_FileStream::~DAC_FileStream() {
  GENSwallow([this] {
    unsigned int ignored = 0;
    close(ignored);
  });
}

void DAC_FileStream::open(const SCL_StringRef& path, const Options& options, unsigned int& status) {
  if (status != 0) {
    return;
  }
  unsigned int ignored = 0;
  close(ignored);
  if (const int form = dv::checkFileForm(path); form != EXISTS) {
    status = dac::fileCheckStatus(form);
    return;
  }
  SCL_String kept(path);  // before there is a file, for which there may then be no memory
  plat::OpenMode mode;
  mode.read = true;
  mode.write = mode.append = !options.readOnly;
  mode.noFollow = options.noFollow;
  mode.otherCase = options.otherCase;
  const int error = m_file.open(path, mode);
  if (error != 0) {
    status = statusOfFailedOpen(path, error);
    return;
  }
  if (m_file.sizeAtOpen() > MAX_SIZE) {
    m_file.close();
    status = DAC_OPEN;
    return;
  }
  opened(std::move(kept), options);
  m_lastSize = m_file.sizeAtOpen();
  m_appendOnly = mode.append;
  m_readOnly = options.readOnly;
}

void DAC_FileStream::create(const SCL_StringRef& path, const Options& options,
                            unsigned int& status) {
  if (status != 0) {
    return;
  }
  unsigned int ignored = 0;
  close(ignored);
  const int check = dv::checkFile(path);
  if (check != DOES_NOT_EXIST && (check != EXISTS || options.lateName)) {
    status = DAC_EXISTS;
    return;
  }
  SCL_String kept(path);  // before there is a file, for which there may then be no memory
  plat::OpenMode mode;
  mode.read = mode.write = true;
  // The system decides whether the name is free: what exists may be a name in the other letter
  // case, and what another process has just made must not be emptied.
  mode.create = mode.exclusive = true;
  mode.lateName = options.lateName;
  mode.noFollow = options.noFollow;
  mode.permissions = options.permissions;
  const int error = m_file.open(path, mode);
  if (error != 0) {
    status = error == EEXIST ? DAC_EXISTS : DAC_OPEN;
    return;
  }
  opened(std::move(kept), options);
}

void DAC_FileStream::opened(SCL_String&& path, const Options& options) noexcept {
  m_Path = std::move(path);
  m_DeleteOnClose = options.deleteOnClose;
  m_appendOnly = false;
  m_readOnly = false;
  m_lastSize = 0;
}

void DAC_FileStream::close(unsigned int& status) {
  if (status != 0 || !m_file.isOpen()) {
    return;
  }
  const bool isWritten = handOn();
  dropBuffered();
  // The name that was opened: its extension may be in the other letter case than the path's.
  const std::string name = m_DeleteOnClose ? m_file.nativePath() : std::string();
  const bool isClosed = m_file.close() == 0;
  dac::deleteFilePatiently(name.c_str());
  m_Path.clear();
  m_DeleteOnClose = false;
  if (!isWritten) {
    status = DAC_WRITE;
  } else if (!isClosed) {
    status = DAC_FLUSH;
  }
}

void DAC_FileStream::commit(unsigned int& status) {
  flush(status);
  if (status == 0 && m_file.commit() != 0) {
    status = DAC_FLUSH;
  }
}

void DAC_FileStream::flush(unsigned int& status) {
  if (status == 0 && !handOn()) {
    status = DAC_FLUSH;
  }
}

std::int32_t DAC_FileStream::size(unsigned int& status) {
  if (status != 0) {
    return 0;
  }
  if (m_readOnly && m_file.isOpen()) {
    return static_cast<std::int32_t>(m_lastSize);
  }
  if (!handOn()) {
    status = DAC_WRITE;
    return 0;
  }
  std::int64_t bytes = 0;
  if (m_file.size(bytes) != 0 || bytes > MAX_SIZE) {
    status = DAC_SEEK;
    return 0;
  }
  m_lastSize = bytes;
  return static_cast<std::int32_t>(bytes);
}

void DAC_FileStream::setSize(std::int32_t newSize, unsigned int& status) {
  if (status != 0) {
    return;
  }
  if (newSize < 0) {
    status = DAC_NEGATIVE_POSITION;
  } else if (!handOn()) {
    status = DAC_WRITE;
  } else {
    dropBuffered();
    status = m_file.setSize(newSize) == 0 ? 0 : DAC_SET_SIZE;
  }
}

// The positioning before each read and write.
bool DAC_FileStream::seekTo(std::int32_t position, unsigned int& status) const noexcept {
  if (status == 0 && position < 0) {
    status = DAC_NEGATIVE_POSITION;
  } else if (status == 0 && !m_file.isOpen()) {
    status = DAC_SEEK;
  }
  return status == 0;
}

std::int32_t DAC_FileStream::read(std::int32_t& position, std::int32_t count, void* buffer,
                                  unsigned int& status) {
  if (!seekTo(position, status)) {
    return 0;
  }
  const auto wanted = static_cast<std::size_t>(std::max(count, 0));
  std::string_view ready = fetch(position, status);
  if (ready.empty() && status == 0) {
    status = DAC_END;
  }
  std::size_t done = 0;
  while (!ready.empty()) {
    const std::size_t taken = ready.copy(static_cast<char*>(buffer) + done, wanted - done);
    done += taken;
    ready = done < wanted ? fetch(position + static_cast<std::int64_t>(done), status)
                          : std::string_view();
  }
  position += static_cast<std::int32_t>(done);
  return static_cast<std::int32_t>(done);
}

// The file's bytes from `position` on, as many as the buffer holds; empty at the end, and on a
// failure. What lies beyond the reach of positions is not there, for a file may grow at any time.
std::string_view DAC_FileStream::fetch(std::int64_t position, unsigned int& status) {
  const std::int64_t offset = position - m_start;
  if (m_buffered == Buffered::read && offset >= 0 && offset < static_cast<std::int64_t>(m_used)) {
    return std::string_view(m_buffer.get(), m_used).substr(static_cast<std::size_t>(offset));
  }
  if (!handOn()) {
    status = DAC_WRITE;
    return {};
  }
  const std::int64_t end = m_readOnly ? m_lastSize : MAX_SIZE;
  if (position >= end || !haveBuffer(m_lastSize - position, status)) {
    return {};
  }
  const auto reach = static_cast<std::size_t>(end - position);
  std::size_t done = 0;
  if (m_file.readAt(position, m_buffer.get(), std::min(m_capacity, reach), done) != 0) {
    dropBuffered();
    status = DAC_READ;
    return {};
  }
  if (done > 0) {  // at the end what was read before stays, for whoever goes back
    m_buffered = Buffered::read;
    m_start = position;
    m_used = done;
  }
  return {m_buffer.get(), done};
}

// Makes the buffer hold `bytes`, or all that it may; what is in it stays.
bool DAC_FileStream::haveBuffer(std::int64_t bytes, unsigned int& status) noexcept {
  std::size_t capacity = m_readOnly ? LEAST_READ_BUFFER : LEAST_BUFFER_SIZE;
  while (capacity < BUFFER_SIZE && static_cast<std::int64_t>(capacity) < bytes) {
    capacity *= 2;
  }
  if (capacity <= m_capacity) {
    return true;
  }
  auto* buffer = static_cast<char*>(std::realloc(m_buffer.get(), capacity));
  if (buffer == nullptr) {
    status = DAC_NO_MEMORY;
    return false;
  }
  static_cast<void>(m_buffer.release());
  m_buffer.reset(buffer);
  m_capacity = capacity;
  return true;
}

void DAC_FileStream::write(std::int32_t& position, std::int32_t count, const void* data,
                           unsigned int& status) {
  if (!seekTo(position, status) || count <= 0) {
    return;
  }
  if (m_readOnly || std::int64_t{position} + count > MAX_SIZE) {
    status = DAC_WRITE;
    return;
  }
  gather(position, {static_cast<const char*>(data), static_cast<std::size_t>(count)}, status);
  if (status == 0) {
    position += count;
  }
}

// Whether bytes at `position` can join those gathered.
bool DAC_FileStream::takesUp(std::int64_t position, std::size_t count) const noexcept {
  return m_buffered == Buffered::gathered && count <= BUFFER_SIZE - m_used &&
         (m_appendOnly || position == m_start + static_cast<std::int64_t>(m_used));
}

void DAC_FileStream::gather(std::int64_t position, std::string_view bytes, unsigned int& status) {
  if (!takesUp(position, bytes.size())) {
    if (!handOn()) {
      status = DAC_WRITE;
      return;
    }
    dropBuffered();
    m_start = position;
  }
  if (bytes.size() > BUFFER_SIZE) {
    status = m_file.writeAt(position, bytes.data(), bytes.size()) == 0 ? 0 : DAC_WRITE;
  } else if (haveBuffer(static_cast<std::int64_t>(m_used + bytes.size()), status)) {
    // The bytes may lie in the window that this buffer has been until now, and then it has room.
    std::memmove(m_buffer.get() + m_used, bytes.data(), bytes.size());
    m_used += bytes.size();
    m_buffered = Buffered::gathered;
  }
}

// Writes what was gathered; false when some of it could not be written.
bool DAC_FileStream::handOn() noexcept {
  if (m_buffered != Buffered::gathered) {
    return true;
  }
  const bool isWritten = m_file.writeAt(m_start, m_buffer.get(), m_used) == 0;
  if (isWritten || m_appendOnly) {
    dropBuffered();
  }
  return isWritten;
}

void DAC_FileStream::dropBuffered() noexcept {
  m_buffered = Buffered::nothing;
  m_used = 0;
}

char DAC_FileStream::getChar(std::int32_t& position, unsigned int& status) {
  char byte = '\0';
  read(position, 1, &byte, status);
  return byte;
}

void DAC_FileStream::putChar(std::int32_t& position, char byte, unsigned int& status) {
  write(position, 1, &byte, status);
}

std::string_view DAC_FileStream::window(std::int32_t position) {
  unsigned int status = 0;  // a read will tell
  return seekTo(position, status) ? fetch(position, status) : std::string_view();
}
