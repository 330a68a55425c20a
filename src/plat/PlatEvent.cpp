// Named events on the named semaphores of the system.
#include "plat/PlatEvent.h"

#include <cerrno>
#include <ctime>

#include <fcntl.h>
#include <semaphore.h>

#include "plat/PlatSystem.h"

namespace plat {

namespace {

// Names of semaphores are one level below "/".
std::string semaphoreName(std::string_view name) {
  return "/krx-" + asFileName(name);
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
  const std::string path = semaphoreName(name);
  sem_t* semaphore = ::sem_open(path.c_str(), 0);
  if (semaphore == SEM_FAILED) {
    return fail("sem_open", path, errno);
  }
  int pending = 0;
  ::sem_getvalue(semaphore, &pending);
  const int result = pending > 0 ? 0 : ::sem_post(semaphore);
  const int error = result < 0 ? fail("sem_post", path, errno) : 0;
  ::sem_close(semaphore);
  return error;
}

NamedEvent::~NamedEvent() {
  if (m_handle != nullptr) {
    ::sem_close(static_cast<sem_t*>(m_handle));
  }
}

int NamedEvent::create(std::string_view name) {
  if (m_handle != nullptr) {
    return fail("sem_open", name, EEXIST);
  }
  const std::string path = semaphoreName(name);
  sem_t* semaphore = ::sem_open(path.c_str(), O_CREAT, 0600, 0U);
  if (semaphore == SEM_FAILED) {
    return fail("sem_open", path, errno);
  }
  m_handle = semaphore;
  return 0;
}

bool NamedEvent::wait(unsigned int milliseconds) {
  auto* semaphore = static_cast<sem_t*>(m_handle);
  const struct timespec until = momentIn(milliseconds);
  if (semaphore == nullptr || ::sem_clockwait(semaphore, CLOCK_MONOTONIC, &until) < 0) {
    return false;
  }
  // Two setters at the same moment may both have found nothing pending.
  while (::sem_trywait(semaphore) == 0) {
  }
  return true;
}

}  // namespace plat
