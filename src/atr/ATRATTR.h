// ATR_Attribute: a named value, an unsigned 32-bit integer or a string. It is copied by value.
#pragma once

#include <cstdint>
#include <iosfwd>

#include "scl/SCLSTRNG.h"

class SCL_DumpIndent;

enum ATR_AttributeType : std::uint32_t { STRING = 0, INTEGER = 1 };

class ATR_Attribute {
 public:
  ATR_Attribute() noexcept : m_type(INTEGER), m_integer(0) {}  // empty name, INTEGER 0
  ATR_Attribute(const SCL_StringRef& name, const SCL_StringRef& value);
  ATR_Attribute(const SCL_StringRef& name, std::uint32_t value);
  ATR_Attribute(const ATR_Attribute& other);
  // The name, then the value; the attribute keeps its place when it belongs to a list.
  ATR_Attribute& operator=(const ATR_Attribute& other);

  SCL_String getName() const { return m_name; }
  const SCL_String& name() const noexcept { return m_name; }  // no copy; valid until setName
  void setName(const SCL_StringRef& name);
  ATR_AttributeType getType() const noexcept { return m_type; }
  SCL_String getString() const { return string(); }
  // The string without a copy, valid until the next change. An INTEGER is refused ("Attribute does
  // not have a string value.").
  const SCL_String& string() const;
  // A STRING is refused ("Attribute does not have a integer value.").
  std::uint32_t getInteger() const;
  // These change the type where needed. The values may be parts of the attribute itself.
  void setString(const SCL_StringRef& value);
  void setInteger(std::uint32_t value) noexcept;

  void dump(const SCL_StringRef& name, std::ostream& stream, SCL_DumpIndent& indent) const;

 private:
  friend class ATR_AttributeList;

  SCL_String m_name;
  ATR_AttributeType m_type;
  std::uint32_t m_integer;  // while the type is INTEGER
  SCL_String m_string;      // while it is STRING, else empty
  // Set at a change of the name, for the list that the attribute belongs to; not copied.
  bool* m_renamed = nullptr;
};
