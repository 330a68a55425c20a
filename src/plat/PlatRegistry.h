// The registry: keys with typed values in an SQLite database at KRX_REGISTRY, else
// /var/lib/krx/registry.db, else under $XDG_STATE_HOME (or $HOME/.local/state). Names compare
// without regard to case; enumeration is in insertion order; each operation is one transaction;
// several processes at once are fine. Key paths use backslashes and carry no leading one.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace plat {

enum class ValueType : std::uint32_t {
  none = 0,
  string = 1,
  expandString = 2,
  binary = 3,
  number = 4
};

struct RegistryValue {
  std::string name;
  ValueType type = ValueType::none;
  std::string data;  // a string without its terminating zero; a number as 4 bytes, little-endian
};

// `root`: 0 classes root, 1 current user, 2 local machine, 3 users. All return 0 or an errno
// value; ENOENT for a missing key or value, EIO when the store cannot be used.
int registryCreateKey(int root, std::string_view key);
int registryKeyExists(int root, std::string_view key, bool& exists);
int registryReadValue(int root, std::string_view key, std::string_view name, RegistryValue& value);
// Creates the key when needed.
int registryWriteValue(int root, std::string_view key, const RegistryValue& value);
int registryDeleteValue(int root, std::string_view key, std::string_view name);
int registrySubkeys(int root, std::string_view key, std::vector<std::string>& names);
int registryValues(int root, std::string_view key, std::vector<RegistryValue>& values);
// The key with all that is beneath it.
int registryDeleteTree(int root, std::string_view key);

// "%NAME%" stands for the environment variable, empty when there is none; at most `limit` bytes.
std::string expandEnvironment(std::string_view text, std::size_t limit);
bool environment(const char* name, std::string& value);  // false when not set

}  // namespace plat
