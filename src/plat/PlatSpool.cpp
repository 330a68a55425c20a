// Files of a spool directory, asked about relative to it.
#include "plat/PlatSpool.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>

#include "plat/PlatAttribute.h"
#include "plat/PlatSystem.h"

namespace plat {

namespace {

int describe(const struct stat& found, SpoolFile& file) noexcept {
  file.size = found.st_size;
  file.modifiedSeconds = found.st_mtim.tv_sec;
  return S_ISREG(found.st_mode) ? 0 : EINVAL;
}

}  // namespace

SpoolDirectory::~SpoolDirectory() {
  const Descriptor closed(m_directory);
}

int SpoolDirectory::open(std::string_view directory) {
  const NativePath native = NativePath::ofDirectory(directory);
  const Descriptor before(m_directory);
  m_directory =
      repeatInterrupted([&] { return ::open(native.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC); });
  return native.check("open", m_directory);
}

int SpoolDirectory::status(const std::string& name, SpoolFile& file) const {
  struct stat found {};
  if (::fstatat(m_directory, name.c_str(), &found, AT_SYMLINK_NOFOLLOW) < 0) {
    return errno;
  }
  return describe(found, file);
}

int SpoolDirectory::openFile(const char* name) const {
  return waitOutLease([&] {
    return repeatInterrupted([&] {
      return ::openat(m_directory, name, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    });
  });
}

int SpoolDirectory::read(const std::string& name, void* buffer, std::size_t count,
                         std::size_t& done, SpoolFile& file, unsigned int& bits) const {
  done = 0;
  const Descriptor opened(openFile(name.c_str()));
  struct stat found {};
  if (!opened.isOpen() || ::fstat(opened.get(), &found) < 0) {
    return errno;
  }
  if (const int error = describe(found, file); error != 0) {
    return error;
  }
  bits = attributesOf(opened.get(), found);
  // A regular file gives less than it is asked for only where it ends.
  const ssize_t got = repeatInterrupted([&] { return ::read(opened.get(), buffer, count); });
  if (got < 0) {
    return errno;
  }
  done = static_cast<std::size_t>(got);
  return 0;
}

}  // namespace plat
