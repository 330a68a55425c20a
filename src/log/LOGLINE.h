// The pieces that lines of the log are made of: the prefix at a given time, the hexadecimal dump.
#pragma once

#include <cstdint>

#include "plat/PlatClock.h"

namespace logging {

inline constexpr unsigned int PREFIX_SIZE = 132;  // the buffer that streams format the prefix into

// "hh:mm:ss.cc (FAC:lll) " for `now`, at most size - 1 characters; the length written. A caller
// that also decides by the time (which day's file?) takes one reading of the clock for both.
unsigned int formatPrefix(char* buffer, unsigned int size, const plat::LocalTime& now,
                          unsigned int facility, unsigned int level);

inline constexpr unsigned int DUMP_BYTES = 16;  // on one line
inline constexpr unsigned int DUMP_SIZE = 128;

// "0010: 41  A                                  |A^              |": the offset, up to 16 bytes in
// hexadecimal, the same as characters (the low seven bits; "^" for what does not print). 72
// characters up to an offset of 65,535, a few more beyond. Terminated; the length.
unsigned int formatDump(char (&buffer)[DUMP_SIZE], std::uint32_t offset, const void* bytes,
                        unsigned int count);

}  // namespace logging
