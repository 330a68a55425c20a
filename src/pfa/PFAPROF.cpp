// Sections and entries of a profile: selecting, walking, finding, and what is current.
#include "pfa/PFAPROF.h"

#include <algorithm>
#include <cstdio>

#include "gen/GENCATCH.h"
#include "gen/GENCODES.h"
#include "pfa/PFATEXT.h"

PFA_Profile::PFA_Profile() noexcept : m_section(m_sections.end()) {}

PFA_Profile::PFA_Profile(const SCL_StringRef& fileName, bool writable) : PFA_Profile() {
  open(fileName, writable);
}

PFA_Profile::~PFA_Profile() {
  GENSwallow([this] { flush(); });
}

PFA_Profile::Sections::iterator PFA_Profile::findSection(std::string_view name) {
  const std::string_view wanted = SCL_trimmed(name);
  return std::find_if(m_sections.begin(), m_sections.end(), [&](const PFA_Section& section) {
    return SCL_equalNoCase(std::string_view(section.name()), wanted);
  });
}

void PFA_Profile::makeCurrent(Sections::iterator section) noexcept {
  m_section = section;
  m_entry.reset();
}

// False, and nothing changes, at the section's end.
bool PFA_Profile::setEntry(PFA_Section::Place place) noexcept {
  if (place == m_section->end()) {
    return false;
  }
  m_entry = place;
  return true;
}

unsigned int PFA_Profile::selectSection(const SCL_StringRef& name) {
  auto section = findSection(name);
  if (section != m_sections.end() && !section->isDeleted()) {
    makeCurrent(section);
    setEntry(section->firstLive());
    return 0;
  }
  const bool fitsHeader = name.length() + 2 <= PFA_Entry::MAX_TEXT;
  if (m_writable && section == m_sections.end() && fitsHeader) {
    section = m_sections.emplace(m_sections.end(), PFA_firstLine(name));
    section->setDeleted(true);
  }
  makeCurrent(m_writable ? section : m_sections.end());
  return PFA_SECTION_NOT_FOUND;
}

unsigned int PFA_Profile::nextEntry(bool restart) {
  if (!hasSection()) {
    return PFA_NO_SECTION;
  }
  const bool fromStart = restart || !m_entry;
  const auto next = fromStart ? m_section->firstLive() : m_section->firstLive(std::next(*m_entry));
  return setEntry(next) ? 0 : PFA_NO_MORE;
}

unsigned int PFA_Profile::nextEntryAnywhere(bool restart) {
  const bool fromStart = restart || !hasSection();
  if (!fromStart && nextEntry(false) == 0) {
    return 0;
  }
  auto section = fromStart ? m_sections.begin() : std::next(m_section);
  for (; section != m_sections.end(); ++section) {
    const auto first = section->firstLive();
    if (!section->isDeleted() && first != section->end()) {
      makeCurrent(section);
      setEntry(first);
      return 0;
    }
  }
  return PFA_NO_MORE_ANYWHERE;
}

// `stands`: an entry of this name is current now, be it only the placeholder that a store fills.
unsigned int PFA_Profile::seek(const SCL_StringRef& name, unsigned int index, bool& stands) {
  stands = false;
  if (!hasSection()) {
    return PFA_NO_SECTION;
  }
  const std::string bare = PFA_Entry::bareName(name);
  stands = setEntry(m_section->find(bare, index));
  if (stands) {
    return 0;
  }
  if (m_writable && PFA_Entry::isStorable(bare, index)) {
    stands = setEntry(m_section->placeholder(PFA_Entry::compose(bare, index)));
  }
  return PFA_ENTRY_NOT_FOUND;
}

unsigned int PFA_Profile::findEntry(const SCL_StringRef& name, unsigned int index) {
  bool stands = false;
  return seek(name, index, stands);
}

unsigned int PFA_Profile::findEntry(std::uint32_t number, unsigned int index) {
  char name[24];
  std::snprintf(name, sizeof name, "%lu", static_cast<unsigned long>(number));
  return findEntry(SCL_StringRef(name), index);
}

unsigned int PFA_Profile::entryName(char* buffer, unsigned int size) const {
  if (!m_entry) {
    return PFA_NO_ENTRY;
  }
  const PFA_Entry& entry = **m_entry;
  if (entry.isComment()) {
    return PFA_COMMENT;
  }
  return entry.index() != 0 ? PFA_INDEXED : PFA_copyText(entry.name(), buffer, size);
}

unsigned int PFA_Profile::sectionName(char* buffer, unsigned int size) const {
  return hasSection() ? PFA_copyText(m_section->name(), buffer, size) : PFA_NO_SECTION;
}

unsigned int PFA_Profile::entryText(char* buffer, unsigned int size) const {
  return m_entry ? PFA_copyText((*m_entry)->text(), buffer, size) : PFA_NO_ENTRY;
}

unsigned int PFA_Profile::entryIndex() const noexcept {
  return m_entry ? (*m_entry)->index() : 0;
}

unsigned int PFA_Profile::entryLine() const noexcept {
  return m_entry ? (*m_entry)->lineNumber() : 0;
}

unsigned int PFA_Profile::fieldCount() const noexcept {
  return m_entry ? (*m_entry)->valueCount() : 0;
}

unsigned int PFA_Profile::entryCount() const noexcept {
  return hasSection() ? m_section->entryCount() : 0;
}

unsigned int PFA_Profile::highestIndex() const noexcept {
  return hasSection() ? m_section->highestIndex() : 0;
}

unsigned int PFA_Profile::entryPosition() const noexcept {
  if (!m_entry) {
    return 0;
  }
  const auto begin = m_section->entries().begin();
  const auto before = std::count_if(begin, *m_entry, [](const PFA_Entry& entry) {
    return !entry.isComment() && !entry.isDeleted();
  });
  return static_cast<unsigned int>(before);
}

std::vector<std::string> PFA_Profile::sectionNames() const {
  std::vector<std::string> names;
  for (const PFA_Section& section : m_sections) {
    if (!section.isDeleted()) {
      names.push_back(section.name());
    }
  }
  return names;
}

PFA_Profile::Position PFA_Profile::savePosition() const noexcept {
  Position position;
  position.section = hasSection() ? &*m_section : nullptr;
  position.entry = m_entry ? &**m_entry : nullptr;
  return position;
}

unsigned int PFA_Profile::restorePosition(const Position& position) {
  const auto section = std::find_if(m_sections.begin(), m_sections.end(),
                                    [&](const auto& s) { return &s == position.section; });
  if (section == m_sections.end()) {
    if (position.section != nullptr || position.entry != nullptr) {
      return PFA_POSITION;
    }
    makeCurrent(section);
    return 0;
  }
  auto& entries = section->entries();
  const auto entry = std::find_if(entries.begin(), entries.end(),
                                  [&](const auto& e) { return &e == position.entry; });
  if (entry == entries.end() && position.entry != nullptr) {
    return PFA_POSITION;
  }
  makeCurrent(section);
  setEntry(entry);
  return 0;
}

void PFA_Profile::setFlags(unsigned int bits, bool on) noexcept {
  m_flags = on ? m_flags | bits : m_flags & ~bits;
}
