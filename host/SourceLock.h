// Holds a source directory for this process: two hosts never consume one.
#pragma once

#include <cstdint>
#include <string>

#include "plat/PlatFile.h"

namespace host {

// A lock on a file in the directory. Whoever removes that file, or brings another directory under
// the name, lets others lock another file: that is seen at the next hold.
class SourceLock {
 public:
  enum class State { held, taken, missing };

  // Takes the lock unless it is held as it was. `missing`: the directory is not there, and nothing
  // is held. Error(unavailable) when another process holds it, Error(inputOutput); then nothing is
  // held either.
  State hold(const std::string& directory, const std::string& postOffice);

 private:
  bool isHeldAs(const std::string& path) const;
  bool take(const std::string& path);

  plat::File m_file;
  std::uint64_t m_device = 0;
  std::uint64_t m_inode = 0;  // 0: not held
};

}  // namespace host
