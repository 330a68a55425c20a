// SCL_PtrVector: an owning, growable array of pointers, the container behind every list of the
// system. It deletes its elements; copying is the owning class's business. The visible capacity
// grows by two slots, the memory behind it geometrically and not before it is used. Memory that
// cannot be had is the assertion 1, one element more than the count can tell the assertion 3 (both
// sclpvec); the vector is then as it was.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <memory>
#include <utility>

#include "gen/GENCODES.h"
#include "gen/GENWNT.h"

template <class T, class Count = std::uint16_t>
class SCL_PtrVector {
 public:
  static constexpr unsigned int DEFAULT_SLOTS = 10;

  explicit SCL_PtrVector(unsigned int slots = DEFAULT_SLOTS) noexcept : m_capacity(slots) {}
  SCL_PtrVector(const SCL_PtrVector&) = delete;
  SCL_PtrVector& operator=(const SCL_PtrVector&) = delete;
  SCL_PtrVector(SCL_PtrVector&& other) noexcept { swap(other); }
  SCL_PtrVector& operator=(SCL_PtrVector&& other) noexcept {
    SCL_PtrVector taken(std::move(other));
    swap(taken);
    return *this;
  }
  ~SCL_PtrVector() {
    clear();
    if (m_items != &m_single) {
      std::free(m_items);
    }
  }

  Count count() const noexcept { return m_count; }
  unsigned int capacity() const noexcept { return m_capacity; }
  bool isEmpty() const noexcept { return m_count == 0; }

  // Slot i; at or beyond the capacity the array first grows to i + 2 slots (null-filled).
  T*& slot(unsigned int i) {
    ensure(i + 1);
    if (i >= m_capacity) {
      m_capacity = i + 2;
    }
    return m_items[i];
  }
  // Null at or beyond the capacity and in a slot that was never filled.
  T* operator[](unsigned int i) const noexcept { return i < m_physical ? m_items[i] : nullptr; }

  // Takes ownership; the vector keeps `element` or, when it is full or memory is short, deletes it
  // and asserts.
  void append(T* element) { append(std::unique_ptr<T>(element)); }
  void append(std::unique_ptr<T> element) {
    makeRoom();
    m_items[m_count++] = element.release();
  }
  // Puts the element before index `at` (at most the count).
  void insert(unsigned int at, std::unique_ptr<T> element) {
    makeRoom();
    std::move_backward(m_items + at, m_items + m_count, m_items + m_count + 1);
    m_items[at] = element.release();
    ++m_count;
  }
  // Takes the element at `at` (below the count) out; the later ones move down one place.
  std::unique_ptr<T> take(unsigned int at) noexcept {
    std::unique_ptr<T> element(m_items[at]);
    std::move(m_items + at + 1, m_items + m_count, m_items + at);
    m_items[--m_count] = nullptr;
    return element;
  }
  // Sets the count; slots that it newly covers are null. Elements beyond it must be gone.
  void setCount(Count count) {
    ensure(count);
    if (count > m_capacity) {
      m_capacity = count;
    }
    m_count = count;
  }
  // Deletes the elements in index order; the capacity stays.
  void clear() noexcept {
    for (Count i = 0; i < m_count; ++i) {
      T* element = m_items[i];
      m_items[i] = nullptr;  // the destructor may look into the vector
      delete element;
    }
    m_count = 0;
  }
  void swap(SCL_PtrVector& other) noexcept {
    T** const mine = m_items == &m_single ? &other.m_single : m_items;
    m_items = other.m_items == &other.m_single ? &m_single : other.m_items;
    other.m_items = mine;
    std::swap(m_single, other.m_single);
    std::swap(m_capacity, other.m_capacity);
    std::swap(m_physical, other.m_physical);
    std::swap(m_count, other.m_count);
  }

 private:
  void makeRoom() {
    if (m_count == std::numeric_limits<Count>::max()) {
      GENAssert(GEN_INDEX_RANGE, "sclpvec", __LINE__);
    }
    ensure(static_cast<unsigned int>(m_count) + 1);
    if (m_count >= m_capacity) {
      m_capacity = static_cast<unsigned int>(m_count) + 2;
    }
  }
  void ensure(unsigned int slots) {
    if (slots <= m_physical) {
      return;
    }
    if (slots == 1) {
      m_items = &m_single;
      m_physical = 1;
      return;
    }
    const unsigned int grown = std::max({slots, m_physical + m_physical / 2, 4U});
    void* const before = m_items != &m_single ? static_cast<void*>(m_items) : nullptr;
    auto* items = static_cast<T**>(std::realloc(before, sizeof(T*) * grown));
    if (items == nullptr) {
      GENAssert(GEN_NULL_POINTER, "sclpvec", __LINE__);
    }
    if (m_items == &m_single) {
      items[0] = m_single;
    }
    std::fill(items + m_physical, items + grown, nullptr);
    m_items = items;
    m_physical = grown;
  }

  T** m_items = nullptr;
  unsigned int m_capacity = 0;  // as reported
  unsigned int m_physical = 0;  // as allocated
  Count m_count = 0;
  T* m_single = nullptr;  // many lists have one element, which needs no memory of its own
};
