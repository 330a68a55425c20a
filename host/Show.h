// What the connector makes of a pair, without touching it.
#pragma once

#include <string>

namespace host {

struct ShowOptions {
  std::string envelope;  // path of the .RCP file
  std::string domain = "localhost";
  std::string containerClass = "Mail";
  bool json = false;
};

// Prints to standard output; the exit status (65 when the mail cannot be loaded).
int show(const ShowOptions& options);

}  // namespace host
