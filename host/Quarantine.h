// The pairs that could not be loaded or delivered: kept in the receiver directory, each with a
// reason file BASE.txt beside it, and put back into the source directory after a pause, a limited
// number of times. Mail in quarantine never holds up other mail.
#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "host/Config.h"

class GMA_Message;

namespace host {

// What the reason file of a kept pair says.
struct Reason {
  unsigned int status = 0;
  std::string text;
  std::int64_t time = 0;     // of the last failure, seconds since 1970-01-01 UTC
  std::uint32_t tries = 0;   // failures so far
  std::uint64_t device = 0;  // the kept message file, so that a move that was interrupted
  std::uint64_t inode = 0;   // between its two files can be finished
};

struct KeptPair {
  std::string envelope;  // names in the receiver directory
  std::string message;
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
  // Puts back the pairs whose pause is over and that have tries left; the number of them.
  unsigned int putBackDue();
  // Puts back one pair by hand, whatever its tries; false when it is not there or its name is
  // taken.
  bool putBack(const std::string& base);
  std::vector<KeptPair> list() const;

 private:
  std::string receiver() const;
  std::string reasonFile(const std::string& base) const;
  void findOpenReasons();
  std::optional<KeptPair> examine(const std::string& envelope) const;
  bool move(const KeptPair& pair);
  bool moveMessage(const KeptPair& pair);

  std::string m_source;  // ends in a separator
  std::uint32_t m_retries;
  std::uint32_t m_pause;
  std::set<std::string> m_open;  // base names of reason files whose pairs are not kept just now
};

}  // namespace host
