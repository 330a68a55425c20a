// LOG_NamePattern: the root name of a series of log files, which holds one conversion: "%s" for
// the day ("LOG%s.TXT" is LOG990123.TXT on 23 January 1999) or "%u", with a width if wanted, for a
// running number ("LOG%03u.TXT" is LOG007.TXT for 7). Names are put together and taken apart by
// their parts: a root comes from a configuration and is never a format string.
//
// A file of the series is told by its key: the day's number (days since 1900-01-01) or its own.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "dv/DVDATE.h"
#include "fl/FLSEARCH.h"
#include "fl/FLSTATUS.h"

class LOG_NamePattern {
 public:
  enum class Kind : std::uint32_t { none = 0, date = 1, number = 2 };

  // 0; 10618 when the root holds anything but exactly one conversion of the kind (no other "%");
  // 10626 when its length and the width exceed 260. With Kind::none the root is the only name.
  unsigned int parse(std::string_view root, Kind kind);

  Kind kind() const noexcept { return m_kind; }
  // The name of the day's file; for Kind::none the root.
  std::string nameOf(const DV_Date& day) const;
  std::string nameOf(std::uint32_t key) const;
  // The key in the name of a file of the series; only the part after the last separator is looked
  // at. False when the name is no such name: letters where digits should be, a date that does not
  // exist, a number beyond 32 bits.
  bool keyOf(std::string_view path, std::uint32_t& key) const;

  // Calls visit(key) for each existing file of the series, in no order; 0, or a search's failure.
  template <class Visit>
  unsigned int forEachFile(Visit visit) const {
    FL_Search search;
    search.startSearch(
        (m_prefix + '*' + m_suffix).c_str(),
        FL_Search::READ_ONLY | FL_Search::HIDDEN | FL_Search::SYSTEM | FL_Search::POINT_NAMES);
    for (;;) {
      char path[FULL_PATH_SIZE];
      const unsigned int status = search.nextMatch(sizeof path, path);
      if (status != 0) {
        return fl::isSearchEnd(status) ? 0 : status;
      }
      std::uint32_t key = 0;
      if (keyOf(path, key)) {
        visit(key);
      }
    }
  }

 private:
  static constexpr std::size_t MAX_LENGTH = 260;
  static constexpr unsigned int FULL_PATH_SIZE = 4096;

  bool parseConversion(std::string_view conversion);
  bool dayOf(std::string_view digits, std::uint32_t& key) const;
  bool numberOf(std::string_view digits, std::uint32_t& key) const;

  Kind m_kind = Kind::none;
  std::string m_prefix;  // before the conversion
  std::string m_suffix;  // behind it
  std::size_t m_width = 0;
  char m_padding = ' ';
};
