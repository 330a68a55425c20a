// GMA_MaddrTable: the addresses of one message, in the order of their adding; it owns them. `add`
// lets no two equal ones in. Searching stays constant in time for long tables, as long as their
// addresses can be found by their parts (GMA_Maddr::isFoundByParts).
//
// Memory that cannot be had is the assertion 1 (GMAMADRT), the 65,536th address the assertion 3
// (sclpvec); the table is then as it was. Threads: a table is used by one thread at a time.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <memory>

#include "gma/GMAMADDR.h"
#include "scl/SCLPVEC.h"

class GMA_MaddrTable {
 public:
  GMA_MaddrTable() noexcept;
  GMA_MaddrTable(const GMA_MaddrTable& other);             // clones of all, in order
  GMA_MaddrTable& operator=(const GMA_MaddrTable& other);  // add of each: equal ones fall together
  ~GMA_MaddrTable();

  std::uint16_t count() const noexcept { return m_addrs.count(); }
  // The address at `index`, which stays the table's until clear; it may be changed through the
  // pointer at any time. An index not below the count: "Address table index out of range.".
  GMA_Maddr* get(std::uint16_t index) const;
  bool contains(const GMA_Maddr& address) const { return find(address) != nullptr; }
  // The first entry that is equal to `address`; null when there is none.
  GMA_Maddr* find(const GMA_Maddr& address) const;
  // Appends a clone, unless an equal address is there. `address` may be one of this table.
  void add(const GMA_Maddr& address);
  // The same with the address itself, which the table takes over or deletes.
  void add(std::unique_ptr<GMA_Maddr> address);
  void clear() noexcept;
  void dump(const SCL_StringRef& name, std::ostream& stream, SCL_DumpIndent& indent) const;

 private:
  class Index;  // by type, user and location, for long tables

  void append(std::unique_ptr<GMA_Maddr> address);
  GMA_Maddr* findLinear(const GMA_Maddr& address) const;
  const Index* upToDateIndex() const noexcept;

  SCL_PtrVector<GMA_Maddr> m_addrs;
  // Beside the vector, which alone is the truth; null when not built or out of date.
  mutable std::unique_ptr<Index> m_index;
  mutable bool m_changed = false;  // set by an address whose parts change
  bool m_isIndexable = true;       // every address can be found by its parts
};
