// Printing by the dump convention.
#include "scl/SCLDUMP.h"

#include <charconv>

#include "gen/GENCATCH.h"

std::ostream& operator<<(std::ostream& stream, const SCL_DumpIndent& indent) {
  for (unsigned int blanks = static_cast<unsigned int>(indent.unit()) * indent.level(); blanks > 0;
       --blanks) {
    stream.put(' ');
  }
  return stream;
}

std::ostream& operator<<(std::ostream& stream, SCL_Address address) {
  return stream << address.address;
}

SCL_Dump::SCL_Dump(std::ostream& stream, SCL_DumpIndent& indent, const SCL_StringRef& name,
                   const char* className, const void* address)
    : m_stream(stream), m_indent(indent) {
  line() << "Dump \"" << name << "\" which is a \"" << className << "\" at " << SCL_Address{address}
         << " {" << std::endl;
  m_indent.enter();
}

SCL_Dump::~SCL_Dump() {
  m_indent.leave();
  GENSwallow([this] { line() << "};" << std::endl; });
}

void SCL_Dump::quoted(const char* field, const SCL_StringRef& value) {
  line() << field << " = \"" << value << "\";" << std::endl;
}

SCL_String SCL_indexedName(const char* field, unsigned int index) {
  char digits[10];
  const auto end = std::to_chars(digits, digits + sizeof digits, index).ptr;
  SCL_String name(field);
  name.append('[');
  name.append(std::string_view(digits, static_cast<std::size_t>(end - digits)));
  name.append(']');
  return name;
}
