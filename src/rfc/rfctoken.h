// The tokenizer of RFC 822 (section 3.3) and MIME (RFC 2045 section 5.1) header values. White space
// and control characters separate tokens; characters from 128 to 255 belong to atoms.
#pragma once

#include "rfc/rfcsym.h"
#include "scl/SCLSTRNG.h"

class DAC_BaseDataAccess;

inline constexpr int RFC_MODE_MIME = 0;  // the tspecials of RFC 2045 are tokens of their own
inline constexpr int RFC_MODE_822 = 1;   // the specials of RFC 822 are

// Reads one token at the object's cursor, which then stands right behind it. 0; 10016 when only
// white space is left; 12003, 12005 or 12007 when the data ends inside a comment, a quoted string
// or a domain literal (the symbol holds what was read, the cursor stands at the end); any other
// failure of the stream.
unsigned int rfc_next_token(DAC_BaseDataAccess& object, int mode, RFC_Symbol& symbol);

// All tokens of a text, comments kept or dropped. `text` must not lie in `symbols`, which is
// cleared first. 0; a failure of rfc_next_token, with the tokens before it; 3 with the first 65,535
// tokens when there are more.
unsigned int rfc_tokenise(const SCL_StringRef& text, int mode, bool keepComments,
                          RFC_SymbolList& symbols);

// The text of a quoted-string token without quotes and escapes (see SCL_unquote, whose escapes
// include control letters and three digits); empty when it is none.
SCL_String rfc_unquote(const SCL_StringRef& quoted);
