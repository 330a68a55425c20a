// The phonebook: a profile with one section an entry. docs/formats/phonebook.md describes it.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "krx/krxrasif.h"
#include "ras/raserr.h"

namespace ras {

struct Entry {
  std::string name;
  RasEntry properties{};
  std::vector<std::string> alternates;  // phone numbers
  std::string deviceInfo;
  std::string command;  // of another dialler; empty: pppd
  std::string pidFile;  // empty: pppd's own

  // The alternate numbers as they follow the record; empty when there are none.
  std::string alternateBlock() const;
};

// Each opens the file anew, so that a change by hand takes effect at once. `path` null: the file
// that KRX_PHONEBOOK names, else /etc/krx/phonebook.ini. Names of entries compare exactly.
class Phonebook {
 public:
  explicit Phonebook(const char* path);

  // CANNOT_OPEN_PHONEBOOK, CANNOT_LOAD_PHONEBOOK, NO_SUCH_ENTRY; CORRUPT_PHONEBOOK: a line of the
  // entry is unknown or not valid.
  Error read(std::string_view name, Entry& entry) const;
  // All entries that can be read, in file order.
  Error readAll(std::vector<Entry>& entries) const;

  struct Change {
    const RasEntry& properties;
    std::optional<std::vector<std::string>> alternates;  // nothing: as they are
    std::optional<std::string> deviceInfo;
  };
  // Writes what differs from the entry as it was read; everything else of the file stays.
  // CANNOT_WRITE_PHONEBOOK when that fails; lines that were changed before stay changed.
  Error write(const Entry& before, const Change& change) const;

  const std::string& path() const noexcept { return m_path; }

 private:
  std::string m_path;
};

}  // namespace ras
