// The envelope file. What it names is a plain file in the destination directory, and an envelope
// that was written is read as what it says.
#include "fuzz/Fuzz.h"

namespace {

std::string written(KRX_Message& message) {
  const fuzz::Content file = fuzz::content({});
  unsigned int status = 0;
  message.writeEnvelope(*file, status);
  fuzz::require(status == 0, "an envelope that was read can be written");
  return fuzz::bytesOf(*file);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  return fuzz::run([&] {
    const auto message = fuzz::newMessage();
    unsigned int status = 0;
    message->readEnvelope(*fuzz::content(fuzz::viewOf(data, size)), status);
    if (status != 0) {
      return;
    }
    message->chooseFileNames(status);
    fuzz::require(status == 0, "a name is found in an empty directory");
    fuzz::require(
        std::string(message->messageFile().c_str()).find_first_of("/\\:\r\n") == std::string::npos,
        "a file name has no path in it");
    const std::string envelope = written(*message);
    const auto again = fuzz::newMessage();
    again->readEnvelope(*fuzz::content(envelope), status);
    fuzz::require(status == 0, "an envelope of ours can be read");
    fuzz::require(again->addresses().count() == message->addresses().count(),
                  "every address comes back");
    fuzz::require(written(*again) == envelope, "an envelope of ours is written again as it was");
  });
}
