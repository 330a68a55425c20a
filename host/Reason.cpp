// Reads and writes reason files.
#include "host/Reason.h"

#include <algorithm>
#include <cstdio>
#include <sstream>

#include "plat/PlatClock.h"
#include "plat/PlatFile.h"
#include "scl/SCLASCII.h"

namespace host {
namespace {

std::string oneLine(std::string text) {
  for (char& c : text) {
    if (SCL_isControl(c)) {
      c = ' ';
    }
  }
  return text;
}

std::string localTime(std::int64_t seconds) {
  plat::LocalTime local;
  if (!plat::clock().toLocal({seconds, 0}, local)) {
    return {};
  }
  char text[64];
  std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d", local.year, local.month,
                local.day, local.hour, local.minute, local.second);
  return text;
}

// Empty when there is none. Whoever may write into the source directory may have put a FIFO or a
// link there.
std::string readReasonFile(const std::string& path) {
  plat::OpenMode mode;
  mode.read = true;
  mode.noFollow = true;
  plat::File file;
  std::string text(65536, '\0');
  std::size_t length = 0;
  if (file.open(path, mode) != 0 || file.readAt(0, text.data(), text.size(), length) != 0) {
    return {};
  }
  text.resize(length);
  return text;
}

std::string restOf(const std::string& line, const std::string& label) {
  return line.substr(std::min(label.size() + 1, line.size()));
}

}  // namespace

Reason readReason(const std::string& path) {
  Reason reason;
  std::istringstream file(readReasonFile(path));
  std::string line;
  while (std::getline(file, line)) {
    std::istringstream fields(line);
    std::string name;
    fields >> name;
    if (name == "Status:") {
      fields >> reason.status;
    } else if (name == "Time:") {
      fields >> reason.time;
    } else if (name == "Tries:") {
      fields >> reason.tries;
    } else if (name == "File:") {
      fields >> reason.device >> reason.inode;
    } else if (name == "Reason:") {
      reason.text = restOf(line, name);
    } else if (name == "Name:") {
      reason.name = restOf(line, name);
    }
  }
  return reason;
}

bool writeReason(const std::string& path, const Reason& reason) {
  std::ostringstream text;
  text << "Status: " << reason.status << "\nReason: " << oneLine(reason.text)
       << "\nTime: " << reason.time << " (" << localTime(reason.time)
       << ")\nTries: " << reason.tries << "\nFile: " << reason.device << " " << reason.inode
       << "\n";
  if (!reason.name.empty()) {
    text << "Name: " << reason.name << "\n";
  }
  const std::string content = text.str();
  const std::string temporary = path + "~";
  plat::OpenMode mode;
  mode.write = true;
  mode.create = true;
  mode.truncate = true;
  mode.noFollow = true;
  mode.permissions = 0660;
  plat::File file;
  return file.open(temporary, mode) == 0 && file.writeAt(0, content.data(), content.size()) == 0 &&
         file.commit() == 0 && file.close() == 0 && plat::rename(temporary, path) == 0;
}

}  // namespace host
