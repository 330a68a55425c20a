// SCL_Regex: a compiled pattern over the C library's POSIX regular expressions (basic syntax, case
// counts). When that library runs out of memory it ends in a thrown scl_exception_base, "Abort from
// Regex", which belongs to the process.
#pragma once

#include <regex.h>

#include "scl/SCLSTRNG.h"

class SCL_Regex {
 public:
  // A pattern that does not compile leaves an object that is not valid and matches nothing.
  explicit SCL_Regex(const SCL_StringRef& pattern);
  SCL_Regex(const SCL_Regex&) = delete;
  SCL_Regex& operator=(const SCL_Regex&) = delete;
  ~SCL_Regex();
  bool isValid() const noexcept { return m_valid != 0; }
  // As SCL_StringRef::match: 1, p at the match and l its length, else 0 and l = 0.
  int match(const SCL_StringRef& text, unsigned int& p, unsigned int& l) const;

 private:
  unsigned int m_valid;
  regex_t m_regex;
};
