// Links and the processes that keep them.
#include "ras/raslink.h"

#include <charconv>
#include <cstdio>
#include <fstream>
#include <limits>

#include "plat/PlatClock.h"
#include "plat/PlatCommand.h"
#include "plat/PlatFile.h"
#include "scl/SCLASCII.h"

namespace ras {

namespace {

constexpr char PID_DIRECTORY[] = "/run/ppp-";
constexpr std::size_t MAX_PID_FILE = 128;
constexpr std::size_t MAX_INTERFACE = 15;

// Where /proc/PID/stat, counted from 1, has the state and the start of a process.
constexpr int STATE_FIELD = 3;
constexpr int START_FIELD = 22;
// /proc gives times in hundredths of a second and the system's start in whole seconds.
constexpr std::int64_t TICKS_PER_SECOND = 100;
constexpr std::int64_t START_SLACK = 2;

constexpr unsigned int END_PAUSE = 50;
constexpr unsigned int END_TRIES = 100;

struct PidFile {
  Link link;
  std::int64_t written = 0;  // seconds since 1970
};

bool isNameCharacter(char c) {
  return SCL_isAlpha(c) || SCL_isDigit(c) || c == '-' || c == '_';
}

// The next word of `text`, which is taken from it. Numbers and words are not read from streams,
// whose locale is the host's.
std::string_view takeWord(std::string_view& text) {
  text = SCL_trimmed(text);
  const std::size_t length = std::min(text.find_first_of(" \t\n"), text.size());
  const std::string_view word = text.substr(0, length);
  text.remove_prefix(length);
  return word;
}

// -1 when the whole word is no number.
std::int64_t numberOf(std::string_view word, int base = 10) {
  std::int64_t number = -1;
  const char* const end = word.data() + word.size();
  const auto [stop, error] = std::from_chars(word.data(), end, number, base);
  return error == std::errc() && stop == end ? number : -1;
}

PidFile readPidFile(const std::string& path) {
  plat::OpenMode mode;
  mode.read = true;
  mode.noFollow = true;
  plat::File file;
  plat::FileStatus status;
  char buffer[MAX_PID_FILE];
  std::size_t length = 0;
  if (file.open(path, mode) != 0 || file.readAt(0, buffer, sizeof buffer, length) != 0 ||
      plat::status(path, status, false) != 0) {
    return {};
  }
  std::string_view text(buffer, length);
  const std::int64_t process = numberOf(takeWord(text));
  if (process <= 1 || process > std::numeric_limits<std::int32_t>::max()) {
    return {};
  }
  return {{static_cast<std::uint32_t>(process), std::string(takeWord(text))},
          status.modifiedSeconds};
}

std::int64_t systemStart() {
  std::ifstream file("/proc/stat");
  for (std::string line; std::getline(file, line);) {
    std::string_view rest = line;
    if (takeWord(rest) == "btime") {
      return numberOf(takeWord(rest));
    }
  }
  return 0;
}

// When the process started, in seconds since 1970; nothing when it is gone. One that has ended but
// whose parent has not asked for its end counts as gone.
std::optional<std::int64_t> processStart(std::uint32_t process) {
  std::ifstream file("/proc/" + std::to_string(process) + "/stat");
  std::string line;
  std::getline(file, line);
  const std::size_t nameEnd = line.rfind(')');  // a program's name may hold anything
  if (nameEnd == std::string::npos) {
    return std::nullopt;
  }
  std::string_view fields = std::string_view(line).substr(nameEnd + 1);
  const std::string_view state = takeWord(fields);
  for (int i = STATE_FIELD + 1; i < START_FIELD; ++i) {
    takeWord(fields);
  }
  const std::int64_t ticks = numberOf(takeWord(fields));
  if (ticks < 0 || state == "Z" || state == "X") {
    return std::nullopt;
  }
  return systemStart() + ticks / TICKS_PER_SECOND;
}

// An interface that is up has bit 0 of its flags set; the file says 0x1003 and the like.
bool isInterfaceUp(const std::string& name) {
  if (name.size() > MAX_INTERFACE || name.find('/') != std::string::npos) {
    return false;
  }
  std::ifstream file("/sys/class/net/" + name + "/flags");
  std::string flags;
  std::getline(file, flags);
  const std::int64_t bits = flags.starts_with("0x") ? numberOf(flags.substr(2), 16) : -1;
  return bits >= 0 && (bits & 1) != 0;
}

}  // namespace

std::string linkName(const Entry& entry) {
  std::string name = "krx-";
  for (const char c : entry.name) {
    if (isNameCharacter(c)) {
      name += c;
    } else {
      char code[4];
      std::snprintf(code, sizeof code, "%%%02X", static_cast<unsigned char>(c));
      name += code;
    }
  }
  return name;
}

std::string pidFile(const Entry& entry) {
  return entry.pidFile.empty() ? PID_DIRECTORY + linkName(entry) + ".pid" : entry.pidFile;
}

Link findLink(const Entry& entry) {
  const PidFile file = readPidFile(pidFile(entry));
  if (file.link.process == 0) {
    return {};
  }
  const auto start = processStart(file.link.process);
  return start && *start <= file.written + START_SLACK ? file.link : Link{};
}

bool isUp(const Entry& entry, const Link& link) {
  if (link.process == 0) {
    return false;
  }
  return link.interface.empty() ? !entry.command.empty() : isInterfaceUp(link.interface);
}

bool endLink(const Entry& entry, const Link& link) {
  int error = 0;
  plat::runCommand("kill -TERM " + std::to_string(link.process) + " 2>/dev/null", error);
  for (unsigned int i = 0; i < END_TRIES; ++i) {
    if (findLink(entry).process != link.process) {
      return true;
    }
    plat::sleepMilliseconds(END_PAUSE);
  }
  return false;
}

}  // namespace ras
