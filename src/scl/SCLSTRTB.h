// SCL_StringTable: an ordered, owning table of strings, at most 65,535 of them (one more is the
// assertion 3, sclpvec). Memory that cannot be had is the assertion 1.
#pragma once

#include <cstdint>
#include <iosfwd>

#include "scl/SCLPVEC.h"
#include "scl/SCLSTRNG.h"

class SCL_DumpIndent;

class SCL_StringTable {
 public:
  explicit SCL_StringTable(unsigned int slots = SCL_PtrVector<SCL_String>::DEFAULT_SLOTS) noexcept
      : m_strings(slots) {}
  SCL_StringTable(const SCL_StringTable& other);
  SCL_StringTable(SCL_StringTable&& other) noexcept = default;
  SCL_StringTable& operator=(const SCL_StringTable& other);  // to itself: nothing happens
  SCL_StringTable& operator=(SCL_StringTable&& other) noexcept = default;

  std::uint16_t count() const noexcept { return m_strings.count(); }
  unsigned int capacity() const noexcept { return m_strings.capacity(); }
  // A view of string i, valid until that string changes ("String table index out of range.").
  SCL_StringRef get(std::uint16_t index) const;
  // As get for the index; the string is assigned the text, which may be a part of it.
  void set(std::uint16_t index, const SCL_StringRef& text);
  // Appends a copy.
  void add(const SCL_StringRef& text);
  void add(const char* text) { add(SCL_StringRef(text)); }
  void add(SCL_String&& text);
  void clear() noexcept { m_strings.clear(); }

  void dump(const SCL_StringRef& name, std::ostream& stream, SCL_DumpIndent& indent) const;

 private:
  SCL_PtrVector<SCL_String> m_strings;
};
