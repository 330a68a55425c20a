// Destroys fetched messages, or does not.
#include "host/Fetched.h"

namespace host {
namespace {

// Reachable, so that a message that stays is not taken for a leak; volatile, because nobody reads
// it.
GMA_Message* volatile theMessageThatStays = nullptr;

}  // namespace

FetchedMessage::~FetchedMessage() {
  if (m_message && !m_isSafe) {
    theMessageThatStays = m_message.release();
  }
}

}  // namespace host
