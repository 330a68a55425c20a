// RFC_Symbol and RFC_SymbolList: the lexical tokens of a header field, as the tokenizer
// (rfctoken.h) returns them.
//
//   RFC_SymbolList symbols;
//   if (rfc_tokenise("a; b", RFC_MODE_MIME, false, symbols) == 0) ...  // atom a, special ;, atom b
//
// Used by one thread at a time.
#pragma once

#include <cstdint>
#include <string_view>

#include "scl/SCLPVEC.h"
#include "scl/SCLSTRNG.h"

struct RFC_Symbol {
  enum Kind : std::uint32_t {
    special = 0,
    quotedString = 1,
    domainLiteral = 2,
    comment = 3,
    atom = 4
  };
  RFC_Symbol() noexcept : kind(special) {}
  RFC_Symbol(std::uint32_t symbolKind, const SCL_StringRef& symbolText)
      : kind(symbolKind), text(symbolText) {}
  RFC_Symbol(std::uint32_t symbolKind, std::string_view symbolText)
      : kind(symbolKind), text(symbolText) {}

  std::uint32_t kind;
  SCL_String text;  // as written, with quotes, parentheses or brackets
};

class RFC_SymbolList {
 public:
  RFC_SymbolList() noexcept : m_symbols(10) {}

  std::uint16_t count() const noexcept { return m_symbols.count(); }
  // The symbol stays the list's and is valid until the list is cleared. An index at or beyond the
  // count is the assertion "Symbol list index out of range.".
  const RFC_Symbol& get(std::uint16_t index) const;
  // Appends a copy. Without memory the assertion 1; the 65,536th symbol the assertion 3.
  void add(std::uint32_t kind, const SCL_StringRef& text);
  void add(std::uint32_t kind, std::string_view text);
  // The first symbol at or after `start` of that kind and, without regard to case, that text; the
  // count when there is none. `start` must be below the count, else the assertion of get.
  std::uint16_t find(std::uint32_t kind, const SCL_StringRef& text, std::uint16_t start) const;
  void clear() noexcept { m_symbols.clear(); }

  // The look-ahead of the parsers: false beyond the end.
  bool isKind(std::uint16_t index, std::uint32_t kind) const noexcept {
    return index < count() && m_symbols[index]->kind == kind;
  }
  bool isSpecial(std::uint16_t index, char c) const noexcept;

 private:
  void checkIndex(std::uint16_t index) const;

  SCL_PtrVector<RFC_Symbol> m_symbols;
};
