// The debug output: callback, console and debug output file.
#include "gen/GENDBG.h"

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <string>

#include "gen/GENDBGST.h"
#include "gen/GENWNT.h"
#include "plat/PlatConsole.h"
#include "scl/SCLEXCPT.h"

namespace gen::debug {

Output& output() {
  static Output state;
  return state;
}

bool openConsole() {
  Output& state = output();
  state.consoleOutput = state.consoleOutput || plat::consoleOpenOutput();
  state.consoleInput = state.consoleInput || plat::consoleOpenInput();
  return state.consoleOutput;
}

void writeConsole(std::string_view text) {
  if (output().consoleOutput) {
    plat::consoleWrite(text);
  }
}

void emitLine(const char* line, Route route) {
  Output& state = output();
  const std::string ended = std::string(line) + '\n';
  if (state.callback != nullptr) {
    state.callback(state.context, line);
  }
  if (state.callback == nullptr || route == Route::alsoConsole) {
    writeConsole(ended);
  }
  if (state.file.isOpen() &&
      state.file.writeAt(state.filePosition, ended.data(), ended.size()) == 0) {
    state.filePosition += static_cast<std::int64_t>(ended.size());
  }
}

void emitDump(void* /*context*/, const char* line) {
  emitLine(line);
}

}  // namespace gen::debug

namespace {

using gen::debug::LINE_SIZE;
using gen::debug::output;
using gen::debug::Route;

constexpr unsigned int FILE_NAME_SIZE = 100;
constexpr unsigned int FILE_PERMISSIONS = 0640;

void printFormatted(Route route, const char* format, std::va_list arguments) {
  char line[LINE_SIZE];
  std::vsnprintf(line, sizeof line, format, arguments);
  gen::debug::emitLine(line, route);
}

int openFile(const std::string& name, bool mustBeNew) {
  plat::OpenMode mode;
  mode.write = true;
  mode.create = true;
  mode.exclusive = mustBeNew;
  mode.truncate = !mustBeNew;
  mode.permissions = FILE_PERMISSIONS;
  output().filePosition = 0;
  return output().file.open(name, mode);
}

// A "?" at the end stands for the first digit under which no file exists; the last digit is taken
// in any case.
int openNumbered(std::string& name) {
  for (char digit = '0'; digit < '9'; ++digit) {
    name.back() = digit;
    if (const int error = openFile(name, true); error != EEXIST) {
      return error;
    }
  }
  name.back() = '9';
  return openFile(name, false);
}

void openDebugFile() {
  char setting[FILE_NAME_SIZE] = "";
  gen::readSettingString("DebugOutputFile", sizeof setting, setting, true);
  std::string name(setting);
  if (name.empty()) {
    return;
  }
  const int error = name.back() == '?' ? openNumbered(name) : openFile(name, false);
  GENDebugPrint(error == 0 ? "DebugOutputFile Opened %s" : "DebugOutputFile Failed %s",
                name.c_str());
}

}  // namespace

void GENDebugPrint(const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  printFormatted(Route::normal, format, arguments);
  va_end(arguments);
}

void GENDisplayPrint(const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  printFormatted(Route::alsoConsole, format, arguments);
  va_end(arguments);
}

void GENDisplayOpen() {
  if (output().displayOpened) {
    return;
  }
  if (!gen::debug::openConsole()) {
    static scl_exception_base noConsole("Exit from GENDisplayOpen ()", false);
    gen::runExitHandlers();
    throw &noConsole;
  }
  openDebugFile();
  output().displayOpened = true;
}

void GENReportStatus() {
  unsigned int code = 0;
  int val1 = 0;
  int val2 = 0;
  GENGetStatus(code, val1, val2);
  if (code == 0) {
    return;
  }
  char buffer[LINE_SIZE];
  char line[LINE_SIZE];
  GENExpandValues(GENStatusText(code, sizeof buffer, buffer), val1, val2, sizeof line, line);
  gen::debug::emitLine(line);
}

namespace gen {

void setOutputCallback(OutputFunction function, void* context) {
  output().callback = function;
  output().context = context;
}

void closeOutput() {
  output().file.close();
  output().displayOpened = false;
}

void setKeepOpen() noexcept {
  output().keepOpen = true;
}

void clearKeepOpen() {
  output().keepOpen = false;
  closeOutput();
}

}  // namespace gen
