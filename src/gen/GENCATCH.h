// The boundary at which a thrown exception pointer becomes a text or a status: runs an operation
// and catches everything that can come out of it, the exception pointer (released here),
// std::bad_alloc and anything else. And the opposite crossing: memory that cannot be had becomes
// the assertion 1 at its owner.
#pragma once

#include <exception>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <utility>

#include "gen/GENCODES.h"
#include "gen/GENWNT.h"
#include "scl/SCLEXCPT.h"

// A copy of `text`, made where memory may just have run out.
inline std::string GENTextOf(const char* text) noexcept {
  try {
    return text;
  } catch (...) {
    return "Out of memory";  // short enough to need no memory of its own
  }
}

// Runs `operation`; empty when it returned, else the text of what it threw. Throws nothing itself.
//
//   if (auto failure = GENCatch([&] { message->loadMessage(status); })) log(failure->c_str());
template <class Operation>
std::optional<std::string> GENCatch(Operation&& operation) noexcept {
  try {
    std::forward<Operation>(operation)();
    return std::nullopt;
  } catch (scl_exception_base* thrown) {
    std::string text = GENTextOf(thrown->message());
    thrown->release();
    return text;
  } catch (const std::bad_alloc&) {
    return GENTextOf("Out of memory");
  } catch (const std::exception& thrown) {
    return GENTextOf(thrown.what());
  } catch (...) {
    return GENTextOf("Unknown exception");
  }
}

// The same where nobody is left to be told: destructors and clean-up on a failing path.
template <class Operation>
void GENSwallow(Operation&& operation) noexcept {
  try {
    std::forward<Operation>(operation)();
  } catch (scl_exception_base* thrown) {
    thrown->release();
  } catch (...) {  // nothing may leave a destructor
  }
}

// Runs `operation` and answers what it does; memory that cannot be had is the assertion 1 at
// `source` and `line`.
template <class Operation>
decltype(auto) GENWithMemory(const char* source, unsigned int line, Operation&& operation) {
  try {
    return std::forward<Operation>(operation)();
  } catch (const std::bad_alloc&) {
    GENAssert(GEN_NULL_POINTER, source, line);
  }
}

// A new T; memory that cannot be had, for the object or inside its constructor, is the assertion 1
// at `source` and `line`.
template <class T, class... Arguments>
std::unique_ptr<T> GENMake(const char* source, unsigned int line, Arguments&&... arguments) {
  return GENWithMemory(source, line, [&] {
    return std::unique_ptr<T>(new T(std::forward<Arguments>(arguments)...));
  });
}
