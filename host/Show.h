// What the connector makes of a pair, without touching it.
#pragma once

#include "host/PrivateSpool.h"

namespace host {

// Prints to standard output; the exit status (65 when the mail cannot be loaded).
int show(const PairOptions& options, bool json);

}  // namespace host
