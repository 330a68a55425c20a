// The views of quoted-printable and Base64 bodies, behind a content in one piece and in blocks of
// seven bytes, which must not show in what is decoded.
#include "fuzz/Fuzz.h"
#include "rfc/RFCB64Da.h"
#include "rfc/RFCQprDa.h"

namespace {

template <class View>
std::string decoded(std::string_view input, std::size_t block) {
  const fuzz::Content body = fuzz::content(input, block);
  View view(*body);
  unsigned int status = 0;
  DAC_BaseDataAccess* const child = view.getChild(0, status);
  fuzz::require(child != nullptr && status == 0, "what can be decoded is decoded");
  SCL_String bad;
  view.getStringAttribute(dac::BAD_DATA, bad, status);
  return std::string(bad.c_str()) + "\n" + fuzz::bytesOf(*child);
}

template <class View>
void check(std::string_view input) {
  const std::string whole = decoded<View>(input, 0);
  fuzz::require(whole == decoded<View>(input, 7), "blocks do not show in what is decoded");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  return fuzz::run([&] {
    check<RFCQprDa>(fuzz::viewOf(data, size));
    check<RFCB64Da>(fuzz::viewOf(data, size));
  });
}
