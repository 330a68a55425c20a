// Reads the section [Host].
#include "host/Config.h"

#include <algorithm>

#include "dv/DVDECODE.h"
#include "gen/GENCODES.h"
#include "host/Exit.h"
#include "pfa/PFAPROF.h"
#include "plat/PlatError.h"

namespace host {
namespace {

constexpr char HOST_SECTION[] = "Host";

class Reader {
 public:
  Reader(PFA_Profile& profile, const std::string& fileName)
      : m_profile(profile), m_file(fileName) {}

  Config read() {
    Config config;
    const unsigned int status = m_profile.selectSection(HOST_SECTION);
    if (status == 0) {
      readEntries(config);
    } else if (status != PFA_SECTION_NOT_FOUND) {
      throw Error(configuration, m_file + ": status " + std::to_string(status));
    }
    if (config.postOffices.empty()) {
      config.postOffices = sectionsWithSource();
    }
    check(config);
    return config;
  }

 private:
  void readEntries(Config& config) {
    for (unsigned int status = m_profile.nextEntry(true); status == 0;
         status = m_profile.nextEntry(false)) {
      char name[64];
      if (m_profile.entryName(name, sizeof name) != 0) {
        fail("is not an entry of this section");
      }
      readEntry(config, name);
    }
  }

  void readEntry(Config& config, const SCL_StringRef& name) {
    if (SCL_equalNoCase(name, "PostOffice")) {
      config.postOffices.push_back(field(1));
    } else if (SCL_equalNoCase(name, "Route")) {
      if (!config.routes.emplace(field(1), field(2)).second) {
        fail("has a second route for the same post office");
      }
    } else if (SCL_equalNoCase(name, "Log")) {
      config.logSection = field(1);
    } else if (SCL_equalNoCase(name, "Poll")) {
      config.poll = std::max<std::uint32_t>(number(), 1);
    } else if (SCL_equalNoCase(name, "Retries")) {
      config.retries = number();
    } else if (SCL_equalNoCase(name, "RetryPause")) {
      config.retryPause = number();
    } else {
      fail("is not known");
    }
  }

  std::string field(unsigned int index) {
    char value[PFA_Profile::VALUE_SIZE];
    if (m_profile.getValue(value, sizeof value, false, index) != 0 || value[0] == '\0') {
      fail("lacks value " + std::to_string(index));
    }
    return value;
  }

  std::uint32_t number() {
    std::uint32_t value = 0;
    if (!dv::decodeUnsigned(field(1).c_str(), value)) {
      fail("is not a number");
    }
    return value;
  }

  [[noreturn]] void fail(const std::string& what) {
    char text[PFA_Profile::VALUE_SIZE] = "";
    if (m_profile.entryName(text, sizeof text) != 0) {
      m_profile.entryText(text, sizeof text);
    }
    throw Error(configuration, m_file + ":" + std::to_string(m_profile.entryLine()) +
                                   ": section [Host], entry \"" + text + "\" " + what + ".");
  }

  std::vector<std::string> sectionsWithSource() {
    std::vector<std::string> found;
    for (const std::string& section : m_profile.sectionNames()) {
      if (m_profile.selectSection(section.c_str()) != 0) {
        continue;
      }
      for (unsigned int status = m_profile.nextEntry(true); status == 0;
           status = m_profile.nextEntry(false)) {
        char name[64];
        if (m_profile.entryName(name, sizeof name) == 0 &&
            SCL_equalNoCase(SCL_StringRef(name), "SourceDir")) {
          found.push_back(section);
          break;
        }
      }
    }
    return found;
  }

  void check(const Config& config) const {
    if (config.postOffices.empty()) {
      throw Error(configuration, m_file + ": no post office is configured.");
    }
    const auto known = [&](const std::string& name) {
      return std::find(config.postOffices.begin(), config.postOffices.end(), name) !=
             config.postOffices.end();
    };
    for (const auto& [from, to] : config.routes) {
      for (const std::string& name : {from, to}) {
        if (!known(name)) {
          throw Error(configuration,
                      m_file + ": a route names \"" + name + "\", which is no post office.");
        }
      }
    }
    for (std::size_t i = 0; i < config.postOffices.size(); ++i) {
      if (std::count(config.postOffices.begin(), config.postOffices.end(), config.postOffices[i]) >
          1) {
        throw Error(configuration,
                    m_file + ": post office \"" + config.postOffices[i] + "\" is named twice.");
      }
    }
  }

  PFA_Profile& m_profile;
  std::string m_file;
};

}  // namespace

const std::string& Config::target(const std::string& from) const {
  const auto route = routes.find(from);
  return route == routes.end() ? from : route->second;
}

void openProfile(PFA_Profile& profile, const std::string& fileName) {
  // A missing file is told at once; waiting for it would help nobody at a terminal.
  profile.setFlags(PFA_Profile::RETRY_BUSY, false);
  plat::clearFailure();
  const unsigned int status = profile.open(fileName.c_str(), false);
  if (status != 0) {
    const plat::Failure& failure = plat::lastFailure();
    throw Error(configuration,
                "Configuration file \"" + fileName + "\" cannot be read, status " +
                    std::to_string(status) +
                    (failure.error == 0 ? "" : ", " + plat::errorText(failure.error)) + ".");
  }
}

Config readConfig(PFA_Profile& profile, const std::string& fileName) {
  return Reader(profile, fileName).read();
}

}  // namespace host
