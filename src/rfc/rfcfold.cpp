// Joins the lines of header fields, and hands header tables on as attributes.
#include <utility>

#include "atr/ATRATLST.h"
#include "gma/GMAMHDRT.h"
#include "rfc/rfclimit.h"
#include "rfc/rfcread.h"

namespace {

// Joins lines; the count of quotes runs along, since a fold with a backslash asks for it.
class Unfolder {
 public:
  explicit Unfolder(unsigned int room) : m_text(room) {}

  void add(std::string_view line);
  SCL_String& text() noexcept { return m_text; }

 private:
  void append(std::string_view piece);

  SCL_String m_text;
  bool m_insideQuotes = false;  // so many unescaped quotes so far are odd
};

void Unfolder::add(std::string_view line) {
  if (line.empty()) {
    return;
  }
  if (m_text.isEmpty()) {
    return append(line);
  }
  if (m_insideQuotes && SCL_lastChar(m_text) == '\\') {
    // The fold itself was quoted: it stays as the line break that it was.
    m_text.removeLast();
    append("\r\n");
    return append(line.substr(1));
  }
  append(line.substr(0, 1));
  append(line);
}

void Unfolder::append(std::string_view piece) {
  char before = SCL_lastChar(m_text);
  for (const char c : piece) {
    if (c == '"' && before != '\\') {
      m_insideQuotes = !m_insideQuotes;
    }
    before = c;
  }
  m_text.append(piece);
}

unsigned int roomFor(const SCL_StringTable& lines) {
  unsigned int room = lines.count();
  for (std::uint16_t i = 0; i < lines.count(); ++i) {
    room += lines.get(i).length();
  }
  return room;
}

SCL_StringRef attributeName(const GMA_Mhdr& header) {
  if (!header.custom().isEmpty()) {
    return header.custom();
  }
  const std::uint32_t type =
      gma::hasHeaderTypeName(header.type()) ? header.type() : std::uint32_t{gma::UNKNOWN};
  return gma::headerTypeName(type);
}

}  // namespace

SCL_String rfc_unfold(const SCL_StringTable& lines) {
  if (lines.count() == 1) {
    return lines.get(0);
  }
  Unfolder unfolder(roomFor(lines));
  for (std::uint16_t i = 0; i < lines.count(); ++i) {
    unfolder.add(lines.get(i));
  }
  return std::move(unfolder.text());
}

void rfc_headers_to_attributes(const GMA_MhdrTable& table, ATR_AttributeList& attributes) {
  bool full = false;
  for (std::uint16_t i = 0; i < table.count(); ++i) {
    const GMA_Mhdr& header = *table.get(i);
    const SCL_StringRef name = attributeName(header);
    if (attributes.count() >= RFC_MAX_HEADERS && attributes.find(name) == nullptr) {
      full = true;
      continue;
    }
    SCL_String value = rfc_unfold(header.value());
    value.trim();
    attributes.setString(name, value);
  }
  if (full) {
    rfc_note_limit("attributes");
  }
}
