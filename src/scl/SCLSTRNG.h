// 8-bit text: SCL_StringRef, a view of NUL-terminated characters that nearly every operation takes,
// and SCL_String, which owns its buffer. A view made from a literal copies nothing; it is valid as
// long as the characters that it points to. A view of an SCL_String is valid until that string is
// changed, moved or destroyed.
//
//   SCL_String name("SUBJECT");
//   name += ": x";                                  // SCL_String derives from SCL_StringRef
//   if (SCL_equalNoCase(name, "subject: X")) ...    // literals pass as views
//
// Threads: none of these classes locks anything.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <iosfwd>
#include <string_view>

#include "scl/SCLASCII.h"

class SCL_Regex;
class SCL_SubString;

class SCL_StringRef {
 public:
  constexpr SCL_StringRef() noexcept = default;
  // `text` must stay alive and NUL-terminated; null counts as empty everywhere.
  constexpr SCL_StringRef(const char* text) noexcept : m_text(text) {}  // NOLINT: implicit

  // Counts up to the NUL when the length is not yet known, then keeps the count.
  unsigned int length() const noexcept {
    if (m_length == 0 && m_text != nullptr) {
      m_length = static_cast<unsigned int>(std::strlen(m_text));
    }
    return m_length;
  }
  bool isEmpty() const noexcept { return m_text == nullptr || *m_text == '\0'; }
  // Never null.
  const char* c_str() const noexcept { return m_text != nullptr ? m_text : ""; }
  std::string_view view() const noexcept { return {c_str(), length()}; }
  operator std::string_view() const noexcept { return view(); }  // NOLINT: implicit on purpose

  // The character at `index`, which must be below the length ("String index out of range.").
  char operator[](unsigned int index) const {
    checkIndex(index);
    return m_text[index];
  }

  // Searches from position p on: 1 and p at the match, else 0 and p as it was. An empty `text`
  // is never found; a p beyond the length finds nothing.
  int find(char c, unsigned int& p) const noexcept;
  int findLast(char c, unsigned int& p) const noexcept;
  int find(const SCL_StringRef& text, unsigned int& p) const noexcept;
  // The leftmost match of `pattern` from p on: 1, p moves to it and l becomes its length; else 0,
  // p as it was and l 0.
  int match(const SCL_Regex& pattern, unsigned int& p, unsigned int& l) const;
  // The `count` characters from `start`; empty when they do not lie wholly inside the text. Valid
  // as long as this text.
  std::string_view slice(unsigned int start, unsigned int count) const noexcept;

 protected:
  void checkIndex(unsigned int index) const {
    if (index >= length()) {
      failIndex();
    }
  }

  const char* m_text = nullptr;
  mutable unsigned int m_length = 0;  // 0: not known

 private:
  [[noreturn]] static void failIndex();
};

// Case-sensitive, byte by byte as unsigned bytes; a proper prefix orders first.
inline bool operator==(const SCL_StringRef& a, const SCL_StringRef& b) noexcept {
  return a.view() == b.view();
}
inline bool operator!=(const SCL_StringRef& a, const SCL_StringRef& b) noexcept {
  return a.view() != b.view();
}
inline bool operator<(const SCL_StringRef& a, const SCL_StringRef& b) noexcept {
  return a.view() < b.view();
}
inline bool operator>(const SCL_StringRef& a, const SCL_StringRef& b) noexcept {
  return a.view() > b.view();
}
inline bool operator<=(const SCL_StringRef& a, const SCL_StringRef& b) noexcept {
  return a.view() <= b.view();
}
inline bool operator>=(const SCL_StringRef& a, const SCL_StringRef& b) noexcept {
  return a.view() >= b.view();
}
// Writes the text; a null text writes nothing.
std::ostream& operator<<(std::ostream& stream, const SCL_StringRef& text);

// The ASCII case-blind comparisons of two views.
inline bool SCL_equalNoCase(const SCL_StringRef& a, const SCL_StringRef& b) noexcept {
  return SCL_equalNoCase(a.view(), b.view());
}
// Two plain texts convert to either kind of view, so this overload decides.
inline bool SCL_equalNoCase(const char* a, const char* b) noexcept {
  return SCL_equalNoCase(SCL_StringRef(a), SCL_StringRef(b));
}
inline bool SCL_notEqualNoCase(const SCL_StringRef& a, const SCL_StringRef& b) noexcept {
  return !SCL_equalNoCase(a, b);
}
inline bool SCL_lessNoCase(const SCL_StringRef& a, const SCL_StringRef& b) noexcept {
  return SCL_compareNoCase(a, b) < 0;
}
inline bool SCL_greaterNoCase(const SCL_StringRef& a, const SCL_StringRef& b) noexcept {
  return SCL_compareNoCase(a, b) > 0;
}
inline bool SCL_lessOrEqualNoCase(const SCL_StringRef& a, const SCL_StringRef& b) noexcept {
  return SCL_compareNoCase(a, b) <= 0;
}
inline bool SCL_greaterOrEqualNoCase(const SCL_StringRef& a, const SCL_StringRef& b) noexcept {
  return SCL_compareNoCase(a, b) >= 0;
}

