// Header lines as the connector writes them.
#include "krx/krxlines.h"

#include "krx/krxapi.h"
#include "log/LOGGLB.h"
#include "log/LOGLOG.h"
#include "rfc/rfcwrite.h"
#include "scl/SCLSTRTB.h"

namespace {

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

void KRX_writeBadLines(DAC_BaseDataAccess& stream, const SCL_StringTable& lines,
                       unsigned int& status) {
  SCL_StringTable safe(lines.count());
  for (std::uint16_t i = 0; i < lines.count(); ++i) {
    SCL_String line = bareLine(lines.get(i).view());
    if (!SCL_trimmed(line.view()).empty()) {
      safe.add(std::move(line));
    }
  }
  rfc_write_field_lines(stream, SCL_StringRef(), safe, status);
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
