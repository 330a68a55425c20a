// Trace blocks: level, depth and the lines that they print.
#include "gen/GENTRC.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <exception>
#include <string>

#include "gen/GENCATCH.h"
#include "gen/GENDBG.h"
#include "gen/GENDBGST.h"
#include "gen/GENWNT.h"
#include "plat/PlatClock.h"

namespace {

using gen::debug::emitLine;
using gen::debug::LINE_SIZE;

// Where checkWatches is called.
constexpr unsigned int AT_ENTRY = 1;
constexpr unsigned int AT_EXIT = 2;
constexpr unsigned int AT_PRINT = 3;
// Twice this width, and what stands before it, stays within half a line.
constexpr unsigned int MAX_INDENT = 1000;

struct TraceState {
  int level = -1;
  int limit = -1;
  bool timeStamp = false;
  unsigned int depth = 0;
};

constinit TraceState g_trace;

// The settings are all read before one of them counts, since a prompt can throw.
void initialise() {
  if (g_trace.level != -1) {
    return;
  }
  GENDisplayOpen();
  const int level = gen::readSettingNumber("TraceLevel", 0, false);
  const int limit = gen::readSettingNumber("TraceLimit", level, true);
  const int timeStamp = gen::readSettingNumber("TimeStamp", 0, true);
  g_trace.level = level;
  g_trace.limit = limit;
  g_trace.timeStamp = timeStamp != 0;
  GENDebugPrint("Tracing level  set to %u", static_cast<unsigned int>(level));
  GENDebugPrint("Tracing limit  set to %u", static_cast<unsigned int>(limit));
  GENDebugPrint("Timestamp flag set to %u", static_cast<unsigned int>(timeStamp));
}

std::string linePrefix(int level) {
  char text[64] = "";
  std::string prefix;
  if (g_trace.timeStamp) {
    const plat::Moment now = plat::now();
    std::snprintf(text, sizeof text, "%03lu.%02u ", static_cast<unsigned long>(now.seconds % 1000),
                  static_cast<unsigned int>(now.milliseconds / 10));
    prefix = text;
  }
  std::snprintf(text, sizeof text, "%03u|", static_cast<unsigned int>(level));
  prefix += text;
  const unsigned int width = std::clamp(g_trace.depth, 1U, MAX_INDENT);
  return prefix.append(std::size_t{2} * width, ' ');
}

void printText(int level, const char* format, std::va_list arguments) {
  char text[LINE_SIZE];
  std::vsnprintf(text, sizeof text, format, arguments);
  emitLine((linePrefix(level) + "-- " + text).substr(0, LINE_SIZE - 1).c_str());
}

}  // namespace

namespace gen {

int traceLevel() noexcept {
  return g_trace.level;
}

void traceIfOn(int level, const char* format, ...) {
  if (g_trace.level < level) {
    return;
  }
  std::va_list arguments;
  va_start(arguments, format);
  GENSwallow([&] { printText(level, format, arguments); });
  va_end(arguments);
}

}  // namespace gen

GEN_TraceBlock::GEN_TraceBlock(const char* name, int level)
    : m_name(name), m_level(std::max(level, 1)), m_exceptions(std::uncaught_exceptions()) {
  initialise();
  m_savedLevel = g_trace.level;
  enter("");
}

GEN_TraceBlock::GEN_TraceBlock(const char* name, int level, int trigger)
    : m_name(name), m_level(std::max(level, 1)), m_exceptions(std::uncaught_exceptions()) {
  initialise();
  m_savedLevel = g_trace.level;
  const int capped = std::min(trigger, g_trace.limit);
  g_trace.level = std::max(g_trace.level, capped);
  enter((" (trigger " + std::to_string(static_cast<unsigned int>(capped)) + ")").c_str());
}

// While an exception passes, nothing else may leave: neither from the watches nor from the output.
GEN_TraceBlock::~GEN_TraceBlock() noexcept(false) {
  if (std::uncaught_exceptions() > m_exceptions) {
    GENSwallow([this] { leave(); });
    return;
  }
  leave();
  gen::checkWatches(m_name, AT_EXIT);
}

bool GEN_TraceBlock::isOn() const noexcept {
  return g_trace.level >= m_level;
}

// A changed watch ends the constructor, so that no destructor would undo the entry.
void GEN_TraceBlock::enter(const char* suffix) {
  try {
    if (isOn()) {
      ++g_trace.depth;
      m_printed = true;
      emitLine((linePrefix(m_level) + ">> " + m_name + suffix).c_str());
    }
    gen::checkWatches(m_name, AT_ENTRY);
  } catch (...) {
    leave();
    throw;
  }
}

void GEN_TraceBlock::leave() {
  const struct Restoring {  // also when the output throws
    const GEN_TraceBlock& block;
    ~Restoring() { block.restore(); }
  } restoring{*this};
  if (isOn()) {
    unsigned int code = 0;
    int val1 = 0;
    int val2 = 0;
    GENGetStatus(code, val1, val2);
    char status[64];
    std::snprintf(status, sizeof status, ", Status %u (%u,%u)", code,
                  static_cast<unsigned int>(val1), static_cast<unsigned int>(val2));
    emitLine((linePrefix(m_level) + "<< " + m_name + status).c_str());
  }
}

void GEN_TraceBlock::restore() const noexcept {
  if (m_printed) {
    --g_trace.depth;
    if (!gen::debug::output().keepOpen && g_trace.depth == 0) {
      gen::closeOutput();
    }
  }
  g_trace.level = m_savedLevel;
}

void GEN_TraceBlock::print(const char* format, ...) {
  if (isOn()) {
    std::va_list arguments;
    va_start(arguments, format);
    printText(m_level, format, arguments);
    va_end(arguments);
  }
  gen::checkWatches(m_name, AT_PRINT);
}

void GEN_TraceBlock::dump(const char* label, const void* address, unsigned int length) {
  if (isOn()) {
    gen::hexDump(linePrefix(m_level).c_str(), label, length, address, gen::debug::emitDump,
                 nullptr);
  }
  gen::checkWatches(m_name, AT_PRINT);
}
