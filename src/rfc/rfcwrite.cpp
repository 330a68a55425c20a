// Writes header fields. A field is put together in memory and written in one piece.
#include "rfc/rfcwrite.h"

#include <algorithm>
#include <vector>

#include "dac/DACBASDA.h"
#include "rfc/rfcscan.h"
#include "scl/SCLSTRTB.h"

namespace {

constexpr std::string_view LINE_END = "\r\n";
constexpr std::string_view FOLD = "\r\n    ";
constexpr std::size_t FOLD_WIDTH = 4;  // the blanks that begin a continuation line
// A field of fewer characters is never folded.
constexpr std::size_t FOLD_FROM = 77;
// A token that would end behind this column begins a new line.
constexpr std::size_t LAST_TOKEN_COLUMN = 75;
// From this column on no blank follows a token, but the end of the line.
constexpr std::size_t LAST_BLANK_COLUMN = 76;

bool breaksLine(char c) noexcept {
  return c == '\r' || c == '\n' || c == '\0';
}

// Appends `text` with blanks for the characters that would break the line.
void appendOneLine(SCL_String& field, std::string_view text) {
  while (!text.empty()) {
    const auto* const at = std::find_if(text.begin(), text.end(), breaksLine);
    const auto length = static_cast<std::size_t>(at - text.begin());
    field.append(text.substr(0, length));
    if (at != text.end()) {
      field += ' ';
    }
    text.remove_prefix(std::min(length + 1, text.size()));
  }
}

// The name with its colon, nothing for an empty one.
SCL_String beginField(const SCL_StringRef& name) {
  SCL_String field;
  appendOneLine(field, name);
  if (!field.isEmpty()) {
    field += ':';
  }
  return field;
}

// Whether a blank is to stand between the colon and the value; what is written as one will do.
bool needsBlank(std::string_view value) noexcept {
  return !value.empty() && !rfc::is(value.front(), rfc::LWSP) && !breaksLine(value.front());
}

// Joins tokens to lines.
class Folder {
 public:
  Folder(SCL_String& field, std::size_t prefixWidth) : m_field(field), m_column(prefixWidth + 1) {
    m_field += ' ';
  }
  void add(std::string_view token, bool isLast);
  void finish() {
    if (m_column != 0) {
      m_field.append(LINE_END);
    }
  }

 private:
  void fold() {
    m_field.append(FOLD);
    m_column = FOLD_WIDTH;
  }

  SCL_String& m_field;
  std::size_t m_column;
  bool m_afterEquals = false;
};

void Folder::add(std::string_view token, bool isLast) {
  if (m_column + token.size() > LAST_TOKEN_COLUMN && m_column > FOLD_WIDTH && !m_afterEquals) {
    fold();
  }
  m_field.append(token);
  m_column += token.size();
  m_afterEquals = token.back() == '=';
  if (m_afterEquals) {
    return;
  }
  if (m_column < LAST_BLANK_COLUMN) {
    if (!isLast) {
      m_field += ' ';
      ++m_column;
    }
  } else if (isLast) {
    m_field.append(LINE_END);
    m_column = 0;
  } else {
    fold();
  }
}

// Appends the folded value; false, and nothing, when it cannot be taken into tokens.
bool appendFolded(SCL_String& field, const SCL_String& value) {
  std::vector<RFC_Token> tokens;
  if (rfc_scan_all(value, RFC_MODE_822, true, tokens) != 0) {
    return false;
  }
  Folder folder(field, field.length());
  for (const RFC_Token& token : tokens) {
    folder.add(token.text, &token == &tokens.back());
  }
  folder.finish();
  return true;
}

void write(DAC_BaseDataAccess& object, const SCL_String& text, unsigned int& status) {
  object.write(static_cast<std::int32_t>(text.length()), text.c_str(), status);
}

}  // namespace

SCL_String rfc_one_line(std::string_view text) {
  SCL_String line;
  appendOneLine(line, text);
  return line;
}

void rfc_write_field(DAC_BaseDataAccess& object, const SCL_StringRef& name,
                     const SCL_StringRef& value, bool fold, unsigned int& status) {
  if (status != 0) {
    return;
  }
  SCL_String field = beginField(name);
  const bool isLong = field.length() + std::size_t{value.length()} >= FOLD_FROM;
  if (!fold || !isLong || !appendFolded(field, rfc_one_line(value))) {
    if (needsBlank(value)) {
      field += ' ';
    }
    appendOneLine(field, value);
    field.append(LINE_END);
  }
  write(object, field, status);
}

void rfc_write_field_lines(DAC_BaseDataAccess& object, const SCL_StringRef& name,
                           const SCL_StringTable& lines, unsigned int& status) {
  if (status != 0) {
    return;
  }
  SCL_String field = beginField(name);
  const bool hasName = !field.isEmpty();
  if (hasName && lines.count() == 0) {
    field.append(LINE_END);  // else the next field would stand on this line
  }
  for (std::uint16_t i = 0; i < lines.count(); ++i) {
    const SCL_StringRef line = lines.get(i);
    if (i == 0 && hasName && needsBlank(line)) {
      field += ' ';
    }
    appendOneLine(field, line);
    field.append(LINE_END);
  }
  write(object, field, status);
}
