// The message file on its way in: lines, boundaries, and the parts of a multipart message
// (RFC 2046 section 5.1).
#include <algorithm>
#include <array>

#include "atr/ATRATLST.h"
#include "dac/DACLINE.h"
#include "dac/DACMEMDA.h"
#include "gen/GENCATCH.h"
#include "gen/GENCODES.h"
#include "krx/krxlines.h"
#include "krx/krxmsg.h"
#include "krx/krxplain.h"
#include "rfc/rfcread.h"

namespace {

constexpr std::int32_t LINE_BUFFER = 2048;
constexpr std::int32_t CONTENT_RESERVE = 1024;
constexpr std::string_view CR_LF = "\r\n";

// Reads lines in pieces: a line that does not fit the buffer comes as several, and only its first
// piece is tested for a boundary, a full stop or dot-stuffing.
class LineReader {
 public:
  explicit LineReader(DAC_BaseDataAccess& stream) noexcept : m_stream(stream) {}

  // False at the end of the data (status 0) and on a failure. `piece` is valid until the next call.
  bool next(std::string_view& piece, unsigned int& status) {
    m_first = !m_continues;
    const std::int32_t length = m_stream.readLine(LINE_BUFFER, m_buffer.data(), status);
    if (status == DAC_END) {
      status = 0;
      return false;
    }
    m_continues = status == DAC_LINE_TOO_LONG;
    if (m_continues) {
      status = 0;
    }
    piece = {m_buffer.data(), static_cast<std::size_t>(std::max(length, 0))};
    return status == 0;
  }
  bool isFirstPiece() const noexcept { return m_first; }
  bool continues() const noexcept { return m_continues; }

 private:
  DAC_BaseDataAccess& m_stream;
  std::array<char, LINE_BUFFER> m_buffer;
  bool m_first = true;
  bool m_continues = false;
};

void write(DAC_BaseDataAccess& data, std::string_view bytes, unsigned int& status) {
  data.write(static_cast<std::int32_t>(bytes.size()), bytes.data(), status);
}

// Copies the lines that lie ready in memory into a part's content, each with CR LF behind it, up to
// the first that needs a look at it as a line, or whose end is not in sight. What stands as it is
// to be kept, which is nearly all of a mail, goes over in one piece.
class LineCopier {
 public:
  LineCopier(DAC_BaseDataAccess& stream, DAC_BaseDataAccess& data) noexcept
      : m_stream(stream), m_data(data) {}

  // The stream stands at the beginning of a line, before and afterwards.
  void copy(unsigned int& status) {
    std::int32_t position = m_stream.getPosition();
    const std::int32_t start = position;
    std::size_t done = 0;
    do {
      done = copyReady(m_stream.window(position), status);
      position += static_cast<std::int32_t>(done);
    } while (done != 0 && status == 0);
    if (position != start) {
      m_stream.setPosition(position, status);
    }
  }

 private:
  std::size_t copyReady(std::string_view ready, unsigned int& status) {
    std::size_t line = 0;
    std::size_t run = 0;  // where the lines begin that are to be written yet
    while (status == 0) {
      line += KRX_plainLines(ready.substr(line));
      if (line == ready.size() || KRX_needsLook(ready[line])) {
        break;
      }
      const std::size_t end = line + dac::findLineEnd(ready.substr(line));
      if (end + 1 >= ready.size()) {
        break;
      }
      const bool isPair = dac::isLineEndPair(ready[end], ready[end + 1]);
      line = end + (isPair ? 2 : 1);
      if (!isPair || ready[end] != '\r') {
        write(m_data, ready.substr(run, end - run), status);
        write(m_data, CR_LF, status);
        run = line;
      }
    }
    write(m_data, ready.substr(run, line - run), status);
    return line;
  }

  DAC_BaseDataAccess& m_stream;
  DAC_BaseDataAccess& m_data;
};

// Gathers the lines before the first boundary, or after the last.
class LineCollector {
 public:
  explicit LineCollector(const char* what) noexcept : m_what(what) {}

  void add(std::string_view piece, bool first) {
    if (first) {
      flush();
      m_open = true;
    }
    appendWithoutNul(piece);
  }
  // The lines so far; nothing is pending afterwards.
  SCL_StringTable& finish() {
    flush();
    return m_lines;
  }

 private:
  void appendWithoutNul(std::string_view piece) {
    std::size_t at = 0;
    while (at < piece.size()) {
      const std::size_t nul = std::min(piece.find('\0', at), piece.size());
      m_line.append(piece.substr(at, nul - at));
      at = nul + 1;
    }
  }
  void flush() {
    if (!m_open) {
      return;
    }
    m_open = false;
    if (m_lines.count() < UINT16_MAX) {
      m_lines.add(std::move(m_line));
    } else if (!m_full) {
      m_full = true;
      KRX_logTooMany(m_what);
    }
    m_line = SCL_String();
  }

  const char* m_what;
  SCL_StringTable m_lines;
  SCL_String m_line;
  bool m_open = false;
  bool m_full = false;
};

}  // namespace

