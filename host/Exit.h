// The program's exit statuses (those of sysexits.h) and the error that carries one.
#pragma once

#include <stdexcept>
#include <string>

namespace host {

enum Exit : int {
  done = 0,
  usage = 64,
  badMail = 65,
  unavailable = 69,
  inputOutput = 74,
  configuration = 78
};

// Ends the command with a message on standard error and this exit status.
class Error : public std::runtime_error {
 public:
  Error(Exit status, const std::string& message) : std::runtime_error(message), m_status(status) {}
  Exit status() const noexcept { return m_status; }

 private:
  Exit m_status;
};

}  // namespace host
