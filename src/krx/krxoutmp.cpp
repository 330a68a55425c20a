// The message file on its way out: the layout, and the multipart structure rebuilt from body and
// items (RFC 2046 section 5.1).
#include <set>
#include <string>

#include "atr/ATRATLST.h"
#include "dac/DACBASDA.h"
#include "gen/GENCODES.h"
#include "gen/GENWNT.h"
#include "krx/krxlayout.h"
#include "krx/krxlines.h"
#include "rfc/rfcread.h"
#include "rfc/rfcvalue.h"
#include "rfc/rfcwrite.h"
#include "scl/SCLTOKEN.h"

namespace {

constexpr char CONTENT_TYPE_FIELD[] = "Content-Type";
constexpr char ENCODING_FIELD[] = "Content-Transfer-Encoding";

SCL_String trimmedValue(const GMA_Mhdr* header) {
  if (header == nullptr) {
    return SCL_String();
  }
  SCL_String value = rfc_unfold(header->value());
  value.trim();
  return value;
}

bool getAttribute(DAC_BaseDataAccess& data, const char* name, SCL_String& value) {
  unsigned int status = 0;
  data.getStringAttribute(name, value, status);
  return status == 0;
}

// A title between double quotes: control characters are dropped, a pair of quotes round it is
// taken off, quotes and backslashes inside are escaped. Empty when nothing is left.
SCL_String quotedTitle(const SCL_StringRef& title) {
  std::string clean;
  for (const char c : title.view()) {
    if (!SCL_isControl(c)) {
      clean += c;
    }
  }
  std::string_view inner = clean;
  if (inner.size() >= 2 && inner.front() == '"' && inner.back() == '"') {
    inner = inner.substr(1, inner.size() - 2);
  }
  SCL_String quoted;
  if (inner.empty()) {
    return quoted;
  }
  quoted += '"';
  for (const char c : inner) {
    if (c == '"' || c == '\\') {
      quoted += '\\';
    }
    quoted += c;
  }
  quoted += '"';
  return quoted;
}

SCL_String withParameter(const char* value, const char* parameter, const SCL_StringRef& quoted) {
  SCL_String text(value);
  if (!quoted.isEmpty()) {
    text += "; ";
    text += parameter;
    text += "=";
    text += quoted;
  }
  return text;
}

// The content lines of a part that could be taken for a boundary made of a token.
void collectHyphenLines(DAC_BaseDataAccess& data, std::set<std::string>& lines) {
  char buffer[128];
  unsigned int status = 0;
  data.setPosition(0, status);
  bool continues = false;
  while (status == 0) {
    const std::int32_t length = data.readLine(sizeof buffer, buffer, status);
    const bool first = !continues;
    continues = status == DAC_LINE_TOO_LONG;
    if (continues) {
      status = 0;
    }
    if (status == 0 && first && length > 2 && buffer[0] == '-' && buffer[1] == '-' &&
        SCL_isDigit(buffer[2])) {
      lines.emplace(buffer, static_cast<std::size_t>(length));
    }
  }
}

void writeDelimiter(DAC_BaseDataAccess& stream, const SCL_StringRef& boundary, const char* end,
                    unsigned int& status) {
  SCL_String line("--");
  line += boundary;
  line += end;
  stream.writeLine(static_cast<std::int32_t>(line.length()), line.c_str(), status);
}

}  // namespace

// The type that the message says it has: by its header, else by the attribute that was made of one.
// False when there is none, or none that parses.
bool KRX_Message::ownContentType(ContentType& type) {
  SCL_String value;
  if (const GMA_Mhdr* header = m_headers.findByType(gma::CONTENT_TYPE)) {
    value = trimmedValue(header);
  } else {
    const ATR_Attribute* attribute = m_attrs.find(CONTENT_TYPE_FIELD);
    if (attribute == nullptr || attribute->getType() != STRING) {
      return false;
    }
    value = attribute->getString();
  }
  return rfc_parse_content_type(value, type.type, type.subtype, *type.parameters) == 0;
}

KRX_Message::Layout KRX_Message::planLayout() {
  Layout layout;
  const unsigned int parts = partCount();
  if (parts == 0) {
    return layout;
  }
  const bool hasMimeVersion = m_headers.findByType(gma::MIME_VERSION) != nullptr;
  const bool hasHeader = m_headers.findByType(gma::CONTENT_TYPE) != nullptr;
  ContentType type;
  const bool isTyped = ownContentType(type);
  const bool multipart = isTyped && type.isMultipart();
  // Without Mime-Version a multipart header says nothing: such a mail is one plain part.
  const bool isStructure = multipart && (hasMimeVersion || !hasHeader);
  if (parts == 1 && !isStructure) {
    layout.shape = Layout::Shape::single;
    return layout;
  }
  layout.shape = Layout::Shape::multipart;
  if (isStructure && hasHeader) {
    const SCL_String* boundary = type.parameter("boundary");
    if (boundary == nullptr) {
      GENAssert(GEN_NULL_POINTER, "krxmsg", __LINE__);
    }
    layout.boundary = *boundary;
    return layout;
  }
  layout.generated = true;
  layout.addMimeVersion = !hasMimeVersion;
  layout.boundary = drawBoundary();
  layout.moveOwnFields = true;
  if (isTyped) {  // on a part of a MIME message any other value would make the mail unreadable
    layout.ownContentType = trimmedValue(m_headers.findByType(gma::CONTENT_TYPE));
  }
  layout.ownEncoding = trimmedValue(m_headers.findByType(gma::CONTENT_TRANSFER_ENCODING));
  return layout;
}

