// Run-time loading of libraries: "X.DLL" is looked up as X.so beside the objects that the process
// has loaded (this library first, so beside the module, too), then as the loader does; a path is
// taken as it is. KRX_RAS_LIBRARY names the file for RASAPI32.DLL.
#pragma once

#include <string>
#include <string_view>

namespace plat {

// Null, with the loader's reason in `errorText`, when it cannot be loaded.
void* loadLibrary(std::string_view name, std::string& errorText);
void* librarySymbol(void* handle, const char* name);  // null when there is no such symbol
bool freeLibrary(void* handle);                       // true when it was released

}  // namespace plat
