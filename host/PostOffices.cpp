// Creates the configured post offices and holds their source directories.
#include "host/PostOffices.h"

#include <cstdio>
#include <optional>
#include <tuple>

#include "gen/GENCATCH.h"
#include "host/Exit.h"
#include "host/Log.h"
#include "pfa/PFAPROF.h"
#include "plat/PlatError.h"
#include "plat/PlatSpool.h"

namespace host {
namespace {

using DirectoryId = std::tuple<std::uint64_t, std::uint64_t>;

std::optional<DirectoryId> identity(const std::string& directory) {
  plat::FileStatus found;
  if (plat::status(directory, found) != 0 || found.kind != plat::Kind::directory) {
    return std::nullopt;
  }
  return DirectoryId(found.device, found.inode);
}

void warnOfStrangers(const PostOffice& office, const char* role, const std::string& directory) {
  constexpr unsigned int WRITABLE_BY_ALL = 02;
  constexpr unsigned int STICKY = 01000;
  plat::FileStatus found;
  if (plat::status(directory, found) != 0 || (found.permissions & WRITABLE_BY_ALL) == 0) {
    return;
  }
  std::printf("Warning: %s of post office \"%s\", %s, can be written by everybody, %s.\n", role,
              office.name.c_str(), directory.c_str(),
              (found.permissions & STICKY) != 0
                  ? "but has the sticky bit: strangers can add pairs, not remove or rename others'"
                  : "and has no sticky bit: strangers can add, remove and rename pairs");
}

void tellLeases(const PostOffice& office) {
  if (!identity(office.sourceDirectory)) {
    return;  // not there, which the configuration may allow
  }
  const int error = plat::testLeases(office.sourceDirectory);
  std::printf(
      "SourceDir of post office \"%s\": files in use are told by %s.\n", office.name.c_str(),
      error == 0
          ? "leases"
          : ("locks and age, for leases do not work there, " + plat::errorText(error)).c_str());
}

// The value of an entry of the section, whatever the letter case of its name; empty when missing.
std::string sectionValue(PFA_Profile& profile, const std::string& section, const char* entry) {
  if (profile.selectSection(section.c_str()) != 0) {
    return {};
  }
  for (unsigned int status = profile.nextEntry(true); status == 0;
       status = profile.nextEntry(false)) {
    char name[64];
    char value[PFA_Profile::VALUE_SIZE];
    if (profile.entryName(name, sizeof name) == 0 && SCL_equalNoCase(SCL_StringRef(name), entry) &&
        profile.getValue(value, sizeof value, false, 1) == 0) {
      return value;
    }
  }
  return {};
}

}  // namespace

std::string withSeparator(std::string directory) {
  if (directory.empty() || (directory.back() != '\\' && directory.back() != '/')) {
    directory += '\\';
  }
  return directory;
}

PostOffices::PostOffices(const Module& module, PFA_Profile& profile, const Config& config,
                         LOG_Logging& log)
    : m_config(config), m_group("krxhost") {
  m_postOffices.reserve(config.postOffices.size());
  for (const std::string& name : config.postOffices) {
    add(module, profile, name, log);
  }
}

void PostOffices::add(const Module& module, PFA_Profile& profile, const std::string& name,
                      LOG_Logging& log) {
  PostOffice made;
  made.name = name;
  made.sourceDirectory = sectionValue(profile, name, "SourceDir");
  made.destinationDirectory = sectionValue(profile, name, "DestDir");
  made.quarantine = std::make_unique<Quarantine>(made.sourceDirectory, m_config);
  made.object = module.newPostOffice(m_group, name, log);
  unsigned int status = 0;
  plat::clearFailure();
  const auto failure = GENCatch([&] { made.object->configure(profile, status); });
  if (failure || status != 0) {
    const plat::Failure& last = plat::lastFailure();
    throw Error(configuration,
                "Post office \"" + name + "\" cannot be configured, " +
                    (failure ? *failure : "status " + std::to_string(status)) +
                    (last.error == 0 ? "" : ", " + last.path + ": " + plat::errorText(last.error)) +
                    ".");
  }
  m_postOffices.push_back(std::move(made));
}

PostOffice& PostOffices::find(const std::string& name) {
  for (PostOffice& candidate : m_postOffices) {
    if (candidate.name == name) {
      return candidate;
    }
  }
  throw Error(configuration, "There is no post office \"" + name + "\".");
}

// A post office feeds those that read what it, or the post office of its route, writes.
void PostOffices::refuseRings() const {
  std::vector<std::optional<DirectoryId>> sources;
  std::vector<std::optional<DirectoryId>> destinations;
  for (const PostOffice& office : m_postOffices) {
    sources.push_back(identity(office.sourceDirectory));
    destinations.push_back(identity(office.destinationDirectory));
  }
  const auto indexOf = [&](const std::string& name) {
    std::size_t i = 0;
    while (m_postOffices[i].name != name) {
      ++i;
    }
    return i;
  };
  const auto feeds = [&](std::size_t from, std::size_t to) {
    const std::size_t through = indexOf(m_config.target(m_postOffices[from].name));
    const auto same = [&](std::size_t writer) {
      return sources[to] && destinations[writer] && *sources[to] == *destinations[writer];
    };
    return same(through) || (from == to && same(from));
  };
  for (std::size_t first = 0; first < m_postOffices.size(); ++first) {
    // Walks all that is fed from `first`, remembering the way.
    std::vector<std::string> way(m_postOffices.size());
    std::vector<std::size_t> open{first};
    way[first] = "\"" + m_postOffices[first].name + "\"";
    while (!open.empty()) {
      const std::size_t from = open.back();
      open.pop_back();
      for (std::size_t to = 0; to < m_postOffices.size(); ++to) {
        if (!feeds(from, to)) {
          continue;
        }
        const std::string step = way[from] + " -> \"" + m_postOffices[to].name + "\"";
        if (to == first) {
          throw Error(configuration, "Mail would go round in a ring: " + step + ".");
        }
        if (way[to].empty()) {
          way[to] = step;
          open.push_back(to);
        }
      }
    }
  }
}

void PostOffices::printDirectories() const {
  for (const PostOffice& office : m_postOffices) {
    warnOfStrangers(office, "SourceDir", office.sourceDirectory);
    warnOfStrangers(office, "DestDir", office.destinationDirectory);
    tellLeases(office);
  }
}

void PostOffices::lockSources() {
  for (PostOffice& office : m_postOffices) {
    office.lock.hold(office.sourceDirectory, office.name);
  }
}

bool PostOffices::holdSource(PostOffice& office, LOG_Logging& log) {
  std::string why = "it is not there";
  try {
    switch (office.lock.hold(office.sourceDirectory, office.name)) {
      case SourceLock::State::held:
        return true;
      case SourceLock::State::taken:
        office.isMissed = false;
        log.writeText(ALL_STREAMS, HOST_FACILITY, LOG_Logging::BRIEF,
                      "The source directory of post office \"%s\" is locked now.",
                      office.name.c_str());
        return true;
      case SourceLock::State::missing:
        break;
    }
  } catch (const Error& error) {
    if (error.status() == unavailable) {
      throw;
    }
    why = error.what();
  }
  if (!office.isMissed) {
    office.isMissed = true;
    log.writeText(ALL_STREAMS, HOST_FACILITY, LOG_Logging::BRIEF,
                  "Nothing is fetched from the source directory of post office \"%s\": %s.",
                  office.name.c_str(), why.c_str());
  }
  return false;
}

}  // namespace host
