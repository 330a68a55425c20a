// The post offices of the configuration: created, configured, checked for rings, opened.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/Config.h"
#include "host/Module.h"
#include "host/Quarantine.h"
#include "host/SourceLock.h"

class PFA_Profile;

namespace host {

struct PostOffice {
  std::string name;
  std::string sourceDirectory;       // as configured
  std::string destinationDirectory;  // as configured
  std::unique_ptr<GMA_PostOffice> object;
  SourceLock lock;
  bool isMissed = false;  // it was told that the source directory cannot be had
  std::unique_ptr<Quarantine> quarantine;
};

class PostOffices {
 public:
  // Creates and configures all of them; Error(configuration) when one refuses, after its log entry.
  PostOffices(const Module& module, PFA_Profile& profile, const Config& config, LOG_Logging& log);

  // Error(configuration) that names the ring when mail would go round in one.
  void refuseRings() const;
  // Writes a line to standard output for what an operator should know of the directories: those
  // that everybody may write into, and how files in use are told in the source directories.
  void printDirectories() const;
  // Holds each source directory that is there for this process; Error(unavailable) that names the
  // other holder, Error(inputOutput).
  void lockSources();
  // Before each pass: whether the source directory is held, as one must be that is fetched from.
  // One that cannot be had just now is told once; Error(unavailable) as above.
  bool holdSource(PostOffice& office, LOG_Logging& log);

  PostOffice& find(const std::string& name);
  PostOffice& target(const PostOffice& from) { return find(m_config.target(from.name)); }
  std::vector<PostOffice>& all() noexcept { return m_postOffices; }

 private:
  void add(const Module& module, PFA_Profile& profile, const std::string& name, LOG_Logging& log);
  const Config& m_config;
  GMA_POGroup m_group;
  std::vector<PostOffice> m_postOffices;
};

// `directory` with a separator at its end.
std::string withSeparator(std::string directory);

}  // namespace host
