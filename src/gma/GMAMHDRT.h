// GMA_MhdrTable: the ordered, owning table of a message's headers; several of one type may stand in
// it. Memory that cannot be had is the assertion 1 (GMAMHDRT), the 65,536th header the assertion 3
// (sclpvec); the table is then as it was.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <memory>

#include "gma/GMAMHDR.h"
#include "scl/SCLPVEC.h"

class GMA_MhdrTable {
 public:
  GMA_MhdrTable() noexcept;
  GMA_MhdrTable(const GMA_MhdrTable& other);  // deep
  GMA_MhdrTable& operator=(const GMA_MhdrTable& other);

  std::uint16_t count() const noexcept { return m_hdrs.count(); }
  // The header at `index`, which stays the table's until it is removed. An index not below the
  // count: "Header table index out of range.".
  GMA_Mhdr* get(std::uint16_t index) const;
  // The first header of that type; null when there is none.
  GMA_Mhdr* findByType(std::uint32_t type) const noexcept;
  void add(const GMA_Mhdr& header);             // a copy
  void add(std::unique_ptr<GMA_Mhdr> header);   // takes it over; null is the assertion 1
  void remove(std::uint16_t index);             // "Header table index out of range."
  void remove(int index);                       // remove(0) means the index, not a null pointer
  void remove(const GMA_Mhdr* header);          // that very header, if any
  void truncate(std::uint16_t count) noexcept;  // removes the headers from index `count` on
  void clear() noexcept { m_hdrs.clear(); }
  void dump(const SCL_StringRef& name, std::ostream& stream, SCL_DumpIndent& indent) const;

 private:
  SCL_PtrVector<GMA_Mhdr> m_hdrs;
};
