// What the sources of the debug kit share: the state of its output, and the way of a line.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "gen/GENDBG.h"
#include "plat/PlatFile.h"

namespace gen::debug {

inline constexpr std::size_t LINE_SIZE = 4096;

struct Output {
  bool consoleOutput = false;
  bool consoleInput = false;
  bool displayOpened = false;
  bool keepOpen = false;
  OutputFunction callback = nullptr;
  void* context = nullptr;
  plat::File file;
  std::int64_t filePosition = 0;
};

Output& output();

// False: there is no console.
bool openConsole();
void writeConsole(std::string_view text);
enum class Route { normal, alsoConsole };
// The debug output path of one line.
void emitLine(const char* line, Route route = Route::normal);
// As an OutputFunction.
void emitDump(void* context, const char* line);

}  // namespace gen::debug
