// The post offices of the configuration: created, configured, checked for rings, opened.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/Config.h"
#include "host/Module.h"
#include "host/Quarantine.h"
#include "plat/PlatFile.h"

class PFA_Profile;

namespace host {

struct PostOffice {
  std::string name;
  std::string sourceDirectory;       // as configured
  std::string destinationDirectory;  // as configured
  std::unique_ptr<GMA_PostOffice> object;
  plat::File consumerLock;
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
  // Holds each source directory for this process; Error(unavailable) that names the other holder.
  void lockSources();

  PostOffice& find(const std::string& name);
  PostOffice& target(const PostOffice& from) { return find(m_config.target(from.name)); }
  std::vector<PostOffice>& all() noexcept { return m_postOffices; }

 private:
  void add(const Module& module, PFA_Profile& profile, const std::string& name, LOG_Logging& log);
  const Config& m_config;
  GMA_POGroup m_group;
  std::vector<PostOffice> m_postOffices;
};

// The value of an entry of the section, whatever the letter case of its name; empty when missing.
std::string sectionValue(PFA_Profile& profile, const std::string& section, const char* entry);

// `directory` with a separator at its end.
std::string withSeparator(std::string directory);

}  // namespace host
