// An environment variable that is set for the time of a test.
#pragma once

#include <string>

#include <stdlib.h>

class Variable {
 public:
  Variable(const char* name, const std::string& value) : m_name(name) {
    setenv(name, value.c_str(), 1);
  }
  Variable(const Variable&) = delete;
  Variable& operator=(const Variable&) = delete;
  ~Variable() { unsetenv(m_name); }

 private:
  const char* m_name;
};
