// Memory from the kernel.
#include "plat/PlatMemory.h"

#include <cstdlib>
#include <cstring>

#include <malloc.h>
#include <sys/mman.h>

namespace plat {

namespace {

constexpr int KEPT_BYTES = 128 << 20;
constexpr std::size_t LEAST_MAPPING = std::size_t{16} << 20;
// A mapping takes addresses ahead of the need, which cost nothing.
constexpr std::size_t AHEAD = 4;

// Where the kernel has no large pages nothing is lost.
char* withLargePages(void* mapping, std::size_t size) noexcept {
  static_cast<void>(::madvise(mapping, size, MADV_HUGEPAGE));
  return static_cast<char*>(mapping);
}

}  // namespace

void keepFreedMemory() noexcept {
  ::mallopt(M_TRIM_THRESHOLD, KEPT_BYTES);
  ::mallopt(M_MMAP_THRESHOLD, LEAST_MAPPING);
  // Bins that are swept whenever a larger block is asked for, which is several times a mail.
  ::mallopt(M_MXFAST, 0);
}

GrowingBlock::~GrowingBlock() {
  if (m_isMapped) {
    ::munmap(m_data, m_size);
  } else {
    std::free(m_data);
  }
}

bool GrowingBlock::grow(std::size_t size, std::size_t used) noexcept {
  if (size <= m_size && m_data != nullptr) {
    return true;
  }
  if (m_isMapped) {
    return remap(size * AHEAD) || remap(size);
  }
  if (size >= LEAST_MAPPING && (map(size * AHEAD, used) || map(size, used))) {
    return true;
  }
  auto* data = static_cast<char*>(std::realloc(m_data, size));
  if (data == nullptr) {
    return false;
  }
  m_data = data;
  m_size = size;
  return true;
}

bool GrowingBlock::map(std::size_t size, std::size_t used) noexcept {
  void* mapping = ::mmap(nullptr, size, PROT_READ | PROT_WRITE,
                         MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  if (mapping == MAP_FAILED) {
    return false;
  }
  char* data = withLargePages(mapping, size);
  if (m_data != nullptr) {
    std::memcpy(data, m_data, used);
    std::free(m_data);
  }
  m_data = data;
  m_size = size;
  m_isMapped = true;
  return true;
}

bool GrowingBlock::remap(std::size_t size) noexcept {
  void* mapping = ::mremap(m_data, m_size, size, MREMAP_MAYMOVE);
  if (mapping == MAP_FAILED) {
    return false;
  }
  m_data = static_cast<char*>(mapping);
  m_size = size;
  return true;
}

}  // namespace plat
