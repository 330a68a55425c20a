// A directory of a test's own, removed at its end, and the small vocabulary of files in it.
#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>

#include <stdlib.h>

#include "gtest/gtest.h"

class Folder {
 public:
  Folder() : m_root(testing::TempDir() + "/krxXXXXXX") {
    if (mkdtemp(m_root.data()) == nullptr) {
      throw std::filesystem::filesystem_error("mkdtemp", std::error_code());
    }
  }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
  ~Folder() {
    std::error_code ignored;
    std::filesystem::remove_all(m_root, ignored);
  }

  std::string path(const std::string& name = "") const { return m_root + "/" + name; }
  std::string write(const std::string& name, const std::string& text) const {
    std::ofstream(path(name), std::ios::binary) << text;
    return path(name);
  }
  std::string read(const std::string& name) const {
    std::ifstream file(path(name), std::ios::binary);
    return file ? std::string(std::istreambuf_iterator<char>(file), {}) : "(no file)";
  }
  void setMode(const std::string& name, unsigned int mode) const {
    std::filesystem::permissions(path(name), static_cast<std::filesystem::perms>(mode));
  }
  unsigned int mode(const std::string& name) const {
    return static_cast<unsigned int>(std::filesystem::status(path(name)).permissions());
  }
  // The names in it, or in a directory of it, sorted, with a blank between them.
  std::string names(const std::string& directory = "") const {
    std::set<std::string> found;
    for (const auto& entry : std::filesystem::directory_iterator(path(directory))) {
      found.insert(entry.path().filename());
    }
    std::string text;
    for (const std::string& name : found) {
      text += (text.empty() ? "" : " ") + name;
    }
    return text;
  }

 private:
  std::string m_root;
};
