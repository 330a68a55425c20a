// Writes header fields, folded or from their lines, and decodes X.400 printable strings (RFC 1327).
// CR, LF and NUL inside a name, value or line are written as one blank each, so that no value can
// begin a line of its own.
#pragma once

#include <string_view>

#include "scl/SCLSTRNG.h"

class DAC_BaseDataAccess;
class SCL_StringTable;

// Writes "name: value" and CR LF at the object's cursor; an empty name writes the value alone. With
// `fold`, a field of 77 characters and more is written again from its tokens with one blank between
// them, on lines of about 76 characters; after a token that ends in "=" there is neither. A value
// that cannot be taken into tokens is not folded.
void rfc_write_field(DAC_BaseDataAccess& object, const SCL_StringRef& name,
                     const SCL_StringRef& value, bool fold, unsigned int& status);
// Writes the name and the lines as they stand, a CR LF behind each. A field without lines is an
// empty line behind its name.
void rfc_write_field_lines(DAC_BaseDataAccess& object, const SCL_StringRef& name,
                           const SCL_StringTable& lines, unsigned int& status);

// `text` with CR, LF and NUL as blanks.
SCL_String rfc_one_line(std::string_view text);

// Resolves the escapes of printable strings: "(a)" is "@", "(065)" is "A".
SCL_String rfc_ps_decode(const SCL_StringRef& text);
// The assertion "rfc_ps_encode() not yet implemented.": nothing that the system writes needs it.
[[noreturn]] SCL_String rfc_ps_encode(const SCL_StringRef& text);
