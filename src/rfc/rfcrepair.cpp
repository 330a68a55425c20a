// Repairs Content-Type values as common mailers get them wrong.
#include <algorithm>

#include "rfc/rfcvalue.h"

namespace {

constexpr std::size_t NOT_FOUND = std::string_view::npos;

// Where `lowerCase` stands in the text, without regard to the text's case.
std::size_t findNoCase(std::string_view text, std::string_view lowerCase) noexcept {
  const auto* const at = std::search(text.begin(), text.end(), lowerCase.begin(), lowerCase.end(),
                                     [](char c, char wanted) { return SCL_toLower(c) == wanted; });
  return at != text.end() ? static_cast<std::size_t>(at - text.begin()) : NOT_FOUND;
}

bool replaceWhole(SCL_String& value, const char* wrong, const char* right) {
  const bool found = SCL_equalNoCase(value, SCL_StringRef(wrong));
  if (found) {
    value = right;
  }
  return found;
}

// Puts `right` for the character `offset` places into the first occurrence of `pattern`.
bool replaceInside(SCL_String& value, std::string_view pattern, std::size_t offset, char right) {
  const std::size_t at = findNoCase(value, pattern);
  if (at != NOT_FOUND) {
    value[static_cast<unsigned int>(at + offset)] = right;
  }
  return at != NOT_FOUND;
}

bool removeLastSemicolon(SCL_String& value) {
  const bool found = SCL_lastChar(value) == ';';
  if (found) {
    value.removeLast();
  }
  return found;
}

// charset="us-ascii, where the quote is never closed.
bool removeOpenQuote(SCL_String& value) {
  constexpr std::string_view OPENED = "\"us-ascii";
  const std::string_view text = value;
  const std::size_t at = findNoCase(text, OPENED);
  if (at == NOT_FOUND || text.substr(at + OPENED.size()).starts_with('"')) {
    return false;
  }
  SCL_String repaired(text.substr(0, at));
  repaired.append(text.substr(at + 1));
  value = std::move(repaired);
  return true;
}

}  // namespace

bool rfc_repair_content_type(SCL_String& value) {
  constexpr std::string_view CHARSET = "charset";
  constexpr std::string_view MESSAGE = "message";
  constexpr std::string_view APPLICATION = "application";
  bool repaired = replaceWhole(value, "unknown", "application/octet-stream");
  repaired |= replaceWhole(value, "text", "text/plain");
  repaired |= removeLastSemicolon(value);
  repaired |=
      replaceWhole(value, "text/plain charset=\"us-ascii\"", "text/plain; charset=\"us-ascii\"");
  repaired |= replaceInside(value, "charset-us-ascii", CHARSET.size(), '=');
  repaired |= removeOpenQuote(value);
  repaired |= replaceInside(value, "message-delivery-status", MESSAGE.size(), '/');
  repaired |= replaceInside(value, "application\\octet-stream", APPLICATION.size(), '/');
  return repaired;
}
