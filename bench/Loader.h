// Loads pairs as a post office does when it fetches them, without removing anything.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "krx/krxmsg.h"
#include "log/LOGLOG.h"

namespace bench {

struct Totals {
  std::uint64_t messages = 0;
  std::uint64_t bytes = 0;    // of the message files
  std::uint64_t parts = 0;    // bodies and items
  std::uint64_t decoded = 0;  // bytes of decoded children and of contents that need no decoding
  std::uint64_t headers = 0;  // fields of the messages and of their parts
};

class Loader {
 public:
  // Binds a log without streams as the process's global log. With `decode` unset no part is asked
  // for its decoded child.
  explicit Loader(bool decode = true);

  // The envelope files of the directory, in its order; throws std::system_error.
  static std::vector<KRX_PairNames> findPairs(const std::string& directory);
  // A message with envelope and content. A pair that cannot be loaded gives a message all the same,
  // as it does to a host; the program's user is told on standard error.
  std::unique_ptr<KRX_Message> load(const std::string& directory, const KRX_PairNames& pair);
  // Adds what the message holds.
  void count(KRX_Message& message);
  const Totals& totals() const noexcept { return m_totals; }

 private:
  void readFiles(KRX_Message& message, const std::string& directory, const KRX_PairNames& pair,
                 unsigned int& status);
  void countPart(DAC_BaseDataAccess& part);
  std::uint64_t contentSize(DAC_BaseDataAccess& part) const;

  bool m_decode;
  KRX_MessageSettings m_settings;
  Totals m_totals;
};

}  // namespace bench
