// The console of the interactive debug kit: the standard streams, or the controlling terminal.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace plat {

bool consoleOpenOutput();  // false: there is none and none can be had
bool consoleOpenInput();
// Needs an open output; false when not everything could be written. A reader that has gone away
// does not raise SIGPIPE.
bool consoleWrite(std::string_view text);
// One line of at most `limit` bytes, with its line end if there was one; false at the end of the
// input or on a failed read. Not a byte beyond the line is taken from the input.
bool consoleReadLine(std::size_t limit, std::string& line);

}  // namespace plat
