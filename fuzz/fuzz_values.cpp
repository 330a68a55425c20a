// Structured header values: tokens, Content-Type, Content-Disposition, words, the Encoding list and
// the repair of broken types.
#include "fuzz/Fuzz.h"
#include "rfc/rfcpart.h"
#include "rfc/rfctoken.h"
#include "rfc/rfcvalue.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  return fuzz::run([&] {
    const std::string text(fuzz::viewOf(data, size));
    SCL_String value(text.c_str());
    SCL_String first;
    SCL_String second;
    ATR_AttributeList parameters;
    rfc_parse_content_type(value, first, second, parameters);
    rfc_parse_disposition(value, first, parameters);
    rfc_parse_word(value, first);
    RFC_PartList parts;
    rfc_parse_encoding_list(value, parts);
    for (const int mode : {RFC_MODE_MIME, RFC_MODE_822}) {
      RFC_SymbolList symbols;
      rfc_tokenise(value, mode, true, symbols);
      unsigned int total = 0;
      for (std::uint16_t i = 0; i < symbols.count(); ++i) {
        total += symbols.get(i).text.length();
        rfc_unquote(symbols.get(i).text);
      }
      fuzz::require(total <= value.length(), "tokens are parts of the text");
    }
    value.trim();
    rfc_repair_content_type(value);
  });
}
