// Keeps the pair of a message that could not be loaded or delivered, in the receiver directory.
#pragma once

#include <string>

class GMA_Message;

namespace host {

inline constexpr char RECEIVER_DIRECTORY[] = "QDXRECVR\\";

// True when a whole, committed copy of the message's pair is in the receiver directory under
// `sourceDirectory`, which ends in a separator; `envelope` is the name under which it is kept. Else
// `why` says what failed.
bool keepCopy(GMA_Message& message, const std::string& sourceDirectory, std::string& envelope,
              std::string& why);

}  // namespace host
