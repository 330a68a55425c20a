// A spool of the program's own that holds a copy of one pair, with a post office over it: what
// looks at a pair without touching it works on this.
#pragma once

#include <memory>
#include <string>

#include "gma/GMAMSG.h"
#include "gma/GMAPO.h"
#include "host/Log.h"
#include "host/Module.h"
#include "plat/PlatTerminal.h"

namespace host {

struct PairOptions {
  std::string envelope;  // path of the .RCP file
  std::string domain = "localhost";
  std::string containerClass = "Mail";
  std::string destination;  // where stored pairs go; empty: into the private spool
};

class PrivateSpool {
 public:
  // Copies the pair and opens the post office; Error(usage), Error(inputOutput).
  explicit PrivateSpool(const PairOptions& options);
  // The pair as a message, with the status that loading left.
  std::unique_ptr<GMA_Message> load(unsigned int& status);
  LOG_Logging& log() noexcept { return m_log; }
  // What loading wrote to the log.
  const RecordingStream& recorded() const noexcept { return *m_recorded; }

 private:
  void copyPair(const PairOptions& options);
  void writeProfile(const PairOptions& options);
  std::string source() const { return m_directory.path() + "in\\"; }
  std::string profile() const { return m_directory.path() + "spool.ini"; }

  plat::TemporaryDirectory m_directory;
  LOG_Logging& m_log;  // bound in the libraries until the process ends
  RecordingStream* m_recorded = nullptr;
  Module m_module;
  GMA_POGroup m_group;
  std::unique_ptr<GMA_PostOffice> m_office;
};

}  // namespace host
