// For the sources of this folder only: owned descriptors, repeated calls, and paths that know how
// to report a failure.
#pragma once

#include <cerrno>
#include <string>
#include <string_view>

#include <poll.h>
#include <unistd.h>

#include "plat/PlatError.h"
#include "plat/PlatPath.h"

namespace plat {

// Calls again while a signal handler of the host interrupts the call.
template <class Call>
auto repeatInterrupted(Call call) {
  auto result = call();
  while (result < 0 && errno == EINTR) {
    result = call();
  }
  return result;
}

// Another process that tests a file holds a lease on it for a moment, in which a non-blocking open
// is refused. Waiting that moment out must not become a failed load.
inline constexpr int LEASE_ATTEMPTS = 50;

// The descriptor of `open`, or -1 with errno: EBUSY for a lease that outlasts the attempts.
template <class Open>
int waitOutLease(Open open, int attempts = LEASE_ATTEMPTS) {
  int descriptor = open();
  for (int attempt = 1; descriptor < 0 && errno == EWOULDBLOCK; ++attempt) {
    if (attempt >= attempts) {
      errno = EBUSY;
      break;
    }
    ::poll(nullptr, 0, 1);
    descriptor = open();
  }
  return descriptor;
}

// Closes the descriptor at the end of the block; errno survives that.
class Descriptor {
 public:
  explicit Descriptor(int descriptor) noexcept : m_descriptor(descriptor) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() {
    if (m_descriptor >= 0) {
      const int error = errno;
      ::close(m_descriptor);
      errno = error;
    }
  }
  int get() const noexcept { return m_descriptor; }
  bool isOpen() const noexcept { return m_descriptor >= 0; }
  int release() noexcept {
    const int descriptor = m_descriptor;
    m_descriptor = -1;
    return descriptor;
  }

 private:
  int m_descriptor;
};

// A path in both forms. The given text must outlive the object.
class NativePath {
 public:
  explicit NativePath(std::string_view given) : m_given(given), m_native(toNative(given)) {}
  // The empty text is the current directory.
  static NativePath ofDirectory(std::string_view given) {
    return NativePath(given.empty() ? std::string_view(".") : given);
  }

  const std::string& text() const noexcept { return m_native; }
  const char* c_str() const noexcept { return m_native.c_str(); }
  // A path without a native form (an unknown drive) is reported as it was given.
  int fail(const char* operation, int error) const noexcept {
    return plat::fail(operation, m_native.empty() ? m_given : std::string_view(m_native), error);
  }
  // How a call ends: 0, or the recorded errno when `result` is negative.
  int check(const char* operation, int result) const noexcept {
    return result < 0 ? fail(operation, errno) : 0;
  }

 private:
  std::string_view m_given;
  std::string m_native;
};

// The same path with its extension wholly in the other letter case: upper case when it has a small
// letter, else lower case. Empty when that changes nothing.
std::string withOtherCase(const std::string& native);

// Without regard to the case of ASCII letters, whatever the locale.
bool equalsIgnoringCase(std::string_view a, std::string_view b) noexcept;

// The value of an environment variable, null when it is not set or empty.
const char* setting(const char* name) noexcept;

// "name" made safe as a file name: every byte but letters, digits, "-" and "_" as %XX.
std::string asFileName(std::string_view name);

}  // namespace plat
