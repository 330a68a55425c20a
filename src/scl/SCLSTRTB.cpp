// The table of strings.
#include "scl/SCLSTRTB.h"

#include <utility>

#include "gen/GENCATCH.h"
#include "scl/SCLDUMP.h"

namespace {

void checkIndex(unsigned int index, unsigned int count) {
  if (index >= count) {
    GENAssertText("String table index out of range.", "SCLSTRTB", __LINE__);
  }
}

}  // namespace

SCL_StringTable::SCL_StringTable(const SCL_StringTable& other) {
  *this = other;
}

SCL_StringTable& SCL_StringTable::operator=(const SCL_StringTable& other) {
  if (this != &other) {
    clear();
    for (std::uint16_t i = 0; i < other.count(); ++i) {
      add(other.get(i));
    }
  }
  return *this;
}

SCL_StringRef SCL_StringTable::get(std::uint16_t index) const {
  checkIndex(index, count());
  return *m_strings[index];
}

void SCL_StringTable::set(std::uint16_t index, const SCL_StringRef& text) {
  checkIndex(index, count());
  *m_strings[index] = text;
}

void SCL_StringTable::add(const SCL_StringRef& text) {
  m_strings.append(GENMake<SCL_String>("SCLSTRTB", __LINE__, text));
}

void SCL_StringTable::add(SCL_String&& text) {
  m_strings.append(GENMake<SCL_String>("SCLSTRTB", __LINE__, std::move(text)));
}

void SCL_StringTable::dump(const SCL_StringRef& name, std::ostream& stream,
                           SCL_DumpIndent& indent) const {
  SCL_Dump dump(stream, indent, name, "SCL_StringTable", this);
  dump.line() << "m_num_str = " << count() << ";" << std::endl;
  for (std::uint16_t i = 0; i < count(); ++i) {
    if (const SCL_String* text = m_strings[i]) {
      dump.line() << SCL_indexedName("m_strings", i) << " = \"" << *text << "\"" << std::endl;
    }
  }
}
