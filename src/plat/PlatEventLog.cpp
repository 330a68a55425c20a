// Reporting an event: as a line of JSON, as fields for the journal, or as a syslog message. The
// datagrams are written here instead of through syslog(), whose openlog() belongs to the host.
#include "plat/PlatEventLog.h"

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstring>

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/un.h>

#include "plat/PlatClock.h"
#include "plat/PlatSystem.h"

namespace plat {

namespace {

constexpr char JOURNAL_SOCKET[] = "/run/systemd/journal/socket";
constexpr char SYSLOG_SOCKET[] = "/dev/log";
constexpr unsigned int SYSLOG_FACILITY_MAIL = 2;
// What every syslog daemon of today takes; the older ones cut the rest off themselves.
constexpr std::size_t SYSLOG_LIMIT = 8192;

struct TypeName {
  const char* name;
  unsigned int severity;  // of syslog and of the journal
};

TypeName nameOf(EventType type) {
  switch (type) {
    case EventType::warning:
      return {"warning", 4};
    case EventType::information:
      return {"information", 6};
    case EventType::error:
      break;
  }
  return {"error", 3};
}

[[gnu::format(printf, 1, 2)]] std::string formatted(const char* format, ...) {
  char text[80];
  va_list arguments;
  va_start(arguments, format);
  const int length = std::vsnprintf(text, sizeof text, format, arguments);
  va_end(arguments);
  return std::string(text, std::min(sizeof text - 1, static_cast<std::size_t>(length)));
}

std::string hexOf(std::string_view bytes) {
  static constexpr char HEX[] = "0123456789abcdef";
  std::string text;
  text.reserve(bytes.size() * 2);
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    text += HEX[byte >> 4];
    text += HEX[byte & 15];
  }
  return text;
}

std::string joined(const std::vector<std::string>& strings, char separator) {
  std::string text;
  for (const std::string& string : strings) {
    if (!text.empty()) {
      text += separator;
    }
    text += string;
  }
  return text;
}

// A JSON string; a byte from 0x80 is the code point of the same number.
std::string quoted(std::string_view text) {
  std::string result = "\"";
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x20 || byte >= 0x7F) {
      result += formatted("\\u%04x", static_cast<unsigned int>(byte));
    } else {
      result += c == '"' || c == '\\' ? "\\" : "";
      result += c;
    }
  }
  return result + '"';
}

std::string localTimeText() {
  LocalTime t;
  return localNow(t) ? formatted("%04d-%02d-%02dT%02d:%02d:%02d.%03d", t.year, t.month, t.day,
                                 t.hour, t.minute, t.second, t.millisecond)
                     : std::string();
}

std::string jsonLine(const Event& event) {
  std::string line = "{\"time\": " + quoted(localTimeText());
  line += ", \"source\": " + quoted(event.source);
  line += ", \"type\": " + quoted(nameOf(event.type).name);
  line += ", \"category\": " + std::to_string(event.category);
  line += ", \"id\": " + std::to_string(event.id);
  line += ", \"strings\": [";
  for (std::size_t i = 0; i < event.strings.size(); ++i) {
    line += (i > 0 ? ", " : "") + quoted(event.strings[i]);
  }
  line += "], \"data\": " + quoted(hexOf(event.data));
  return line + "}\n";
}

// One write, so that the lines of several processes do not mix.
bool appendLine(const char* file, const std::string& line) {
  const NativePath path(file);
  const Descriptor opened(repeatInterrupted([&] {
    return ::open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NOCTTY | O_NONBLOCK,
                  0640);
  }));
  if (!opened.isOpen()) {
    path.fail("open", errno);
    return false;
  }
  const ssize_t put =
      repeatInterrupted([&] { return ::write(opened.get(), line.data(), line.size()); });
  return path.check("write", put < 0 ? -1 : 0) == 0 && static_cast<std::size_t>(put) == line.size();
}

