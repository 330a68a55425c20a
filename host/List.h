// The pairs that wait in the post offices' directories, those that are kept, and what a crash left.
#pragma once

#include <string>

#include "host/PostOffices.h"

namespace host {

struct ListOptions {
  bool json = false;
  bool incomplete = false;  // the files that lack their other half instead of the pairs
};

// Prints to standard output; the exit status.
int list(PostOffices& postOffices, const ListOptions& options);

// Puts one kept pair back into the source directory by hand; the exit status.
int retry(PostOffice& office, const std::string& name);

}  // namespace host
