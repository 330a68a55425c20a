// The record of the last failure of a platform call, one for each thread.
#include "plat/PlatError.h"

#include <cerrno>
#include <cstring>

namespace plat {

namespace {

thread_local Failure t_failure;

// Without memory the path is left out: the error number matters more.
void setPath(std::string_view path) noexcept {
  try {
    t_failure.path.assign(path);
  } catch (...) {
    t_failure.path.clear();
  }
}

}  // namespace

const Failure& lastFailure() noexcept {
  return t_failure;
}

void clearFailure() noexcept {
  t_failure.operation = "";
  t_failure.path.clear();
  t_failure.error = 0;
}

int fail(const char* operation, std::string_view path, int error) noexcept {
  t_failure.operation = operation;
  t_failure.error = error;
  setPath(path);
  return error;
}

std::string errorText(int error) {
  // Not strerror(): its text follows the locale and its buffer is shared between threads.
  const char* text = strerrordesc_np(error);
  return text != nullptr ? text : "Unknown error " + std::to_string(error);
}

}  // namespace plat