KRX_Message::LineKind KRX_Message::classifyLine(std::string_view line,
                                                std::string_view boundary) noexcept {
  if (SCL_firstChar(line) == '.') {
    return SCL_trimmed(line) == "." ? LineKind::closing : LineKind::content;
  }
  if (boundary.empty() || line.substr(0, 2) != "--" ||
      line.substr(2, boundary.size()) != boundary) {
    return LineKind::content;
  }
  const std::string_view rest = line.substr(2 + boundary.size());
  if (rest.empty()) {
    return LineKind::boundary;
  }
  return rest == "--" ? LineKind::closing : LineKind::content;
}

// What the next line is, without consuming it.
KRX_Message::LineKind KRX_Message::peekLine(DAC_BaseDataAccess& stream,
                                            const SCL_StringRef& boundary) {
  const std::int32_t position = stream.getPosition();
  unsigned int status = 0;
  LineReader reader(stream);
  std::string_view piece;
  const LineKind kind =
      reader.next(piece, status) ? classifyLine(piece, boundary.view()) : LineKind::content;
  unsigned int seekStatus = 0;
  stream.setPosition(position, seekStatus);
  return kind;
}

std::unique_ptr<DAC_BaseDataAccess> KRX_Message::readPartContent(DAC_BaseDataAccess& stream,
                                                                 const SCL_StringRef& boundary,
                                                                 LineKind& kind,
                                                                 unsigned int& status) {
  kind = LineKind::content;
  auto data = GENMake<DAC_MemoryDataAccess>("krxmsg", __LINE__, CONTENT_RESERVE);
  LineCopier copier(stream, *data);
  LineReader reader(stream);
  std::string_view piece;
  copier.copy(status);
  while (reader.next(piece, status)) {
    if (reader.isFirstPiece() && KRX_needsLook(SCL_firstChar(piece))) {
      kind = classifyLine(piece, boundary.view());
      if (kind != LineKind::content) {
        return data;
      }
      if (piece.substr(0, 2) == "..") {
        piece.remove_prefix(1);
      }
    }
    write(*data, piece, status);
    if (!reader.continues()) {
      write(*data, CR_LF, status);
      copier.copy(status);
    }
  }
  if (reader.continues()) {
    write(*data, CR_LF, status);
  }
  if (status != 0) {
    return nullptr;
  }
  return data;
}

// Collects the lines up to a boundary or the end into a nameless header, if there are any.
KRX_Message::LineKind KRX_Message::readUntilBoundary(DAC_BaseDataAccess& stream,
                                                     const SCL_StringRef& boundary,
                                                     std::uint32_t headerType,
                                                     unsigned int& status) {
  LineKind kind = LineKind::content;
  if (status != 0) {
    return kind;
  }
  LineCollector collector(headerType == gma::PREAMBLE ? "preamble lines" : "epilogue lines");
  LineReader reader(stream);
  std::string_view piece;
  while (reader.next(piece, status)) {
    if (reader.isFirstPiece()) {
      kind = classifyLine(piece, boundary.view());
      if (kind != LineKind::content) {
        break;
      }
    }
    collector.add(piece, reader.isFirstPiece());
  }
  SCL_StringTable& lines = collector.finish();
  if (lines.count() != 0) {
    m_headers.add(std::make_unique<GMA_Mhdr>(headerType, SCL_String(), std::move(lines)));
  }
  return kind;
}

KRX_Message::LineKind KRX_Message::readNestedPart(DAC_BaseDataAccess& stream,
                                                  const SCL_StringRef& boundary,
                                                  unsigned int& status) {
  GMA_MhdrTable headers;
  ContentType type;
  // The header reader knows no boundaries: a part that ends before it begins has no header.
  if (peekLine(stream, boundary) == LineKind::content) {
    rfc_read_headers(stream, headers, status);
    const GMA_Mhdr* contentType = headers.findByType(gma::CONTENT_TYPE);
    const bool empty =
        contentType != nullptr && SCL_trimmed(rfc_unfold(contentType->value()).view()).empty();
    if (!empty) {
      classifyContentType(headers, type, status);
    }
    if (status != 0) {
      return LineKind::content;
    }
    rfc_skip_blank_line(stream);
  }
  return readPart(stream, headers, true, boundary, type, status);
}

void KRX_Message::readMultipart(DAC_BaseDataAccess& stream, const ContentType& type,
                                unsigned int& status) {
  if (status != 0) {
    return;
  }
  const SCL_String* boundary = type.parameter("boundary");
  if (boundary == nullptr) {
    status = KRX_NO_BOUNDARY;
    return;
  }
  LineKind kind = readUntilBoundary(stream, *boundary, gma::PREAMBLE, status);
  while (status == 0 && kind == LineKind::boundary) {
    kind = readNestedPart(stream, *boundary, status);
  }
  readUntilBoundary(stream, KRX_EPILOGUE_BOUNDARY, gma::POSTAMBLE, status);
  if (status == 0 && m_body == nullptr && m_items.isEmpty()) {
    status = KRX_NO_PARTS;
  }
}
