// GMA_Mhdr: one typed header: its type code, its own field name where the type does not tell it,
// and its value of one or more lines. And the names of the header type codes.
//
//   GMA_Mhdr header(gma::SUBJECT, "Hello");
//   header.value().add(" world");
//   SCL_String text;
//   header.getValueText(text);  // Hello world
#pragma once

#include <cstdint>
#include <iosfwd>

#include "gma/GMATYPES.h"
#include "scl/SCLSTRNG.h"
#include "scl/SCLSTRTB.h"

class SCL_DumpIndent;

class GMA_Mhdr {
 public:
  // The value is the one line `value` or a copy of `lines`; the own name is empty when not given.
  GMA_Mhdr(std::uint32_t type, const SCL_StringRef& value);
  GMA_Mhdr(std::uint32_t type, const SCL_StringRef& ownName, const SCL_StringRef& value);
  GMA_Mhdr(std::uint32_t type, const SCL_StringTable& lines);
  GMA_Mhdr(std::uint32_t type, const SCL_StringRef& ownName, const SCL_StringTable& lines);
  GMA_Mhdr(std::uint32_t type, SCL_String&& ownName, SCL_StringTable&& lines) noexcept;
  GMA_Mhdr(const GMA_Mhdr& other) = default;
  GMA_Mhdr& operator=(const GMA_Mhdr& other);

  std::uint32_t type() const noexcept { return m_type; }
  void setType(std::uint32_t type) noexcept { m_type = type; }
  const SCL_String& custom() const noexcept { return m_custom; }
  void setCustom(const SCL_StringRef& name) { m_custom = name; }
  const SCL_StringTable& value() const noexcept { return m_value; }
  SCL_StringTable& value() noexcept { return m_value; }

  // A type without a name is the assertion 18 (GMAMHDR).
  SCL_String getTypeName() const;
  // The lines joined: one blank before a line that does not begin with white space.
  void getValueText(SCL_String& text) const;
  // The first line, empty when the value has none; valid until the value changes.
  SCL_StringRef firstLine() const;
  void dump(const SCL_StringRef& name, std::ostream& stream, SCL_DumpIndent& indent) const;

 private:
  std::uint32_t m_type;
  SCL_String m_custom;
  SCL_StringTable m_value;
};

namespace gma {
// The name of a type code; one without a name is the assertion 18 (GMAMHDR).
const char* headerTypeName(std::uint32_t type);
bool hasHeaderTypeName(std::uint32_t type) noexcept;
// Reads one word and looks it up exactly, letter case included; 163 for a name that is not in the
// table.
std::istream& readHeaderType(std::istream& stream, std::uint32_t& type);
void writeHeaderType(std::ostream& stream, std::uint32_t type);
}  // namespace gma
