// The ordered list of attributes and its index by name.
#include "atr/ATRATLST.h"

#include <ostream>
#include <vector>

#include "gen/GENCATCH.h"
#include "scl/SCLDUMP.h"

namespace {

// Up to this many attributes, comparing them all is faster than an index.
constexpr std::uint16_t LONGEST_LINEAR = 16;

void checkIndex(unsigned int index, unsigned int count) {
  if (index >= count) {
    GENAssertText("Attribute list index out of range.", "ATRATLST", __LINE__);
  }
}

}  // namespace

// Attributes by folded name, in a table with open addressing that keeps their hashes: looking one
// up reads one slot and, where the hash is right, one name. Of several of one name, which only
// renaming brings about, it holds the first.
class ATR_AttributeList::Index {
 public:
  void add(ATR_Attribute* attribute) {
    if ((m_used + 1) * 2 > m_slots.size()) {
      grow();
    }
    const Slot added{hashOf(attribute->name()), attribute};
    const std::size_t i = slotOf(added.hash, attribute->name());
    if (m_slots[i].attribute != nullptr) {
      m_hasDuplicates = true;
    } else {
      m_slots[i] = added;
      ++m_used;
    }
  }
  // Of an attribute that is in it, with the name that it had when it was added.
  void remove(const ATR_Attribute* attribute) noexcept {
    std::size_t hole = slotOf(hashOf(attribute->name()), attribute->name());
    // What was put further on because of it moves back.
    for (std::size_t i = next(hole); m_slots[i].attribute != nullptr; i = next(i)) {
      if (distance(m_slots[i].hash & mask(), i) >= distance(hole, i)) {
        m_slots[hole] = m_slots[i];
        hole = i;
      }
    }
    m_slots[hole] = Slot();
    --m_used;
  }
  ATR_Attribute* find(std::string_view name) const noexcept {
    return m_slots[slotOf(hashOf(name), name)].attribute;
  }
  bool hasDuplicates() const noexcept { return m_hasDuplicates; }

 private:
  static constexpr std::size_t FIRST_SLOTS = 64;

  struct Slot {
    std::uint32_t hash = 0;
    ATR_Attribute* attribute = nullptr;
  };

  static std::uint32_t hashOf(std::string_view name) noexcept {
    return static_cast<std::uint32_t>(SCL_hashNoCase(name));
  }
  std::size_t mask() const noexcept { return m_slots.size() - 1; }
  std::size_t next(std::size_t i) const noexcept { return (i + 1) & mask(); }
  std::size_t distance(std::size_t from, std::size_t to) const noexcept {
    return (to - from) & mask();
  }
  // Where an attribute of that name is, or would be put.
  std::size_t slotOf(std::uint32_t hash, std::string_view name) const noexcept {
    std::size_t i = hash & mask();
    while (m_slots[i].attribute != nullptr &&
           (m_slots[i].hash != hash || !SCL_equalNoCase(m_slots[i].attribute->name(), name))) {
      i = next(i);
    }
    return i;
  }
  void grow() {
    std::vector<Slot> before(m_slots.size() * 2);
    before.swap(m_slots);
    for (const Slot& slot : before) {
      if (slot.attribute != nullptr) {
        std::size_t i = slot.hash & mask();
        while (m_slots[i].attribute != nullptr) {
          i = next(i);
        }
        m_slots[i] = slot;
      }
    }
  }

  std::vector<Slot> m_slots = std::vector<Slot>(FIRST_SLOTS);  // a power of two
  std::size_t m_used = 0;
  bool m_hasDuplicates = false;
};

ATR_AttributeList::ATR_AttributeList() noexcept = default;

ATR_AttributeList::ATR_AttributeList(const ATR_AttributeList& other) {
  *this = other;
}

ATR_AttributeList& ATR_AttributeList::operator=(const ATR_AttributeList& other) {
  if (this != &other) {
    clear();
    for (std::uint16_t i = 0; i < other.count(); ++i) {
      append(GENMake<ATR_Attribute>("ATRATLST", __LINE__, *other.m_attrs[i]));
    }
  }
  return *this;
}

