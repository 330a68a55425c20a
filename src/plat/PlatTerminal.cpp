// What a program needs of its process.
#include "plat/PlatTerminal.h"

#include <atomic>
#include <filesystem>
#include <system_error>

#include <signal.h>
#include <stdlib.h>
#include <unistd.h>

#include "plat/PlatPath.h"

namespace plat {
namespace {

std::atomic<bool> g_endRequested{false};
static_assert(std::atomic<bool>::is_always_lock_free, "set from a signal handler");

void noteEndRequest(int /*signal*/) {
  g_endRequested.store(true);
}

}  // namespace

bool standardErrorIsTerminal() noexcept {
  return isatty(STDERR_FILENO) == 1;
}

void catchEndRequests() noexcept {
  struct sigaction action = {};
  action.sa_handler = noteEndRequest;
  sigemptyset(&action.sa_mask);
  sigaction(SIGINT, &action, nullptr);
  sigaction(SIGTERM, &action, nullptr);
}

bool endRequested() noexcept {
  return g_endRequested.load();
}

long processNumber() noexcept {
  return static_cast<long>(getpid());
}

TemporaryDirectory::TemporaryDirectory() {
  const char* base = getenv("TMPDIR");
  std::string name = std::string(base != nullptr && *base != '\0' ? base : "/tmp") + "/krxXXXXXX";
  if (mkdtemp(name.data()) != nullptr) {
    m_native = name;
    m_path = fromNative(name) + "\\";
  }
}

TemporaryDirectory::~TemporaryDirectory() {
  if (!m_native.empty()) {
    std::error_code ignored;
    std::filesystem::remove_all(m_native, ignored);
  }
}

}  // namespace plat
