// The host's configuration: the section [Host] of the profile that also configures the post
// offices and the log.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

class PFA_Profile;

namespace host {

struct Config {
  std::vector<std::string> postOffices;       // names, in the order in which they are polled
  std::map<std::string, std::string> routes;  // messages fetched from -> delivered through
  std::string logSection;                     // empty: Brief entries go to standard error
  std::uint32_t poll = 30;                    // seconds
  std::uint32_t retries = 3;
  std::uint32_t retryPause = 300;  // seconds

  // The post office that delivers what `from` fetches.
  const std::string& target(const std::string& from) const;
};

// Throws Error(configuration) with a message that names what is wrong and its line.
Config readConfig(PFA_Profile& profile, const std::string& fileName);

// Opens the profile read-only; Error(configuration) when it cannot be read.
void openProfile(PFA_Profile& profile, const std::string& fileName);

}  // namespace host
