// GMA_HdrMap: from the header field names of a mail syntax to header type codes and back. Several
// names may stand for one type; of two mappings that fit, the earlier one counts.
//
//   GMA_HdrMap map;
//   map.addMapping("Subject", gma::SUBJECT);
//   map.typeForName("subject");  // gma::SUBJECT
#pragma once

#include <cstdint>
#include <iosfwd>

#include "scl/SCLPVEC.h"
#include "scl/SCLSTRNG.h"

class SCL_DumpIndent;

class GMA_HdrMap {
 public:
  class Mapping {
   public:
    Mapping(const SCL_StringRef& name, std::uint32_t type) : m_name(name), m_type(type) {}
    const SCL_String& name() const noexcept { return m_name; }
    std::uint32_t type() const noexcept { return m_type; }
    // A type without a name is the assertion 18 (GMAMHDR).
    void dump(const SCL_StringRef& name, std::ostream& stream, SCL_DumpIndent& indent) const;

   private:
    SCL_String m_name;
    std::uint32_t m_type;
  };

  GMA_HdrMap() noexcept : m_map(30) {}
  // Appends a mapping, also of a name that is already there. Memory that cannot be had is the
  // assertion 1 (GMAHDRMP); the map is then as it was.
  void addMapping(const SCL_StringRef& name, std::uint32_t type);
  // The type of the first mapping of that name, letter case aside; 46 (UNKNOWN) when there is none.
  std::uint32_t typeForName(const SCL_StringRef& name) const noexcept;
  // The name of the first mapping of that type, as it was added; empty when there is none.
  SCL_String nameForType(std::uint32_t type) const;
  std::uint16_t count() const noexcept { return m_map.count(); }
  void dump(const SCL_StringRef& name, std::ostream& stream, SCL_DumpIndent& indent) const;

 private:
  SCL_PtrVector<Mapping> m_map;
};
