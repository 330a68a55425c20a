// Reads spool directories. A listing may have a hundred thousand pairs, so each costs one opened
// envelope and one question about its message file.
#include "host/Waiting.h"

#include <algorithm>
#include <cerrno>
#include <unordered_map>

#include "dac/DACFILDA.h"
#include "dac/DACMEMDA.h"
#include "host/Exit.h"
#include "host/PostOffices.h"
#include "plat/PlatClock.h"
#include "plat/PlatError.h"
#include "plat/PlatSearch.h"
#include "plat/PlatSpool.h"
#include "rfc/rfcread.h"
#include "scl/SCLSTRTB.h"

namespace host {
namespace {

constexpr std::size_t EXTENSION = 4;

// Could a path in the system's form hold the name? The connector takes no other, and none that
// begins with a point.
bool isSpoolName(std::string_view name) {
  return name.size() > EXTENSION && name.front() != '.' &&
         std::none_of(name.begin(), name.end(), [](char c) {
           return static_cast<unsigned char>(c) < 0x20 ||
                  std::string_view("\\/:\"<>|").find(c) != std::string_view::npos;
         });
}

bool hasExtension(std::string_view name, std::string_view extension) {
  return SCL_equalNoCase(name.substr(name.size() - EXTENSION), extension);
}

// Calls `visit` with each name and whether it may be anything but a regular file.
template <class Visitor>
void forEachName(const std::string& directory, Visitor visit) {
  plat::DirectorySearch search;
  int error = search.open(directory);
  if (error == ENOENT || error == ENOTDIR) {
    return;
  }
  std::string name;
  bool maybeOther = false;
  while (error == 0) {
    error = search.next(name, maybeOther);
    if (error == 0 && name.empty()) {
      return;
    }
    if (error == 0 && isSpoolName(name)) {
      visit(name, maybeOther);
    }
  }
  throw Error(inputOutput, directory + ": " + plat::errorText(error));
}

std::int64_t ageOf(const plat::SpoolFile& file) {
  return std::max<std::int64_t>(plat::now().seconds - file.modifiedSeconds, 0);
}

// The message file's name is the envelope's with the other extension; in the letter case of the
// envelope's, or else in the other one.
bool findMessage(const plat::SpoolDirectory& directory, std::string name, plat::SpoolFile& file) {
  const bool lower = SCL_isLower(name.back());
  for (const char* extension : {lower ? ".msg" : ".MSG", lower ? ".MSG" : ".msg"}) {
    name.replace(name.size() - EXTENSION, EXTENSION, extension);
    if (const int error = directory.status(name, file); error != ENOENT) {
      return error == 0;
    }
  }
  return false;
}

class PairReader {
 public:
  explicit PairReader(const std::string& directory) : m_path(withSeparator(directory)) {
    m_isOpen = m_directory.open(directory) == 0;
  }

  // False when there is no whole pair of that envelope name, or the connector would not take it.
  bool read(const std::string& name, WaitingPair& pair);

 private:
  void readLarge(const std::string& name, WaitingPair& pair);
  void parse(DAC_BaseDataAccess& envelope, WaitingPair& pair);

  std::string m_path;
  plat::SpoolDirectory m_directory;
  bool m_isOpen = false;
  char m_buffer[16384] = {};
  DAC_MemoryDataAccess m_content;
  SCL_String m_name;
  SCL_StringTable m_lines;
};

bool PairReader::read(const std::string& name, WaitingPair& pair) {
  plat::SpoolFile envelope;
  plat::SpoolFile message;
  unsigned int marks = 0;
  std::size_t length = 0;
  if (!m_isOpen ||
      m_directory.read(name, m_buffer, sizeof m_buffer, length, envelope, marks) != 0 ||
      marks != 0 || !findMessage(m_directory, name, message)) {
    return false;
  }
  pair.envelope = name;
  pair.size = envelope.size + message.size;
  pair.age = ageOf(message);
  pair.sender.clear();
  pair.recipients.clear();
  if (length == sizeof m_buffer) {
    readLarge(name, pair);
    return true;
  }
  unsigned int status = 0;
  m_content.setSize(0, status);
  m_content.setPosition(0, status);
  m_content.write(static_cast<std::int32_t>(length), m_buffer, status);
  m_content.setPosition(0, status);
  parse(m_content, pair);
  return true;
}

void PairReader::readLarge(const std::string& name, WaitingPair& pair) {
  unsigned int status = 0;
  DAC_FileDataAccess file((m_path + name).c_str(),
                          DAC_FileDataAccess::READ_ONLY | DAC_FileDataAccess::SPOOL, status);
  if (status == 0) {
    parse(file, pair);
  }
}

void PairReader::parse(DAC_BaseDataAccess& envelope, WaitingPair& pair) {
  unsigned int status = 0;
  while (status == 0 && rfc_read_field_default(envelope, m_name, m_lines, status) != 0) {
    const bool isSender = SCL_equalNoCase(m_name, "Return-path");
    if (!isSender && !SCL_equalNoCase(m_name, "Recipient")) {
      continue;
    }
    SCL_String text = rfc_unfold(m_lines);
    text.trim();
    if (text.isEmpty()) {
      continue;
    }
    if (isSender) {
      pair.sender = text.view();
    } else {
      pair.recipients.emplace_back(text.view());
    }
  }
}

}  // namespace

void forEachPair(const std::string& directory,
                 const std::function<void(const WaitingPair&)>& visit) {
  PairReader reader(directory);
  WaitingPair pair;
  forEachName(directory, [&](const std::string& name, bool) {
    if (hasExtension(name, ".RCP") && reader.read(name, pair)) {
      visit(pair);
    }
  });
}

std::vector<LoneFile> loneFiles(const std::string& directory) {
  constexpr unsigned int ENVELOPE = 1;
  constexpr unsigned int MESSAGE = 2;
  plat::SpoolDirectory parent;
  parent.open(directory);  // one that cannot be opened is told by the search
  std::vector<std::string> names;
  std::unordered_map<std::string, unsigned int> halves;  // by base name
  forEachName(directory, [&](const std::string& name, bool maybeOther) {
    const unsigned int half = hasExtension(name, ".RCP")   ? ENVELOPE
                              : hasExtension(name, ".MSG") ? MESSAGE
                                                           : 0;
    plat::SpoolFile file;
    if (half != 0 && (!maybeOther || parent.status(name, file) == 0)) {
      halves[name.substr(0, name.size() - EXTENSION)] |= half;
      names.push_back(name);
    }
  });
  std::vector<LoneFile> found;
  for (const std::string& name : names) {
    const unsigned int half = halves[name.substr(0, name.size() - EXTENSION)];
    plat::SpoolFile file;
    if (half != (ENVELOPE | MESSAGE) && parent.status(name, file) == 0) {
      found.push_back({name, half == MESSAGE, file.size, ageOf(file)});
    }
  }
  return found;
}

}  // namespace host
