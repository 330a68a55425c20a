// Runs a command line through /bin/sh.
#pragma once

#include <string_view>

namespace plat {

// The exit code, 128 + signal when killed, -1 and `error` set when the shell cannot be started or
// waited for. No descriptor of the process is inherited but the standard streams; signals default.
int runCommand(std::string_view commandLine, int& error);

}  // namespace plat
