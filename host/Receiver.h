// Keeps the pair of a message that could not be loaded or delivered, in the receiver directory.
#pragma once

#include <string>

class GMA_Message;

namespace host {

// True when a whole copy of the message's pair is in the receiver directory under `sourceDirectory`
// (the message may then be destroyed); else `why` says what failed.
bool keepCopy(GMA_Message& message, const std::string& sourceDirectory, std::string& why);

}  // namespace host