// Leading white space, an optional sign, then nothing but at least one decimal digit.
bool SCL_isInteger(const SCL_StringRef& text) noexcept;

// The first or last character, 0 for an empty text: what a sender's text is looked at with.
inline char SCL_firstChar(std::string_view text) noexcept {
  return text.empty() ? '\0' : text.front();
}
inline char SCL_lastChar(std::string_view text) noexcept {
  return text.empty() ? '\0' : text.back();
}

// An owned text, always NUL-terminated. Every operation may be given the string itself or a view
// into it. A string that was moved from has no text and capacity 0, is empty and may be used again.
// More than 2^32 - 128 characters, or memory that cannot be had, is the assertion 1 (SCLSTRNG).
class SCL_String : public SCL_StringRef {
 public:
  static constexpr unsigned int DEFAULT_CAPACITY = 64;

  SCL_String() noexcept : SCL_String(DEFAULT_CAPACITY, UNALLOCATED) {}
  // Room for `capacity` characters; up to 64 is the default string.
  explicit SCL_String(unsigned int capacity);
  SCL_String(const char* text) : SCL_String(SCL_StringRef(text)) {}  // NOLINT: implicit on purpose
  SCL_String(const SCL_StringRef& text) : SCL_String(0, UNALLOCATED) {  // NOLINT: implicit
    copy(text.view());
  }
  SCL_String(const SCL_String& other) : SCL_String(static_cast<const SCL_StringRef&>(other)) {}
  explicit SCL_String(std::string_view text) : SCL_String(0, UNALLOCATED) { assign(text); }
  SCL_String(SCL_String&& other) noexcept : m_capacity(0), m_physical(0) { take(other); }
  ~SCL_String() { release(); }

  SCL_String& operator=(const SCL_String& other) {
    return operator=(static_cast<const SCL_StringRef&>(other));
  }
  SCL_String& operator=(SCL_String&& other) noexcept {
    if (this != &other) {
      release();
      take(other);
    }
    return *this;
  }
  SCL_String& operator=(const SCL_StringRef& text) {
    copy(text.view());
    return *this;
  }
  SCL_String& operator=(const char* text) {
    copy(SCL_StringRef(text).view());
    return *this;
  }
  // As the constructor from a std::string_view: a NUL in `text` ends it.
  SCL_String& assign(std::string_view text) {
    copy(text.substr(0, text.find('\0')));
    return *this;
  }

  // The size of the buffer in bytes as the growth rule reports it, NUL included: the least
  // multiple of 64 that exceeds n + 1. The memory behind it grows geometrically, and the room of a
  // default string is not allocated before it is used.
  unsigned int capacity() const noexcept { return m_capacity; }
  // Room for n characters and the NUL; nothing happens while the capacity exceeds n + 1. When the
  // string grows, its text moves up by `shift` places, which are filled with blanks.
  void reserve(unsigned int n, unsigned int shift = 0);

  SCL_String& operator+=(const SCL_StringRef& text) { return append(text.view()); }
  SCL_String& operator+=(const char* text) { return *this += SCL_StringRef(text); }
  // Appends by length: a NUL in `text` stays and counts.
  SCL_String& append(std::string_view text) {
    const std::uint64_t total = static_cast<std::uint64_t>(length()) + text.size();
    if (!makeReady(total)) {
      return appendGrowing(text, total);
    }
    text.copy(buffer() + m_length, text.size());
    terminate(total);
    return *this;
  }
  SCL_String& operator+=(char c) {
    append(c);
    return *this;
  }
  // A NUL leaves the length as it was.
  void append(char c) {
    const unsigned int end = length();
    if (!makeReady(end + std::uint64_t{1})) {
      grow(end + std::uint64_t{1});
    }
    buffer()[end] = c;
    terminate(end + std::uint64_t{c != '\0'});
  }
  void prepend(char c);  // a NUL empties the text
  void removeFirst() noexcept;
  void removeLast() noexcept;
  void clear() noexcept {
    m_length = 0;
    if (m_text != nullptr) {
      *buffer() = '\0';
    }
  }
  void trim() noexcept;  // SCL_isSpace at both ends
  void toUpper() noexcept;
  void toLower() noexcept;

