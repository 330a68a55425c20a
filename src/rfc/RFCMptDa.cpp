// The view of a multipart body: one linear search for its boundary lines.
#include "rfc/RFCMptDa.h"

#include <algorithm>
#include <new>

#include "gen/GENCODES.h"
#include "gen/GENWNT.h"
#include "rfc/rfclimit.h"
#include "rfc/rfcline.h"

namespace {

using Line = RFC_BoundaryMatcher::Line;

// A longer line is no boundary line.
constexpr std::int32_t MAX_LINE = 511;
constexpr std::uint16_t MAX_PARTS = 65535;
constexpr std::string_view HYPHENS = "--";

std::string_view withoutLeadingBlanks(std::string_view text) noexcept {
  return text.substr(std::min(text.find_first_not_of(' '), text.size()));
}

std::string_view withoutTrailingBlanks(std::string_view text) noexcept {
  return text.substr(0, text.find_last_not_of(' ') + 1);
}

bool isLineEnd(char c) noexcept {
  return c == '\r' || c == '\n';
}

}  // namespace

RFC_BoundaryMatcher::RFC_BoundaryMatcher(std::string_view boundary) noexcept
    : m_boundary(boundary),
      m_forgivesBlanks(SCL_firstChar(boundary) != ' ' && SCL_lastChar(boundary) != ' ') {}

Line RFC_BoundaryMatcher::match(std::string_view line) const noexcept {
  if (line.size() <= HYPHENS.size() || !line.starts_with(HYPHENS)) {
    return Line::none;
  }
  std::string_view text = line.substr(HYPHENS.size());
  const bool blanksMayPrecedeHyphens = m_forgivesBlanks && text.ends_with(HYPHENS);
  if (m_forgivesBlanks) {
    text = withoutLeadingBlanks(text);
    text = blanksMayPrecedeHyphens ? text : withoutTrailingBlanks(text);
  }
  if (!text.ends_with(HYPHENS)) {
    return text == m_boundary ? Line::separator : Line::none;
  }
  text.remove_suffix(HYPHENS.size());
  if (blanksMayPrecedeHyphens) {
    text = withoutTrailingBlanks(text);
  }
  if (text == m_boundary) {
    return Line::closing;
  }
  // A boundary may itself end in hyphens.
  const bool isSeparator = m_boundary.size() == text.size() + HYPHENS.size() &&
                           m_boundary.starts_with(text) && m_boundary.ends_with(HYPHENS);
  return isSeparator ? Line::separator : Line::none;
}

RFCMptDa::RFCMptDa(const DAC_BaseDataAccess& source, const SCL_StringRef& boundary,
                   std::int32_t start, std::int32_t lengthLimit)
    : RFC_View(source, start, lengthLimit, 0), m_boundary(boundary), m_parts(10) {
  findParts();
  DACList.setCount(m_parts.count());
}

void RFCMptDa::findParts() {
  unsigned int status = 0;
  RFC_LineReader reader(*this, start());
  const std::int64_t limit = std::int64_t{start()} + lengthLimit();
  Line found = findBoundary(reader, status);
  while (found == Line::separator && reader.position() < limit) {
    const std::int32_t begin = reader.position();
    found = findBoundary(reader, status);
    std::int32_t end = reader.lineStart();
    if (found != Line::none && end - begin >= 2) {
      end -= lineBreakBefore(end);
      reader.refresh();
    }
    if (!addPart(begin, end)) {
      break;
    }
  }
  status = 0;
  seek(FROM_START, reader.position(), status);
}

// Reads lines up to the next boundary line; none at the end of the content or at a failure.
Line RFCMptDa::findBoundary(RFC_LineReader& reader, unsigned int& status) const {
  const RFC_BoundaryMatcher matcher(m_boundary);
  bool continuing = false;  // the line began with an earlier piece
  while (reader.next(MAX_LINE, status)) {
    const bool isWhole = !continuing && !reader.isCut();
    continuing = reader.isCut();
    const Line kind = isWhole ? matcher.match(reader.line()) : Line::none;
    if (kind != Line::none) {
      return kind;
    }
  }
  return Line::none;
}

// How many bytes right before the position are the line break that belongs to the boundary line
// there (RFC 2046 section 5.1.1).
std::int32_t RFCMptDa::lineBreakBefore(std::int32_t position) {
  char bytes[2] = {};
  unsigned int status = 0;
  std::int32_t from = position - 2;
  readAt(from, 2, bytes, status);
  if (status != 0 || !isLineEnd(bytes[1])) {
    return 0;
  }
  return isLineEnd(bytes[0]) ? 2 : 1;
}

bool RFCMptDa::addPart(std::int32_t start, std::int32_t end) {
  if (m_parts.count() == MAX_PARTS) {
    rfc_note_limit("parts");
    return false;
  }
  std::unique_ptr<Part> part(new (std::nothrow) Part{start, end - start});
  if (part == nullptr) {
    GENAssert(GEN_NULL_POINTER, "RFCMptDa", __LINE__);
  }
  m_parts.append(std::move(part));
  return true;
}

std::unique_ptr<DAC_BaseDataAccess> RFCMptDa::makeChild(std::uint32_t index,
                                                        unsigned int& /*status*/) {
  const Part& part = *m_parts[index];
  return makeRange(part.start, part.length);
}
