// The header map of a post office kind.
#include "gma/GMAHDRMP.h"

#include <ostream>

#include "gen/GENCATCH.h"
#include "gma/GMAMHDR.h"
#include "scl/SCLDUMP.h"

void GMA_HdrMap::addMapping(const SCL_StringRef& name, std::uint32_t type) {
  m_map.append(GENMake<Mapping>("GMAHDRMP", __LINE__, name, type));
}

std::uint32_t GMA_HdrMap::typeForName(const SCL_StringRef& name) const noexcept {
  for (std::uint16_t i = 0; i < count(); ++i) {
    if (SCL_equalNoCase(m_map[i]->name(), name)) {
      return m_map[i]->type();
    }
  }
  return gma::UNKNOWN;
}

SCL_String GMA_HdrMap::nameForType(std::uint32_t type) const {
  for (std::uint16_t i = 0; i < count(); ++i) {
    if (m_map[i]->type() == type) {
      return m_map[i]->name();
    }
  }
  return SCL_String();
}

void GMA_HdrMap::Mapping::dump(const SCL_StringRef& name, std::ostream& stream,
                               SCL_DumpIndent& indent) const {
  SCL_Dump dump(stream, indent, name, "GMA_HdrMap::Mapping", this);
  dump.quoted("m_name", m_name);
  dump.line() << "m_type = " << gma::headerTypeName(m_type) << ";" << std::endl;
}

void GMA_HdrMap::dump(const SCL_StringRef& name, std::ostream& stream,
                      SCL_DumpIndent& indent) const {
  SCL_Dump dump(stream, indent, name, "GMA_HdrMap", this);
  dump.line() << "m_num_map = " << count() << ";" << std::endl;
  for (std::uint16_t i = 0; i < count(); ++i) {
    m_map[i]->dump(SCL_indexedName("m_map", i), stream, indent);
  }
}
