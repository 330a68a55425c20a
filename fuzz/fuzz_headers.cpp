// The header block, behind a content in one piece and in blocks of seven bytes, which must not show
// in the result.
#include "fuzz/Fuzz.h"
#include "gma/GMAMHDRT.h"
#include "rfc/rfcread.h"

namespace {

std::string readBlock(std::string_view input, std::size_t block) {
  const fuzz::Content file = fuzz::content(input, block);
  GMA_MhdrTable headers;
  unsigned int status = 0;
  const int found = rfc_read_headers(*file, headers, status);
  rfc_skip_blank_line(*file);
  fuzz::require(
      file->getPosition() >= 0 && static_cast<std::size_t>(file->getPosition()) <= input.size(),
      "the cursor stays inside the content");
  ATR_AttributeList attributes;
  rfc_headers_to_attributes(headers, attributes);
  return std::to_string(found) + " " + std::to_string(status) + " " +
         std::to_string(file->getPosition()) + "\n" + fuzz::printHeaders(headers);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  return fuzz::run([&] {
    const std::string_view input = fuzz::viewOf(data, size);
    fuzz::require(readBlock(input, 0) == readBlock(input, 7), "blocks do not show in the result");
  });
}
