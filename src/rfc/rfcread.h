// Reads header blocks: fields with their continuation lines into a typed header table. Reading is
// forgiving: what is no field becomes a field of its own named "Bad-Header", a field with more than
// ten bad lines is no header any more, and four bad fields in a row are given back to the body.
//
//   GMA_MhdrTable headers;
//   rfc_read_headers(object, headers, status);   // the cursor stands on the blank line
//   rfc_skip_blank_line(object);                 // ... and now at the body
//
// Lines have no line ends and no NUL characters. Every function works at the object's cursor and
// does nothing when the status is nonzero on entry.
#pragma once

#include <cstdint>

#include "scl/SCLSTRNG.h"

class ATR_AttributeList;
class DAC_BaseDataAccess;
class GMA_MhdrTable;
class SCL_StringTable;

// The longest header line; of a longer one the rest counts as a line of its own.
inline constexpr std::int32_t RFC_MAX_LINE = 1087;
// So many headers, and attributes made of them, leave room for those that the system adds.
inline constexpr std::uint16_t RFC_MAX_HEADERS = 65000;

// Reads one field: 1, its name and its value lines (the first is what follows the colon), the
// cursor behind it. Else 0, both empty, the cursor where it was: the next line is blank, the data
// is at its end, or what follows is text. The status is that of a failing stream; the data's end is
// none.
int rfc_read_field(DAC_BaseDataAccess& object, std::int32_t maximum, SCL_String& name,
                   SCL_StringTable& lines, unsigned int& status);
// With RFC_MAX_LINE.
int rfc_read_field_default(DAC_BaseDataAccess& object, SCL_String& name, SCL_StringTable& lines,
                           unsigned int& status);
// The same, and whether a line of the field was longer than the maximum and came back cut.
int rfc_read_field_checked(DAC_BaseDataAccess& object, std::int32_t maximum, SCL_String& name,
                           SCL_StringTable& lines, bool& cut, unsigned int& status);

// Appends the headers at the cursor to the table: 1 when at least one well-formed field was read,
// else 0. The cursor then stands on the blank line, or on the first line of the body when the
// header ended otherwise. The first Content-Type of the table is repaired (rfcvalue.h).
int rfc_read_headers(DAC_BaseDataAccess& object, GMA_MhdrTable& table, unsigned int& status);

// Consumes the next line when it is empty or only white space: 1. Otherwise the cursor stays and
// the result is its position; when nothing could be read, what readLine gave. Since these can meet,
// look at the cursor rather than at the result.
std::int32_t rfc_skip_blank_line(DAC_BaseDataAccess& object);

// The lines of one field as one text. The first character of a continuation line is there twice:
// the fold's own white space is kept and the line as it stands follows it.
SCL_String rfc_unfold(const SCL_StringTable& lines);

// Sets one string attribute for each header, in order: its own name or the name of its type, the
// unfolded value without white space round it. A later header of a name replaces the earlier one.
void rfc_headers_to_attributes(const GMA_MhdrTable& table, ATR_AttributeList& attributes);
