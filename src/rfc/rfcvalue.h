// Takes structured header values apart: Content-Type and its parameters (RFC 2045 section 5),
// Content-Disposition (RFC 2183), one-word values, the Encoding list of RFC 1154. Comments are
// skipped everywhere. The functions return their status; outputs are cleared first, and after a
// failure they hold what was read before it.
//
//   rfc_parse_content_type("text/plain; charset=us-ascii", type, subtype, parameters);
#pragma once

#include "scl/SCLSTRNG.h"

class ATR_AttributeList;
class RFC_PartList;

// 0 or 12001. Type and subtype keep their letter case. Parameters become string attributes; of two
// with one name the last stays. What follows them without a ";" is left alone; a ";" with nothing
// behind it is an error.
unsigned int rfc_parse_content_type(const SCL_StringRef& value, SCL_String& type,
                                    SCL_String& subtype, ATR_AttributeList& parameters);
// 0 or 12026, also for anything but a ";" where one is due.
unsigned int rfc_parse_disposition(const SCL_StringRef& value, SCL_String& disposition,
                                   ATR_AttributeList& parameters);
// 0, or 12010 unless the value is exactly one atom.
unsigned int rfc_parse_word(const SCL_StringRef& value, SCL_String& word);
// 0 or 12009. An entry without a line count has the number -1 and must be the last.
unsigned int rfc_parse_encoding_list(const SCL_StringRef& value, RFC_PartList& parts);

// Repairs the usual mistakes of Content-Type values in a value without white space round it; true
// when one was found. An empty value stays.
bool rfc_repair_content_type(SCL_String& value);
