// Looks at the files of a spool directory, with as few calls as they can be had for: a listing asks
// about a hundred thousand of them. Also what the directory's file system can do.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace plat {

struct SpoolFile {
  std::int64_t size = 0;
  std::int64_t modifiedSeconds = 0;  // since 1970-01-01 UTC
};

// Names are relative to the directory. Failures are errno values, not recorded: a listing meets
// many and leaves such files out. Links and what is no regular file are EINVAL or ELOOP.
class SpoolDirectory {
 public:
  SpoolDirectory() noexcept = default;
  SpoolDirectory(const SpoolDirectory&) = delete;
  SpoolDirectory& operator=(const SpoolDirectory&) = delete;
  ~SpoolDirectory();

  int open(std::string_view directory);
  int status(const std::string& name, SpoolFile& file) const;
  // Opens the file once for all that can be asked: its first bytes, as many as there are up to
  // `count`, and its attribute bits (PlatFile.h).
  int read(const std::string& name, void* buffer, std::size_t count, std::size_t& done,
           SpoolFile& file, unsigned int& bits) const;

 private:
  int openFile(const char* name) const;

  int m_directory = -1;
};

// Does the kernel give leases on this process's files in the directory? 0, or an errno value; then
// Share::denyAll goes by locks and the files' age. Leaves nothing in the directory.
int testLeases(std::string_view directory);

}  // namespace plat
