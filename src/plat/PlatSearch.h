// Reads a directory lazily, name by name in the platform's order. "." and ".." never appear.
#pragma once

#include <string>
#include <string_view>

#include "plat/PlatFile.h"

namespace plat {

class DirectorySearch {
 public:
  DirectorySearch() noexcept = default;
  DirectorySearch(const DirectorySearch&) = delete;
  DirectorySearch& operator=(const DirectorySearch&) = delete;
  ~DirectorySearch();

  int open(std::string_view directory);
  // The next name; 0 and an empty name at the end. `maybeDirectory` is false when the directory
  // itself already tells that the name is a regular file.
  int next(std::string& name, bool& maybeDirectory);
  // As plat::attributes for a name just returned, relative to the open directory.
  int attributesOf(const std::string& name, unsigned int& bits);
  bool isOpen() const noexcept { return m_stream != nullptr; }
  void close() noexcept;

 private:
  void* m_stream = nullptr;  // DIR*
  std::string m_path;
};

}  // namespace plat
