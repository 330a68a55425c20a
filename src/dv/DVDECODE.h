// The pattern decoder: one matching engine that reads keywords, numbers, dates and times against a
// compact pattern and writes what it found into a caller's record at fixed, aligned offsets. The
// layout of the record depends on the pattern alone, never on the input. The language, the
// conversions and the group modifiers are described in docs/formats/patterns.md.
//
//   struct { std::uint32_t keyword; } out;
//   int furthest;
//   if (dv::decode("{ Brief | Normal }", false, &out, sizeof out, furthest, value) >= 0) ...
//
// A pattern is program text: one that is built from configuration or mail changes its meaning with
// the first brace or percent sign in it. Threads: nothing here keeps a state between calls.
#pragma once

#include <cstdint>

#include "scl/SCLSTRNG.h"

namespace dv {

// The results of a match below 0. A no-match fails only the alternative or sequence that it
// happens in; every other one ends the whole match.
inline constexpr int NO_MATCH = -1;
inline constexpr int NO_ROOM = -10;
inline constexpr int BAD_PATTERN = -11;
inline constexpr int OUT_OF_RANGE = -12;

// Matches `input` against `pattern`. The number of characters consumed, or a negative result:
// -1 no match, -10 the record has too little room, -11 unknown group modifier, -12 a number is out
// of range, -2 to -9 a path conversion's result. The first `outputSize` bytes of the record are
// zeroed before anything is stored; after a negative result they hold what was stored until then.
// `output` may be null when `outputSize` is 0. `furthest`: the furthest input offset that any
// element reached, whatever the result.
int decode(const SCL_StringRef& pattern, bool caseSensitive, void* output, unsigned int outputSize,
           int& furthest, const SCL_StringRef& input);

// 0 for results of 0 or more; 121 to 132 for -1 to -12; 101 for any other negative result.
unsigned int decodeStatus(int result) noexcept;

// Characters consumed, -1 without a digit, -12 beyond 2147483647. A negative base means a signed
// number in base |base|; digits are 0-9 and A-F in either case, each below the base. A base of 0
// is the assertion 4. `value` is stored only on success.
int readNumber(std::int32_t& value, int base, const SCL_StringRef& text);
int readSigned(std::int32_t& value, int base, const SCL_StringRef& text);     // refuses -2147483648
int readUnsigned(std::uint32_t& value, int base, const SCL_StringRef& text);  // base < 1: assertion

// A keyword pattern's 1-based index ("{ Brief | Normal }"), or 0 when `text` does not match whole.
unsigned int keywordIndex(const SCL_StringRef& pattern, const SCL_StringRef& text);
// The whole text is an unsigned decimal number ("%U", spaces and tabs round it allowed). `value` is
// stored only on success.
bool decodeUnsigned(const SCL_StringRef& text, std::uint32_t& value);

}  // namespace dv
