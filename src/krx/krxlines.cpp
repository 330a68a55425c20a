// Header lines as the connector writes them.
#include "krx/krxlines.h"

#include "dac/DACMEMDA.h"
#include "gma/GMAMHDRT.h"
#include "krx/krxapi.h"
#include "log/LOGGLB.h"
#include "log/LOGLOG.h"
#include "rfc/rfcread.h"
#include "rfc/rfcwrite.h"
#include "scl/SCLSTRTB.h"

namespace {

// A malformed field of more lines is taken for text by every reader.
constexpr std::uint16_t MAX_BAD_LINES = 11;
constexpr char BAD_HEADER[] = "Bad-Header";
constexpr char BAD_HEADER_COLON[] = "Bad-Header:";

bool needsCare(std::string_view continuation) {
  return !SCL_isBlank(SCL_firstChar(continuation)) || SCL_trimmed(continuation).empty();
}

// A line that may stand anywhere in the data.
SCL_String bareLine(std::string_view text) {
  SCL_String line = rfc_one_line(text);
  if (SCL_firstChar(line) == '.' && SCL_trimmed(line.view()) == ".") {
    line.prepend('.');
  }
  return line;
}

bool isDelimiter(std::string_view line, std::string_view boundary) {
  if (line.substr(0, 2) != "--" || line.substr(2, boundary.size()) != boundary) {
    return false;
  }
  const std::string_view rest = line.substr(2 + boundary.size());
  return rest.empty() || rest == "--";
}

bool isEqual(const SCL_StringTable& a, const SCL_StringTable& b) {
  if (a.count() != b.count()) {
    return false;
  }
  std::uint16_t i = 0;
  while (i < a.count() && a.get(i) == b.get(i)) {
    ++i;
  }
  return i == a.count();
}

// Whether the lines, below that name, are read again as one malformed field of their own.
bool isReadBack(const SCL_StringRef& name, const SCL_StringTable& lines, bool alone) {
  DAC_MemoryDataAccess block;
  unsigned int status = 0;
  if (!alone) {
    rfc_write_field(block, "X-Before", "x", false, status);
  }
  const auto written = [&](const SCL_StringRef& text) {
    block.writeLine(static_cast<std::int32_t>(text.length()), text.c_str(), status);
  };
  for (std::uint16_t i = 0; i < lines.count(); ++i) {
    written(i == 0 && !name.isEmpty() ? SCL_String(name + ":" + lines.get(i)) : lines.get(i));
  }
  written("");
  block.setPosition(0, status);
  GMA_MhdrTable headers;
  rfc_read_headers(block, headers, status);
  const std::uint16_t expected = alone ? 1 : 2;
  if (status != 0 || headers.count() != expected) {
    return false;
  }
  const GMA_Mhdr& last = *headers.get(static_cast<std::uint16_t>(expected - 1));
  return last.type() == gma::BAD_FORMAT && isEqual(last.value(), lines);
}

}  // namespace

void KRX_writeField(DAC_BaseDataAccess& stream, const SCL_StringRef& name,
                    const SCL_StringTable& lines, unsigned int& status) {
  std::uint16_t good = 1;
  while (good < lines.count() && !needsCare(lines.get(good).view())) {
    ++good;
  }
  if (good >= lines.count()) {
    rfc_write_field_lines(stream, name, lines, status);
    return;
  }
  SCL_StringTable safe(lines.count());
  safe.add(lines.get(0));
  for (std::uint16_t i = 1; i < lines.count(); ++i) {
    SCL_String line = rfc_one_line(lines.get(i).view());
    if (SCL_trimmed(line.view()).empty()) {
      continue;
    }
    if (!SCL_isBlank(SCL_firstChar(line))) {
      line.prepend(' ');
    }
    safe.add(std::move(line));
  }
  rfc_write_field_lines(stream, name, safe, status);
}

void KRX_writeBadHeader(DAC_BaseDataAccess& stream, const SCL_StringTable& lines, bool alone,
                        unsigned int& status) {
  SCL_StringTable safe(lines.count());
  for (std::uint16_t i = 0; i < lines.count() && safe.count() < MAX_BAD_LINES; ++i) {
    SCL_String line = bareLine(lines.get(i).view());
    if (!SCL_trimmed(line.view()).empty()) {
      safe.add(std::move(line));
    }
  }
  if (safe.count() == 0) {
    return;
  }
  if (isReadBack(SCL_StringRef(), safe, alone)) {
    rfc_write_field_lines(stream, SCL_StringRef(), safe, status);
    return;
  }
  if (isReadBack(BAD_HEADER, safe, alone)) {
    safe.set(0, BAD_HEADER_COLON + safe.get(0));
    rfc_write_field_lines(stream, SCL_StringRef(), safe, status);
  }
}

bool KRX_isHeaderBlock(DAC_BaseDataAccess& block, GMA_MhdrTable& found, unsigned int& status) {
  const std::int32_t end = block.size(status);
  block.setPosition(end, status);
  block.writeLine(0, "", status);
  block.setPosition(0, status);
  rfc_read_headers(block, found, status);
  const bool whole = block.getPosition() == end;
  block.setSize(end, status);
  return whole && status == 0;
}

void KRX_writeLinesBeside(DAC_BaseDataAccess& stream, const SCL_StringTable& lines,
                          const SCL_StringRef& boundary, unsigned int& status) {
  SCL_StringTable safe(lines.count());
  for (std::uint16_t i = 0; i < lines.count(); ++i) {
    SCL_String line = bareLine(lines.get(i).view());
    if (isDelimiter(line.view(), boundary.view())) {
      line.prepend(' ');
    }
    safe.add(std::move(line));
  }
  rfc_write_field_lines(stream, SCL_StringRef(), safe, status);
}

void KRX_logTooMany(const char* what) {
  LOG_globalLog().writeText(KRX_LOG_ALL, KRX_FACILITY, LOG_Logging::BRIEF,
                            "Too many %s, the rest is left out.", what);
}
