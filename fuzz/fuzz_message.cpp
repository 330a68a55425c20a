// The message file: header block, classification, parts and their views, and all that a host asks.
#include "fuzz/Fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  return fuzz::run([&] {
    const auto message = fuzz::newMessage();
    const fuzz::Content file = fuzz::content(fuzz::viewOf(data, size));
    unsigned int status = 0;
    message->readMessage(*file, status);
    // What was read before a failure stays, and may be asked for.
    fuzz::askForEverything(*message);
    for (const std::string& part : fuzz::partContents(*message)) {
      fuzz::require(part.size() <= size * 2 + 2, "a part is no larger than its mail and line ends");
    }
  });
}
