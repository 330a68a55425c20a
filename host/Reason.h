// The reason file of a kept pair: a few lines "Label: value", for the operator and for the host.
#pragma once

#include <cstdint>
#include <string>

namespace host {

struct Reason {
  unsigned int status = 0;
  std::string text;
  std::int64_t time = 0;     // of the last failure, seconds since 1970-01-01 UTC
  std::uint32_t tries = 0;   // failures so far, and the try that was begun by putting it back
  std::uint64_t device = 0;  // the kept message file, so that a move that was interrupted
  std::uint64_t inode = 0;   // between its two files can be finished
  std::string name;          // the pair's own base name where it is kept under a shortened one
};

// What the file says; of what it does not say, or when there is none, the defaults. Whoever may
// write into the directory may have written it.
Reason readReason(const std::string& path);
// Written under another name first: a reason file is whole or not there. False, and the failure is
// plat::lastFailure(), when it cannot be written.
bool writeReason(const std::string& path, const Reason& reason);

}  // namespace host
