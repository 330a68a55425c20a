// Links and the processes that keep them.
#include "ras/raslink.h"

#include <cstdio>
#include <fstream>
#include <limits>
#include <sstream>

#include "dv/DVDECODE.h"
#include "plat/PlatClock.h"
#include "plat/PlatCommand.h"
#include "plat/PlatFile.h"
#include "scl/SCLASCII.h"

namespace ras {

namespace {

constexpr char PID_DIRECTORY[] = "/run/ppp-";
constexpr std::size_t MAX_PID_FILE = 128;
constexpr std::size_t MAX_INTERFACE = 15;

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

PidFile readPidFile(const std::string& path) {
  plat::OpenMode mode;
  mode.read = true;
  mode.noFollow = true;
  plat::File file;
  plat::FileStatus status;
  char text[MAX_PID_FILE];
  std::size_t length = 0;
  if (file.open(path, mode) != 0 || file.readAt(0, text, sizeof text, length) != 0 ||
      plat::status(path, status, false) != 0) {
    return {};
  }
  std::istringstream lines(std::string(text, length));
  PidFile result;
  std::int64_t process = 0;
  if (lines >> process && process > 1 && process <= std::numeric_limits<std::int32_t>::max()) {
    result.link.process = static_cast<std::uint32_t>(process);
    lines >> result.link.interface;
    result.written = status.modifiedSeconds;
  }
  return result;
}

std::int64_t systemStart() {
  std::ifstream file("/proc/stat");
  std::string word;
  while (file >> word) {
    std::int64_t seconds = 0;
    if (word == "btime" && file >> seconds) {
      return seconds;
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
  std::istringstream fields(line.substr(nameEnd + 1));
  char state = 0;
  fields >> state;
  std::string skipped;
  for (int i = 4; i < 22; ++i) {
    fields >> skipped;
  }
  std::int64_t ticks = 0;
  if (!(fields >> ticks) || state == 'Z' || state == 'X') {
    return std::nullopt;
  }
  return systemStart() + ticks / TICKS_PER_SECOND;
}

// An interface that is up has bit 0 of its flags set.
bool isInterfaceUp(const std::string& name) {
  if (name.size() > MAX_INTERFACE || name.find('/') != std::string::npos) {
    return false;
  }
  std::ifstream file("/sys/class/net/" + name + "/flags");
  unsigned int flags = 0;
  return file >> std::hex >> flags && (flags & 1) != 0;
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
