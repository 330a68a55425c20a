// What a program needs of its process: its terminal, requests to end, its number, a private
// temporary directory. Nothing of the library uses it.
#pragma once

#include <string>

namespace plat {

bool standardErrorIsTerminal() noexcept;

// SIGINT and SIGTERM set a flag instead of ending the process.
void catchEndRequests() noexcept;
bool endRequested() noexcept;

long processNumber() noexcept;

// A new directory of our own with mode 0700, removed with all that is in it. path() is in the
// system's form and ends in a backslash; empty when it could not be made.
class TemporaryDirectory {
 public:
  TemporaryDirectory();
  TemporaryDirectory(const TemporaryDirectory&) = delete;
  TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;
  ~TemporaryDirectory();
  const std::string& path() const noexcept { return m_path; }

 private:
  std::string m_native;
  std::string m_path;
};

}  // namespace plat
