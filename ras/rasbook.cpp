// Reading and writing the phonebook.
#include "ras/rasbook.h"

#include <cstdlib>

#include "gen/GENCODES.h"
#include "pfa/PFAPROF.h"
#include "plat/PlatClock.h"
#include "ras/rasfield.h"
#include "scl/SCLASCII.h"

namespace ras {

namespace {

constexpr char DEFAULT_PATH[] = "/etc/krx/phonebook.ini";

constexpr char ALTERNATE[] = "AlternatePhoneNumber";
constexpr char DEVICE_INFO[] = "DeviceInfo";
constexpr char COMMAND[] = "Command";
constexpr char PID_FILE[] = "PidFile";

// The file is away for a moment while somebody writes it.
constexpr int OPEN_TRIES = 5;
constexpr unsigned int OPEN_PAUSE = 100;

Error openBook(PFA_Profile& profile, const std::string& path, bool writable) {
  profile.setFlags(PFA_Profile::RETRY_BUSY, false);
  unsigned int status = profile.open(path.c_str(), writable);
  for (int i = 1; i < OPEN_TRIES && status == PFA_OPEN; ++i) {
    plat::sleepMilliseconds(OPEN_PAUSE);
    status = profile.open(path.c_str(), writable);
  }
  if (status == 0) {
    return OK;
  }
  return status == PFA_READ || status == PFA_HEADER ? CANNOT_LOAD_PHONEBOOK : CANNOT_OPEN_PHONEBOOK;
}

// A value is all that stands behind the name: commas belong to phone numbers and commands.
bool applyLine(std::string_view line, Entry& entry) {
  const std::size_t nameEnd = line.find_first_of("=,");
  const std::string_view name = SCL_trimmed(line.substr(0, nameEnd));
  const std::string value(nameEnd == std::string_view::npos
                              ? std::string_view()
                              : SCL_trimmed(line.substr(nameEnd + 1)));
  if (name == ALTERNATE) {
    entry.alternates.push_back(value);
  } else if (name == DEVICE_INFO) {
    entry.deviceInfo = value;
  } else if (name == COMMAND) {
    entry.command = value;
  } else if (name == PID_FILE) {
    entry.pidFile = value;
  } else {
    const Field* const field = findField(name);
    return field != nullptr && parseField(*field, value, entry.properties);
  }
  return true;
}

Error readSection(PFA_Profile& profile, const std::string& name, Entry& entry) {
  entry = {};
  entry.name = name;
  entry.properties.size = sizeof entry.properties;
  profile.selectSection(name.c_str());
  for (unsigned int status = profile.nextEntry(true); status == 0;
       status = profile.nextEntry(false)) {
    char line[PFA_Profile::VALUE_SIZE] = "";
    if (profile.entryText(line, sizeof line) != 0 || !applyLine(line, entry)) {
      return CORRUPT_PHONEBOOK;
    }
  }
  return OK;
}

unsigned int replaceText(PFA_Profile& profile, const char* name, const std::string& text) {
  while (profile.findEntry(name) == 0) {
    profile.deleteEntry();
  }
  return text.empty() ? 0 : profile.addEntry(name, 0, text.c_str(), 1);
}

unsigned int writeFields(PFA_Profile& profile, const RasEntry& before, const RasEntry& after) {
  unsigned int status = 0;
  for (const Field& field : fields()) {
    const std::string text = printField(field, after);
    if (status == 0 && text != printField(field, before)) {
      // A text may hold commas, which setting one field would leave behind.
      status = field.kind == Field::TEXT ? replaceText(profile, field.name, text)
                                         : profile.setValue(text.c_str(), false, 1, field.name);
    }
  }
  return status;
}

unsigned int writeAlternates(PFA_Profile& profile, const std::vector<std::string>& numbers) {
  unsigned int status = replaceText(profile, ALTERNATE, "");
  for (const std::string& number : numbers) {
    status = status != 0 ? status : profile.addEntry(ALTERNATE, 0, number.c_str(), 1);
  }
  return status;
}

}  // namespace

std::string Entry::alternateBlock() const {
  std::string block;
  for (const std::string& number : alternates) {
    block.append(number).push_back('\0');
  }
  if (!block.empty()) {
    block.push_back('\0');
  }
  return block;
}

Phonebook::Phonebook(const char* path) {
  const char* const setting = std::getenv("KRX_PHONEBOOK");
  const char* const chosen = setting != nullptr && *setting != '\0' ? setting : DEFAULT_PATH;
  m_path = path != nullptr ? path : chosen;
}

Error Phonebook::read(std::string_view name, Entry& entry) const {
  PFA_Profile profile;
  if (const Error error = openBook(profile, m_path, false); error != OK) {
    return error;
  }
  for (const std::string& section : profile.sectionNames()) {
    if (!section.empty() && section == name) {
      return readSection(profile, section, entry);
    }
  }
  return NO_SUCH_ENTRY;
}

Error Phonebook::readAll(std::vector<Entry>& entries) const {
  PFA_Profile profile;
  if (const Error error = openBook(profile, m_path, false); error != OK) {
    return error;
  }
  for (const std::string& section : profile.sectionNames()) {
    Entry entry;
    if (!section.empty() && readSection(profile, section, entry) == OK) {
      entries.push_back(std::move(entry));
    }
  }
  return OK;
}

Error Phonebook::write(const Entry& before, const Change& change) const {
  PFA_Profile profile;
  if (openBook(profile, m_path, true) != OK || profile.selectSection(before.name.c_str()) != 0) {
    return CANNOT_WRITE_PHONEBOOK;
  }
  unsigned int status = writeFields(profile, before.properties, change.properties);
  if (status == 0 && change.alternates && *change.alternates != before.alternates) {
    status = writeAlternates(profile, *change.alternates);
  }
  if (status == 0 && change.deviceInfo && *change.deviceInfo != before.deviceInfo) {
    status = replaceText(profile, DEVICE_INFO, *change.deviceInfo);
  }
  const bool written = profile.flush() == 0;
  return status == 0 && written ? OK : CANNOT_WRITE_PHONEBOOK;
}

}  // namespace ras
