// Named events: a counter in a file that all processes map, and a futex on it. A semaphore would
// give a signal to one process only, and that may be the one that has just set it.
#include "plat/PlatEvent.h"

#include <atomic>
#include <cerrno>
#include <ctime>

#include <fcntl.h>
#include <linux/futex.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "plat/PlatRunDir.h"
#include "plat/PlatSystem.h"

namespace plat {

namespace {

constexpr std::size_t SIZE = sizeof(std::uint32_t);

using Counter = std::atomic_ref<std::uint32_t>;
static_assert(Counter::is_always_lock_free, "it is shared between processes");

// The counter of the event, mapped; null, and an error, when it is not there or cannot be had.
std::uint32_t* mapCounter(std::string_view name, bool create, int& error) {
  std::string path;
  if (error = runDirectory(path); error != 0) {
    return nullptr;
  }
  path += "/" + asFileName(name) + ".event";
  const int flags = O_RDWR | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK | (create ? O_CREAT : 0);
  const Descriptor file(repeatInterrupted([&] { return ::open(path.c_str(), flags, 0600); }));
  struct stat found {};
  if (!file.isOpen() || ::fstat(file.get(), &found) < 0) {
    error = fail("open", path, errno);
    return nullptr;
  }
  // Whoever comes first gives it its size, at which it stays.
  if (found.st_size < static_cast<off_t>(SIZE) && ::ftruncate(file.get(), SIZE) < 0) {
    error = fail("ftruncate", path, errno);
    return nullptr;
  }
  void* const place = ::mmap(nullptr, SIZE, PROT_READ | PROT_WRITE, MAP_SHARED, file.get(), 0);
  if (place == MAP_FAILED) {
    error = fail("mmap", path, errno);
    return nullptr;
  }
  return static_cast<std::uint32_t*>(place);
}

long futex(std::uint32_t* place, int operation, std::uint32_t value,
           const struct timespec* until) noexcept {
  return ::syscall(SYS_futex, place, operation, value, until, nullptr, FUTEX_BITSET_MATCH_ANY);
}

struct timespec momentIn(unsigned int milliseconds) {
  struct timespec until {};
  ::clock_gettime(CLOCK_MONOTONIC, &until);
  until.tv_sec += milliseconds / 1000;
  until.tv_nsec += long{1'000'000} * (milliseconds % 1000);
  if (until.tv_nsec >= 1'000'000'000) {
    until.tv_nsec -= 1'000'000'000;
    ++until.tv_sec;
  }
  return until;
}

}  // namespace

int setNamedEvent(std::string_view name) {
  int error = 0;
  std::uint32_t* const signals = mapCounter(name, false, error);
  if (signals == nullptr) {
    return error;
  }
  Counter(*signals).fetch_add(1);
  futex(signals, FUTEX_WAKE_BITSET, INT32_MAX, nullptr);
  ::munmap(signals, SIZE);
  return 0;
}

NamedEvent::~NamedEvent() {
  if (m_signals != nullptr) {
    ::munmap(m_signals, SIZE);
  }
}

int NamedEvent::create(std::string_view name) {
  if (m_signals != nullptr) {
    return fail("event", name, EEXIST);
  }
  int error = 0;
  m_signals = mapCounter(name, true, error);
  m_seen = m_signals != nullptr ? Counter(*m_signals).load() : 0;
  return error;
}

bool NamedEvent::wait(unsigned int milliseconds) {
  if (m_signals == nullptr) {
    return false;
  }
  const struct timespec until = momentIn(milliseconds);
  while (Counter(*m_signals).load() == m_seen) {
    if (futex(m_signals, FUTEX_WAIT_BITSET, m_seen, &until) < 0 && errno != EAGAIN) {
      return false;
    }
  }
  m_seen = Counter(*m_signals).load();
  return true;
}

}  // namespace plat
