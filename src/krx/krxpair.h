// KRX_PairSearch: finds the next complete pair of a spool directory that nobody holds open, without
// a pass over the whole directory for each message.
#pragma once

#include <optional>

#include "fl/FLSEARCH.h"
#include "krx/krxspool.h"

class KRX_PairSearch {
 public:
  // The first pair in the directory's order that is complete and free, as a search that begins anew
  // at every call would find it: the pair returned last comes again as long as it is there; then
  // the search goes on where it stood; a "none" is the result of one whole pass. The caller holds
  // the directory's lock. `directory` ends in a backslash.
  std::optional<KRX_PairNames> next(const SCL_StringRef& directory, const KRX_StuckPairs& stuck);

 private:
  enum class Step { pair, skipped, end, failed };
  Step step(const SCL_StringRef& directory, const KRX_StuckPairs& stuck, KRX_PairNames& names);
  void restart(const SCL_StringRef& directory);

  FL_Search m_search;
  SCL_String m_directory;  // the one that the search stands in; empty: none
  std::optional<KRX_PairNames> m_last;
};
