// The pairs that wait in the post offices' directories, those that are kept, and what a crash left.
#pragma once

#include <string>

#include "host/Config.h"

class PFA_Profile;

namespace host {

struct ListOptions {
  bool json = false;
  bool incomplete = false;  // the files that lack their other half instead of the pairs
};

// Prints to standard output; the exit status.
int list(PFA_Profile& profile, const Config& config, const ListOptions& options);

// Puts one kept pair back into the source directory by hand; the exit status.
int retry(PFA_Profile& profile, const Config& config, const std::string& office,
          const std::string& base);

}  // namespace host
