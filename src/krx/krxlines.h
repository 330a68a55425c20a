// Header lines as the connector writes them: what the model holds, made safe to be read back.
#pragma once

#include "scl/SCLSTRNG.h"

class DAC_BaseDataAccess;
class SCL_StringTable;

// A named field from its value lines: a continuation line gets a leading blank when it has none, a
// blank one, which would end the header block, is left out.
void KRX_writeField(DAC_BaseDataAccess& stream, const SCL_StringRef& name,
                    const SCL_StringTable& lines, unsigned int& status);

// Lines that stand for themselves: preamble, epilogue, and (skipBlank) malformed header lines, of
// which blank ones are left out. A line "." would end the data and becomes "..".
void KRX_writeBareLines(DAC_BaseDataAccess& stream, const SCL_StringTable& lines, bool skipBlank,
                        unsigned int& status);

// "Too many <what>, the rest is left out." in the log.
void KRX_logTooMany(const char* what);
