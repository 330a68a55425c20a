// The pairs that wait in the post offices' directories.
#pragma once

#include <string>

#include "host/Config.h"

class PFA_Profile;

namespace host {

// Prints to standard output; the exit status.
int list(PFA_Profile& profile, const Config& config, bool json);

}  // namespace host
