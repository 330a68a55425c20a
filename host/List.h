// The pairs that wait in the post offices' directories, and those that are kept.
#pragma once

#include <string>

#include "host/Config.h"

class PFA_Profile;

namespace host {

// Prints to standard output; the exit status.
int list(PFA_Profile& profile, const Config& config, bool json);

// Puts one kept pair back into the source directory by hand; the exit status.
int retry(PFA_Profile& profile, const Config& config, const std::string& office,
          const std::string& base);

}  // namespace host
