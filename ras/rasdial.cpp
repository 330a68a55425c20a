// Composing and running the dialler's command line. It reads the password from descriptor 3: a file
// in a directory of our own, which has lost its name before the dialler starts.
#include "ras/rasdial.h"

#include <algorithm>

#include "plat/PlatCommand.h"
#include "plat/PlatFile.h"
#include "plat/PlatPath.h"
#include "plat/PlatTerminal.h"

namespace ras {

namespace {

constexpr char PASSWORD_DESCRIPTOR[] = "3";

// As one word of the command interpreter.
std::string quoted(std::string_view text) {
  std::string result = "'";
  for (const char c : text) {
    result += c == '\'' ? std::string("'\\''") : std::string(1, c);
  }
  return result + "'";
}

std::string_view numberOf(const Entry& entry, const Caller& caller) {
  return caller.number.empty() ? KRX_rasText(entry.properties.localPhoneNumber) : caller.number;
}

// 0 and the largest number mean that the dialler's own idle time holds.
std::uint32_t idleSeconds(const Entry& entry) {
  const std::uint32_t seconds = entry.properties.idleDisconnectSeconds;
  return seconds == UINT32_MAX ? 0 : seconds;
}

std::string pppdCommand(const Entry& entry, const Caller& caller) {
  std::string command = "PATH=$PATH:/usr/sbin:/sbin\nexec pppd call " + quoted(entry.name) +
                        " linkname " + quoted(linkName(entry)) + " updetach";
  if (const std::uint32_t idle = idleSeconds(entry); idle != 0) {
    command += " idle " + std::to_string(idle);
  }
  if (!caller.user.empty()) {
    command += " user " + quoted(caller.user);
  }
  if (!caller.password.empty()) {
    command += std::string(" plugin passwordfd.so passwordfd ") + PASSWORD_DESCRIPTOR;
  }
  return command;
}

// What stands for "%" and the letter; empty for an unknown letter.
std::string substitute(char letter, const Entry& entry, const Caller& caller) {
  switch (letter) {
    case '%':
      return "%";
    case 'e':
      return quoted(entry.name);
    case 'u':
      return quoted(caller.user);
    case 'n':
      return quoted(numberOf(entry, caller));
    case 'i':
      return std::to_string(idleSeconds(entry));
    case 'l':
      return quoted(linkName(entry));
    case 'p':
      return quoted(pidFile(entry));
    case 'd':
      return PASSWORD_DESCRIPTOR;
    default:
      return "";
  }
}

int writeSecret(const std::string& path, std::string_view password) {
  plat::OpenMode mode;
  mode.write = true;
  mode.create = true;
  mode.exclusive = true;
  mode.permissions = 0600;
  plat::File file;
  int error = file.open(path, mode);
  error = error != 0 ? error : file.writeAt(0, password.data(), password.size());
  return error != 0 ? error : file.close();
}

// The last line that is more than white space, of at most so many bytes as are read; empty when the
// password is in it: a dialler that was told to be verbose must not bring it into a log.
std::string lastLine(const std::string& path, std::string_view password) {
  constexpr std::int64_t READ = 4096;
  plat::OpenMode mode;
  mode.read = true;
  plat::File file;
  std::string text(READ, '\0');
  std::size_t length = 0;
  if (file.open(path, mode) != 0 || file.readAt(std::max<std::int64_t>(file.sizeAtOpen() - READ, 0),
                                                text.data(), text.size(), length) != 0) {
    return {};
  }
  text.resize(length);
  text.erase(text.find_last_not_of(" \t\r\n") + 1);
  const std::size_t start = text.find_last_of("\r\n") + 1;
  if (start == 0 && file.sizeAtOpen() > READ) {
    return {};  // it begins before what was read, and so may a password
  }
  text.erase(0, start);
  if (!password.empty() && text.find(password) != std::string::npos) {
    return {};
  }
  std::replace_if(
      text.begin(), text.end(),
      [](char c) { return static_cast<unsigned char>(c) < 32 || c == 127; }, ' ');
  return text;
}

// The dialler writes nothing into the host's streams and reads nothing from its terminal. What it
// says goes into a file, of which the last line becomes `words` when it fails. A pipe would do harm
// to a dialler that keeps the line and goes on talking.
int runDialler(const std::string& command, std::string_view password, std::string& words) {
  const plat::TemporaryDirectory directory;
  const std::string secret = directory.path() + "secret";
  const std::string said = directory.path() + "said";
  if (directory.path().empty() || writeSecret(secret, password) != 0) {
    return -1;
  }
  const std::string file = quoted(plat::toNative(secret));
  int error = 0;
  const int result = plat::runCommand("exec " + std::string(PASSWORD_DESCRIPTOR) + "<" + file +
                                          " </dev/null >>" + quoted(plat::toNative(said)) +
                                          " 2>&1 && rm -f " + file + " && {\n" + command + "\n}",
                                      error);
  if (result != 0) {
    words = lastLine(said, password);
  }
  return result;
}

}  // namespace

bool composeCommand(const Entry& entry, const Caller& caller, std::string& command) {
  if (entry.command.empty()) {
    command = pppdCommand(entry, caller);
    return true;
  }
  command.clear();
  for (std::size_t i = 0; i < entry.command.size(); ++i) {
    if (entry.command[i] != '%') {
      command += entry.command[i];
      continue;
    }
    ++i;
    const std::string value =
        i < entry.command.size() ? substitute(entry.command[i], entry, caller) : "";
    if (value.empty()) {
      return false;
    }
    command += value;
  }
  return true;
}

Error dial(const Entry& entry, const Caller& caller, Link& link, std::string& words) {
  link = {};
  words.clear();
  if (findLink(entry).process != 0) {
    return ALREADY_OPEN;
  }
  std::string command;
  if (!composeCommand(entry, caller, command)) {
    return CORRUPT_PHONEBOOK;
  }
  const int result = runDialler(command, caller.password, words);
  link = findLink(entry);
  if (result != 0 && result != -1) {
    return dialError(result);
  }
  // A host that reaps its children itself leaves no exit code; the line tells then.
  if (isUp(entry, link)) {
    return OK;
  }
  return result == 0 ? NO_CONNECTION : UNKNOWN;
}

}  // namespace ras
