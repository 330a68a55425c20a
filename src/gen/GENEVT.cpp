// The event reporter and its place behind the assertions.
#include "gen/GENEVT.h"

#include <cstdarg>
#include <cstdio>
#include <string>

#include "gen/GENCATCH.h"
#include "gen/GENWNT.h"
#include "plat/PlatEventLog.h"

namespace {

constexpr std::size_t SOURCE_SIZE = 32;
constexpr std::size_t TEXT_SIZE = 1024;

struct EventSource {
  char name[SOURCE_SIZE] = {};
  std::uint16_t category = 0;
  std::uint32_t id = 0;
};

// Without a constructor to run, so that assertions of static objects can already be reported.
constinit EventSource g_source;

plat::EventType typeOf(int severity) noexcept {
  switch (severity) {
    case gen::SEVERITY_WARNING:
      return plat::EventType::warning;
    case gen::SEVERITY_INFORMATION:
      return plat::EventType::information;
    default:
      return plat::EventType::error;
  }
}

// Reporting stands in the way of an assertion that is about to be thrown: it throws nothing itself.
void send(int severity, std::uint16_t category, std::uint32_t id, const char* format,
          std::va_list arguments) {
  if (g_source.name[0] == '\0') {
    return;
  }
  char text[TEXT_SIZE];
  std::vsnprintf(text, sizeof text, format, arguments);
  GENSwallow([&] {
    plat::Event event;
    event.source = g_source.name;
    event.type = typeOf(severity);
    event.category = category;
    event.id = id;
    event.strings.emplace_back(text);
    plat::reportEvent(event);
  });
}

void reportAssertion(int severity, const char* line) {
  gen::reportEventDefault(severity, "%s", line);
}

[[maybe_unused]] const GENAssertionReporter g_formerReporter =
    GENSetAssertionReporter(&reportAssertion);

}  // namespace

namespace gen {

void setEventSource(const char* name, std::uint16_t category, std::uint32_t eventId) {
  std::snprintf(g_source.name, sizeof g_source.name, "%s", name != nullptr ? name : "");
  g_source.category = category;
  g_source.id = eventId;
}

void reportEvent(int severity, std::uint16_t category, std::uint32_t eventId, const char* format,
                 ...) {
  std::va_list arguments;
  va_start(arguments, format);
  send(severity, category, eventId, format, arguments);
  va_end(arguments);
}

void reportEventDefault(int severity, const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  send(severity, g_source.category, g_source.id, format, arguments);
  va_end(arguments);
}

}  // namespace gen
