// Changes to a profile's sections and entries, other than storing values.
#include <algorithm>
#include <string>

#include "gen/GENCODES.h"
#include "pfa/PFAPROF.h"
#include "pfa/PFATEXT.h"

unsigned int PFA_Profile::addEntry(const SCL_StringRef& name, unsigned int index, const char* text,
                                   unsigned int field) {
  if (!m_writable) {
    return PFA_NOT_WRITABLE;
  }
  if (!hasSection()) {
    return PFA_NO_SECTION;
  }
  const std::string bare = PFA_Entry::bareName(name);
  if (!PFA_Entry::isStorable(bare, index)) {
    return PFA_ENTRY_NOT_FOUND;
  }
  std::string line = PFA_Entry::compose(bare, index);
  if (text != nullptr && field > 0) {
    if (field > PFA_Entry::MAX_VALUES) {
      return PFA_FIELD;
    }
    line.append(field, ',');
    line += PFA_firstLine(text);
  }
  if (line.size() > PFA_Entry::MAX_TEXT) {
    return PFA_CUT;
  }
  m_entry = m_section->add(line);
  m_modified = true;
  return 0;
}

// Makes the named entry current when it exists; without a name the current one must be alive.
unsigned int PFA_Profile::seekExisting(const char* name, unsigned int index) {
  if (!m_writable) {
    return PFA_NOT_WRITABLE;
  }
  if (name == nullptr) {
    if (!m_entry) {
      return PFA_NO_ENTRY;
    }
    return (*m_entry)->isDeleted() ? PFA_ENTRY_NOT_FOUND : 0;
  }
  if (!hasSection()) {
    return PFA_NO_SECTION;
  }
  return setEntry(m_section->find(PFA_Entry::bareName(name), index)) ? 0 : PFA_ENTRY_NOT_FOUND;
}

unsigned int PFA_Profile::deleteEntry(const char* name, unsigned int index) {
  if (const unsigned int status = seekExisting(name, index); status != 0) {
    return status;
  }
  m_section->remove(*m_entry);
  m_modified = true;
  if (!setEntry(m_section->firstLive(*m_entry))) {
    m_entry.reset();
  }
  return 0;
}

unsigned int PFA_Profile::deleteField(unsigned int field, const char* name, unsigned int index) {
  if (const unsigned int status = seekExisting(name, index); status != 0) {
    return status;
  }
  const PFA_Entry& entry = **m_entry;
  if (entry.isComment()) {
    return PFA_COMMENT;
  }
  if (field < 1 || field > entry.valueCount()) {
    return PFA_FIELD;
  }
  m_section->store(*m_entry, entry.textWithoutField(field));
  m_modified = true;
  return 0;
}

unsigned int PFA_Profile::deleteEntriesWithIndex(unsigned int index) {
  if (!m_writable) {
    return PFA_NOT_WRITABLE;
  }
  if (!hasSection()) {
    return PFA_NO_SECTION;
  }
  auto& entries = m_section->entries();
  for (auto place = entries.begin(); place != entries.end(); ++place) {
    if (!place->isComment() && place->index() == index) {
      m_section->remove(place);
    }
  }
  m_modified = true;
  if (m_entry && !setEntry(m_section->firstLive(*m_entry))) {
    m_entry.reset();
  }
  return 0;
}

unsigned int PFA_Profile::renumber() {
  if (!m_writable) {
    return PFA_NOT_WRITABLE;
  }
  if (!hasSection()) {
    return PFA_NO_SECTION;
  }
  if (m_entry && (*m_entry)->isDeleted()) {
    m_entry.reset();
  }
  m_section->renumber();
  m_modified = true;
  return 0;
}

unsigned int PFA_Profile::dropSection(const SCL_StringRef& name) {
  const auto section = findSection(name);
  if (section == m_sections.end() || section->isDeleted()) {
    return PFA_SECTION_NOT_FOUND;
  }
  m_sections.erase(section);
  makeCurrent(m_sections.end());
  return 0;
}

unsigned int PFA_Profile::renameSection(const SCL_StringRef& name) {
  if (!hasSection()) {
    return PFA_NO_SECTION;
  }
  const std::string_view line = SCL_trimmed(PFA_firstLine(name));
  if (line.size() + 2 > PFA_Entry::MAX_TEXT) {  // its header line has brackets
    return PFA_CUT;
  }
  m_section->setName(line);
  m_modified = true;
  return 0;
}
