// A fetched message in the hands of the host.
#pragma once

#include <memory>

#include "gma/GMAMSG.h"

namespace host {

// To destroy a fetched message is to remove its pair. So it is destroyed only when its pair was
// told to be safe; on every other way out, an exception among them, message and pair stay until the
// process ends.
class FetchedMessage {
 public:
  explicit FetchedMessage(GMA_Message* message) noexcept : m_message(message) {}
  FetchedMessage(const FetchedMessage&) = delete;
  FetchedMessage& operator=(const FetchedMessage&) = delete;
  ~FetchedMessage();

  explicit operator bool() const noexcept { return m_message != nullptr; }
  GMA_Message& operator*() const noexcept { return *m_message; }
  // The message is delivered, or a copy of its pair is kept.
  void setSafe() noexcept { m_isSafe = true; }
  bool isSafe() const noexcept { return m_isSafe; }

 private:
  std::unique_ptr<GMA_Message> m_message;
  bool m_isSafe = false;
};

}  // namespace host
