// The further parts of a message.
#include "gma/GMAITEM.h"

#include <ostream>

#include "dac/DACBASDA.h"
#include "scl/SCLDUMP.h"

GMA_Item::~GMA_Item() {
  delete m_data;
}

void GMA_Item::dump(const SCL_StringRef& name, std::ostream& stream, SCL_DumpIndent& indent) const {
  SCL_Dump dump(stream, indent, name, "GMA_Item", this);
  dump.line() << "m_original = " << (isOriginal() ? "true" : "false") << std::endl;
  if (m_data != nullptr) {
    m_data->dump("m_data=", stream, indent);
  }
}
