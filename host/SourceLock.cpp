// The lock of a source directory.
#include "host/SourceLock.h"

#include <cerrno>

#include "host/Exit.h"
#include "host/PostOffices.h"
#include "plat/PlatError.h"
#include "plat/PlatTerminal.h"

namespace host {
namespace {

constexpr char LOCK_FILE[] = ".krxhost";

std::string numberIn(plat::File& file) {
  char text[64];
  std::size_t length = 0;
  if (file.readAt(0, text, sizeof text, length) != 0) {
    return {};
  }
  return std::string(SCL_trimmed(std::string_view(text, length)));
}

std::string numberAt(const std::string& path) {
  plat::OpenMode mode;
  mode.read = true;
  mode.noFollow = true;
  plat::File file;
  return file.open(path, mode) == 0 ? numberIn(file) : std::string();
}

[[noreturn]] void failAt(const std::string& path, int error) {
  throw Error(inputOutput, path + ": " + plat::errorText(error));
}

}  // namespace

SourceLock::State SourceLock::hold(const std::string& directory, const std::string& postOffice) {
  const std::string path = withSeparator(directory) + LOCK_FILE;
  if (isHeldAs(path)) {
    return State::held;
  }
  for (;;) {
    m_inode = 0;
    plat::OpenMode mode;
    mode.read = true;
    mode.write = true;
    mode.create = true;
    mode.noFollow = true;
    mode.permissions = 0600;
    int error = m_file.open(path, mode);
    if (error == ENOENT) {
      return State::missing;
    }
    if (error == 0) {
      error = plat::lockFile(m_file);
    }
    if (error == EWOULDBLOCK) {
      const std::string number = numberIn(m_file);
      throw Error(unavailable,
                  "The source directory of post office \"" + postOffice + "\" is in use by " +
                      (number.empty() ? "another process" : "process " + number) + ".");
    }
    if (error != 0) {
      failAt(path, error);
    }
    if (take(path)) {
      return State::taken;
    }
  }
}

bool SourceLock::isHeldAs(const std::string& path) const {
  plat::FileStatus found;
  return m_inode != 0 && plat::status(path, found, false) == 0 && found.inode == m_inode &&
         found.device == m_device;
}

// Writes our number into the locked file. False when another one has its name by now, because the
// file was removed between the opening and the lock.
bool SourceLock::take(const std::string& path) {
  const std::string number = std::to_string(plat::processNumber());
  const std::string line = number + "\n";
  if (m_file.setSize(0) != 0 || m_file.writeAt(0, line.data(), line.size()) != 0) {
    failAt(path, plat::lastFailure().error);
  }
  plat::FileStatus found;
  if (const int error = plat::status(path, found, false); error != 0) {
    failAt(path, error);
  }
  if (found.kind != plat::Kind::regular || numberAt(path) != number) {
    return false;
  }
  m_device = found.device;
  m_inode = found.inode;
  return true;
}

}  // namespace host
