// The path reader beneath decodePath and the path conversion, and the writer that puts records
// together from components.
#pragma once

#include <string_view>

#include "dv/DVPATH.h"

namespace dv {

// As decodePath, for a text that need not end in a NUL.
int scanPath(PathRecord& record, std::string_view text, int mode);

// A component's characters; a view into the record.
inline std::string_view partOf(const PathRecord& record, const PathPart& part) noexcept {
  return {record.path + part.offset, part.length};
}

// The directory begins at the root, or the path names a server.
bool isRooted(const PathRecord& record) noexcept;
// A last segment "." or "..", which names a directory though no separator follows it.
bool isDirectoryLink(const PathRecord& record) noexcept;

// Appends component after component to an empty record. What no longer fits is left out, and
// fits() is false from then on.
class PathWriter {
 public:
  explicit PathWriter(PathRecord& record) noexcept : m_record(record) { m_record = PathRecord{}; }
  void add(PathPart& part, std::string_view text) noexcept;
  // A component in two pieces.
  void add(PathPart& part, std::string_view first, std::string_view second) noexcept;
  bool fits() const noexcept { return m_fits; }

 private:
  void append(std::string_view text) noexcept;

  PathRecord& m_record;
  std::size_t m_length = 0;
  bool m_fits = true;
};

}  // namespace dv
