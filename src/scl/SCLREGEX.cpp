// The compiled pattern over the C library's regular expressions.
#include "scl/SCLREGEX.h"

#include "scl/SCLEXCPT.h"

namespace {

// The regular-expression library gives up when its memory runs out. No memory is asked for to say
// so: the exception is made once and belongs to the process.
[[noreturn]] void giveUp() {
  static scl_exception_base aborted("Abort from Regex", false);
  throw &aborted;
}

}  // namespace

SCL_Regex::SCL_Regex(const SCL_StringRef& pattern) : m_valid(0) {
  const int failure = regcomp(&m_regex, pattern.c_str(), 0);
  if (failure == REG_ESPACE) {
    giveUp();
  }
  m_valid = failure == 0 ? 1 : 0;
}

SCL_Regex::~SCL_Regex() {
  if (isValid()) {
    regfree(&m_regex);
  }
}

int SCL_Regex::match(const SCL_StringRef& text, unsigned int& p, unsigned int& l) const {
  l = 0;
  if (!isValid() || p > text.length()) {
    return 0;
  }
  regmatch_t whole;
  const int failure = regexec(&m_regex, text.c_str() + p, 1, &whole, p == 0 ? 0 : REG_NOTBOL);
  if (failure == REG_ESPACE) {
    giveUp();
  }
  if (failure != 0) {
    return 0;
  }
  p += static_cast<unsigned int>(whole.rm_so);
  l = static_cast<unsigned int>(whole.rm_eo - whole.rm_so);
  return 1;
}
