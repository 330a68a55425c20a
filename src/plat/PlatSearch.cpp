// Reading a directory name by name.
#include "plat/PlatSearch.h"

#include <cerrno>

#include <dirent.h>
#include <fcntl.h>

#include "plat/PlatAttribute.h"
#include "plat/PlatSystem.h"

namespace plat {

namespace {

bool isDots(std::string_view name) {
  return name == "." || name == "..";
}

}  // namespace

DirectorySearch::~DirectorySearch() {
  close();
}

int DirectorySearch::open(std::string_view directory) {
  close();
  const NativePath native = NativePath::ofDirectory(directory);
  m_path = native.text();
  Descriptor opened(repeatInterrupted(
      [&] { return ::open(native.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); }));
  if (!opened.isOpen()) {
    return native.fail("open", errno);
  }
  m_stream = ::fdopendir(opened.get());
  if (m_stream == nullptr) {
    return native.fail("fdopendir", errno);
  }
  opened.release();  // the stream closes it
  return 0;
}

int DirectorySearch::next(std::string& name, bool& maybeDirectory) {
  name.clear();
  if (m_stream == nullptr) {
    return fail("readdir", m_path, EBADF);
  }
  errno = 0;
  while (const struct dirent* entry = ::readdir(static_cast<DIR*>(m_stream))) {
    if (!isDots(entry->d_name)) {
      name = entry->d_name;
      maybeDirectory = entry->d_type != DT_REG;
      return 0;
    }
    errno = 0;
  }
  return errno == 0 ? 0 : fail("readdir", m_path, errno);
}

int DirectorySearch::attributesOf(const std::string& name, unsigned int& bits) {
  if (m_stream == nullptr) {
    return fail("stat", name, EBADF);
  }
  std::string path = m_path;
  if (path.back() != '/') {
    path += '/';
  }
  path += name;
  const int directory = ::dirfd(static_cast<DIR*>(m_stream));
  const int error = attributesAt(directory, name.c_str(), path.c_str(), bits);
  return error == 0 ? 0 : fail("stat", path, error);
}

void DirectorySearch::close() noexcept {
  if (m_stream != nullptr) {
    ::closedir(static_cast<DIR*>(m_stream));
    m_stream = nullptr;
  }
}

}  // namespace plat
