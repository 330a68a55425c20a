// The last failure of a platform call in this thread: which operation, on which path, with which
// error number. The host logs it beside a status. Functions of this layer that return an int
// return 0 or an errno value.
#pragma once

#include <string>
#include <string_view>

namespace plat {

struct Failure {
  const char* operation = "";  // a literal
  std::string path;            // as the file system knows it
  int error = 0;               // errno; 0: nothing has failed yet
};

const Failure& lastFailure() noexcept;
void clearFailure() noexcept;
// Records and returns `error`, so that a failing call can end with it.
int fail(const char* operation, std::string_view path, int error) noexcept;
// The C library's text of an errno value.
std::string errorText(int error);

}  // namespace plat