  using SCL_StringRef::operator[];
  // Writable; the length stays as it is, whatever is written.
  char& operator[](unsigned int index) {
    checkIndex(index);
    return buffer()[index];
  }

  SCL_SubString range(unsigned int start, unsigned int count);
  // A copy of slice(start, count).
  SCL_String extract(unsigned int start, unsigned int count) const;

  // Whether `text` lies in this string's buffer, so that changing the string would change it.
  bool holds(std::string_view text) const noexcept;

 private:
  friend class SCL_SubString;
  friend SCL_String operator+(const SCL_StringRef& a, const SCL_StringRef& b);

  // A short text lies in the object, which then needs no memory of its own.
  static constexpr unsigned int INLINE_SIZE = 28;
  enum Unallocated { UNALLOCATED };

  SCL_String(unsigned int capacity, Unallocated) noexcept
      : m_capacity(capacity), m_physical(INLINE_SIZE) {
    m_text = m_inline;
  }

  char* buffer() noexcept { return const_cast<char*>(m_text); }  // NOLINT: the buffer is ours
  // The least multiple of 64 that exceeds size + 1.
  static constexpr unsigned int capacityFor(std::uint64_t size) noexcept {
    return static_cast<unsigned int>((size + DEFAULT_CAPACITY + 1) &
                                     ~std::uint64_t{DEFAULT_CAPACITY - 1});
  }
  // Reports a capacity for `size` characters where the memory for them is there; else false.
  bool makeReady(std::uint64_t size) noexcept {
    if (size >= m_physical) {
      return false;
    }
    if (size >= m_capacity) {
      m_capacity = capacityFor(size);
    }
    return true;
  }
  void terminate(std::uint64_t size) noexcept {
    m_length = static_cast<unsigned int>(size);
    buffer()[m_length] = '\0';
  }
  void copy(std::string_view text) {
    if (!makeReady(text.size())) {
      grow(text.size());
    }
    if (!text.empty()) {
      std::memmove(buffer(), text.data(), text.size());  // it may be a part of this very text
    }
    terminate(text.size());
  }
  void release() noexcept {
    if (m_physical > INLINE_SIZE) {
      std::free(buffer());
    }
  }
  void take(SCL_String& other) noexcept {
    std::memcpy(m_inline, other.m_inline, INLINE_SIZE);
    m_text = other.m_text == other.m_inline ? m_inline : other.m_text;
    m_length = other.m_length;
    m_capacity = other.m_capacity;
    m_physical = other.m_physical;
    other.m_text = nullptr;
    other.m_length = other.m_capacity = other.m_physical = 0;
  }
  SCL_String& appendGrowing(std::string_view text, std::uint64_t total);
  void grow(std::uint64_t size);
  void allocate(std::uint64_t bytes);

  unsigned int m_capacity;  // as reported
  unsigned int m_physical;  // bytes at m_text; INLINE_SIZE when that is m_inline, 0 when null
  char m_inline[INLINE_SIZE] = {};
};
static_assert(sizeof(SCL_String) <= 48);

SCL_String operator+(const SCL_StringRef& a, const SCL_StringRef& b);

// One word: white space skipped, then everything up to the next white space, which stays in the
// stream. The stream fails when there is none.
std::istream& SCL_readWord(std::istream& stream, SCL_String& word);
// One line without its end; lineEnd: 1 = CR, 2 = LF, 3 = CR LF. 1, or 0 and an empty line when the
// stream is at its end. A last line need not be ended. NUL characters stay and count.
int SCL_readLine(std::istream& stream, SCL_String& line, int lineEnd);

// The quoted form of [begin, end): double quotes round it, backslash escapes inside.
void SCL_quote(const char* begin, const char* end, SCL_String& result);
// The reverse; the number of characters consumed with both quotes, or 0 and an empty result.
unsigned int SCL_unquote(const char* begin, const char* end, SCL_String& result);

// A handle on a range of a string, which must outlive it.
class SCL_SubString {
 public:
  SCL_SubString(SCL_String& string, unsigned int start, unsigned int count) noexcept
      : m_string(&string), m_start(start), m_count(count) {}
  // As SCL_String::extract.
  SCL_String read() const;
  // Replaces the range. A start beyond the text ("Start of substring out of string range."), an
  // end beyond it, and the empty range at position 0 ("End of substring out of string range.")
  // are refused, the string unchanged.
  void replace(const SCL_StringRef& text);
  SCL_SubString& operator=(const SCL_StringRef& text) {
    replace(text);
    return *this;
  }
  // Writes the range when it lies inside the string, else nothing.
  friend std::ostream& operator<<(std::ostream& stream, const SCL_SubString& range);

 private:
  void check() const;

  SCL_String* m_string;
  unsigned int m_start;
  unsigned int m_count;
};
