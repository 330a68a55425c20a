// Preloaded into a host: from the FAIL_FROMth operator new on that follows the first file lock,
// FAIL_COUNT fail and say so on standard error.
#include <cstdlib>
#include <new>

#include <sys/syscall.h>
#include <unistd.h>

namespace {

long calls = -1;  // -1: not counted yet

bool isToFail() {
  static const long first = std::atol(std::getenv("FAIL_FROM"));
  static const long behind = first + std::atol(std::getenv("FAIL_COUNT"));
  return calls >= 0 && ++calls >= first && calls < behind;
}

}  // namespace

extern "C" int flock(int descriptor, int operation) noexcept {
  calls = calls < 0 ? 0 : calls;
  return static_cast<int>(syscall(SYS_flock, descriptor, operation));
}

void* operator new(std::size_t size) {
  constexpr char NOTE[] = "no memory\n";
  if (isToFail() && write(STDERR_FILENO, NOTE, sizeof NOTE - 1) > 0) {
    throw std::bad_alloc();
  }
  void* const memory = std::malloc(size);
  if (memory == nullptr) {
    throw std::bad_alloc();
  }
  return memory;
}

void* operator new[](std::size_t size) {
  return operator new(size);
}
