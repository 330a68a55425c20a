// The debug kit: the debug output (a host's callback or the console, and the debug output file),
// prompts for settings, hexadecimal dumps, watched memory and exit handlers. All of it is for
// interactive use; the library's own code reaches none of the prompts.
// Threads: the state is the process's and unguarded.
#pragma once

#include <cstdint>

// One line to the callback if one is set, else to the console once it is open; then to the debug
// output file if that is open. A line is cut at 4,095 characters.
void GENDebugPrint(const char* format, ...) __attribute__((format(printf, 1, 2)));
// The same, and always to the console.
void GENDisplayPrint(const char* format, ...) __attribute__((format(printf, 1, 2)));

// Sets up the console and the debug output file, which the setting DebugOutputFile names (a "?" at
// its end stands for the first free digit); does nothing when that is done. Without a console the
// exit handlers run and a static exception "Exit from GENDisplayOpen ()" is thrown, which the
// catcher does not own.
void GENDisplayOpen();

// Prompts on the console and reads a line: at most size - 1 of its first 100 characters, without
// leading white space; the rest of the buffer is zeros. The length. When nothing can be read the
// exit handlers run and a static exception "Exit from GENInputString ()" is thrown.
unsigned int GENInputString(const char* prompt, unsigned int size, char* buffer);

// Writes the text of the last-status record's code, its two values filled in, to the debug output;
// nothing when the code is 0.
void GENReportStatus();

namespace gen {

using OutputFunction = void (*)(void* context, const char* line);

void setOutputCallback(OutputFunction function, void* context);  // null: none
// Closes the debug output file; the next GENDisplayOpen sets the display up again.
void closeOutput();
// Keeps the debug output file open when the outermost trace block ends.
void setKeepOpen() noexcept;
void clearKeepOpen();  // and closes the file

// Settings come from the environment variable `name`; what it does not give is prompted for.
// With `useDefault` the buffer holds the default on entry, which an empty answer takes.
void readSettingString(const char* name, unsigned int size, char* buffer, bool useDefault);
// The run of decimal digits at the start; clamped to 2147483647.
std::int32_t readSettingNumber(const char* name, std::int32_t defaultValue, bool hasDefault);

// A header line and a line for every 8 bytes, each handed to `output`.
void hexDump(const char* title, const char* label, unsigned int length, const void* address,
             OutputFunction output, void* context);

// Watched memory must stay readable until unwatch().
struct Watch;
const Watch* watch(const void* address, unsigned int length);
void unwatch(const Watch* entry);
// Assertion 16 with the source `name` and the line `where` (1 entry, 2 exit, 3 print of a block)
// when a watched region has changed.
void checkWatches(const char* name, unsigned int where);

using ExitFunction = void (*)(void* argument);
void addExitHandler(ExitFunction function, void* argument);
// All handlers, newest first, then closeOutput(). What a handler throws is swallowed; a call from
// inside a handler does nothing.
void runExitHandlers() noexcept;

}  // namespace gen
