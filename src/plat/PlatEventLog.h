// The event log: the journal's socket when there is one, else the syslog socket; KRX_EVENTLOG=FILE
// appends one JSON line an event instead. Sending never blocks: what cannot be sent is dropped.
// Sites that keep the sockets elsewhere say so in KRX_JOURNAL_SOCKET and KRX_SYSLOG_SOCKET.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace plat {

enum class EventType : std::uint16_t { error = 1, warning = 2, information = 4 };

struct Event {
  std::string source;
  EventType type = EventType::error;
  std::uint16_t category = 0;
  std::uint32_t id = 0;
  std::vector<std::string> strings;
  std::string data;
};

// RegisterEventSource, ReportEvent and DeregisterEventSource in one; false when it was dropped.
bool reportEvent(const Event& event);

}  // namespace plat
