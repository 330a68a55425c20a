// The registry: key paths, statuses and size limits over the platform's store.
#include "gen/GENREG.h"

#include <algorithm>
#include <cerrno>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

#include "gen/GENCODES.h"
#include "plat/PlatRegistry.h"
#include "scl/SCLASCII.h"
#include "scl/SCLSTRTB.h"

namespace {

using plat::RegistryValue;
using plat::ValueType;

constexpr int LOCAL_MACHINE = 2;
constexpr const char* SOFTWARE = "SOFTWARE";
constexpr const char* SERVICES = "SYSTEM\\CurrentControlSet\\Services";
constexpr const char* PARAMETERS = "Parameters";

// Bytes, the terminating zero of a string included.
constexpr std::size_t MAX_STRING = 512;
constexpr std::size_t MAX_NUMBER_STRING = 32;
constexpr std::size_t MAX_KEY_NAME = 511;  // without its terminator
constexpr std::size_t MAX_COPIED = 256;

std::string join(std::string_view base, std::string_view sub) {
  std::string path(base);
  if (!path.empty() && !sub.empty()) {
    path += '\\';
  }
  path += sub;
  return path;
}

// The store overlooks backslashes that separate nothing; comparing paths must do so, too.
std::string normalised(std::string_view path) {
  std::string result;
  while (!path.empty()) {
    const std::string_view component = path.substr(0, path.find('\\'));
    path.remove_prefix(std::min(component.size() + 1, path.size()));
    result = join(result, component);
  }
  return result;
}

bool isText(ValueType type) noexcept {
  return type == ValueType::string || type == ValueType::expandString;
}

std::size_t storedSize(const RegistryValue& value) noexcept {
  return value.data.size() + (isText(value.type) ? 1 : 0);
}

void openKey(int root, const std::string& key, unsigned int& status) {
  bool exists = false;
  if (status == 0 && (plat::registryKeyExists(root, key, exists) != 0 || !exists)) {
    status = REG_OPEN;
  }
}

void createKey(int root, const std::string& key, unsigned int& status) {
  if (status == 0 && plat::registryCreateKey(root, key) != 0) {
    status = REG_CREATE;
  }
}

void readValue(int root, const std::string& key, const SCL_StringRef& name, RegistryValue& value,
               unsigned int& status) {
  openKey(root, key, status);
  if (status == 0 && plat::registryReadValue(root, key, name, value) != 0) {
    status = REG_READ;
  }
}

void writeValue(int root, const std::string& key, const RegistryValue& value,
                unsigned int& status) {
  createKey(root, key, status);
  if (status == 0 && plat::registryWriteValue(root, key, value) != 0) {
    status = REG_WRITE;
  }
}

// As the C library's atoi, which leaves a number out of range undefined: that one is clamped.
std::int32_t leadingNumber(std::string_view text) noexcept {
  std::size_t at = 0;
  while (at < text.size() && SCL_isSpace(text[at])) {
    ++at;
  }
  const bool negative = at < text.size() && text[at] == '-';
  if (at < text.size() && (negative || text[at] == '+')) {
    ++at;
  }
  constexpr std::int64_t BEYOND = std::int64_t{1} << 32;
  std::int64_t value = 0;
  for (; at < text.size() && SCL_isDigit(text[at]); ++at) {
    value = std::min(value * 10 + (text[at] - '0'), BEYOND);
  }
  using Limits = std::numeric_limits<std::int32_t>;
  return static_cast<std::int32_t>(
      std::clamp<std::int64_t>(negative ? -value : value, Limits::min(), Limits::max()));
}

std::uint32_t numberOf(const std::string& bytes) noexcept {
  std::uint32_t value = 0;
  for (std::size_t i = std::min<std::size_t>(bytes.size(), 4); i > 0; --i) {
    value = value << 8 | static_cast<unsigned char>(bytes[i - 1]);
  }
  return value;
}

std::string bytesOf(std::uint32_t value) {
  std::string bytes;
  for (int i = 0; i < 4; ++i, value >>= 8) {
    bytes += static_cast<char>(value & 0xFFU);
  }
  return bytes;
}

// Is `target` beneath `source`? A recursive copy into itself would never end.
bool isInside(std::string_view target, std::string_view source) noexcept {
  return target.size() > source.size() &&
         SCL_equalNoCase(target.substr(0, source.size()), source) &&
         (source.empty() || target[source.size()] == '\\');
}

void copyValues(int sourceRoot, const std::string& source, int targetRoot,
                const std::string& target, unsigned int& status) {
  std::vector<RegistryValue> values;
  if (plat::registryValues(sourceRoot, source, values) != 0) {
    status = REG_READ;
  }
  for (const RegistryValue& value : values) {
    if (value.name.size() > MAX_COPIED || storedSize(value) > MAX_COPIED) {
      status = REG_READ;
    }
    if (status == 0 && plat::registryWriteValue(targetRoot, target, value) != 0) {
      status = REG_WRITE;
    }
  }
}

void copyKey(int sourceRoot, const std::string& source, int targetRoot, const std::string& target,
             bool recursive, unsigned int& status) {
  openKey(sourceRoot, source, status);
  createKey(targetRoot, target, status);
  if (status != 0) {
    return;
  }
  copyValues(sourceRoot, source, targetRoot, target, status);
  std::vector<std::string> names;
  if (status == 0 && recursive && plat::registrySubkeys(sourceRoot, source, names) != 0) {
    status = REG_ENUMERATE;
  }
  for (const std::string& name : names) {
    copyKey(sourceRoot, join(source, name), targetRoot, join(target, name), true, status);
  }
}

std::string parametersOf(const SCL_StringRef& service) {
  return join(service, PARAMETERS);
}

}  // namespace

