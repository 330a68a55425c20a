// Load, then store: nothing of the contents is lost, and what the connector wrote is a fixed point.
#include "fuzz/Fuzz.h"

namespace {

std::unique_ptr<KRX_Message> loaded(std::string_view mail, unsigned int& status) {
  auto message = fuzz::newMessage();
  message->readMessage(*fuzz::content(mail), status);
  return message;
}

std::string stored(KRX_Message& message, unsigned int& status) {
  const fuzz::Content file = fuzz::content({});
  message.writeMessage(*file, status);
  return fuzz::bytesOf(*file);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  return fuzz::run([&] {
    unsigned int status = 0;
    const auto message = loaded(fuzz::viewOf(data, size), status);
    const std::string mail = stored(*message, status);
    if (status != 0) {
      return;
    }
    const auto again = loaded(mail, status);
    fuzz::require(status == 0, "a mail of ours can be loaded");
    fuzz::require(fuzz::partContents(*again) == fuzz::partContents(*message),
                  "the contents of all parts come back");
    fuzz::require(stored(*again, status) == mail && status == 0,
                  "a mail of ours is stored again as it was");
  });
}
