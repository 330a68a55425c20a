// Copies a pair into a spool of its own.
#include "host/PrivateSpool.h"

#include "host/Copy.h"
#include "host/Exit.h"
#include "host/PostOffices.h"
#include "pfa/PFAPROF.h"
#include "plat/PlatError.h"
#include "plat/PlatFile.h"

namespace host {
namespace {

constexpr char SECTION[] = "Pair";
// Outside the masks of the contents listing.
constexpr unsigned int RECORDING_SLOT = 3;

void makeDirectory(const std::string& path) {
  if (const int error = plat::makeDirectory(path.substr(0, path.size() - 1), 0700); error != 0) {
    throw Error(inputOutput, path + ": " + plat::errorText(error));
  }
}

std::string fileName(const std::string& path) {
  return path.substr(path.find_last_of("/\\") + 1);
}

void copyFile(const std::string& from, const std::string& to) {
  if (const int error = copyExclusively(from, to, {.permissions = 0600, .followLinks = true});
      error != 0) {
    throw Error(inputOutput, from + ": " + plat::errorText(error));
  }
}

// The message file that goes with an envelope file, in either letter case of its extension.
std::string messagePath(const std::string& envelope) {
  const std::string base = envelope.substr(0, envelope.size() - 4);
  for (const char* extension : {".MSG", ".msg"}) {
    plat::FileStatus found;
    if (plat::status(base + extension, found) == 0 && found.kind == plat::Kind::regular) {
      return base + extension;
    }
  }
  throw Error(inputOutput, "There is no message file " + base + ".MSG.");
}

void check(const PairOptions& options) {
  const std::string& path = options.envelope;
  if (path.size() < 5 || !SCL_equalNoCase(std::string_view(path).substr(path.size() - 4), ".RCP")) {
    throw Error(usage, path + " is not the name of an envelope file (.RCP).");
  }
  for (const std::string* value : {&options.domain, &options.containerClass}) {
    if (value->empty() || value->find_first_of(",\r\n") != std::string::npos) {
      throw Error(usage, "\"" + *value + "\" cannot be configured.");
    }
  }
}

LOG_Logging& newLog() {
  static auto* log = new LOG_Logging;
  return *log;
}

}  // namespace

PrivateSpool::PrivateSpool(const PairOptions& options) : m_log(newLog()), m_group("krxhost") {
  check(options);
  if (m_directory.path().empty()) {
    throw Error(inputOutput, "No temporary directory can be made.");
  }
  copyPair(options);
  writeProfile(options);
  auto recording = std::make_unique<RecordingStream>();
  m_recorded = recording.get();
  unsigned int status = 0;
  m_log.attach(RECORDING_SLOT, std::move(recording), status);
  m_office = m_module.newPostOffice(m_group, SECTION, m_log);
  PFA_Profile opened;
  openProfile(opened, profile());
  m_office->configure(opened, status);
  m_office->open(status);
  if (status != 0) {
    for (const RecordingStream::Entry& entry : m_recorded->entries()) {
      std::fprintf(stderr, "%s\n", entry.text.c_str());
    }
    throw Error(configuration,
                "No post office for the pair, status " + std::to_string(status) + ".");
  }
}

void PrivateSpool::copyPair(const PairOptions& options) {
  makeDirectory(source());
  makeDirectory(m_directory.path() + "out\\");
  const std::string message = messagePath(options.envelope);
  copyFile(options.envelope, source() + fileName(options.envelope));
  copyFile(message, source() + fileName(message));
}

void PrivateSpool::writeProfile(const PairOptions& options) {
  PFA_Profile written;
  written.create(profile().c_str());
  written.selectSection(SECTION);
  const std::string destination =
      options.destination.empty() ? m_directory.path() + "out\\" : options.destination;
  for (const auto& [name, value] : {std::pair<const char*, std::string>{"SourceDir", source()},
                                    {"DestDir", destination},
                                    {"MailDomain", options.domain},
                                    {"ContainerClass", options.containerClass}}) {
    written.addEntry(name, 0, value.c_str(), 1);
  }
  if (const unsigned int status = written.flush(); status != 0) {
    throw Error(inputOutput, profile() + ": status " + std::to_string(status));
  }
}

std::unique_ptr<GMA_Message> PrivateSpool::load(unsigned int& status) {
  m_recorded->clear();
  std::unique_ptr<GMA_Message> message(m_office->nextMessage(status));
  if (!message) {
    throw Error(inputOutput, "The pair cannot be opened.");
  }
  return message;
}

}  // namespace host
