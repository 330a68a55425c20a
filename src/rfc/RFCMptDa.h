// RFCMptDa: a view of a multipart body; its children are the parts between the boundary lines
// (RFC 2046 section 5.1), found at construction, each a sub-range object. Without boundary lines
// there are no children. What stands before the first and behind the closing boundary line belongs
// to no part.
#pragma once

#include <string_view>

#include "rfc/RFCView.h"

class RFC_LineReader;

// Tells boundary lines: blanks after the leading hyphens and at the line's end are forgiven unless
// the boundary itself begins or ends with a blank.
class RFC_BoundaryMatcher {
 public:
  enum class Line { none, separator, closing };

  // `boundary`, without the leading "--", must outlive the matcher.
  explicit RFC_BoundaryMatcher(std::string_view boundary) noexcept;
  Line match(std::string_view line) const noexcept;  // without its line end

 private:
  std::string_view m_boundary;
  bool m_forgivesBlanks;
};

class RFCMptDa : public RFC_View {
 public:
  // `boundary` without the leading "--". A read failure ends the search: the view then has the
  // parts found so far, as it has when there are more than 65,535 (which the log tells).
  explicit RFCMptDa(const DAC_BaseDataAccess& source, const SCL_StringRef& boundary,
                    std::int32_t start = 0, std::int32_t lengthLimit = NO_LIMIT);

 protected:
  std::unique_ptr<DAC_BaseDataAccess> makeChild(std::uint32_t index, unsigned int& status) override;

 private:
  struct Part {
    std::int32_t start;
    std::int32_t length;
  };

  void findParts();
  RFC_BoundaryMatcher::Line findBoundary(RFC_LineReader& reader, unsigned int& status) const;
  std::int32_t lineBreakBefore(std::int32_t position);
  bool addPart(std::int32_t start, std::int32_t end);

  SCL_String m_boundary;
  SCL_PtrVector<Part> m_parts;
};
