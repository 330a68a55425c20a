// Lists what waits, what is kept, and what a crash has left, as text or JSON.
#include "host/List.h"

#include <cstdio>

#include "host/Exit.h"
#include "host/Json.h"
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

std::string receiverOf(const PostOffice& office) {
  return withSeparator(office.sourceDirectory) + RECEIVER_DIRECTORY;
}

void printOffice(const PostOffice& office, const ListOptions& options) {
  const auto print = options.incomplete ? printLone : printPairs;
  const char* name = office.name.c_str();
  std::printf("%s source %s\n", name, office.sourceDirectory.c_str());
  print(office.sourceDirectory);
  if (!options.incomplete) {
    printKept(*office.quarantine);
  } else if (hasReceiver(withSeparator(office.sourceDirectory))) {
    std::printf("%s receiver %s\n", name, receiverOf(office).c_str());
    print(receiverOf(office));
  }
  std::printf("%s destination %s\n", name, office.destinationDirectory.c_str());
  print(office.destinationDirectory);
}

Json jsonOffice(const PostOffice& office, const ListOptions& options) {
  const auto rowsOf = options.incomplete ? jsonLone : jsonPairs;
  Json row;
  row["postOffice"] = jsonText(office.name);
  row["sourceDir"] = jsonText(office.sourceDirectory);
  row["destDir"] = jsonText(office.destinationDirectory);
  row["source"] = rowsOf(office.sourceDirectory);
  row["destination"] = rowsOf(office.destinationDirectory);
  if (!options.incomplete) {
    row["kept"] = jsonKept(*office.quarantine);
  } else {
    row["kept"] = hasReceiver(withSeparator(office.sourceDirectory)) ? jsonLone(receiverOf(office))
                                                                     : Json::array();
  }
  return row;
}

}  // namespace

int retry(PostOffice& office, const std::string& name) {
  if (!office.quarantine->putBack(name)) {
    throw Error(unavailable,
                name +
                    " cannot be put back: it is not kept, its name is taken in the source "
                    "directory, that directory is locked, or its reason file cannot be written.");
  }
  return Exit::done;
}

int list(PostOffices& postOffices, const ListOptions& options) {
  static char buffer[65536];
  std::setvbuf(stdout, buffer, _IOFBF, sizeof buffer);
  Json offices = Json::array();
  for (const PostOffice& office : postOffices.all()) {
    if (options.json) {
      offices.push_back(jsonOffice(office, options));
    } else {
      printOffice(office, options);
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
