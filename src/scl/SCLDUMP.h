// The dump convention: every class of the model prints itself as a header line, one line for each
// field one step deeper, and a trailer line "};".
#pragma once

#include <cstdint>
#include <ostream>

#include "scl/SCLSTRNG.h"

// How far a dump is indented: `unit` blanks for each level. The caller of a dump owns it.
class SCL_DumpIndent {
 public:
  explicit SCL_DumpIndent(std::uint16_t unit) noexcept : m_unit(unit) {}
  void enter() noexcept { ++m_level; }
  // Never below level 0.
  void leave() noexcept { m_level = static_cast<std::uint16_t>(m_level == 0 ? 0 : m_level - 1); }
  std::uint16_t unit() const noexcept { return m_unit; }
  std::uint16_t level() const noexcept { return m_level; }

 private:
  std::uint16_t m_unit;
  std::uint16_t m_level = 0;
};
// Writes the blanks.
std::ostream& operator<<(std::ostream& stream, const SCL_DumpIndent& indent);

// Writes header and trailer round the body's lines; the body is one step deeper. Each line is
// flushed. The stream and the indent must outlive it.
//
//   SCL_Dump dump(stream, indent, name, "GMA_Item", this);
//   dump.line() << "m_original = true" << std::endl;
class SCL_Dump {
 public:
  SCL_Dump(std::ostream& stream, SCL_DumpIndent& indent, const SCL_StringRef& name,
           const char* className, const void* address);
  SCL_Dump(const SCL_Dump&) = delete;
  SCL_Dump& operator=(const SCL_Dump&) = delete;
  ~SCL_Dump();
  std::ostream& line() { return m_stream << m_indent; }
  // The line: field = "value";
  void quoted(const char* field, const SCL_StringRef& value);

 private:
  std::ostream& m_stream;
  SCL_DumpIndent& m_indent;
};

// An address as the dumps print it, a hexadecimal number.
struct SCL_Address {
  const void* address;
};
std::ostream& operator<<(std::ostream& stream, SCL_Address address);

// The name of an indexed element: "m_items[3]" from "m_items" and 3.
SCL_String SCL_indexedName(const char* field, unsigned int index);
