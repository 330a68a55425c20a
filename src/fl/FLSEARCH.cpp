// The directory search: names that match a pattern and pass the attribute filter.
#include "fl/FLSEARCH.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "fl/FLPATH.h"
#include "gen/GENCODES.h"
#include "scl/SCLASCII.h"

namespace {

// Copies what fits, always terminated; false when the text was cut.
bool copyCut(std::string_view text, unsigned int size, char* buffer) noexcept {
  if (size == 0) {
    return false;
  }
  const std::size_t count = std::min<std::size_t>(text.size(), size - 1);
  std::memcpy(buffer, text.data(), count);
  buffer[count] = '\0';
  return count == text.size();
}

// Can a path in the system's form hold this name? One that cannot would lead somewhere else.
bool isRepresentable(std::string_view name) noexcept {
  return std::none_of(name.begin(), name.end(), [](char c) {
    return static_cast<unsigned char>(c) < 0x20 || std::strchr("\\/:\"<>|", c) != nullptr;
  });
}

// Nothing matches in a directory that does not exist; one that cannot be read may be full of
// matches.
unsigned int statusOfOpen(int error) noexcept {
  switch (error) {
    case 0:
      return 0;
    case ENOENT:
    case ENOTDIR:
      return FL_NOT_FOUND;
    default:
      return FL_MALFORMED;
  }
}

bool sameLetter(char pattern, char name) noexcept {
  return pattern == '?' || SCL_toLower(pattern) == SCL_toLower(name);
}

}  // namespace

namespace fl {

bool matchesWildcard(std::string_view pattern, std::string_view name) noexcept {
  if (pattern == "*.*") {
    return true;
  }
  // On a mismatch the last "*" takes one character more; earlier ones never need to change.
  std::size_t p = 0;
  std::size_t n = 0;
  std::size_t star = std::string_view::npos;
  std::size_t resume = 0;
  while (n < name.size()) {
    if (p < pattern.size() && pattern[p] == '*') {
      star = p++;
      resume = n;
    } else if (p < pattern.size() && sameLetter(pattern[p], name[n])) {
      ++p;
      ++n;
    } else if (star != std::string_view::npos) {
      p = star + 1;
      n = ++resume;
    } else {
      return false;
    }
  }
  return pattern.find_first_not_of('*', p) == std::string_view::npos;
}

}  // namespace fl

void FL_Search::startSearch(const SCL_StringRef& pattern, unsigned int filter) {
  m_search.close();
  m_pattern = pattern.view();
  m_filter = filter;
  m_new = true;
  m_any = false;
  m_attributes = 0;
  m_directory.clear();
  m_name.clear();
  m_found.clear();
}

unsigned int FL_Search::nextMatch(unsigned int size, char* buffer) {
  if (m_pattern.empty()) {
    return FL_NO_PATTERN;
  }
  if (m_new) {
    m_new = false;
    if (const unsigned int status = openDirectory(); status != 0) {
      return status;
    }
  }
  if (!copyCut(m_directory, size, buffer) || m_directory.size() + 1 >= size) {
    return FL_SHORT_BUFFER;
  }
  if (const unsigned int status = findMatch(); status != 0) {
    return status;
  }
  const auto used = static_cast<unsigned int>(m_directory.size());
  return copyCut(m_found, size - used, buffer + used) ? 0 : FL_SHORT_BUFFER;
}

unsigned int FL_Search::openDirectory() {
  dv::PathRecord record;
  if (!fl::decodeWhole(record, m_pattern.c_str())) {
    return FL_MALFORMED;
  }
  const std::size_t folder =
      std::size_t{record.server.length} + record.drive.length + record.directory.length;
  m_directory = m_pattern.substr(0, folder);
  m_name = m_pattern.substr(folder);
  return statusOfOpen(m_search.open(m_directory.empty() ? "." : m_directory));
}

unsigned int FL_Search::findMatch() {
  while (m_search.isOpen()) {
    bool maybeDirectory = false;
    const int error = m_search.next(m_found, maybeDirectory);
    if (error == 0 && !m_found.empty()) {
      if (isWanted(m_found)) {
        return 0;
      }
      continue;
    }
    m_search.close();
    if (error != 0) {
      return FL_MALFORMED;
    }
    return m_any ? FL_NO_MORE : FL_NOT_FOUND;
  }
  return FL_NO_MORE;
}

bool FL_Search::isWanted(const std::string& name) {
  if (!fl::matchesWildcard(m_name, name) || !isRepresentable(name)) {
    return false;
  }
  m_any = true;
  const bool hiddenByPoint = name.front() == '.' && (m_filter & POINT_NAMES) == 0;
  return !hiddenByPoint && hasWantedAttributes(name);
}

// A name that has vanished meanwhile, or that nobody can ask about, is no match.
bool FL_Search::hasWantedAttributes(const std::string& name) {
  constexpr unsigned int FILTERED = READ_ONLY | HIDDEN | SYSTEM | DIRECTORIES;
  unsigned int bits = 0;
  if (m_search.attributesOf(name, bits) != 0) {
    return false;
  }
  const unsigned int present = bits & FILTERED;
  const bool demanded = (m_filter & ONLY_WITH_ATTRIBUTE) == 0 || present != 0;
  if (!demanded || (present & ~m_filter) != 0) {
    return false;
  }
  m_attributes = bits;
  return true;
}

unsigned int FL_Search::currentPattern(unsigned int size, char* buffer) const {
  if (m_pattern.empty()) {
    return FL_NO_PATTERN;
  }
  return copyCut(m_pattern, size, buffer) ? 0 : FL_SHORT_BUFFER;
}
