// Run-time loading of libraries under the names that the system knows them by.
#include "plat/PlatLibrary.h"

#include <algorithm>
#include <vector>

#include <dlfcn.h>
#include <link.h>

#include "plat/PlatSystem.h"

namespace plat {

namespace {

// "X.DLL" -> "X.so"; other names as they are.
std::string libraryFile(const std::string& native) {
  const std::size_t stem = native.size() < 4 ? 0 : native.size() - 4;
  return equalsIgnoringCase(std::string_view(native).substr(stem), ".DLL")
             ? native.substr(0, stem) + ".so"
             : native;
}

void addDirectoryOf(const char* file, std::vector<std::string>& directories) {
  const std::string_view path = file != nullptr ? file : "";
  const std::size_t slash = path.rfind('/');
  if (slash == std::string_view::npos) {
    return;
  }
  std::string directory(path.substr(0, slash + 1));
  if (std::find(directories.begin(), directories.end(), directory) == directories.end()) {
    directories.push_back(std::move(directory));
  }
}

int addLoaded(struct dl_phdr_info* loaded, std::size_t, void* directories) {
  addDirectoryOf(loaded->dlpi_name, *static_cast<std::vector<std::string>*>(directories));
  return 0;
}

// Where the objects of this process were loaded from, our own first: the module that asks stands in
// one of them.
std::vector<std::string> moduleDirectories() {
  std::vector<std::string> directories;
  Dl_info own{};
  if (::dladdr(reinterpret_cast<const void*>(&moduleDirectories), &own) != 0) {
    addDirectoryOf(own.dli_fname, directories);
  }
  ::dl_iterate_phdr(addLoaded, &directories);
  return directories;
}

// The file to hand to the loader; a bare name when none stands beside a module.
std::string findLibrary(std::string_view name) {
  const char* dialUp = setting("KRX_RAS_LIBRARY");
  if (dialUp != nullptr && equalsIgnoringCase(name, "RASAPI32.DLL")) {
    return toNative(dialUp);
  }
  std::string file = libraryFile(toNative(name));
  if (file.empty() || file.find('/') != std::string::npos) {
    return file;
  }
  for (const std::string& directory : moduleDirectories()) {
    if (::access((directory + file).c_str(), F_OK) == 0) {
      return directory + file;
    }
  }
  return file;
}

}  // namespace

void* loadLibrary(std::string_view name, std::string& errorText) {
  const std::string file = findLibrary(name);
  // The loader takes an empty name for the program itself.
  void* handle = file.empty() ? nullptr : ::dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (handle == nullptr) {
    const char* reason = file.empty() ? "No such library" : ::dlerror();
    errorText = reason != nullptr ? reason : "Unknown error";
  }
  return handle;
}

void* librarySymbol(void* handle, const char* name) {
  return ::dlsym(handle, name);
}

bool freeLibrary(void* handle) {
  return handle != nullptr && ::dlclose(handle) == 0;
}

}  // namespace plat
