// Lists waiting pairs. The envelopes are read as the connector reads them, nothing is locked and
// nothing changed: a pair that goes away meanwhile is left out.
#include "host/List.h"

#include <cstdio>
#include <optional>

#include "dac/DACFILDA.h"
#include "dv/DVPATH.h"
#include "fl/FLSEARCH.h"
#include "fl/FLSTATUS.h"
#include "host/Exit.h"
#include "host/Json.h"
#include "host/PostOffices.h"
#include "host/Quarantine.h"
#include "plat/PlatClock.h"
#include "plat/PlatFile.h"
#include "rfc/rfcread.h"

namespace host {
namespace {

struct Pair {
  std::string envelope;  // name without directory
  std::int64_t size = 0;
  std::int64_t age = 0;  // seconds
  std::string sender;
  std::vector<std::string> recipients;
};

void readEnvelope(const std::string& path, Pair& pair) {
  unsigned int status = 0;
  DAC_FileDataAccess file(path.c_str(), DAC_FileDataAccess::READ_ONLY | DAC_FileDataAccess::SPOOL,
                          status);
  SCL_String name;
  SCL_StringTable lines;
  while (status == 0 && rfc_read_field_default(file, name, lines, status) != 0) {
    const bool isSender = SCL_equalNoCase(name, "Return-path");
    if (!isSender && !SCL_equalNoCase(name, "Recipient")) {
      continue;
    }
    SCL_String text = rfc_unfold(lines);
    text.trim();
    if (text.isEmpty()) {
      continue;
    }
    if (isSender) {
      pair.sender = text.c_str();
    } else {
      pair.recipients.emplace_back(text.c_str());
    }
  }
}

std::optional<Pair> examine(const std::string& path) {
  Pair pair;
  plat::FileStatus envelope;
  plat::FileStatus message;
  const std::string base = path.substr(0, path.size() - 4);
  const bool lower = path.back() == 'p';
  if (plat::status(path, envelope, false) != 0 || envelope.kind != plat::Kind::regular ||
      plat::status(base + (lower ? ".msg" : ".MSG"), message, false, true) != 0 ||
      message.kind != plat::Kind::regular) {
    return std::nullopt;
  }
  pair.envelope = path.substr(path.find_last_of("\\/") + 1);
  pair.size = envelope.size + message.size;
  pair.age = std::max<std::int64_t>(plat::now().seconds - message.modifiedSeconds, 0);
  readEnvelope(path, pair);
  return pair;
}

// Calls `visit` with each waiting pair of the directory.
template <class Visitor>
void walk(const std::string& directory, Visitor visit) {
  FL_Search search;
  search.startSearch((withSeparator(directory) + "*.RCP").c_str(), 0);
  char path[dv::PATH_SIZE];
  for (;;) {
    const unsigned int status = search.nextMatch(sizeof path, path);
    if (status != 0) {
      if (fl::isSearchEnd(status)) {
        return;
      }
      throw Error(inputOutput, directory + ": status " + std::to_string(status));
    }
    if (const std::optional<Pair> pair = examine(path)) {
      visit(*pair);
    }
  }
}

void printText(const std::string& office, const char* role, const std::string& directory) {
  std::printf("%s %s %s\n", office.c_str(), role, directory.c_str());
  unsigned long count = 0;
  walk(directory, [&](const Pair& pair) {
    std::printf("  %-24s %10lld bytes %8lld s  from <%s> to", pair.envelope.c_str(),
                static_cast<long long>(pair.size), static_cast<long long>(pair.age),
                pair.sender.c_str());
    for (const std::string& recipient : pair.recipients) {
      std::printf(" <%s>", recipient.c_str());
    }
    std::putchar('\n');
    ++count;
  });
  std::printf("  %lu waiting\n", count);
}

Json jsonPairs(const std::string& directory) {
  Json rows = Json::array();
  walk(directory, [&](const Pair& pair) {
    Json recipients = Json::array();
    for (const std::string& recipient : pair.recipients) {
      recipients.push_back(jsonText(recipient));
    }
    Json row;
    row["name"] = jsonText(pair.envelope);
    row["size"] = pair.size;
    row["age"] = pair.age;
    row["sender"] = jsonText(pair.sender);
    row["recipients"] = std::move(recipients);
    rows.push_back(std::move(row));
  });
  return rows;
}

void printKept(const Quarantine& quarantine) {
  for (const KeptPair& pair : quarantine.list()) {
    std::printf("  %-24s kept after %u tries, status %u: %s\n", pair.envelope.c_str(),
                pair.reason.tries, pair.reason.status, pair.reason.text.c_str());
  }
}

Json jsonKept(const Quarantine& quarantine) {
  Json rows = Json::array();
  for (const KeptPair& pair : quarantine.list()) {
    Json row;
    row["name"] = jsonText(pair.envelope);
    row["status"] = pair.reason.status;
    row["reason"] = jsonText(pair.reason.text);
    row["time"] = pair.reason.time;
    row["tries"] = pair.reason.tries;
    rows.push_back(std::move(row));
  }
  return rows;
}

struct Directories {
  std::string source;
  std::string destination;
};

Directories directoriesOf(PFA_Profile& profile, const std::string& office) {
  return {sectionValue(profile, office, "SourceDir"), sectionValue(profile, office, "DestDir")};
}

}  // namespace

int retry(PFA_Profile& profile, const Config& config, const std::string& office,
          const std::string& base) {
  for (const std::string& name : config.postOffices) {
    if (name == office) {
      Quarantine quarantine(directoriesOf(profile, name).source, config);
      if (!quarantine.putBack(base)) {
        throw Error(unavailable,
                    base +
                        " cannot be put back: it is not kept, its name is taken in the "
                        "source directory, or that directory is locked.");
      }
      return Exit::done;
    }
  }
  throw Error(configuration, "There is no post office \"" + office + "\".");
}

int list(PFA_Profile& profile, const Config& config, bool json) {
  Json offices = Json::array();
  for (const std::string& name : config.postOffices) {
    const Directories directories = directoriesOf(profile, name);
    if (!json) {
      printText(name, "source", directories.source);
      printKept(Quarantine(directories.source, config));
      printText(name, "destination", directories.destination);
      continue;
    }
    Json row;
    row["postOffice"] = jsonText(name);
    row["sourceDir"] = jsonText(directories.source);
    row["destDir"] = jsonText(directories.destination);
    row["source"] = jsonPairs(directories.source);
    row["destination"] = jsonPairs(directories.destination);
    row["kept"] = jsonKept(Quarantine(directories.source, config));
    offices.push_back(std::move(row));
  }
  if (json) {
    Json root;
    root["version"] = 1;
    root["postOffices"] = std::move(offices);
    std::printf("%s\n", jsonString(root, 1).c_str());
  }
  return Exit::done;
}

}  // namespace host