// One field of the journal's native protocol: "NAME=value", or, for a value with a line feed, the
// name alone, its length in 64 bits (little-endian) and the value.
void addField(std::string& datagram, const char* name, std::string_view value) {
  datagram += name;
  if (value.find('\n') == std::string_view::npos) {
    datagram += '=';
  } else {
    datagram += '\n';
    for (unsigned int shift = 0; shift < 64; shift += 8) {
      datagram += static_cast<char>((std::uint64_t{value.size()} >> shift) & 0xFF);
    }
  }
  datagram += value;
  datagram += '\n';
}

std::string journalDatagram(const Event& event) {
  const TypeName type = nameOf(event.type);
  std::string datagram;
  addField(datagram, "MESSAGE", joined(event.strings, '\n'));
  addField(datagram, "PRIORITY", std::to_string(type.severity));
  addField(datagram, "SYSLOG_FACILITY", std::to_string(SYSLOG_FACILITY_MAIL));
  addField(datagram, "SYSLOG_IDENTIFIER", event.source);
  addField(datagram, "KRX_EVENT_TYPE", type.name);
  addField(datagram, "KRX_EVENT_CATEGORY", std::to_string(event.category));
  addField(datagram, "KRX_EVENT_ID", std::to_string(event.id));
  for (const std::string& string : event.strings) {
    addField(datagram, "KRX_EVENT_STRING", string);
  }
  if (!event.data.empty()) {
    addField(datagram, "KRX_EVENT_DATA", event.data);
  }
  return datagram;
}

std::string syslogDatagram(const Event& event) {
  static constexpr const char* MONTHS[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                           "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
  LocalTime t;
  std::string text = formatted("<%u>", SYSLOG_FACILITY_MAIL * 8 + nameOf(event.type).severity);
  if (localNow(t)) {
    text +=
        formatted("%s %2d %02d:%02d:%02d ", MONTHS[t.month - 1], t.day, t.hour, t.minute, t.second);
  }
  text += event.source;
  text += formatted("[%d]: event 0x%08X category %u: ", static_cast<int>(::getpid()), event.id,
                    static_cast<unsigned int>(event.category));
  text += joined(event.strings, ' ');
  if (!event.data.empty()) {
    text += " data " + hexOf(event.data);
  }
  text.resize(std::min(text.size(), SYSLOG_LIMIT));
  const auto isControl = [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; };
  std::replace_if(text.begin(), text.end(), isControl, ' ');
  return text;
}

// 0 or an errno value. Never waits: a log daemon that hangs must not hang the mail.
int sendDatagram(const char* socketPath, const std::string& datagram) {
  struct sockaddr_un address {};
  address.sun_family = AF_UNIX;
  const std::size_t length = std::strlen(socketPath);
  if (length >= sizeof address.sun_path) {
    return ENAMETOOLONG;
  }
  std::memcpy(address.sun_path, socketPath, length);
  const Descriptor socket(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0));
  if (!socket.isOpen()) {
    return errno;
  }
  const ssize_t sent = repeatInterrupted([&] {
    return ::sendto(socket.get(), datagram.data(), datagram.size(), MSG_DONTWAIT | MSG_NOSIGNAL,
                    reinterpret_cast<const struct sockaddr*>(&address), sizeof address);
  });
  return sent < 0 ? errno : 0;
}

const char* settingOr(const char* name, const char* otherwise) {
  const char* value = setting(name);
  return value != nullptr ? value : otherwise;
}

// A socket without anybody behind it is as good as none.
bool isThere(int error) {
  return error != ENOENT && error != ENOTDIR && error != ECONNREFUSED && error != EPROTOTYPE;
}

}  // namespace

bool reportEvent(const Event& event) {
  if (const char* file = setting("KRX_EVENTLOG"); file != nullptr) {
    return appendLine(file, jsonLine(event));
  }
  const char* socketPath = settingOr("KRX_JOURNAL_SOCKET", JOURNAL_SOCKET);
  int error = sendDatagram(socketPath, journalDatagram(event));
  if (!isThere(error)) {
    socketPath = settingOr("KRX_SYSLOG_SOCKET", SYSLOG_SOCKET);
    error = sendDatagram(socketPath, syslogDatagram(event));
  }
  return error == 0 || fail("send", socketPath, error) == 0;
}

}  // namespace plat
