// Status texts, the last-status record and assertions: the path of broken invariants.
// An assertion throws a pointer to scl_exception_base; whoever catches it calls its release().
// Includes nothing of scl, so that scl can assert: the two are one floor, broken by files.
// Threads: texts are formatted in buffers of the call; the last-status record is unguarded.
#pragma once

class SCL_String;

// The text of `code`: built in for the general codes, else "Message code %05u" written into
// `buffer`. Never null. A `bufferLength` too small for the generic text and its NUL is the
// assertion 3 at GENWNT 632; callers pass 4096.
const char* GENStatusText(unsigned int code, unsigned int bufferLength, char* buffer);

// Sets `string` to the message table's text (the built-in texts do not count), else to
// "Unknown error code (N)".
void GENStatusString(unsigned int code, SCL_String& string);

// "!!Assert: <text> in <source> at <line>", reported and thrown as an owned exception; when memory
// is out, a static one with a text of its own. GENAssert takes the text of `code`.
// `source` is the asserting file's name without extension.
[[noreturn]] void GENAssert(unsigned int code, const char* source, unsigned int line);
[[noreturn]] void GENAssertText(const char* text, const char* source, unsigned int line);

// The process's last-status record. The text is cut at 100 characters; null leaves none.
void GENSetStatus(unsigned int code, int val1, int val2, const char* text);
void GENSetStatus(unsigned int code, int val1, int val2);
void GENGetStatus(unsigned int& code, int& val1, int& val2);
// Copies the text too, cut to `bufferLength` - 1 characters; `textLength` is that of the whole
// text. Both are empty when the record has none.
void GENGetStatus(unsigned int& code, int& val1, int& val2, unsigned int bufferLength, char* buffer,
                  unsigned int& textLength);

// Asserts with the text of the record's code, its first two number conversions filled with Val1
// and Val2; returns when the code is 0. The text is never used as a format.
void GENAssertStatus(const char* source, unsigned int line);

// Where assertions are reported before they are thrown (severity 1 = error). The event reporter
// of the tracing half puts itself here; null, as at first, reports nowhere. What the reporter
// throws is dropped, and an assertion that it meets is not reported again. Returns the one before.
using GENAssertionReporter = void (*)(int severity, const char* line);
GENAssertionReporter GENSetAssertionReporter(GENAssertionReporter reporter);

// Expands the first two of %d %i %u %x %X of `format` (l and h flags skipped) with the two values,
// "%%" to "%"; everything else is copied. Writes at most size - 1 characters and a NUL; `size` 0
// writes nothing.
void GENExpandValues(const char* format, int val1, int val2, unsigned int size, char* buffer);
