// Lists what waits, what is kept, and what a crash has left, as text or JSON.
#include "host/List.h"

#include <cstdio>

#include "host/Exit.h"
#include "host/Json.h"
#include "host/PostOffices.h"
#include "host/Quarantine.h"
#include "host/Receiver.h"
#include "host/Waiting.h"

namespace host {
namespace {

// Mail may have put anything into a name or an address; a terminal obeys control characters.
void appendText(std::string& line, std::string_view text) {
  for (const char c : text) {
    line += SCL_isControl(c) ? ' ' : c;
  }
}

std::string printable(std::string_view text) {
  std::string line;
  appendText(line, text);
  return line;
}

// "  name  size  age", the columns that all files have.
void appendFile(std::string& line, const std::string& name, std::int64_t size, std::int64_t age) {
  char columns[80];
  line += "  ";
  appendText(line, name);
  line.append(name.size() < 24 ? 24 - name.size() : 0, ' ');
  std::snprintf(columns, sizeof columns, " %10lld bytes %8lld s  ", static_cast<long long>(size),
                static_cast<long long>(age));
  line += columns;
}

void write(const std::string& line) {
  std::fwrite(line.data(), 1, line.size(), stdout);
}

void printPairs(const std::string& directory) {
  unsigned long count = 0;
  std::string line;
  forEachPair(directory, [&](const WaitingPair& pair) {
    line.clear();
    appendFile(line, pair.envelope, pair.size, pair.age);
    line += "from <";
    appendText(line, pair.sender);
    line += "> to";
    for (const std::string& recipient : pair.recipients) {
      line += " <";
      appendText(line, recipient);
      line += '>';
    }
    line += '\n';
    write(line);
    ++count;
  });
  std::printf("  %lu waiting\n", count);
}

Json jsonFile(const std::string& name, std::int64_t size, std::int64_t age) {
  Json row;
  row["name"] = jsonText(name);
  row["size"] = size;
  row["age"] = age;
  return row;
}

Json jsonPairs(const std::string& directory) {
  Json rows = Json::array();
  forEachPair(directory, [&](const WaitingPair& pair) {
    Json recipients = Json::array();
    for (const std::string& recipient : pair.recipients) {
      recipients.push_back(jsonText(recipient));
    }
    Json row = jsonFile(pair.envelope, pair.size, pair.age);
    row["sender"] = jsonText(pair.sender);
    row["recipients"] = std::move(recipients);
    rows.push_back(std::move(row));
  });
  return rows;
}

void printLone(const std::string& directory) {
  const std::vector<LoneFile> files = loneFiles(directory);
  for (const LoneFile& file : files) {
    std::string line;
    appendFile(line, file.name, file.size, file.age);
    line += file.isMessage ? "without its envelope\n" : "without its message file\n";
    write(line);
  }
  std::printf("  %zu incomplete\n", files.size());
}

Json jsonLone(const std::string& directory) {
  Json rows = Json::array();
  for (const LoneFile& file : loneFiles(directory)) {
    Json row = jsonFile(file.name, file.size, file.age);
    row["lacks"] = file.isMessage ? "envelope" : "message";
    rows.push_back(std::move(row));
  }
  return rows;
}

void printKept(const Quarantine& quarantine) {
  for (const KeptPair& pair : quarantine.list()) {
    std::printf("  %-24s kept after %u tries, status %u: %s\n", printable(pair.envelope).c_str(),
                pair.reason.tries, pair.reason.status, printable(pair.reason.text).c_str());
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

void printOffice(const std::string& name, const Directories& directories, const Config& config,
                 const ListOptions& options) {
  const auto print = options.incomplete ? printLone : printPairs;
  std::printf("%s source %s\n", name.c_str(), directories.source.c_str());
  print(directories.source);
  if (options.incomplete) {
    const std::string receiver = withSeparator(directories.source) + RECEIVER_DIRECTORY;
    std::printf("%s receiver %s\n", name.c_str(), receiver.c_str());
    print(receiver);
  } else {
    printKept(Quarantine(directories.source, config));
  }
  std::printf("%s destination %s\n", name.c_str(), directories.destination.c_str());
  print(directories.destination);
}

Json jsonOffice(const std::string& name, const Directories& directories, const Config& config,
                const ListOptions& options) {
  const auto rowsOf = options.incomplete ? jsonLone : jsonPairs;
  Json row;
  row["postOffice"] = jsonText(name);
  row["sourceDir"] = jsonText(directories.source);
  row["destDir"] = jsonText(directories.destination);
  row["source"] = rowsOf(directories.source);
  row["destination"] = rowsOf(directories.destination);
  row["kept"] = options.incomplete
                    ? jsonLone(withSeparator(directories.source) + RECEIVER_DIRECTORY)
                    : jsonKept(Quarantine(directories.source, config));
  return row;
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

int list(PFA_Profile& profile, const Config& config, const ListOptions& options) {
  static char buffer[65536];
  std::setvbuf(stdout, buffer, _IOFBF, sizeof buffer);
  Json offices = Json::array();
  for (const std::string& name : config.postOffices) {
    const Directories directories = directoriesOf(profile, name);
    if (options.json) {
      offices.push_back(jsonOffice(name, directories, config, options));
    } else {
      printOffice(name, directories, config, options);
    }
  }
  if (options.json) {
    Json root;
    root["version"] = 1;
    root["postOffices"] = std::move(offices);
    std::printf("%s\n", jsonString(root, 1).c_str());
  }
  return Exit::done;
}

}  // namespace host
