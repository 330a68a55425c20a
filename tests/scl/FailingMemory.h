// Lets an allocation of the test program fail. For one source of a program: it replaces the
// program's operator new.
#pragma once

#include <cstdlib>
#include <new>
#include <utility>

// The so many-th allocation from now fails; 0: none.
static int failingAllocation = 0;

namespace failing {

inline void* allocate(std::size_t size) noexcept {
  const bool fails = failingAllocation > 0 && --failingAllocation == 0;
  return fails ? nullptr : std::malloc(size);
}

// Calls `attempt` with each of the allocations that it makes failing in turn, from the first to the
// one behind the last, which never comes.
template <class Attempt>
void eachAllocation(Attempt&& attempt) {
  for (int at = 1, left = 0; left == 0; ++at) {
    attempt(at, [&](auto&& operation) {
      failingAllocation = at;
      operation();
      left = std::exchange(failingAllocation, 0);
    });
  }
}

}  // namespace failing

void* operator new(std::size_t size) {
  void* const memory = failing::allocate(size);
  return memory != nullptr ? memory : throw std::bad_alloc();
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return failing::allocate(size);
}
void operator delete(void* memory) noexcept {
  std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
  std::free(memory);
}
