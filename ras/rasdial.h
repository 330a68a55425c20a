// Dialling an entry: the dialler's command line, and running it until the line is up.
#pragma once

#include <string>
#include <string_view>

#include "ras/rasbook.h"
#include "ras/raslink.h"

namespace ras {

struct Caller {
  std::string_view user;
  std::string_view password;  // never becomes part of a command line
  std::string_view number;    // empty: the entry's
};

// The command line that dials the entry: pppd, or the entry's own command with its "%" letters
// replaced by quoted values (docs/formats/phonebook.md). False when the command has an unknown one.
bool composeCommand(const Entry& entry, const Caller& caller, std::string& command);

// Runs the dialler, which returns when the line is up or has failed. ALREADY_OPEN while the entry
// is being dialled or connected. `link` is what the dialler has left behind, also after a failure;
// `words` the last line that a failing dialler wrote, printable and without the password.
Error dial(const Entry& entry, const Caller& caller, Link& link, std::string& words);

}  // namespace ras
