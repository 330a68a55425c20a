// Tokens from data access objects and from texts.
#include "rfc/rfctoken.h"

#include "dac/DACBASDA.h"
#include "rfc/rfcchunk.h"
#include "rfc/rfcscan.h"

namespace {

// Moves to the first character of the next token; false at the end or with a status.
bool skipWhiteSpace(RFC_ChunkReader& reader, unsigned int& status) {
  for (;;) {
    const std::string_view ahead = reader.ahead(status);
    const std::size_t count = rfc_white_space(ahead);
    reader.consume(count);
    if (count < ahead.size()) {
      return true;
    }
    if (ahead.empty()) {
      return false;
    }
  }
}

void readToken(RFC_ChunkReader& reader, int mode, RFC_Symbol& symbol, unsigned int& status) {
  RFC_TokenScanner scanner(reader.ahead(status).front(), mode);
  symbol.kind = scanner.kind();
  while (!scanner.ended()) {
    const std::string_view ahead = reader.ahead(status);
    if (ahead.empty()) {
      status = status != 0 ? status : scanner.endStatus();
      return;
    }
    const std::size_t count = scanner.take(ahead);
    symbol.text.append(ahead.substr(0, count));
    reader.consume(count);
  }
}

}  // namespace

unsigned int rfc_next_token(DAC_BaseDataAccess& object, int mode, RFC_Symbol& symbol) {
  unsigned int status = 0;
  symbol.text.clear();
  RFC_ChunkReader reader(object, object.getPosition(), RFC_ChunkReader::TO_THE_END);
  if (skipWhiteSpace(reader, status)) {
    readToken(reader, mode, symbol, status);
  } else if (status == 0) {
    status = DAC_END;
  }
  unsigned int seekStatus = 0;
  object.seek(DAC_BaseDataAccess::FROM_START, reader.position(), seekStatus);
  return status;
}

unsigned int rfc_tokenise(const SCL_StringRef& text, int mode, bool keepComments,
                          RFC_SymbolList& symbols) {
  symbols.clear();
  return rfc_scan(text, mode, keepComments,
                  [&](std::uint32_t kind, std::string_view token) { symbols.add(kind, token); });
}

SCL_String rfc_unquote(const SCL_StringRef& quoted) {
  SCL_String text;
  const std::string_view view = quoted;
  SCL_unquote(view.data(), view.data() + view.size(), text);
  return text;
}
