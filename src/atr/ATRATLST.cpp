// The ordered list of attributes and its index by name.
#include "atr/ATRATLST.h"

#include <ostream>
#include <unordered_set>

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

// Attributes by folded name. Of several of one name, which only renaming brings about, it holds
// the first.
class ATR_AttributeList::Index {
 public:
  void add(ATR_Attribute* attribute) {
    m_hasDuplicates = !m_entries.insert(attribute).second || m_hasDuplicates;
  }
  void remove(ATR_Attribute* attribute) { m_entries.erase(attribute); }
  ATR_Attribute* find(std::string_view name) const noexcept {
    const auto entry = m_entries.find(name);
    return entry != m_entries.end() ? *entry : nullptr;
  }
  bool hasDuplicates() const noexcept { return m_hasDuplicates; }

 private:
  static std::string_view nameOf(const ATR_Attribute* attribute) noexcept {
    return attribute->name();
  }
  static std::string_view nameOf(std::string_view name) noexcept { return name; }

  struct Hash {
    using is_transparent = void;
    template <class Key>
    std::size_t operator()(const Key& key) const noexcept {
      return SCL_hashNoCase(nameOf(key));
    }
  };
  struct Equal {
    using is_transparent = void;
    template <class Left, class Right>
    bool operator()(const Left& left, const Right& right) const noexcept {
      return SCL_equalNoCase(nameOf(left), nameOf(right));
    }
  };

  std::unordered_set<ATR_Attribute*, Hash, Equal> m_entries;
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
