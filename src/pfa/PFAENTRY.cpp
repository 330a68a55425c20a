// The text of an entry and where its fields lie in it.
#include "pfa/PFAENTRY.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>
#include <utility>

#include "gen/GENCODES.h"
#include "gen/GENWNT.h"
#include "scl/SCLASCII.h"

namespace {

constexpr std::size_t INDEX_DIGITS = 5;
constexpr std::string_view NAME_ENDS = "=,";

// Five characters to spare, in steps of 32, never below 64.
constexpr unsigned int capacityFor(std::size_t length) noexcept {
  const std::size_t rounded = ((length + 5) / 32 + 1) * 32;
  return static_cast<unsigned int>(std::max<std::size_t>(rounded, 64));
}
static_assert(capacityFor(0) == 64 && capacityFor(58) == 64 && capacityFor(59) == 96);

}  // namespace

PFA_Entry::PFA_Entry(std::string_view line, unsigned int number) : m_lineNumber(number) {
  setText(line);
}

std::string PFA_Entry::compose(std::string_view name, std::uint32_t index) {
  std::string text(name);
  if (index != 0) {
    text += ':';
    text += std::to_string(index);
  }
  return text;
}

bool PFA_Entry::isStorable(std::string_view name, std::uint32_t index) noexcept {
  const bool looksOtherwise = !name.empty() && (name.front() == ';' || name.front() == '[');
  return index <= MAX_INDEX && !looksOtherwise &&
         name.find_first_of("=,:\r\n") == std::string_view::npos;
}

std::string PFA_Entry::bareName(std::string_view name) {
  std::string bare;
  std::copy_if(name.begin(), name.end(), std::back_inserter(bare),
               [](char c) { return !SCL_isSpace(c); });
  return bare;
}

void PFA_Entry::setText(std::string_view line) {
  if (!line.empty() && line.front() == ';') {
    store(line);
  } else {
    const std::size_t end = std::min(line.find_first_of(NAME_ENDS), line.size());
    std::string text = bareName(line.substr(0, end));
    text += line.substr(end);
    store(text);
  }
  findFields();
  m_order = m_index;
}

void PFA_Entry::store(std::string_view line) {
  if (line.size() > std::numeric_limits<std::uint16_t>::max()) {
    GENAssert(GEN_VALUE_RANGE, "PFAENTRY", __LINE__);
  }
  if (line.size() >= m_capacity) {
    const unsigned int capacity = capacityFor(line.size());
    std::unique_ptr<char[]> grown(new (std::nothrow) char[capacity]);
    if (grown == nullptr) {  // the entry keeps its text
      GENAssert(GEN_NULL_POINTER, "PFAENTRY", __LINE__);
    }
    m_text = std::move(grown);
    m_capacity = capacity;
  }
  std::memcpy(m_text.get(), line.data(), line.size());
  m_text[line.size()] = '\0';
  m_length = static_cast<unsigned int>(line.size());
}

PFA_Entry::Span PFA_Entry::span(std::size_t begin, std::size_t end) noexcept {
  return {static_cast<std::uint16_t>(begin), static_cast<std::uint16_t>(end - begin)};
}

void PFA_Entry::findFields() noexcept {
  const std::string_view line = text();
  m_valueCount = 0;
  m_index = 0;
  m_properIndex = true;
  m_fields[0] = {};
  if (isComment()) {
    return;
  }
  const std::size_t separator = line.find_first_of(NAME_ENDS);
  const std::size_t end = std::min(separator, line.size());
  const std::size_t colon = std::min(line.substr(0, end).find(':'), end);
  m_fields[0] = span(0, colon);
  if (colon < end) {
    readIndex(line.substr(colon + 1, end - colon - 1));
  }
  std::size_t comma = separator;
  while (comma != std::string_view::npos && m_valueCount < MAX_VALUES) {
    const std::size_t begin = comma + 1;
    comma = line.find(',', begin);
    m_fields[++m_valueCount] = span(begin, std::min(comma, line.size()));
  }
}

// Whatever follows the digits, or more than five of them, is not the index's, but the line is kept.
void PFA_Entry::readIndex(std::string_view digits) noexcept {
  std::size_t count = 0;
  for (; count < std::min(digits.size(), INDEX_DIGITS) && SCL_isDigit(digits[count]); ++count) {
    m_index = m_index * 10 + static_cast<std::uint32_t>(digits[count] - '0');
  }
  m_properIndex = count > 0 && count == digits.size();
}

std::string_view PFA_Entry::field(unsigned int number) const noexcept {
  return text().substr(m_fields[number].offset, m_fields[number].length);
}

// Where the name, its index included, ends.
std::size_t PFA_Entry::nameEnd() const noexcept {
  return m_valueCount > 0 ? std::size_t{m_fields[1].offset} - 1 : m_length;
}

std::string PFA_Entry::textWithField(unsigned int number, std::string_view value) const {
  std::string result(text());
  if (number <= m_valueCount) {
    result.replace(m_fields[number].offset, m_fields[number].length, value);
  } else {
    result.append(number - m_valueCount, ',');
    result += value;
  }
  return result;
}

std::string PFA_Entry::textWithoutField(unsigned int number) const {
  std::string result(text());
  const Span& field = m_fields[number];
  if (number == 1 && m_valueCount > 1) {  // the separator after the name stays
    result.erase(field.offset, field.length + std::size_t{1});
  } else {
    result.erase(field.offset - std::size_t{1}, field.length + std::size_t{1});
  }
  return result;
}

std::string PFA_Entry::textWithIndex(std::uint32_t index) const {
  std::string result = compose(name(), index);
  result += text().substr(nameEnd());
  return result;
}
