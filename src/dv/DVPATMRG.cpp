// Completing a path from another one, and comparing two paths.
#include <algorithm>
#include <string_view>

#include "dv/DVPATH.h"
#include "dv/DVPATHRD.h"

namespace dv {

namespace {

constexpr char SEPARATOR = '\\';

std::string_view choose(std::string_view own, std::string_view fallback) noexcept {
  return own.empty() ? fallback : own;
}

// A server and a drive exclude each other; what stands in the path itself decides.
void mergeRoot(const PathRecord& path, const PathRecord& defaults, PathWriter& writer,
               PathRecord& result) noexcept {
  const bool hasRoot = path.server.length != 0 || path.drive.length != 0;
  const PathRecord& source = hasRoot ? path : defaults;
  writer.add(result.server, partOf(source, source.server));
  writer.add(result.drive, partOf(source, source.drive));
}

// A relative directory continues the default one. Segments "." and ".." stay: what they mean where
// links are in the way, only the file system knows.
void mergeDirectory(const PathRecord& path, const PathRecord& defaults, PathWriter& writer,
                    PathRecord& result) noexcept {
  std::string_view own = partOf(path, path.directory);
  std::string_view base =
      isRooted(path) ? std::string_view() : partOf(defaults, defaults.directory);
  if (result.server.length != 0) {  // its last separator is the root already
    std::string_view& first = base.empty() ? own : base;
    first.remove_prefix(!first.empty() && first.front() == SEPARATOR ? 1 : 0);
  }
  writer.add(result.directory, base, own);
}

// A path in the form in which two names of one place are the same text: letters folded, empty
// segments and "." dropped, ".." taken together with the segment before it.
class NormalPath {
 public:
  explicit NormalPath(const PathRecord& record) noexcept {
    const std::string_view root =
        choose(partOf(record, record.server), partOf(record, record.drive));
    append(root);
    const bool rooted = isRooted(record);
    if (rooted && record.server.length == 0) {
      append("\\");
    }
    m_root = m_length;
    std::string_view rest(record.path + root.size());
    while (!rest.empty()) {
      const std::size_t end = std::min(rest.find(SEPARATOR), rest.size());
      addSegment(rest.substr(0, end), end < rest.size(), rooted);
      rest.remove_prefix(std::min(end + 1, rest.size()));
    }
  }

  std::string_view view() const noexcept { return {m_text, m_length}; }

 private:
  void addSegment(std::string_view segment, bool separated, bool rooted) noexcept {
    if (segment.empty() || segment == ".") {
      return;
    }
    if (segment == "..") {
      if (removeSegment() || rooted) {
        return;
      }
      separated = true;
    }
    append(segment);
    if (separated) {
      append("\\");
    }
  }

  // Every segment that another can follow ends in a separator. False when there is none to take.
  bool removeSegment() noexcept {
    if (m_length == m_root) {
      return false;
    }
    const std::string_view segments = view().substr(m_root, m_length - 1 - m_root);
    const std::size_t separator = segments.rfind(SEPARATOR);
    const std::size_t last = separator == std::string_view::npos ? 0 : separator + 1;
    if (segments.substr(last) == "..") {
      return false;
    }
    m_length = m_root + last;
    return true;
  }

  void append(std::string_view text) noexcept {
    m_length = static_cast<std::size_t>(
        std::transform(text.begin(), text.end(), m_text + m_length, SCL_toLower) - m_text);
  }

  char m_text[PATH_SIZE + 1];  // a trailing ".." gains a separator
  std::size_t m_root = 0;
  std::size_t m_length = 0;
};

// Decodes `text`, completed with the defaults when there are any.
int decodeComplete(const SCL_StringRef& text, const PathRecord* defaults, PathRecord& result) {
  PathRecord record;
  const int length = scanPath(record, text, MODE_UNC | MODE_DRIVE);
  if (length < 0 || static_cast<unsigned int>(length) != text.length()) {
    return -1;
  }
  if (defaults != nullptr) {
    return mergePath(record, *defaults, result);
  }
  result = record;
  return 0;
}

}  // namespace

int mergePath(const PathRecord& path, const PathRecord& defaults, PathRecord& result) {
  PathRecord merged;
  PathWriter writer(merged);
  mergeRoot(path, defaults, writer, merged);
  mergeDirectory(path, defaults, writer, merged);
  writer.add(merged.name, choose(partOf(path, path.name), partOf(defaults, defaults.name)));
  writer.add(merged.extension,
             choose(partOf(path, path.extension), partOf(defaults, defaults.extension)));
  if (!writer.fits()) {
    return -1;
  }
  result = merged;
  return 0;
}

int comparePaths(const SCL_StringRef& a, const SCL_StringRef& b, const PathRecord* defaults) {
  PathRecord first;
  PathRecord second;
  if (decodeComplete(a, defaults, first) < 0 || decodeComplete(b, defaults, second) < 0) {
    return -1;
  }
  const NormalPath normalA(first);
  const NormalPath normalB(second);
  const std::string_view viewA = normalA.view();
  const std::string_view viewB = normalB.view();
  if (viewA == viewB) {
    return 0;
  }
  const auto split = std::mismatch(viewA.begin(), viewA.end(), viewB.begin(), viewB.end());
  const bool moreInA = std::find(split.first, viewA.end(), SEPARATOR) != viewA.end();
  const bool moreInB = std::find(split.second, viewB.end(), SEPARATOR) != viewB.end();
  return -6 - (moreInB ? 1 : 0) - (moreInA ? 2 : 0);
}

}  // namespace dv