ATR_AttributeList::~ATR_AttributeList() = default;

ATR_Attribute* ATR_AttributeList::get(std::uint16_t index) const {
  checkIndex(index, count());
  return m_attrs[index];
}

ATR_Attribute* ATR_AttributeList::find(const SCL_StringRef& name) const {
  if (count() > LONGEST_LINEAR) {
    if (const Index* index = upToDateIndex()) {
      return index->find(name);
    }
  }
  return findLinear(name);
}

ATR_Attribute* ATR_AttributeList::findLinear(const SCL_StringRef& name) const noexcept {
  for (std::uint16_t i = 0; i < count(); ++i) {
    if (SCL_equalNoCase(m_attrs[i]->name(), name)) {
      return m_attrs[i];
    }
  }
  return nullptr;
}

// Null when there is no memory for it; the list can be searched without.
const ATR_AttributeList::Index* ATR_AttributeList::upToDateIndex() const noexcept {
  if (m_index != nullptr && !m_renamed) {
    return m_index.get();
  }
  m_index = nullptr;
  m_renamed = false;
  GENSwallow([this] {
    auto index = std::make_unique<Index>();
    for (std::uint16_t i = 0; i < count(); ++i) {
      index->add(m_attrs[i]);
    }
    m_index = std::move(index);
  });
  return m_index.get();
}

void ATR_AttributeList::setString(const SCL_StringRef& name, const SCL_StringRef& value) {
  if (ATR_Attribute* attribute = find(name)) {
    attribute->setString(value);
  } else {
    append(GENMake<ATR_Attribute>("ATRATLST", __LINE__, name, value));
  }
}

void ATR_AttributeList::setInteger(const SCL_StringRef& name, std::uint32_t value) {
  if (ATR_Attribute* attribute = find(name)) {
    attribute->setInteger(value);
  } else {
    append(GENMake<ATR_Attribute>("ATRATLST", __LINE__, name, value));
  }
}

void ATR_AttributeList::add(const ATR_Attribute& attribute) {
  if (attribute.getType() == STRING) {
    setString(attribute.name(), attribute.string());
  } else {
    setInteger(attribute.name(), attribute.getInteger());
  }
}

void ATR_AttributeList::append(std::unique_ptr<ATR_Attribute> attribute) {
  ATR_Attribute* const added = attribute.get();
  m_attrs.append(std::move(attribute));
  added->m_renamed = &m_renamed;
  // Where a name changed, the index cannot be relied on even to take a new one.
  if (m_index != nullptr && (m_renamed || GENCatch([&] { m_index->add(added); }))) {
    m_index = nullptr;
  }
}

void ATR_AttributeList::remove(std::uint16_t index) {
  checkIndex(index, count());
  // A name that changed is not where the index looks, and a second attribute of the name would
  // have to take the place of the first: then it is built again when it is next needed.
  if (m_index != nullptr && (m_renamed || m_index->hasDuplicates())) {
    m_index = nullptr;
  }
  if (m_index != nullptr) {
    m_index->remove(m_attrs[index]);
  }
  m_attrs.take(index);
}

void ATR_AttributeList::remove(int index) {
  checkIndex(static_cast<unsigned int>(index), count());
  remove(static_cast<std::uint16_t>(index));
}

void ATR_AttributeList::remove(const ATR_Attribute* attribute) {
  for (std::uint16_t i = 0; i < count(); ++i) {
    if (m_attrs[i] == attribute) {
      return remove(i);
    }
  }
}

void ATR_AttributeList::clear() noexcept {
  m_index = nullptr;
  m_attrs.clear();
}

void ATR_AttributeList::dump(const SCL_StringRef& name, std::ostream& stream,
                             SCL_DumpIndent& indent) const {
  SCL_Dump dump(stream, indent, name, "ATR_AttributeList", this);
  dump.line() << "m_num_attr = \"" << count() << "\"" << std::endl;
  for (std::uint16_t i = 0; i < count(); ++i) {
    m_attrs[i]->dump(SCL_indexedName("m_attrs", i), stream, indent);
  }
}
