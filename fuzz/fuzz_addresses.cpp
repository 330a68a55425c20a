// Addresses of envelopes and headers, of the plain form, and the quoting and X.400 texts in them.
#include "fuzz/Fuzz.h"
#include "krx/krxmaddr.h"
#include "rfc/rfcwrite.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  return fuzz::run([&] {
    const std::string input(fuzz::viewOf(data, size));
    const SCL_StringRef text(input.c_str());
    unsigned int status = 0;
    const KRX_Maddr address(gma::TOADDR, text, "example.org", status);
    SCL_String shown;
    address.getText(shown);
    fuzz::require(status == 0 || status == KRX_RELAYED_ADDRESS || status == GMA_BAD_ADDRESS,
                  "an address is one, is relayed, or is none");
    fuzz::require(status == GMA_BAD_ADDRESS || shown == text, "an address keeps its text");
    unsigned int plainStatus = 0;
    GMA_Maddr plain(gma::CCADDR, "", "");
    plain.parse(text, plainStatus);
    plain.composeText(shown);
    rfc_ps_decode(text);
    SCL_String quoted;
    SCL_quote(text.c_str(), text.c_str() + text.length(), quoted);
    const unsigned int consumed =
        SCL_unquote(quoted.c_str(), quoted.c_str() + quoted.length(), shown);
    fuzz::require(consumed == quoted.length() && shown == text, "quoting can be undone");
  });
}
