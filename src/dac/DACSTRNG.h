// Words and lines between data access objects and strings. All read at the object's cursor and
// move it; with a status set on entry they do nothing. Bytes are taken by length, so that a NUL in
// the content stays and counts in `out`.
#pragma once

#include <cstdint>

#include "scl/SCLSTRNG.h"

class DAC_BaseDataAccess;

namespace dac {

// Skips white space (SCL_isSpace) and reads one word; the cursor then stands right behind it. One
// that runs to the end of the data is not returned (10016, empty).
void readWord(DAC_BaseDataAccess& object, SCL_String& out, unsigned int& status);
// One line; its end is CR, LF or CR LF here, not LF CR. A last line without a line end is not
// returned (10016, empty).
void readStringLine(DAC_BaseDataAccess& object, SCL_String& out, unsigned int& status);
// One line of at most `maximum` characters, its end as DAC_Stream::readLine takes it; a longer one
// comes back cut, its rest is the next line. A line of exactly `maximum` characters is whole: the
// line end that follows it is consumed. A last line need not be ended; after it comes 10016. The
// length; `out` is set only when that is above 0. `cut` tells a cut line.
std::int32_t readStringLineLimited(DAC_BaseDataAccess& object, std::int32_t maximum,
                                   SCL_String& out, unsigned int& status);
std::int32_t readStringLineLimited(DAC_BaseDataAccess& object, std::int32_t maximum,
                                   SCL_String& out, bool& cut, unsigned int& status);
// The text and CR LF.
void writeStringLine(DAC_BaseDataAccess& object, const SCL_StringRef& text, unsigned int& status);

}  // namespace dac
