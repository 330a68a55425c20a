// ATR_AttributeList: the ordered, owning list of attributes of a message or a data access object.
// Names compare without regard to case and are unique, unless a caller renames an attribute
// through its pointer: then the first in the list's order counts. Pointers that get and find return
// are valid until the next change of the list. Lookups stay constant in time for long lists.
//
//   ATR_AttributeList attributes;
//   attributes.setInteger("AttachmentSize", 12);
//   if (ATR_Attribute* size = attributes.find("attachmentsize")) use(size->getInteger());
//
// Memory that cannot be had is the assertion 1 (ATRATLST), the 65,536th attribute the assertion 3
// (sclpvec); the list is then as it was. Threads: a list is used by one thread at a time.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <memory>

#include "atr/ATRATTR.h"
#include "scl/SCLPVEC.h"

class ATR_AttributeList {
 public:
  ATR_AttributeList() noexcept;
  ATR_AttributeList(const ATR_AttributeList& other);  // deep
  ATR_AttributeList& operator=(const ATR_AttributeList& other);
  ~ATR_AttributeList();

  std::uint16_t count() const noexcept { return m_attrs.count(); }
  bool isEmpty() const noexcept { return m_attrs.isEmpty(); }
  ATR_Attribute* get(std::uint16_t index) const;  // "Attribute list index out of range."
  // The attribute of that name, null when there is none.
  ATR_Attribute* find(const SCL_StringRef& name) const;
  // These overwrite the attribute of that name, whose type may change and which keeps its place
  // and the spelling of its name; without one, a new attribute is appended.
  void setString(const SCL_StringRef& name, const SCL_StringRef& value);
  void setInteger(const SCL_StringRef& name, std::uint32_t value);
  void add(const ATR_Attribute& attribute);     // copied; it may be one of this list
  void remove(std::uint16_t index);             // "Attribute list index out of range."
  void remove(int index);                       // remove(0) means the index, not a null pointer
  void remove(const ATR_Attribute* attribute);  // that very entry, if any
  void clear() noexcept;

  void dump(const SCL_StringRef& name, std::ostream& stream, SCL_DumpIndent& indent) const;

 private:
  class Index;  // by folded name, for long lists

  void append(std::unique_ptr<ATR_Attribute> attribute);
  ATR_Attribute* findLinear(const SCL_StringRef& name) const noexcept;
  const Index* upToDateIndex() const noexcept;

  SCL_PtrVector<ATR_Attribute> m_attrs;
  // Beside the vector, which alone is the truth; null when not built or out of date.
  mutable std::unique_ptr<Index> m_index;
  mutable bool m_renamed = false;  // set by an attribute whose name changes
};
