// The choice of the run directory.
#include "plat/PlatRunDir.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>

#include "plat/PlatSystem.h"

namespace plat {

namespace {

constexpr char SYSTEM_DIRECTORY[] = "/run/krx";
constexpr mode_t PRIVATE = 0700;

bool isWritable(const char* directory) {
  return ::faccessat(AT_FDCWD, directory, W_OK | X_OK, AT_EACCESS) == 0;
}

int makePrivate(const std::string& directory) {
  const bool made = ::mkdir(directory.c_str(), PRIVATE) == 0 || errno == EEXIST;
  return made ? 0 : fail("mkdir", directory, errno);
}

// /tmp is everybody's: whoever came first may have laid a directory or a link of that name.
int checkPrivate(const std::string& directory) {
  struct stat found {};
  if (::lstat(directory.c_str(), &found) < 0) {
    return fail("lstat", directory, errno);
  }
  const bool ours =
      S_ISDIR(found.st_mode) && found.st_uid == ::geteuid() && (found.st_mode & 07777) == PRIVATE;
  return ours ? 0 : fail("run directory", directory, EACCES);
}

}  // namespace

int runDirectory(std::string& directory) {
  if (const char* chosen = setting("KRX_RUN_DIR"); chosen != nullptr) {
    directory = toNative(chosen);
    return makePrivate(directory);
  }
  directory = SYSTEM_DIRECTORY;
  if (isWritable(SYSTEM_DIRECTORY)) {
    return 0;
  }
  if (const char* session = setting("XDG_RUNTIME_DIR"); session != nullptr) {
    directory = std::string(session) + "/krx";
    return makePrivate(directory);
  }
  directory = "/tmp/krx-" + std::to_string(::geteuid());
  const int error = makePrivate(directory);
  return error != 0 ? error : checkPrivate(directory);
}

}  // namespace plat
