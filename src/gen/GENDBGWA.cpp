// Looking at memory: hexadecimal dumps and watched regions; and the exit handlers.
#include <algorithm>
#include <cstdio>
#include <forward_list>
#include <string>

#include "gen/GENCATCH.h"
#include "gen/GENCODES.h"
#include "gen/GENDBG.h"
#include "gen/GENWNT.h"

namespace gen {

struct Watch {
  const void* address;
  unsigned int length;
  std::int64_t checksum;
};

}  // namespace gen

namespace {

constexpr unsigned int BYTES_A_LINE = 8;
constexpr std::size_t TEXT_COLUMN = 34;

struct ExitHandler {
  gen::ExitFunction function;
  void* argument;
};

std::forward_list<gen::Watch>& watches() {
  static std::forward_list<gen::Watch> list;
  return list;
}

std::forward_list<ExitHandler>& exitHandlers() {
  static std::forward_list<ExitHandler> list;
  return list;
}

// The sum of the bytes, taken as signed.
std::int64_t checksumOf(const void* address, unsigned int length) noexcept {
  const auto* bytes = static_cast<const signed char*>(address);
  std::int64_t sum = 0;
  for (unsigned int i = 0; i < length; ++i) {
    sum += bytes[i];
  }
  return sum;
}

char printable(unsigned char byte) noexcept {
  const auto c = static_cast<char>(byte & 0x7F);
  return c < 32 || c == 127 ? '^' : c;
}

std::string hexLine(const unsigned char* bytes, unsigned int count) {
  std::string line;
  for (unsigned int i = 0; i < count; ++i) {
    char field[8];
    std::snprintf(field, sizeof field, "%02X  ", static_cast<unsigned int>(bytes[i]));
    line += field;
  }
  line.resize(TEXT_COLUMN, ' ');
  line += '|';
  std::transform(bytes, bytes + count, std::back_inserter(line), printable);
  return line + '|';
}

}  // namespace

namespace gen {

void hexDump(const char* title, const char* label, unsigned int length, const void* address,
             OutputFunction output, void* context) {
  char place[64];
  std::snprintf(place, sizeof place, ": Address %p, Length %u", address, length);
  const std::string prefix(title);
  output(context, (prefix + label + place).c_str());
  const auto* bytes = static_cast<const unsigned char*>(address);
  for (unsigned int at = 0; at < length;) {
    const unsigned int count = std::min(length - at, BYTES_A_LINE);
    output(context, (prefix + hexLine(bytes + at, count)).c_str());
    at += count;
  }
}

const Watch* watch(const void* address, unsigned int length) {
  return &watches().emplace_front(Watch{address, length, checksumOf(address, length)});
}

void unwatch(const Watch* entry) {
  watches().remove_if([entry](const Watch& watched) { return &watched == entry; });
}

void checkWatches(const char* name, unsigned int where) {
  for (const Watch& watched : watches()) {
    if (checksumOf(watched.address, watched.length) != watched.checksum) {
      GENAssert(GEN_WATCHED_DATA_CHANGED, name, where);
    }
  }
}

void addExitHandler(ExitFunction function, void* argument) {
  exitHandlers().push_front({function, argument});
}

void runExitHandlers() noexcept {
  static bool running = false;
  if (running) {
    return;
  }
  running = true;
  for (const ExitHandler& handler : exitHandlers()) {
    GENSwallow([&] { handler.function(handler.argument); });
  }
  GENSwallow(closeOutput);
  running = false;
}

}  // namespace gen
