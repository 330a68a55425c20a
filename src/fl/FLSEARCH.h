// FL_Search: visits the files that match a pattern (only * and ?, without regard to case; "*.*"
// matches every name), in the platform's order, read lazily: a spool may hold a million names.
// Names that the system's form of a path cannot hold (a byte below 0x20, or one of \ / : " < > |)
// never come out.
#pragma once

#include <string>
#include <string_view>

#include "plat/PlatSearch.h"
#include "scl/SCLSTRNG.h"

class FL_Search {
 public:
  static constexpr unsigned int READ_ONLY = 1;
  static constexpr unsigned int HIDDEN = 2;
  static constexpr unsigned int SYSTEM = 4;
  static constexpr unsigned int DIRECTORIES = 16;
  static constexpr unsigned int POINT_NAMES = 64;
  static constexpr unsigned int ONLY_WITH_ATTRIBUTE = 128;

  FL_Search() noexcept = default;
  FL_Search(const FL_Search&) = delete;
  FL_Search& operator=(const FL_Search&) = delete;

  // Ends a search in progress; the directory is opened by the first nextMatch.
  void startSearch(const SCL_StringRef& pattern, unsigned int filter);
  // The full path of the next match. 0; 452 no match at all; 485 no further match; 484 without a
  // pattern; 486 when the path does not fit (the buffer holds what fits, the search can go on); 451
  // a malformed pattern or a directory that cannot be read. `size` counts the terminator.
  unsigned int nextMatch(unsigned int size, char* buffer);
  // 0; 484 without a pattern; 486 when it was cut.
  unsigned int currentPattern(unsigned int size, char* buffer) const;
  // Of the match that nextMatch returned last: READ_ONLY, HIDDEN, SYSTEM, DIRECTORIES.
  unsigned int currentAttributes() const noexcept { return m_attributes; }

 private:
  unsigned int openDirectory();
  unsigned int findMatch();
  bool isWanted(const std::string& name);
  bool hasWantedAttributes(const std::string& name);

  unsigned int m_filter = 0;
  bool m_new = false;
  bool m_any = false;  // a name matched the pattern, whatever the filter said
  unsigned int m_attributes = 0;
  std::string m_pattern;
  std::string m_directory;  // the pattern's directory part, as given
  std::string m_name;       // the pattern's name part
  std::string m_found;      // the current match's name
  plat::DirectorySearch m_search;
};

namespace fl {
// The matcher: * and ?, letters in either case, linear in both texts but for a bounded step back.
bool matchesWildcard(std::string_view pattern, std::string_view name) noexcept;
}  // namespace fl
