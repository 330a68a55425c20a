// Header lines as the connector writes them: what the model holds, made safe to be read back.
#pragma once

#include "scl/SCLSTRNG.h"

class DAC_BaseDataAccess;
class GMA_MhdrTable;
class SCL_StringTable;

// What ends the reading of an epilogue beside the end of the data is a line of this boundary.
inline constexpr char KRX_EPILOGUE_BOUNDARY[] = ".";

// A named field from its value lines: a continuation line gets a leading blank when it has none, a
// blank one, which would end the header block, is left out.
void KRX_writeField(DAC_BaseDataAccess& stream, const SCL_StringRef& name,
                    const SCL_StringTable& lines, unsigned int& status);

// Malformed header lines, blank ones left out. They stand as they came when they are read as one
// malformed field so, else below the name "Bad-Header": a sender who wrote that name must not get a
// field of another one. `alone`: judged without the field before them, which bare lines may join.
// What no reader takes for one field, of which a loaded mail has none, is left out.
void KRX_writeBadHeader(DAC_BaseDataAccess& stream, const SCL_StringTable& lines, bool alone,
                        unsigned int& status);

// Whether a reader takes all of `block`, lines without the blank one that ends them, for headers:
// those that it finds. A blank line is appended and taken off again.
bool KRX_isHeaderBlock(DAC_BaseDataAccess& block, GMA_MhdrTable& found, unsigned int& status);

// The lines before the first boundary or after the last, as they stand; a line "." becomes "..",
// and one that would be taken for a line of `boundary` gets a blank in front.
void KRX_writeLinesBeside(DAC_BaseDataAccess& stream, const SCL_StringTable& lines,
                          const SCL_StringRef& boundary, unsigned int& status);

// "Too many <what>, the rest is left out." in the log.
void KRX_logTooMany(const char* what);
