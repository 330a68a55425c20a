// The text view's searches, and the string's growth and in-place changes.
#include "scl/SCLSTRNG.h"

#include <algorithm>
#include <functional>
#include <ostream>

#include "gen/GENCODES.h"
#include "gen/GENWNT.h"
#include "scl/SCLREGEX.h"

namespace {

// The largest text whose capacity, a multiple of 64, still has 32 bits.
constexpr std::uint64_t LONGEST_TEXT =
    (std::uint64_t{1} << 32) - std::uint64_t{2} * SCL_String::DEFAULT_CAPACITY;
// The first memory of a string that outgrows its object.
constexpr std::uint64_t SMALLEST_BLOCK = 64;

int found(std::size_t at, unsigned int& p) noexcept {
  if (at == std::string_view::npos) {
    return 0;
  }
  p = static_cast<unsigned int>(at);
  return 1;
}

}  // namespace

void SCL_StringRef::failIndex() {
  GENAssertText("String index out of range.", "SCLSTRNG", __LINE__);
}

int SCL_StringRef::find(char c, unsigned int& p) const noexcept {
  return found(view().find(c, p), p);
}

int SCL_StringRef::findLast(char c, unsigned int& p) const noexcept {
  const std::size_t at = view().rfind(c);
  return at != std::string_view::npos && at >= p ? found(at, p) : 0;
}

int SCL_StringRef::find(const SCL_StringRef& text, unsigned int& p) const noexcept {
  return text.isEmpty() ? 0 : found(view().find(text.view(), p), p);
}

int SCL_StringRef::match(const SCL_Regex& pattern, unsigned int& p, unsigned int& l) const {
  return pattern.match(*this, p, l);
}

std::string_view SCL_StringRef::slice(unsigned int start, unsigned int count) const noexcept {
  if (static_cast<std::uint64_t>(start) + count > length()) {
    return {};
  }
  return view().substr(start, count);
}

std::ostream& operator<<(std::ostream& stream, const SCL_StringRef& text) {
  return stream << text.view();
}

bool SCL_isInteger(const SCL_StringRef& text) noexcept {
  std::string_view rest = text;
  while (!rest.empty() && SCL_isSpace(rest.front())) {
    rest.remove_prefix(1);
  }
  if (SCL_firstChar(rest) == '+' || SCL_firstChar(rest) == '-') {
    rest.remove_prefix(1);
  }
  return !rest.empty() && std::all_of(rest.begin(), rest.end(), SCL_isDigit);
}

SCL_String::SCL_String(unsigned int capacity) : SCL_String() {
  if (capacity > DEFAULT_CAPACITY) {
    grow(capacity);
  }
}

void SCL_String::reserve(unsigned int n, unsigned int shift) {
  if (m_capacity > static_cast<std::uint64_t>(n) + 1) {
    return;
  }
  const std::uint64_t size = static_cast<std::uint64_t>(length()) + shift;
  grow(std::max<std::uint64_t>(n, size));
  m_capacity = std::max(m_capacity, capacityFor(n));
  std::memmove(buffer() + shift, buffer(), m_length);
  std::memset(buffer(), ' ', shift);
  terminate(size);
}

SCL_String& SCL_String::appendGrowing(std::string_view text, std::uint64_t total) {
  const bool own = holds(text);
  const std::size_t place = own ? static_cast<std::size_t>(text.data() - m_text) : 0;
  grow(total);
  const std::string_view source = own ? std::string_view(m_text + place, text.size()) : text;
  source.copy(buffer() + m_length, source.size());
  terminate(total);
  return *this;
}

void SCL_String::prepend(char c) {
  const unsigned int size = length();
  if (!makeReady(size + std::uint64_t{1})) {
    grow(size + std::uint64_t{1});
  }
  std::memmove(buffer() + 1, buffer(), size);
  *buffer() = c;
  terminate(c == '\0' ? 0 : size + std::uint64_t{1});
}

void SCL_String::removeFirst() noexcept {
  const unsigned int size = length();
  if (size > 0) {
    std::memmove(buffer(), buffer() + 1, size - 1);
    terminate(size - 1);
  }
}

void SCL_String::removeLast() noexcept {
  const unsigned int size = length();
  if (size > 0) {
    terminate(size - 1);
  }
}

void SCL_String::trim() noexcept {
  const std::string_view kept = SCL_trimmed(view());
  if (kept.size() < m_length) {
    std::memmove(buffer(), kept.data(), kept.size());
    terminate(kept.size());
  }
}

void SCL_String::toUpper() noexcept {
  std::transform(m_text, m_text + length(), buffer(), SCL_toUpper);
}

void SCL_String::toLower() noexcept {
  std::transform(m_text, m_text + length(), buffer(), SCL_toLower);
}

SCL_SubString SCL_String::range(unsigned int start, unsigned int count) {
  return {*this, start, count};
}

SCL_String SCL_String::extract(unsigned int start, unsigned int count) const {
  SCL_String result;
  result.append(slice(start, count));
  return result;
}

bool SCL_String::holds(std::string_view text) const noexcept {
  const std::less<const char*> before;
  return m_text != nullptr && !before(text.data(), m_text) &&
         before(text.data(), m_text + m_physical);
}

// Makes room for `size` characters: the capacity by the rule, the memory behind it as needed.
void SCL_String::grow(std::uint64_t size) {
  if (size > LONGEST_TEXT) {
    GENAssert(GEN_NULL_POINTER, "SCLSTRNG", __LINE__);
  }
  if (size >= m_physical) {
    allocate(size + 1);
  }
  if (size >= m_capacity) {
    m_capacity = capacityFor(size);
  }
}

// The text goes along; its length must be known or zero.
void SCL_String::allocate(std::uint64_t bytes) {
  if (m_text == nullptr && bytes <= INLINE_SIZE) {
    m_text = m_inline;
    m_physical = INLINE_SIZE;
    return terminate(0);
  }
  const std::uint64_t grown = m_physical + m_physical / std::uint64_t{2};
  const std::uint64_t block = std::min(std::max({bytes, grown, SMALLEST_BLOCK}), LONGEST_TEXT + 1);
  const bool onHeap = m_physical > INLINE_SIZE;
  auto* memory = static_cast<char*>(std::realloc(onHeap ? buffer() : nullptr, block));
  if (memory == nullptr) {
    GENAssert(GEN_NULL_POINTER, "SCLSTRNG", __LINE__);
  }
  if (!onHeap) {
    std::memcpy(memory, m_inline, INLINE_SIZE);
  }
  m_text = memory;
  m_physical = static_cast<unsigned int>(block);
}

SCL_String operator+(const SCL_StringRef& a, const SCL_StringRef& b) {
  const std::uint64_t total = static_cast<std::uint64_t>(a.length()) + b.length();
  SCL_String sum;
  if (total > SCL_String::DEFAULT_CAPACITY) {
    sum.grow(total);
  }
  sum = a;
  sum += b;
  return sum;
}
