// The attribute: a name and a value of either type.
#include "atr/ATRATTR.h"

#include <ostream>

#include "gen/GENCODES.h"
#include "gen/GENWNT.h"
#include "scl/SCLDUMP.h"

ATR_Attribute::ATR_Attribute(const SCL_StringRef& name, const SCL_StringRef& value)
    : m_name(name), m_type(STRING), m_integer(0), m_string(value) {}

ATR_Attribute::ATR_Attribute(const SCL_StringRef& name, std::uint32_t value)
    : m_name(name), m_type(INTEGER), m_integer(value) {}

ATR_Attribute::ATR_Attribute(const ATR_Attribute& other)
    : m_name(other.m_name),
      m_type(other.m_type),
      m_integer(other.m_integer),
      m_string(other.m_string) {}

ATR_Attribute& ATR_Attribute::operator=(const ATR_Attribute& other) {
  if (this == &other) {
    return *this;
  }
  setName(other.m_name);
  if (other.m_type == STRING) {
    setString(other.m_string);
  } else {
    setInteger(other.m_integer);
  }
  return *this;
}

void ATR_Attribute::setName(const SCL_StringRef& name) {
  m_name = name;
  if (m_renamed != nullptr) {
    *m_renamed = true;
  }
}

const SCL_String& ATR_Attribute::string() const {
  if (m_type != STRING) {
    GENAssertText("Attribute does not have a string value.", "ATRATTR", __LINE__);
  }
  return m_string;
}

std::uint32_t ATR_Attribute::getInteger() const {
  if (m_type != INTEGER) {
    GENAssertText("Attribute does not have a integer value.", "ATRATTR", __LINE__);
  }
  return m_integer;
}

void ATR_Attribute::setString(const SCL_StringRef& value) {
  m_string = value;  // before the type says so: this may throw
  m_type = STRING;
}

void ATR_Attribute::setInteger(std::uint32_t value) noexcept {
  m_string = SCL_String();
  m_type = INTEGER;
  m_integer = value;
}

void ATR_Attribute::dump(const SCL_StringRef& name, std::ostream& stream,
                         SCL_DumpIndent& indent) const {
  SCL_Dump dump(stream, indent, name, "ATR_Attribute", this);
  dump.quoted("m_name", m_name);
  if (m_type == INTEGER) {
    dump.line() << "m_type = INTEGER;" << std::endl;
    dump.line() << "m_integer = " << m_integer << ";" << std::endl;
  } else {
    dump.line() << "m_type = STRING;" << std::endl;
    dump.quoted("*m_string", m_string);
  }
}