// Whether a header block that is read as `found` still has the fields by which content is read.
bool KRX_Message::keepsStructure(const GMA_MhdrTable& found, const Layout& layout) const {
  for (const std::uint32_t type :
       {gma::MIME_VERSION, gma::CONTENT_TYPE, gma::CONTENT_TRANSFER_ENCODING}) {
    if (!layout.leavesOut(type) &&
        trimmedValue(m_headers.findByType(type)) != trimmedValue(found.findByType(type))) {
      return false;
    }
  }
  return true;
}

// A token that no line of the content could be taken for; one pass over the content.
SCL_String KRX_Message::drawBoundary() {
  std::set<std::string> lines;
  for (unsigned int i = 0; i < partCount(); ++i) {
    collectHyphenLines(part(i), lines);
  }
  SCL_String token;
  std::string line;
  do {
    SCL_uniqueToken(token);
    line = "--" + std::string(token.view());
  } while (lines.count(line) != 0 || lines.count(line + "--") != 0);
  return token;
}

void KRX_Message::writeMultipart(DAC_BaseDataAccess& stream, const Layout& layout,
                                 unsigned int& status) {
  if (layout.generated) {
    if (layout.addMimeVersion) {
      rfc_write_field(stream, "MIME-Version", "1.0", false, status);
    }
    SCL_String quoted("\"");
    quoted += layout.boundary;
    quoted += '"';
    rfc_write_field(stream, CONTENT_TYPE_FIELD,
                    withParameter("multipart/mixed", "boundary", quoted), true, status);
  }
  stream.writeLine(0, "", status);
  if (const GMA_Mhdr* preamble = m_headers.findByType(gma::PREAMBLE)) {
    KRX_writeLinesBeside(stream, preamble->value(), layout.boundary, status);
  }
  for (unsigned int i = 0; i < partCount() && status == 0; ++i) {
    const bool isBody = i == 0 && m_body != nullptr;
    writePart(stream, part(i), layout.generated && !isBody, layout, status);
  }
  writeDelimiter(stream, layout.boundary, "--", status);
  if (const GMA_Mhdr* epilogue = m_headers.findByType(gma::POSTAMBLE)) {
    KRX_writeLinesBeside(stream, epilogue->value(), KRX_EPILOGUE_BOUNDARY, status);
  }
}

void KRX_Message::writePart(DAC_BaseDataAccess& stream, DAC_BaseDataAccess& data, bool generated,
                            const Layout& layout, unsigned int& status) {
  writeDelimiter(stream, layout.boundary, "", status);
  writePartHeaders(stream, data, generated, layout, status);
  writePartContent(stream, data, status);
}

void KRX_Message::writePartHeaders(DAC_BaseDataAccess& stream, DAC_BaseDataAccess& data,
                                   bool generated, const Layout& layout, unsigned int& status) {
  const bool described = layout.moveOwnFields && &data == m_described;
  SCL_String title;
  getAttribute(data, dac::CONTENT_TITLE, title);
  const SCL_String quoted = quotedTitle(title);
  SCL_String value;
  if (getAttribute(data, CONTENT_TYPE_FIELD, value)) {
    rfc_write_field(stream, CONTENT_TYPE_FIELD, value, false, status);
  } else if (described && !layout.ownContentType.isEmpty()) {
    rfc_write_field(stream, CONTENT_TYPE_FIELD, layout.ownContentType, false, status);
  } else {
    rfc_write_field(stream, CONTENT_TYPE_FIELD,
                    withParameter("text/plain", "name", generated ? quoted : SCL_String()), true,
                    status);
  }
  if (getAttribute(data, ENCODING_FIELD, value)) {
    rfc_write_field(stream, ENCODING_FIELD, value, false, status);
  } else if (described && !layout.ownEncoding.isEmpty()) {
    rfc_write_field(stream, ENCODING_FIELD, layout.ownEncoding, false, status);
  }
  for (const char* field : {"Content-ID", "Content-Description"}) {
    if (getAttribute(data, field, value)) {
      rfc_write_field(stream, field, value, false, status);
    }
  }
  if (getAttribute(data, "Content-Disposition", value)) {
    rfc_write_field(stream, "Content-Disposition", value, false, status);
  } else if (generated) {
    rfc_write_field(stream, "Content-Disposition", withParameter("attachment", "filename", quoted),
                    true, status);
  }
}
