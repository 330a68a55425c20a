// Paths between the system's form and the file system's, and the names made from them.
#include "plat/PlatPath.h"

#include <algorithm>
#include <cstdlib>
#include <memory>

#include "plat/PlatSystem.h"

namespace plat {

namespace {

bool isSeparator(char c) {
  return c == '\\' || c == '/';
}
bool isLower(char c) {
  return c >= 'a' && c <= 'z';
}
bool isUpper(char c) {
  return c >= 'A' && c <= 'Z';
}
char toLower(char c) {
  return isUpper(c) ? static_cast<char>(c + ('a' - 'A')) : c;
}
char toUpper(char c) {
  return isLower(c) ? static_cast<char>(c - ('a' - 'A')) : c;
}

bool hasDrive(std::string_view path) {
  return path.size() >= 2 && path[1] == ':' && (isLower(path[0]) || isUpper(path[0]));
}

std::string withSlashes(std::string_view path) {
  std::string native(path);
  std::replace(native.begin(), native.end(), '\\', '/');
  return native;
}

// Appends `path` to `root` with exactly one slash between them.
std::string below(std::string root, std::string_view path) {
  while (!root.empty() && root.back() == '/') {
    root.pop_back();
  }
  while (!path.empty() && isSeparator(path.front())) {
    path.remove_prefix(1);
  }
  root += '/';
  return root + withSlashes(path);
}

// The directory of a drive letter by KRX_DRIVES ("D:=/mnt/d;E:=/data"); empty for an unknown one.
std::string_view mappedDrive(char letter) {
  const char* text = setting("KRX_DRIVES");
  std::string_view rest = text != nullptr ? text : "";
  while (!rest.empty()) {
    const std::string_view entry = rest.substr(0, rest.find(';'));
    rest.remove_prefix(std::min(entry.size() + 1, rest.size()));
    if (entry.size() > 3 && toUpper(entry[0]) == letter && entry.substr(1, 2) == ":=") {
      return entry.substr(3);
    }
  }
  return {};
}

std::string driveToNative(std::string_view path) {
  const char letter = toUpper(path[0]);
  const std::string_view rest = path.substr(2);
  if (letter == 'C') {
    const bool relative = !rest.empty() && !isSeparator(rest.front());
    return relative ? withSlashes(rest) : below("", rest);
  }
  const std::string_view root = mappedDrive(letter);
  return root.empty() ? std::string() : below(std::string(root), rest);
}

// Neither the server and the share nor any ".." behind them may lead out of the directory that
// stands for the share.
bool staysBelowShare(std::string_view path) {
  constexpr int SERVER_AND_SHARE = 2;
  int depth = 0;
  while (!path.empty()) {
    const std::string_view name = path.substr(0, path.find_first_of("\\/"));
    path.remove_prefix(std::min(name.size() + 1, path.size()));
    const bool isPlace = name.empty() || name == "." || name == "..";
    if (isPlace && (depth < SERVER_AND_SHARE || (name == ".." && depth == SERVER_AND_SHARE))) {
      return false;
    }
    depth += !isPlace ? 1 : name == ".." ? -1 : 0;
  }
  return true;
}

std::string networkToNative(std::string_view path) {
  path.remove_prefix(2);
  if (!staysBelowShare(path)) {
    return std::string();
  }
  const char* root = setting("KRX_UNC_ROOT");
  return below(root != nullptr ? root : "/mnt/unc", path);
}

}  // namespace

std::string toNative(std::string_view path) {
  if (path.find('\0') != std::string_view::npos) {
    return std::string();  // the kernel would see another, shorter name
  }
  if (hasDrive(path)) {
    return driveToNative(path);
  }
  if (path.size() >= 2 && isSeparator(path[0]) && isSeparator(path[1])) {
    return networkToNative(path);
  }
  return withSlashes(path);
}

std::string fromNative(std::string_view path) {
  std::string text(path);
  std::replace(text.begin(), text.end(), '/', '\\');
  return text;
}

std::string currentDrive() {
  return "C:";
}

std::string currentDirectory() {
  const std::unique_ptr<char, decltype(&std::free)> found(::getcwd(nullptr, 0), &std::free);
  if (found == nullptr) {
    return std::string();
  }
  std::string directory = fromNative(found.get());
  if (directory.back() != '\\') {
    directory += '\\';
  }
  return directory;
}

std::string withOtherCase(const std::string& native) {
  const std::size_t point = native.rfind('.');
  const std::size_t slash = native.rfind('/');
  if (point == std::string::npos || (slash != std::string::npos && slash > point)) {
    return std::string();
  }
  std::string other = native;
  const auto extension = other.begin() + static_cast<std::ptrdiff_t>(point);
  const bool up = std::any_of(extension, other.end(), isLower);
  std::transform(extension, other.end(), extension, up ? toUpper : toLower);
  return other == native ? std::string() : other;
}

bool equalsIgnoringCase(std::string_view a, std::string_view b) noexcept {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char x, char y) { return toLower(x) == toLower(y); });
}

const char* setting(const char* name) noexcept {
  const char* value = std::getenv(name);
  return value != nullptr && *value != '\0' ? value : nullptr;
}

std::string asFileName(std::string_view name) {
  static constexpr char HEX[] = "0123456789ABCDEF";
  std::string safe;
  for (const char c : name) {
    if (isLower(c) || isUpper(c) || (c >= '0' && c <= '9') || c == '-' || c == '_') {
      safe += c;
    } else {
      const auto byte = static_cast<unsigned char>(c);
      safe += {'%', HEX[byte >> 4], HEX[byte & 15]};
    }
  }
  return safe;
}

}  // namespace plat