namespace gen {

void regReadString(int root, const SCL_StringRef& base, const SCL_StringRef& sub,
                   const SCL_StringRef& name, SCL_String& value, unsigned int& status) {
  RegistryValue found;
  readValue(root, join(base, sub), name, found, status);
  if (status != 0) {
    return;
  }
  if (!isText(found.type)) {
    status = REG_NOT_STRING;
  } else if (storedSize(found) > MAX_STRING) {
    status = REG_READ;
  } else {
    value.assign(found.data);
  }
}

void regWriteString(int root, const SCL_StringRef& base, const SCL_StringRef& sub,
                    const SCL_StringRef& name, const SCL_StringRef& text, unsigned int& status) {
  writeValue(root, join(base, sub),
             {std::string(name.view()), ValueType::string, std::string(text.view())}, status);
}

void regReadNumber(int root, const SCL_StringRef& base, const SCL_StringRef& sub,
                   const SCL_StringRef& name, std::uint32_t& value, unsigned int& status) {
  RegistryValue found;
  readValue(root, join(base, sub), name, found, status);
  if (status != 0) {
    return;
  }
  if (found.type == ValueType::number) {
    value = numberOf(found.data);
  } else if (found.type != ValueType::string) {
    status = REG_NOT_NUMBER;
  } else if (storedSize(found) > MAX_NUMBER_STRING) {
    status = REG_READ;
  } else {
    value = static_cast<std::uint32_t>(leadingNumber(found.data));
  }
}

void regWriteNumber(int root, const SCL_StringRef& base, const SCL_StringRef& sub,
                    const SCL_StringRef& name, std::uint32_t value, unsigned int& status) {
  writeValue(root, join(base, sub), {std::string(name.view()), ValueType::number, bytesOf(value)},
             status);
}

void regEnumKeys(int root, const SCL_StringRef& base, const SCL_StringRef& sub,
                 SCL_StringTable& names, unsigned int& status) {
  const std::string key = join(base, sub);
  openKey(root, key, status);
  if (status != 0) {
    return;
  }
  std::vector<std::string> found;
  const bool complete = plat::registrySubkeys(root, key, found) == 0;
  const bool readable = std::all_of(found.begin(), found.end(), [](const std::string& name) {
    return name.size() <= MAX_KEY_NAME;
  });
  if (!complete || !readable) {
    status = REG_ENUMERATE;
    return;
  }
  names.clear();
  for (const std::string& name : found) {
    names.add(name.c_str());
  }
}

void regDeleteKey(int root, const SCL_StringRef& base, const SCL_StringRef& sub,
                  const SCL_StringRef& key, unsigned int& status) {
  const std::string parent = join(base, sub);
  openKey(root, parent, status);
  // An empty name would stand for the parent itself.
  if (status == 0 &&
      (normalised(key).empty() || plat::registryDeleteTree(root, join(parent, key)) != 0)) {
    status = REG_DELETE_KEY;
  }
}

void regDeleteValue(int root, const SCL_StringRef& base, const SCL_StringRef& sub,
                    const SCL_StringRef& name, unsigned int& status) {
  const std::string key = join(base, sub);
  openKey(root, key, status);
  if (status == 0 && plat::registryDeleteValue(root, key, name) != 0) {
    status = REG_DELETE_VALUE;
  }
}

void regCopyKey(int sourceRoot, const SCL_StringRef& source, int targetRoot,
                const SCL_StringRef& target, bool recursive, unsigned int& status) {
  if (status != 0) {
    return;
  }
  const std::string from = normalised(source);
  const std::string to = normalised(target);
  if (sourceRoot == targetRoot && isInside(to, from)) {
    status = REG_CREATE;
    return;
  }
  copyKey(sourceRoot, from, targetRoot, to, recursive, status);
}

void regReadSoftwareString(const SCL_StringRef& path, const SCL_StringRef& name, SCL_String& value,
                           unsigned int& status) {
  regReadString(LOCAL_MACHINE, SOFTWARE, path, name, value, status);
}

void regWriteSoftwareString(const SCL_StringRef& path, const SCL_StringRef& name,
                            const SCL_StringRef& text, unsigned int& status) {
  regWriteString(LOCAL_MACHINE, SOFTWARE, path, name, text, status);
}

void regReadSoftwareNumber(const SCL_StringRef& path, const SCL_StringRef& name,
                           std::uint32_t& value, unsigned int& status) {
  regReadNumber(LOCAL_MACHINE, SOFTWARE, path, name, value, status);
}

void regWriteSoftwareNumber(const SCL_StringRef& path, const SCL_StringRef& name,
                            std::uint32_t value, unsigned int& status) {
  regWriteNumber(LOCAL_MACHINE, SOFTWARE, path, name, value, status);
}

void regDeleteSoftwareValue(const SCL_StringRef& path, const SCL_StringRef& name,
                            unsigned int& status) {
  regDeleteValue(LOCAL_MACHINE, SOFTWARE, path, name, status);
}

void regReadServiceString(const SCL_StringRef& service, const SCL_StringRef& name,
                          SCL_String& value, unsigned int& status) {
  regReadString(LOCAL_MACHINE, SERVICES, parametersOf(service).c_str(), name, value, status);
}

void regWriteServiceString(const SCL_StringRef& service, const SCL_StringRef& name,
                           const SCL_StringRef& text, unsigned int& status) {
  regWriteString(LOCAL_MACHINE, SERVICES, parametersOf(service).c_str(), name, text, status);
}

void regReadServiceNumber(const SCL_StringRef& service, const SCL_StringRef& name,
                          std::uint32_t& value, unsigned int& status) {
  regReadNumber(LOCAL_MACHINE, SERVICES, parametersOf(service).c_str(), name, value, status);
}

void regWriteServiceNumber(const SCL_StringRef& service, const SCL_StringRef& name,
                           std::uint32_t value, unsigned int& status) {
  regWriteNumber(LOCAL_MACHINE, SERVICES, parametersOf(service).c_str(), name, value, status);
}

void regDeleteServiceValue(const SCL_StringRef& service, const SCL_StringRef& name,
                           unsigned int& status) {
  regDeleteValue(LOCAL_MACHINE, SERVICES, parametersOf(service).c_str(), name, status);
}

}  // namespace gen
