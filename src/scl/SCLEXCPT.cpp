// The exception of all libraries.
#include "scl/SCLEXCPT.h"

#include <cstring>

scl_exception_base::scl_exception_base() noexcept : scl_exception_base("Generic exception", true) {}

scl_exception_base::scl_exception_base(const char* message, bool autoDelete) noexcept
    : m_message{}, m_auto_delete(autoDelete ? 1 : 0) {
  if (message != nullptr) {
    std::strncpy(m_message, message, sizeof m_message - 1);
  }
}

scl_exception_base::~scl_exception_base() = default;

void scl_exception_base::release() noexcept {
  if (isAutoDelete()) {
    delete this;
  }
}
