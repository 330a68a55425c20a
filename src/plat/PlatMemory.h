// How the process takes memory from the kernel. On many machines the first touch of a fresh page
// costs more than filling it.
#pragma once

#include <cstddef>

namespace plat {

// For the start of a program that handles one mail after the other: memory that was freed is kept
// for the next one, up to 128 MiB, instead of being given back and faulted in again. A library
// leaves this to its program.
void keepFreedMemory() noexcept;

// One block of memory that only grows. From 16 MiB on it is a mapping of its own, which stands in
// large pages where the kernel has them and moves without being copied.
class GrowingBlock {
 public:
  GrowingBlock() noexcept = default;
  GrowingBlock(const GrowingBlock&) = delete;
  GrowingBlock& operator=(const GrowingBlock&) = delete;
  ~GrowingBlock();

  char* data() const noexcept { return m_data; }  // null until it has grown
  // Makes room for `size` bytes, of which the first `used` stay; false, and nothing changed, when
  // there are none.
  bool grow(std::size_t size, std::size_t used) noexcept;
  // Whether the bytes that no one has used yet are zero.
  bool comesZeroed() const noexcept { return m_isMapped; }

 private:
  bool map(std::size_t size, std::size_t used) noexcept;
  bool remap(std::size_t size) noexcept;

  char* m_data = nullptr;
  std::size_t m_size = 0;  // at m_data; of a mapping: the addresses, most of them without memory
  bool m_isMapped = false;
};

}  // namespace plat
