// A device that fails: while one lives, one of the calls beneath ends with its error. The C
// library's function of the same name, which stands behind it, has done its work all the same.
#pragma once

#include <cerrno>
#include <string_view>

#include <dlfcn.h>
#include <sys/statvfs.h>
#include <unistd.h>

class BrokenDevice {
 public:
  BrokenDevice(std::string_view call, int error) : m_call(call), m_error(error) { s_now = this; }
  BrokenDevice(const BrokenDevice&) = delete;
  BrokenDevice& operator=(const BrokenDevice&) = delete;
  ~BrokenDevice() { s_now = nullptr; }

  template <class Result, class... Parameters, class... Arguments>
  static Result answer(const char* call, Result (*)(Parameters...), Arguments... arguments) {
    const auto behind = reinterpret_cast<Result (*)(Parameters...)>(dlsym(RTLD_NEXT, call));
    const Result result = behind(arguments...);
    if (s_now == nullptr || s_now->m_call != call) {
      return result;
    }
    errno = s_now->m_error;
    return -1;
  }

 private:
  std::string_view m_call;
  int m_error;
  static inline const BrokenDevice* s_now = nullptr;
};

extern "C" {
[[gnu::weak]] int close(int descriptor) {
  return BrokenDevice::answer("close", &close, descriptor);
}
[[gnu::weak]] int fsync(int descriptor) {
  return BrokenDevice::answer("fsync", &fsync, descriptor);
}
[[gnu::weak]] ssize_t pwrite(int descriptor, const void* data, size_t size, off_t position) {
  return BrokenDevice::answer("pwrite", &pwrite, descriptor, data, size, position);
}
[[gnu::weak]] int statvfs(const char* path, struct statvfs* space) noexcept {
  return BrokenDevice::answer(
      "statvfs", static_cast<int (*)(const char*, struct statvfs*)>(&statvfs), path, space);
}
}
