// The entries of a section: order, search, deletion.
#include "pfa/PFASECT.h"

#include <algorithm>

#include "scl/SCLASCII.h"

void PFA_Section::setName(std::string_view name) {
  m_name = SCL_trimmed(name);
}

std::uint32_t PFA_Section::highestIndex() const noexcept {
  const auto highest = std::find_if(m_entries.rbegin(), m_entries.rend(), [](const PFA_Entry& e) {
    return !e.isDeleted() && !e.isComment();
  });
  return highest == m_entries.rend() ? 0 : highest->index();
}

PFA_Section::Place PFA_Section::firstLive(Place place) noexcept {
  return std::find_if(place, m_entries.end(), [](const PFA_Entry& e) { return !e.isDeleted(); });
}

PFA_Section::Place PFA_Section::find(std::string_view name, std::uint32_t index) noexcept {
  return std::find_if(m_entries.begin(), m_entries.end(), [&](const PFA_Entry& e) {
    return !e.isDeleted() && !e.isComment() && e.index() == index && e.name() == name;
  });
}

const PFA_Entry& PFA_Section::load(std::string_view line, unsigned int lineNumber) {
  const std::uint32_t last = m_entries.empty() ? 0 : m_entries.back().order();
  PFA_Entry& entry = m_entries.emplace_back(line, lineNumber);
  if (entry.isComment()) {
    entry.setOrder(last);
  }
  m_sorted = m_sorted && last <= entry.order();
  live(entry);
  return entry;
}

// Sorting once keeps loading fast whatever order the file has.
void PFA_Section::finishLoad() {
  if (!m_sorted) {
    m_entries.sort([](const PFA_Entry& a, const PFA_Entry& b) { return a.order() < b.order(); });
    m_sorted = true;
  }
}

PFA_Section::Place PFA_Section::insert(std::string_view text) {
  const Place added = m_entries.emplace(m_entries.end(), text);
  Place before = added;
  while (before != m_entries.begin() && std::prev(before)->order() > added->order()) {
    --before;
  }
  m_entries.splice(before, m_entries, added);
  return added;
}

void PFA_Section::live(PFA_Entry& entry) noexcept {
  entry.setDeleted(false);
  m_deleted = false;
  if (!entry.isComment()) {
    ++m_count;
  }
}

PFA_Section::Place PFA_Section::add(std::string_view text) {
  const Place place = insert(text);
  live(*place);
  return place;
}

// The old one goes last: it may be the profile's current entry, and making the new one can fail.
PFA_Section::Place PFA_Section::placeholder(std::string_view text) {
  const Place made = insert(text);
  made->setDeleted(true);
  if (m_placeholder) {
    m_entries.erase(*m_placeholder);
  }
  m_placeholder = made;
  return made;
}

void PFA_Section::store(Place place, std::string_view text) {
  place->setText(text);
  if (place->isDeleted()) {
    live(*place);
  }
  if (m_placeholder == place) {
    m_placeholder.reset();
  }
}

void PFA_Section::remove(Place place) noexcept {
  if (!place->isDeleted()) {
    place->setDeleted(true);
    m_count -= place->isComment() ? 0 : 1;
  }
}

void PFA_Section::purge() {
  m_placeholder.reset();
  m_entries.remove_if([](const PFA_Entry& e) { return e.isDeleted(); });
}

void PFA_Section::renumber() {
  purge();
  std::uint32_t former = 0;
  std::uint32_t current = 0;
  for (PFA_Entry& entry : m_entries) {
    if (entry.isComment()) {
      entry.setOrder(current);
      continue;
    }
    if (entry.index() != former) {
      former = entry.index();
      ++current;
    }
    if (entry.index() != current) {
      entry.setText(entry.textWithIndex(current));
    }
  }
}
