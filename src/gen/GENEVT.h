// The event reporter: writes to the system's event log under a source that the host sets. Without
// a source nothing is reported. Assertions are reported with severity 1 and the default category.
#pragma once

#include <cstdint>

namespace gen {

inline constexpr int SEVERITY_ERROR = 1;
inline constexpr int SEVERITY_WARNING = 2;
inline constexpr int SEVERITY_INFORMATION = 3;  // anything else is an error

// A name of more than 31 characters is cut; null or empty turns reporting off.
void setEventSource(const char* name, std::uint16_t category, std::uint32_t eventId);
// At most 1,023 characters. An event that cannot be sent is dropped.
void reportEvent(int severity, std::uint16_t category, std::uint32_t eventId, const char* format,
                 ...) __attribute__((format(printf, 4, 5)));
// With the category and event id that the host has set.
void reportEventDefault(int severity, const char* format, ...)
    __attribute__((format(printf, 2, 3)));

}  // namespace gen
