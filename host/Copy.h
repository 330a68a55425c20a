// Copies a file under a new name, never over one that exists.
#pragma once

#include <string>

namespace host {

struct CopyOptions {
  unsigned int permissions = 0660;  // masked by the umask
  bool followLinks = false;
  bool commit = false;  // to stable storage before the copy counts
};

// 0 or an errno value (EEXIST when `to` is there); what was made is removed again on a failure.
int copyExclusively(const std::string& from, const std::string& to, const CopyOptions& options);

}  // namespace host
