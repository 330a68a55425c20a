// The table of a message's headers.
#include "gma/GMAMHDRT.h"

#include <ostream>
#include <utility>

#include "gen/GENCATCH.h"
#include "scl/SCLDUMP.h"

namespace {

constexpr unsigned int FIRST_ROOM = 15;

void checkIndex(unsigned int index, unsigned int count) {
  if (index >= count) {
    GENAssertText("Header table index out of range.", "GMAMHDRT", __LINE__);
  }
}

}  // namespace

GMA_MhdrTable::GMA_MhdrTable() noexcept : m_hdrs(FIRST_ROOM) {}

GMA_MhdrTable::GMA_MhdrTable(const GMA_MhdrTable& other) : GMA_MhdrTable() {
  *this = other;
}

GMA_MhdrTable& GMA_MhdrTable::operator=(const GMA_MhdrTable& other) {
  if (this != &other) {
    clear();
    for (std::uint16_t i = 0; i < other.count(); ++i) {
      add(*other.m_hdrs[i]);
    }
  }
  return *this;
}

GMA_Mhdr* GMA_MhdrTable::get(std::uint16_t index) const {
  checkIndex(index, count());
  return m_hdrs[index];
}

GMA_Mhdr* GMA_MhdrTable::findByType(std::uint32_t type) const noexcept {
  for (std::uint16_t i = 0; i < count(); ++i) {
    if (m_hdrs[i]->type() == type) {
      return m_hdrs[i];
    }
  }
  return nullptr;
}

void GMA_MhdrTable::add(const GMA_Mhdr& header) {
  m_hdrs.append(GENMake<GMA_Mhdr>("GMAMHDRT", __LINE__, header));
}

void GMA_MhdrTable::add(std::unique_ptr<GMA_Mhdr> header) {
  if (header == nullptr) {
    GENAssert(GEN_NULL_POINTER, "GMAMHDRT", __LINE__);
  }
  m_hdrs.append(std::move(header));
}

void GMA_MhdrTable::remove(std::uint16_t index) {
  checkIndex(index, count());
  m_hdrs.take(index);
}

void GMA_MhdrTable::remove(int index) {
  checkIndex(static_cast<unsigned int>(index), count());
  remove(static_cast<std::uint16_t>(index));
}

void GMA_MhdrTable::remove(const GMA_Mhdr* header) {
  for (std::uint16_t i = 0; i < count(); ++i) {
    if (m_hdrs[i] == header) {
      return remove(i);
    }
  }
}

void GMA_MhdrTable::truncate(std::uint16_t count) noexcept {
  while (m_hdrs.count() > count) {
    m_hdrs.take(m_hdrs.count() - 1U);
  }
}

void GMA_MhdrTable::dump(const SCL_StringRef& name, std::ostream& stream,
                         SCL_DumpIndent& indent) const {
  SCL_Dump dump(stream, indent, name, "GMA_MhdrTable", this);
  dump.line() << "m_num_hdr = " << count() << ";" << std::endl;
  for (std::uint16_t i = 0; i < count(); ++i) {
    m_hdrs[i]->dump(SCL_indexedName("m_hdrs", i), stream, indent);
  }
}
