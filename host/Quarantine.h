// The pairs that could not be loaded or delivered: kept in the receiver directory, each with a
// reason file BASE.txt beside it, and put back into the source directory after a pause, a limited
// number of times. Mail in quarantine never holds up other mail.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "host/Config.h"
#include "host/Reason.h"

class GMA_Message;

namespace host {

struct KeptPair {
  std::string envelope;  // names in the receiver directory
  std::string message;
  std::string base;  // of the names that the two had, and get again, in the source directory
  Reason reason;
};

class Quarantine {
 public:
  Quarantine(const std::string& sourceDirectory, const Config& config);

  // True when a whole, committed copy of the message's pair is kept (the message may then be
  // destroyed); else `failure` says why not.
  bool keep(GMA_Message& message, unsigned int status, const std::string& why,
            std::string& failure);
  // Forgets the reason of a pair that went through after all.
  void delivered(const std::string& envelope);
  // Puts back the pairs whose pause is over and that have tries left; the number of them. A pair
  // whose try cannot be counted stays, else it would be tried for ever.
  unsigned int putBackDue();
  // Puts back one pair by hand, whatever its tries; false when it is not there, its name is taken
  // or its try cannot be counted.
  bool putBack(const std::string& name);
  std::vector<KeptPair> list() const;

 private:
  // By the base names in the source directory: the base names of the reason files whose pairs are
  // not kept just now.
  using OpenReasons = std::multimap<std::string, std::string>;

  std::string receiver() const;
  std::string reasonFile(const std::string& base) const;
  void findOpenReasons();
  bool closeReason(const std::string& base, const std::string& kept);
  std::optional<KeptPair> examine(const std::string& envelope) const;
  bool isDue(const Reason& reason) const;
  bool move(const KeptPair& pair);
  bool isNameFree(const KeptPair& pair) const;
  bool countTry(const KeptPair& pair);
  bool moveFiles(const KeptPair& pair);

  std::string m_source;  // ends in a separator
  std::uint32_t m_retries;
  std::uint32_t m_pause;
  OpenReasons m_open;
  std::set<std::string> m_uncounted;  // base names of pairs that were told to be stuck
};

}  // namespace host
