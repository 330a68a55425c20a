// PFA_Entry: one line of a profile's section: an entry (name, optional index, values) or a comment.
// The line's text is the truth; a table tells where its fields lie.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

class PFA_Entry {
 public:
  static constexpr unsigned int MAX_VALUES = 15;     // fields 1 to 15; field 0 is the name
  static constexpr unsigned int MAX_TEXT = 255;      // a longer line reads back as several
  static constexpr std::uint32_t MAX_INDEX = 99999;  // five digits

  // `line` has no leading white space; `number` is its place in the file, 0 for a new entry.
  explicit PFA_Entry(std::string_view line, unsigned int number = 0);
  PFA_Entry(const PFA_Entry&) = delete;
  PFA_Entry& operator=(const PFA_Entry&) = delete;

  // The text of a new entry without values.
  static std::string compose(std::string_view name, std::uint32_t index);
  // Would an entry of this name (without white space) and index read back as what it is?
  static bool isStorable(std::string_view name, std::uint32_t index) noexcept;
  // `name` as entries hold it: without any white space.
  static std::string bareName(std::string_view name);

  // Stores a whole line. White space inside the name is removed.
  void setText(std::string_view line);
  // Valid until the text changes; NUL-terminated.
  std::string_view text() const noexcept { return {m_text.get(), m_length}; }
  unsigned int capacity() const noexcept { return m_capacity; }
  bool isComment() const noexcept { return m_length > 0 && m_text[0] == ';'; }
  std::string_view name() const noexcept { return field(0); }
  // 0 without an index, and for a comment.
  std::uint32_t index() const noexcept { return m_index; }
  // False when a colon is not followed by 1 to 5 digits and the end of the name.
  bool hasProperIndex() const noexcept { return m_properIndex; }
  unsigned int valueCount() const noexcept { return m_valueCount; }
  // Field `number` (at most valueCount()), white space round it included.
  std::string_view field(unsigned int number) const noexcept;
  unsigned int lineNumber() const noexcept { return m_lineNumber; }

  // What the text becomes: with field 1 to 15 replaced or added; without a field that exists; with
  // another index.
  std::string textWithField(unsigned int number, std::string_view value) const;
  std::string textWithoutField(unsigned int number) const;
  std::string textWithIndex(std::uint32_t index) const;

  // Where the entry stands in its section: its index; a comment has that of the entry before it.
  std::uint32_t order() const noexcept { return m_order; }
  void setOrder(std::uint32_t order) noexcept { m_order = order; }
  bool isDeleted() const noexcept { return m_deleted; }
  void setDeleted(bool deleted) noexcept { m_deleted = deleted; }

 private:
  struct Span {
    std::uint16_t offset = 0;
    std::uint16_t length = 0;
  };

  void store(std::string_view line);
  void findFields() noexcept;
  void readIndex(std::string_view digits) noexcept;
  static Span span(std::size_t begin, std::size_t end) noexcept;
  std::size_t nameEnd() const noexcept;

  std::unique_ptr<char[]> m_text;
  unsigned int m_capacity = 0;
  unsigned int m_length = 0;
  std::uint32_t m_index = 0;
  std::uint32_t m_order = 0;
  bool m_deleted = false;
  bool m_properIndex = true;
  unsigned int m_valueCount = 0;
  unsigned int m_lineNumber = 0;
  std::array<Span, MAX_VALUES + 1> m_fields;
};
