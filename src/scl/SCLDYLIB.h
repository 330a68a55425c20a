// SCL_DynamicLibrary: a library loaded at run time, released with its handle.
#pragma once

#include "scl/SCLSTRNG.h"

class SCL_DynamicLibrary {
 public:
  SCL_DynamicLibrary() noexcept = default;
  SCL_DynamicLibrary(const SCL_DynamicLibrary&) = delete;
  SCL_DynamicLibrary& operator=(const SCL_DynamicLibrary&) = delete;
  ~SCL_DynamicLibrary();
  // 1 when loaded; 0 when it could not be, or, without a try, when a library is already held. The
  // platform layer maps the name (plat/PlatLibrary.h).
  int load(const SCL_StringRef& fileName);
  // Nonzero on success, and the handle is cleared; 0 when nothing is held or the platform refuses.
  int free();
  bool isLoaded() const noexcept { return m_handle != nullptr; }
  // Why the last load failed, in the loader's words; empty after one that did not.
  const SCL_String& errorText() const noexcept { return m_errorText; }
  void* symbol(const char* name) const;  // null when the library lacks it

 private:
  void* m_handle = nullptr;
  SCL_String m_errorText;
};
