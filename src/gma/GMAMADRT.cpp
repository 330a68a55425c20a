// The table of a message's addresses and its index by type, user and location.
#include "gma/GMAMADRT.h"

#include <ostream>
#include <vector>

#include "gen/GENCATCH.h"
#include "scl/SCLDUMP.h"

namespace {

// Up to this many addresses, comparing them all is faster than an index.
constexpr std::uint16_t LONGEST_LINEAR = 16;

std::size_t hashParts(const GMA_Maddr& address) noexcept {
  constexpr std::size_t MIX = 0x9E3779B97F4A7C15U;  // spreads the bits between the three parts
  std::size_t hash = address.getType();
  hash = hash * MIX + SCL_hashNoCase(address.getUser());
  return hash * MIX + SCL_hashNoCase(address.getLocation());
}

std::unique_ptr<GMA_Maddr> cloneOf(const GMA_Maddr& address) {
  std::unique_ptr<GMA_Maddr> copy(address.clone());
  if (copy == nullptr) {
    GENAssert(GEN_NULL_POINTER, "GMAMADRT", __LINE__);
  }
  return copy;
}

}  // namespace

// Chains of entries whose parts have one hash. Entries of equal parts may stand in the table more
// than once (they were changed after they were added), so a chain runs from the last to the first.
class GMA_MaddrTable::Index {
 public:
  // The entry at table index `size()`.
  void add(const GMA_Maddr& address) {
    if (m_entries.size() >= m_buckets.size()) {
      rehash(m_buckets.size() * 2);
    }
    m_entries.push_back({hashParts(address), NONE});
    link(static_cast<std::uint32_t>(m_entries.size() - 1));
  }

  // The first entry that is equal to `address`, or null.
  GMA_Maddr* find(const SCL_PtrVector<GMA_Maddr>& entries, const GMA_Maddr& address) const {
    const std::size_t hash = hashParts(address);
    GMA_Maddr* found = nullptr;
    for (std::uint32_t i = m_buckets[bucketOf(hash)]; i != NONE; i = m_entries[i].next) {
      if (m_entries[i].hash == hash && *entries[i] == address) {
        found = entries[i];
      }
    }
    return found;
  }

 private:
  static constexpr std::uint32_t NONE = 0xFFFFFFFF;
  static constexpr std::size_t FIRST_BUCKETS = 64;

  struct Entry {
    std::size_t hash;
    std::uint32_t next;
  };

  // The low bits of a multiplied hash are its weak ones.
  std::size_t bucketOf(std::size_t hash) const noexcept {
    return (hash ^ (hash >> 32U)) & (m_buckets.size() - 1);
  }
  void link(std::uint32_t i) noexcept {
    std::uint32_t& bucket = m_buckets[bucketOf(m_entries[i].hash)];
    m_entries[i].next = bucket;
    bucket = i;
  }
  void rehash(std::size_t buckets) {
    m_buckets.assign(buckets, NONE);
    for (std::uint32_t i = 0; i < m_entries.size(); ++i) {
      link(i);
    }
  }

  std::vector<Entry> m_entries;  // by table index
  std::vector<std::uint32_t> m_buckets = std::vector<std::uint32_t>(FIRST_BUCKETS, NONE);
};

GMA_MaddrTable::GMA_MaddrTable() noexcept = default;

GMA_MaddrTable::GMA_MaddrTable(const GMA_MaddrTable& other) {
  for (std::uint16_t i = 0; i < other.count(); ++i) {
    append(cloneOf(*other.m_addrs[i]));
  }
}

GMA_MaddrTable& GMA_MaddrTable::operator=(const GMA_MaddrTable& other) {
  if (this != &other) {
    clear();
    for (std::uint16_t i = 0; i < other.count(); ++i) {
      add(*other.m_addrs[i]);
    }
  }
  return *this;
}

GMA_MaddrTable::~GMA_MaddrTable() = default;

GMA_Maddr* GMA_MaddrTable::get(std::uint16_t index) const {
  if (index >= count()) {
    GENAssertText("Address table index out of range.", "GMAMADRT", __LINE__);
  }
  return m_addrs[index];
}

// An AMUADDR is asked itself what it is equal to.
GMA_Maddr* GMA_MaddrTable::find(const GMA_Maddr& address) const {
  if (count() > LONGEST_LINEAR && m_isIndexable && address.getType() != gma::AMUADDR) {
    if (const Index* index = upToDateIndex()) {
      return index->find(m_addrs, address);
    }
  }
  return findLinear(address);
}

GMA_Maddr* GMA_MaddrTable::findLinear(const GMA_Maddr& address) const {
  for (std::uint16_t i = 0; i < count(); ++i) {
    if (*m_addrs[i] == address) {
      return m_addrs[i];
    }
  }
  return nullptr;
}

// Null when the table is better searched without: right after a change, so that changing and
// searching by turns does not build an index each time, and when there is no memory for one.
const GMA_MaddrTable::Index* GMA_MaddrTable::upToDateIndex() const noexcept {
  if (m_changed) {
    m_changed = false;
    m_index = nullptr;
    return nullptr;
  }
  if (m_index == nullptr) {
    GENSwallow([this] {
      auto index = std::make_unique<Index>();
      for (std::uint16_t i = 0; i < count(); ++i) {
        index->add(*m_addrs[i]);
      }
      m_index = std::move(index);
    });
  }
  return m_index.get();
}

void GMA_MaddrTable::add(const GMA_Maddr& address) {
  if (!contains(address)) {
    append(cloneOf(address));
  }
}

void GMA_MaddrTable::add(std::unique_ptr<GMA_Maddr> address) {
  if (!contains(*address)) {
    append(std::move(address));
  }
}

void GMA_MaddrTable::append(std::unique_ptr<GMA_Maddr> address) {
  GMA_Maddr* const added = address.get();
  m_addrs.append(std::move(address));
  added->m_changed = &m_changed;
  m_isIndexable = m_isIndexable && added->isFoundByParts();
  if (m_index != nullptr && GENCatch([&] { m_index->add(*added); })) {
    m_index = nullptr;
  }
}

void GMA_MaddrTable::clear() noexcept {
  m_index = nullptr;
  m_changed = false;
  m_isIndexable = true;
  m_addrs.clear();
}

void GMA_MaddrTable::dump(const SCL_StringRef& name, std::ostream& stream,
                          SCL_DumpIndent& indent) const {
  SCL_Dump dump(stream, indent, name, "GMA_MaddrTable", this);
  dump.line() << "m_num_addr = " << count() << ";" << std::endl;
  for (std::uint16_t i = 0; i < count(); ++i) {
    m_addrs[i]->dump(SCL_indexedName("m_addrs", i), stream, indent);
  }
}
