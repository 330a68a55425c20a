// Reads one header field (RFC 822 section 3.1). What is no field is kept as lines of a field named
// "Bad-Header", and a field that has grown to more than ten bad lines is taken for text.
#include "rfc/rfcfield.h"

#include <algorithm>
#include <utility>

#include "dac/DACBASDA.h"
#include "rfc/rfclimit.h"
#include "rfc/rfcline.h"
#include "rfc/rfcread.h"
#include "rfc/rfctable.h"
#include "scl/SCLSTRTB.h"

namespace {

constexpr unsigned int MAX_BAD_LINES = 10;
// A colon this early makes a line a failed field rather than text.
constexpr std::size_t EARLY_COLON = 16;

enum class LineKind { blank, field, continuation, failedField, other };

LineKind classify(std::string_view line, std::size_t colon) noexcept {
  if (std::all_of(line.begin(), line.end(), SCL_isSpace)) {
    return LineKind::blank;
  }
  if (rfc::is(line.front(), rfc::LWSP)) {
    return LineKind::continuation;
  }
  if (colon == std::string_view::npos) {
    return LineKind::other;
  }
  const std::string_view name = line.substr(0, colon);
  if (!name.empty() && std::none_of(name.begin(), name.end(),
                                    [](char c) { return rfc::is(c, rfc::CTL | rfc::LWSP); })) {
    return LineKind::field;
  }
  return colon < EARLY_COLON ? LineKind::failedField : LineKind::other;
}

class FieldBuilder {
 public:
  FieldBuilder(SCL_String& name, SCL_StringTable& lines) noexcept : m_name(name), m_lines(lines) {
    clear();
  }

  bool isBuilt() const noexcept { return m_built; }
  bool isText() const noexcept { return m_badLines > MAX_BAD_LINES; }
  void clear() noexcept {
    m_name.clear();
    m_lines.clear();
    m_built = false;
  }
  // False when the line does not belong to the field.
  bool accept(std::string_view line);

 private:
  void begin(std::string_view name, std::string_view line);
  bool beginBad(std::string_view line);
  bool append(std::string_view line);
  bool appendOther(std::string_view line);
  void turnBad();
  bool isBad() const noexcept { return m_name.view() == RFC_BAD_HEADER; }

  SCL_String& m_name;
  SCL_StringTable& m_lines;
  bool m_built = false;
  unsigned int m_badLines = 0;
};

bool FieldBuilder::accept(std::string_view line) {
  const std::size_t colon = line.find(':');
  switch (classify(line, colon)) {
    case LineKind::field:
      if (!m_built) {
        begin(line.substr(0, colon), line.substr(colon + 1));
        return true;
      }
      return false;
    case LineKind::continuation:
      return m_built ? append(line) : beginBad(line);
    case LineKind::failedField:
      return !m_built && beginBad(line);
    case LineKind::other:
      return m_built ? appendOther(line) : beginBad(line);
    default:
      return false;
  }
}

void FieldBuilder::begin(std::string_view name, std::string_view line) {
  m_name.assign(name);
  m_lines.add(SCL_String(line));
  m_built = true;
}

bool FieldBuilder::beginBad(std::string_view line) {
  begin(RFC_BAD_HEADER, line);
  m_badLines = 1;
  return true;
}

bool FieldBuilder::append(std::string_view line) {
  if (m_lines.count() >= RFC_MAX_FIELD_LINES) {
    rfc_note_limit("header lines");
    return false;
  }
  m_lines.add(SCL_String(line));
  m_badLines += isBad() ? 1 : 0;
  return true;
}

bool FieldBuilder::appendOther(std::string_view line) {
  const bool wasBad = isBad();
  if (!append(line)) {
    return false;
  }
  if (!wasBad) {
    turnBad();
  }
  return true;
}

// The field was none: its first line is put together again.
void FieldBuilder::turnBad() {
  SCL_String first = std::move(m_name);
  first += ':';
  first += m_lines.get(0);
  m_lines.set(0, first);
  m_name = RFC_BAD_HEADER;
  m_badLines = m_lines.count();
}

// A NUL would end the line for everyone who takes it as a text.
std::string_view withoutNul(std::string_view line, SCL_String& room) {
  if (line.find('\0') == std::string_view::npos) {
    return line;
  }
  room.clear();
  while (!line.empty()) {
    const std::size_t length = std::min(line.find('\0'), line.size());
    room.append(line.substr(0, length));
    line.remove_prefix(std::min(length + 1, line.size()));
  }
  return room;
}

}  // namespace

bool rfc_take_field(RFC_LineReader& reader, std::int32_t maximum, SCL_String& name,
                    SCL_StringTable& lines, bool& cut, unsigned int& status) {
  FieldBuilder field(name, lines);
  SCL_String room;
  const std::int32_t start = reader.position();
  cut = false;
  while (reader.next(maximum, status)) {
    if (!field.accept(withoutNul(reader.line(), room))) {
      reader.moveTo(reader.lineStart());
      break;
    }
    cut = cut || reader.isCut();
    if (field.isText()) {
      field.clear();
      reader.moveTo(start);
      break;
    }
  }
  return field.isBuilt();
}
