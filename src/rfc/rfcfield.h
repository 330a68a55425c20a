// One header field from a line reader: the part of the header reader that knows fields, not
// headers.
#pragma once

#include <cstdint>

class RFC_LineReader;
class SCL_String;
class SCL_StringTable;

// Under this name lines are kept that are no header field.
inline constexpr char RFC_BAD_HEADER[] = "Bad-Header";
// More lines than that are not put into one field, so that its table never overflows.
inline constexpr unsigned int RFC_MAX_FIELD_LINES = 65000;

// Reads one field at the reader's position, which then stands behind it; when none was read it
// stands where it stood. `cut` tells that a line of the field was longer than the maximum.
bool rfc_take_field(RFC_LineReader& reader, std::int32_t maximum, SCL_String& name,
                    SCL_StringTable& lines, bool& cut, unsigned int& status);
