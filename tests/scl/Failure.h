// What the tests of assertions compare: the line that an operation ends with, without the line
// number, which moves with the source.
#pragma once

#include <string>

#include "gen/GENCATCH.h"

// "<text> in <source>" of the assertion that `operation` raises; "none" when it returns.
template <class Operation>
std::string failureOf(Operation&& operation) {
  const std::string line = GENCatch(std::forward<Operation>(operation)).value_or("none");
  const std::string mark = "!!Assert: ";
  return line.rfind(mark, 0) == 0 ? line.substr(mark.size(), line.rfind(" at ") - mark.size())
                                  : line;
}
