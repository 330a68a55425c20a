// Notification texts: a template's placeholders, filled from a mail, before and behind its body.
// Input: the template, then the mail.
#include "fuzz/Fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  return fuzz::run([&] {
    const std::vector<std::string> fields = fuzz::split(fuzz::viewOf(data, size), 2);
    const auto message = fuzz::newMessage();
    unsigned int status = 0;
    message->readMessage(*fuzz::content(fields[1]), status);
    message->setStandardAttributes();
    const fuzz::Content text = fuzz::content(fields[0]);
    const std::string body =
        message->getBody() != nullptr ? fuzz::bytesOf(*message->getBody()) : std::string();
    unsigned int before = 0;
    message->prependText(text.get(), before);
    unsigned int behind = 0;
    message->appendText(text.get(), behind);
    if (message->getBody() != nullptr) {
      fuzz::require(fuzz::bytesOf(*message->getBody()).find(body) != std::string::npos,
                    "the body stays in what it becomes");
    }
    fuzz::askForEverything(*message);
  });
}
