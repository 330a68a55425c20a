// The list of a header field's tokens.
#include "rfc/rfcsym.h"

#include <memory>
#include <new>

#include "gen/GENCODES.h"
#include "gen/GENWNT.h"

void RFC_SymbolList::checkIndex(std::uint16_t index) const {
  if (index >= count()) {
    GENAssertText("Symbol list index out of range.", "rfcsym", __LINE__);
  }
}

const RFC_Symbol& RFC_SymbolList::get(std::uint16_t index) const {
  checkIndex(index);
  return *m_symbols[index];
}

void RFC_SymbolList::add(std::uint32_t kind, const SCL_StringRef& text) {
  add(kind, text.view());
}

void RFC_SymbolList::add(std::uint32_t kind, std::string_view text) {
  std::unique_ptr<RFC_Symbol> symbol(new (std::nothrow) RFC_Symbol(kind, text));
  if (symbol == nullptr) {
    GENAssert(GEN_NULL_POINTER, "rfcsym", __LINE__);
  }
  m_symbols.append(std::move(symbol));
}

std::uint16_t RFC_SymbolList::find(std::uint32_t kind, const SCL_StringRef& text,
                                   std::uint16_t start) const {
  checkIndex(start);
  std::uint16_t i = start;
  while (i < count() && !(isKind(i, kind) && SCL_equalNoCase(m_symbols[i]->text, text))) {
    ++i;
  }
  return i;
}

bool RFC_SymbolList::isSpecial(std::uint16_t index, char c) const noexcept {
  return isKind(index, RFC_Symbol::special) && SCL_firstChar(m_symbols[index]->text) == c;
}
