// Loads a private copy of a pair and prints what became of it.
#include "host/Show.h"

#include <cstdio>
#include <memory>

#include "dv/DVPATH.h"
#include "gen/GENCATCH.h"
#include "host/Exit.h"
#include "host/Json.h"
#include "host/Module.h"
#include "host/PostOffices.h"
#include "pfa/PFAPROF.h"
#include "plat/PlatError.h"
#include "plat/PlatFile.h"
#include "plat/PlatTerminal.h"

namespace host {
namespace {

constexpr char SECTION[] = "Show";
constexpr std::size_t BLOCK = 65536;

void copyFile(const std::string& from, const std::string& to) {
  plat::File source;
  plat::File target;
  plat::OpenMode reading;
  reading.read = true;
  plat::OpenMode writing;
  writing.write = true;
  writing.create = true;
  writing.exclusive = true;
  writing.permissions = 0600;
  int error = source.open(from, reading);
  if (error == 0) {
    error = target.open(to, writing);
  }
  const auto buffer = std::make_unique<char[]>(BLOCK);
  std::size_t got = BLOCK;
  for (std::int64_t position = 0; error == 0 && got == BLOCK; position += BLOCK) {
    error = source.readAt(position, buffer.get(), BLOCK, got);
    if (error == 0) {
      error = target.writeAt(position, buffer.get(), got);
    }
  }
  if (error != 0) {
    throw Error(inputOutput, from + ": " + plat::errorText(error));
  }
}

std::string fileName(const std::string& path) { return path.substr(path.find_last_of("/\\") + 1); }

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

// A spool of our own that holds the pair, and the profile of a post office over it.
class PrivateSpool {
 public:
  explicit PrivateSpool(const ShowOptions& options) {
    if (m_directory.path().empty()) {
      throw Error(inputOutput, "No temporary directory can be made.");
    }
    makeDirectory(source());
    makeDirectory(destination());
    const std::string message = messagePath(options.envelope);
    copyFile(options.envelope, source() + fileName(options.envelope));
    copyFile(message, source() + fileName(message));
    writeProfile(options);
  }
  std::string profile() const { return m_directory.path() + "show.ini"; }

 private:
  std::string source() const { return m_directory.path() + "in\\"; }
  std::string destination() const { return m_directory.path() + "out\\"; }

  static void makeDirectory(const std::string& path) {
    if (const int error = plat::makeDirectory(path.substr(0, path.size() - 1), 0700); error != 0) {
      throw Error(inputOutput, path + ": " + plat::errorText(error));
    }
  }

  void writeProfile(const ShowOptions& options) {
    PFA_Profile written;
    written.create(profile().c_str());
    written.selectSection(SECTION);
    for (const auto& [name, value] : {std::pair<const char*, std::string>{"SourceDir", source()},
                                      {"DestDir", destination()},
                                      {"MailDomain", options.domain},
                                      {"ContainerClass", options.containerClass}}) {
      written.addEntry(name, 0, value.c_str(), 1);
    }
    if (const unsigned int status = written.flush(); status != 0) {
      throw Error(inputOutput, profile() + ": status " + std::to_string(status));
    }
  }

  plat::TemporaryDirectory m_directory;
};

void checkOptions(const ShowOptions& options) {
  const std::string& path = options.envelope;
  if (path.size() < 5 || !SCL_equalNoCase(std::string_view(path).substr(path.size() - 4), ".RCP")) {
    throw Error(usage, path + " is not the name of an envelope file (.RCP).");
  }
  for (const std::string& value : {options.domain, options.containerClass}) {
    if (value.empty() || value.find_first_of(",\r\n") != std::string::npos) {
      throw Error(usage, "\"" + value + "\" cannot be configured.");
    }
  }
}

void print(GMA_Message& message, unsigned int status, const ShowOptions& options,
           LOG_Logging& log, const RecordingStream& recorded) {
  if (options.json) {
    std::printf("%s\n", jsonString(jsonMessage(message, status, recorded.entries()), 1).c_str());
    return;
  }
  for (const RecordingStream::Entry& entry : recorded.entries()) {
    std::fprintf(stderr, "%s\n", entry.text.c_str());
  }
  // The one stream that both the listing and its summary reach.
  constexpr unsigned int LISTING_STREAM = 2;
  unsigned int attached = 0;
  log.attach(LISTING_STREAM,
             std::make_unique<TerminalStream>(TerminalStream::Output::plainOutput,
                                              LOG_Logging::NORMAL),
             attached);
  message.dumpContents(options.envelope.c_str());
}

}  // namespace

int show(const ShowOptions& options) {
  checkOptions(options);
  const PrivateSpool spool(options);
  PFA_Profile profile;
  openProfile(profile, spool.profile());
  const Module module;
  static LOG_Logging log;  // the module keeps it bound
  auto recording = std::make_unique<RecordingStream>();
  RecordingStream& recorded = *recording;
  // Slot 3 is outside the masks of the contents listing.
  unsigned int status = 0;
  log.attach(3, std::move(recording), status);
  GMA_POGroup group("krxhost");
  const std::unique_ptr<GMA_PostOffice> office = module.newPostOffice(group, SECTION, log);
  office->configure(profile, status);
  office->open(status);
  if (status != 0) {
    throw Error(configuration, "The pair cannot be shown, status " + std::to_string(status) + ".");
  }
  recorded.clear();
  const std::unique_ptr<GMA_Message> message(office->nextMessage(status));
  if (!message) {
    throw Error(inputOutput, "The pair cannot be opened.");
  }
  print(*message, status, options, log, recorded);
  return status == 0 ? Exit::done : Exit::badMail;
}

}  // namespace host
