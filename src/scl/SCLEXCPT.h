// The one exception type of all libraries. It always travels as a pointer; the handler calls
// release() when it is done with it (see gen/GENCATCH.h, the one guard that does so).
#pragma once

class __attribute__((visibility("default"))) scl_exception_base {
 public:
  scl_exception_base() noexcept;                                      // "Generic exception", owned
  scl_exception_base(const char* message, bool autoDelete) noexcept;  // cut to 1,023 characters
  scl_exception_base(const scl_exception_base&) = delete;
  scl_exception_base& operator=(const scl_exception_base&) = delete;
  virtual ~scl_exception_base();

  const char* message() const noexcept { return m_message; }
  bool isAutoDelete() const noexcept { return m_auto_delete != 0; }

  // Destroys the object when it lives on the heap; a static exception object stays.
  void release() noexcept;

 private:
  char m_message[1024];
  unsigned int m_auto_delete;
};
