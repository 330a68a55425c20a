// PFA_Section: a named section of a profile and its entries, ordered by index. Entries of equal
// index keep the order in which they came; a comment stays behind the entry that it stood behind.
// Deleted entries stay, out of sight, until purge().
#pragma once

#include <cstdint>
#include <list>
#include <optional>
#include <string>
#include <string_view>

#include "pfa/PFAENTRY.h"

class PFA_Section {
 public:
  using Entries = std::list<PFA_Entry>;
  using Place = Entries::iterator;  // valid until its entry is purged

  explicit PFA_Section(std::string_view name) { setName(name); }
  PFA_Section(const PFA_Section&) = delete;
  PFA_Section& operator=(const PFA_Section&) = delete;

  const std::string& name() const noexcept { return m_name; }
  void setName(std::string_view name);
  bool isDeleted() const noexcept { return m_deleted; }
  void setDeleted(bool deleted) noexcept { m_deleted = deleted; }
  // Entries that are neither deleted nor comments, and the highest index among them.
  unsigned int entryCount() const noexcept { return m_count; }
  std::uint32_t highestIndex() const noexcept;

  Entries& entries() noexcept { return m_entries; }
  const Entries& entries() const noexcept { return m_entries; }
  Place end() noexcept { return m_entries.end(); }
  // The first entry from `place` on that is not deleted, else end().
  Place firstLive(Place place) noexcept;
  Place firstLive() noexcept { return firstLive(m_entries.begin()); }
  // `name` without white space.
  Place find(std::string_view name, std::uint32_t index) noexcept;

  // Reading a file: lines in their order, then finishLoad(), which puts them in order by index.
  const PFA_Entry& load(std::string_view line, unsigned int lineNumber);
  void finishLoad();

  // A new entry behind those of its index.
  Place add(std::string_view text);
  // A deleted entry that store() brings to life. There is one at most: looking many names up leaves
  // no garbage.
  Place placeholder(std::string_view text);
  void store(Place place, std::string_view text);
  void remove(Place place) noexcept;
  // Takes deleted entries out; the places of all others stay valid.
  void purge();
  // Purges, then closes the gaps between the indexes in use.
  void renumber();

 private:
  Place insert(std::string_view text);
  void live(PFA_Entry& entry) noexcept;

  std::string m_name;
  Entries m_entries;
  std::optional<Place> m_placeholder;
  bool m_deleted = false;
  bool m_sorted = true;
  unsigned int m_count = 0;
};
