// The views of multipart bodies and embedded messages. Input: the boundary, then the body.
#include "fuzz/Fuzz.h"
#include "rfc/RFCMptDa.h"
#include "rfc/RFCMsgDa.h"

namespace {

std::string partsOf(const std::string& body, const char* boundary, std::size_t block) {
  const fuzz::Content source = fuzz::content(body, block);
  RFCMptDa view(*source, boundary);
  unsigned int status = 0;
  std::string parts;
  std::size_t from = 0;
  for (std::uint32_t i = 0, count = view.childCount(status); i < count; ++i) {
    DAC_BaseDataAccess* const child = view.getChild(i, status);
    fuzz::require(child != nullptr && status == 0, "every part that was found can be had");
    const std::string part = fuzz::bytesOf(*child);
    from = body.find(part, from);
    fuzz::require(from != std::string::npos, "parts lie in the body, one after the other");
    from += part.size();
    parts += part + "\x1f";
  }
  return parts;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  return fuzz::run([&] {
    const std::vector<std::string> fields = fuzz::split(fuzz::viewOf(data, size), 2);
    const std::string whole = partsOf(fields[1], fields[0].c_str(), 0);
    fuzz::require(whole == partsOf(fields[1], fields[0].c_str(), 7),
                  "blocks do not show in the parts");
    RFCMsgDa message(*fuzz::content(fields[1]));
    unsigned int status = 0;
    fuzz::require(fuzz::bytesOf(*message.getChild(0, status)) == fields[1],
                  "an embedded message is the whole content");
  });
}
