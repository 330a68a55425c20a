// What lies in a spool directory: the pairs that wait in it, and the files that lack their other
// half. Nothing is locked and nothing changed; what goes away meanwhile is left out. One pass over
// the directory each. A directory that is not there is empty; Error(inputOutput) for one that
// cannot be read.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace host {

struct WaitingPair {
  std::string envelope;   // name without directory
  std::int64_t size = 0;  // of both files
  std::int64_t age = 0;   // of the message file, seconds
  std::string sender;     // as the connector would read the envelope
  std::vector<std::string> recipients;
};

// The pair is valid during the call.
void forEachPair(const std::string& directory,
                 const std::function<void(const WaitingPair&)>& visit);

struct LoneFile {
  std::string name;
  bool isMessage = false;  // a message file without its envelope; else the other way round
  std::int64_t size = 0;
  std::int64_t age = 0;
};

std::vector<LoneFile> loneFiles(const std::string& directory);

}  // namespace host
