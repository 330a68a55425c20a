// The boundary of the connector's operations: memory that cannot be had leaves them as the
// assertion 1, which hosts catch, not as std::bad_alloc.
#pragma once

#include <new>
#include <utility>

#include "gen/GENCODES.h"
#include "gen/GENWNT.h"

template <class Operation>
auto KRX_orAssert(const char* source, unsigned int line, Operation&& operation) {
  try {
    return std::forward<Operation>(operation)();
  } catch (const std::bad_alloc&) {
    GENAssert(GEN_NULL_POINTER, source, line);
  }
}
