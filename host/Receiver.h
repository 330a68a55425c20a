// Keeps the pair of a message that could not be loaded or delivered, in the receiver directory.
#pragma once

#include <optional>
#include <string>

class GMA_Message;

namespace host {

inline constexpr char RECEIVER_DIRECTORY[] = "QDXRECVR\\";

// Whether the receiver directory under `sourceDirectory`, which ends in a separator, is there and
// is a directory itself: through a link mail would leave the spool.
bool hasReceiver(const std::string& sourceDirectory);

struct KeptCopy {
  std::string envelope;    // the name under which it is kept
  bool shortened = false;  // the pair's own name is too long for the receiver directory
};

// A whole, committed copy of the message's pair in the receiver directory under `sourceDirectory`;
// else nothing, and `why` says what failed.
std::optional<KeptCopy> keepCopy(GMA_Message& message, const std::string& sourceDirectory,
                                 std::string& why);

}  // namespace host
