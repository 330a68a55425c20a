// The handle of a library loaded at run time.
#include "scl/SCLDYLIB.h"

#include <string>

#include "gen/GENCATCH.h"
#include "plat/PlatLibrary.h"

SCL_DynamicLibrary::~SCL_DynamicLibrary() {
  GENSwallow([this] { free(); });
}

int SCL_DynamicLibrary::load(const SCL_StringRef& fileName) {
  if (m_handle != nullptr) {
    m_errorText = "A library is loaded already";
    return 0;
  }
  std::string errorText;
  m_handle = plat::loadLibrary(fileName, errorText);
  m_errorText = errorText.c_str();
  return m_handle != nullptr ? 1 : 0;
}

int SCL_DynamicLibrary::free() {
  if (m_handle == nullptr || !plat::freeLibrary(m_handle)) {
    return 0;
  }
  m_handle = nullptr;
  return 1;
}

void* SCL_DynamicLibrary::symbol(const char* name) const {
  return m_handle != nullptr ? plat::librarySymbol(m_handle, name) : nullptr;
}
