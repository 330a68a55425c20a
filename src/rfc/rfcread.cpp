// Reads header blocks into typed header tables.
#include "rfc/rfcread.h"

#include <algorithm>
#include <memory>
#include <new>
#include <utility>

#include "dac/DACBASDA.h"
#include "gen/GENCODES.h"
#include "gen/GENWNT.h"
#include "gma/GMAMHDRT.h"
#include "gma/GMATYPES.h"
#include "rfc/rfcfield.h"
#include "rfc/rfclimit.h"
#include "rfc/rfcline.h"
#include "rfc/rfctable.h"
#include "rfc/rfcvalue.h"

namespace {

// After so many bad fields in a row what is read must be the body.
constexpr unsigned int MAX_BAD_FIELDS = 4;

void setCursor(DAC_BaseDataAccess& object, const RFC_LineReader& reader) {
  unsigned int status = 0;  // also after a failure the cursor tells how far reading went
  object.seek(DAC_BaseDataAccess::FROM_START, reader.position(), status);
}

bool isTwoDigits(std::string_view text) noexcept {
  return SCL_isDigit(text[0]) && SCL_isDigit(text[1]);
}

// A line of text that begins with a time of day, 10:23:45, reads like a field named "10".
bool looksLikeTime(const SCL_String& name, const SCL_StringTable& lines) {
  constexpr std::size_t SHORTEST_LINE = 11;
  const std::string_view hours = name;
  const std::string_view line = lines.count() == 1 ? lines.get(0).view() : std::string_view();
  return hours.size() == 2 && line.size() >= SHORTEST_LINE && line[2] == ':' &&
         isTwoDigits(hours) && isTwoDigits(line) && isTwoDigits(line.substr(3));
}

class HeaderBlock {
 public:
  HeaderBlock(DAC_BaseDataAccess& object, GMA_MhdrTable& table) noexcept
      : m_table(table), m_reader(object, object.getPosition()) {
    keep();
  }

  bool read(unsigned int& status);
  const RFC_LineReader& reader() const noexcept { return m_reader; }

 private:
  bool readHeader(unsigned int& status);
  void add(SCL_String& name, SCL_StringTable& lines);
  void addBad(SCL_StringTable& lines);
  void addGood(std::uint32_t type, SCL_String&& name, SCL_StringTable&& lines);
  void repairContentType();
  // What is read so far stays, whatever follows.
  void keep() noexcept {
    m_keptCount = m_table.count();
    m_keptPosition = m_reader.position();
    m_badFields = 0;
  }

  GMA_MhdrTable& m_table;
  RFC_LineReader m_reader;
  std::uint16_t m_keptCount = 0;
  std::int32_t m_keptPosition = 0;
  unsigned int m_badFields = 0;
  bool m_found = false;
};

void append(GMA_MhdrTable& table, std::uint32_t type, SCL_String&& name, SCL_StringTable&& lines) {
  std::unique_ptr<GMA_Mhdr> header(new (std::nothrow)
                                       GMA_Mhdr(type, std::move(name), std::move(lines)));
  if (header == nullptr) {
    GENAssert(GEN_NULL_POINTER, "rfcfuncs", __LINE__);
  }
  table.add(std::move(header));
}

bool HeaderBlock::read(unsigned int& status) {
  while (m_badFields < MAX_BAD_FIELDS && readHeader(status)) {
  }
  repairContentType();
  if (m_badFields == MAX_BAD_FIELDS) {
    m_reader.moveTo(m_keptPosition);
    m_table.truncate(m_keptCount);
  }
  return m_found;
}

bool HeaderBlock::readHeader(unsigned int& status) {
  SCL_String name;
  SCL_StringTable lines;
  bool cut = false;
  const std::int32_t start = m_reader.position();
  if (!rfc_take_field(m_reader, RFC_MAX_LINE, name, lines, cut, status) || status != 0) {
    return false;
  }
  if (m_table.count() >= RFC_MAX_HEADERS) {
    rfc_note_limit("headers");
    m_reader.moveTo(start);
    return false;
  }
  add(name, lines);
  return true;
}

void HeaderBlock::add(SCL_String& name, SCL_StringTable& lines) {
  const std::uint32_t type = rfc_header_type(name);
  if (type == gma::BAD_FORMAT) {
    return addBad(lines);
  }
  if (type == gma::UNKNOWN && looksLikeTime(name, lines)) {
    name += ':';
    name += lines.get(0);
    lines.set(0, name);
    return addBad(lines);
  }
  const bool ownName = type == gma::UNKNOWN || type == gma::X_HEADER || type == gma::X400;
  addGood(type, ownName ? std::move(name) : SCL_String(), std::move(lines));
}

void HeaderBlock::addBad(SCL_StringTable& lines) {
  append(m_table, gma::BAD_FORMAT, SCL_String(), std::move(lines));
  ++m_badFields;
}

void HeaderBlock::addGood(std::uint32_t type, SCL_String&& name, SCL_StringTable&& lines) {
  append(m_table, type, std::move(name), std::move(lines));
  m_found = true;
  keep();
}

// The repaired value takes the header's own place, so that the order and the count stay.
void HeaderBlock::repairContentType() {
  GMA_Mhdr* header = m_table.findByType(gma::CONTENT_TYPE);
  if (header == nullptr) {
    return;
  }
  SCL_String value = rfc_unfold(header->value());
  value.trim();
  if (rfc_repair_content_type(value)) {
    *header = GMA_Mhdr(gma::CONTENT_TYPE, value);
  }
}

}  // namespace

int rfc_read_field(DAC_BaseDataAccess& object, std::int32_t maximum, SCL_String& name,
                   SCL_StringTable& lines, unsigned int& status) {
  bool cut = false;
  return rfc_read_field_checked(object, maximum, name, lines, cut, status);
}

int rfc_read_field_default(DAC_BaseDataAccess& object, SCL_String& name, SCL_StringTable& lines,
                           unsigned int& status) {
  return rfc_read_field(object, RFC_MAX_LINE, name, lines, status);
}

int rfc_read_field_checked(DAC_BaseDataAccess& object, std::int32_t maximum, SCL_String& name,
                           SCL_StringTable& lines, bool& cut, unsigned int& status) {
  if (status != 0) {
    return 0;
  }
  RFC_LineReader reader(object, object.getPosition());
  const bool built = rfc_take_field(reader, maximum, name, lines, cut, status);
  setCursor(object, reader);
  return built ? 1 : 0;
}

int rfc_read_headers(DAC_BaseDataAccess& object, GMA_MhdrTable& table, unsigned int& status) {
  if (status != 0) {
    return 0;
  }
  HeaderBlock block(object, table);
  const bool found = block.read(status);
  setCursor(object, block.reader());
  return found ? 1 : 0;
}

std::int32_t rfc_skip_blank_line(DAC_BaseDataAccess& object) {
  char line[1024];
  unsigned int status = 0;
  const std::int32_t start = object.getPosition();
  const std::int32_t length = object.readLine(sizeof line, line, status);
  if (status != 0 && status != DAC_LINE_TOO_LONG) {
    return length;
  }
  const bool isBlank =
      std::all_of(line, line + length, [](char c) { return c == '\0' || SCL_isSpace(c); });
  if (isBlank) {
    return 1;
  }
  status = 0;
  return object.seek(DAC_BaseDataAccess::FROM_START, start, status);
}
