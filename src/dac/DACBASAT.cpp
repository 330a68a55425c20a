// The data access object: attributes and the dump.
#include <ostream>

#include "dac/DACBASDA.h"
#include "gen/GENCODES.h"
#include "scl/SCLDUMP.h"

// The attribute if it has the type; null with a status else.
ATR_Attribute* DAC_BaseDataAccess::attributeOf(const SCL_StringRef& name, ATR_AttributeType type,
                                               unsigned int& status) const {
  if (status != 0) {
    return nullptr;
  }
  ATR_Attribute* attribute = m_Attributes.find(name);
  if (attribute == nullptr) {
    status = DAC_NO_ATTRIBUTE;
  } else if (attribute->getType() != type) {
    status = DAC_ATTRIBUTE_TYPE;
  }
  return status == 0 ? attribute : nullptr;
}

void DAC_BaseDataAccess::getIntegerAttribute(const SCL_StringRef& name, std::uint32_t& value,
                                             unsigned int& status) {
  const ATR_Attribute* attribute = attributeOf(name, INTEGER, status);
  value = attribute != nullptr ? attribute->getInteger() : 0;
}

void DAC_BaseDataAccess::getStringAttribute(const SCL_StringRef& name, SCL_String& value,
                                            unsigned int& status) {
  const ATR_Attribute* attribute = attributeOf(name, STRING, status);
  if (attribute != nullptr) {
    value = attribute->string();
  } else {
    value.clear();
  }
}

void DAC_BaseDataAccess::setIntegerAttribute(const SCL_StringRef& name, std::uint32_t value) {
  m_Attributes.setInteger(name, value);
}

void DAC_BaseDataAccess::setStringAttribute(const SCL_StringRef& name, const SCL_StringRef& value) {
  m_Attributes.setString(name, value);
}

ATR_Attribute* DAC_BaseDataAccess::findAttribute(const SCL_StringRef& name) {
  return m_Attributes.find(name);
}

void DAC_BaseDataAccess::lookupIntegerAttribute(const SCL_StringRef& name, std::uint32_t& value,
                                                unsigned int& status) {
  if (status == 0) {
    getIntegerAttribute(name, value, status);
  }
}

void DAC_BaseDataAccess::lookupStringAttribute(const SCL_StringRef& name, SCL_String& value,
                                               unsigned int& status) {
  if (status == 0) {
    getStringAttribute(name, value, status);
  }
}

void DAC_BaseDataAccess::getInheritedIntegerAttribute(const SCL_StringRef& name,
                                                      std::uint32_t& value, unsigned int& status) {
  const bool mayAsk = status == 0;
  getIntegerAttribute(name, value, status);
  if (mayAsk && status == DAC_NO_ATTRIBUTE && m_Parent != nullptr) {
    status = 0;
    m_Parent->getInheritedIntegerAttribute(name, value, status);
  }
}

void DAC_BaseDataAccess::getInheritedStringAttribute(const SCL_StringRef& name, SCL_String& value,
                                                     unsigned int& status) {
  const bool mayAsk = status == 0;
  getStringAttribute(name, value, status);
  if (mayAsk && status == DAC_NO_ATTRIBUTE && m_Parent != nullptr) {
    status = 0;
    m_Parent->getInheritedStringAttribute(name, value, status);
  }
}

ATR_Attribute* DAC_BaseDataAccess::firstAttribute() {
  m_CurAttr = 0;
  return currentAttribute();
}

ATR_Attribute* DAC_BaseDataAccess::nextAttribute() {
  if (m_CurAttr < m_Attributes.count()) {
    ++m_CurAttr;
  }
  return currentAttribute();
}

ATR_Attribute* DAC_BaseDataAccess::currentAttribute() const {
  return m_CurAttr < m_Attributes.count() ? m_Attributes.get(static_cast<std::uint16_t>(m_CurAttr))
                                          : nullptr;
}

void DAC_BaseDataAccess::copyAttributesTo(DAC_BaseDataAccess* destination, unsigned int& status) {
  if (status != 0 || destination == nullptr || destination == this) {
    return;
  }
  for (const ATR_Attribute* attribute = firstAttribute(); attribute != nullptr;
       attribute = nextAttribute()) {
    if (attribute->getType() == STRING) {
      destination->setStringAttribute(attribute->name(), attribute->string());
    } else {
      destination->setIntegerAttribute(attribute->name(), attribute->getInteger());
    }
  }
}

void DAC_BaseDataAccess::dump(const SCL_StringRef& name, std::ostream& stream,
                              SCL_DumpIndent& indent) {
  SCL_Dump dump(stream, indent, name, "DAC_BaseDataAccess", this);
  dump.line() << "m_Modified - " << (m_Modified != 0 ? "TRUE" : "FALSE") << std::endl;
  dump.line() << "m_CurPos = " << m_CurPos << std::endl;
  dump.line() << "Attributes" << std::endl;
  unsigned int number = 0;
  for (const ATR_Attribute* attribute = firstAttribute(); attribute != nullptr;
       attribute = nextAttribute()) {
    attribute->dump(SCL_indexedName("attribute", number++) + "=", stream, indent);
  }
  dump.line() << "m_CurAttr = " << m_CurAttr << std::endl;
  dump.line() << "DACList" << std::endl;
  for (std::uint32_t i = 0; i < DACList.count(); ++i) {
    if (DACList[i] != nullptr) {
      DACList[i]->dump(SCL_indexedName("DACList", i) + "=", stream, indent);
    }
  }
}
