// Taking a path apart into its components, and writing components out again.
#include "dv/DVPATH.h"

#include <algorithm>
#include <cstring>

#include "dv/DVPATHRD.h"

namespace dv {

namespace {

constexpr char SEPARATOR = '\\';

// One component of a record, with its bit in composePath's mask; in the order of a path.
struct Component {
  unsigned int bit;
  PathPart PathRecord::*part;
};
constexpr Component COMPONENTS[] = {{PART_SERVER, &PathRecord::server},
                                    {PART_DRIVE, &PathRecord::drive},
                                    {PART_DIRECTORY, &PathRecord::directory},
                                    {PART_NAME, &PathRecord::name},
                                    {PART_EXTENSION, &PathRecord::extension}};

bool isSeparator(char c) noexcept {
  return c == '/' || c == SEPARATOR;
}

bool isSegmentCharacter(char c) noexcept {
  return static_cast<unsigned char>(c) >= ' ' &&
         std::string_view(":<>|/\"\\").find(c) == std::string_view::npos;
}

// Where the segment that begins at `position` ends.
std::size_t segmentEnd(std::string_view text, std::size_t position) noexcept {
  while (position < text.size() && isSegmentCharacter(text[position])) {
    ++position;
  }
  return position;
}

// Where a named segment and the separator behind it end, 0 when one of them is missing.
std::size_t namedSegmentEnd(std::string_view text, std::size_t position) noexcept {
  const std::size_t end = segmentEnd(text, position);
  return end > position && end < text.size() && isSeparator(text[end]) ? end + 1 : 0;
}

bool beginsAtServer(std::string_view text) noexcept {
  return text.size() >= 2 && isSeparator(text[0]) && isSeparator(text[1]);
}

// The length of "\\server\share\" at the front of a text that begins at a server; 0 when it is not
// whole.
std::size_t serverLength(std::string_view text) noexcept {
  const std::size_t share = namedSegmentEnd(text, 2);
  return share == 0 ? 0 : namedSegmentEnd(text, share);
}

std::size_t driveLength(std::string_view text) noexcept {
  return text.size() >= 2 && SCL_isAlpha(text[0]) && text[1] == ':' ? 2 : 0;
}

std::size_t pathEnd(std::string_view text, std::size_t position) noexcept {
  while (position < text.size() &&
         (isSegmentCharacter(text[position]) || isSeparator(text[position]))) {
    ++position;
  }
  return position;
}

PathPart makePart(std::size_t begin, std::size_t end) noexcept {
  return {static_cast<std::uint16_t>(begin), static_cast<std::uint16_t>(end - begin)};
}

void normalise(std::string_view text, char* path) noexcept {
  std::replace_copy(text.begin(), text.end(), path, '/', SEPARATOR);
  path[text.size()] = '\0';
}

// The directory, name and extension of the normalised path between root and end. A last segment
// "." or ".." is a name without an extension.
void splitSegments(PathRecord& record, std::size_t root, std::size_t end) noexcept {
  const std::string_view path(record.path, end);
  const std::size_t last = path.rfind(SEPARATOR);
  const std::size_t name = last == std::string_view::npos ? root : std::max(root, last + 1);
  const std::string_view segment = path.substr(name);
  const std::size_t point =
      segment == "." || segment == ".." ? std::string_view::npos : segment.rfind('.');
  const std::size_t extension = point == std::string_view::npos ? end : name + point;
  record.directory = makePart(root, name);
  record.name = makePart(name, extension);
  record.extension = makePart(extension, end);
}

bool isRefused(const PathRecord& record, int mode) noexcept {
  const bool hasRoot = record.server.length != 0 || record.drive.length != 0;
  return ((mode & MODE_NEED_ROOT) != 0 && !hasRoot) ||
         ((mode & MODE_NEED_NAME) != 0 && record.name.length == 0);
}

}  // namespace

int scanPath(PathRecord& record, std::string_view text, int mode) {
  record = PathRecord{};
  const bool hasServer = (mode & MODE_UNC) != 0 && beginsAtServer(text);
  const std::size_t server = hasServer ? serverLength(text) : 0;
  const std::size_t drive = server == 0 && (mode & MODE_DRIVE) != 0 ? driveLength(text) : 0;
  const std::size_t root = server + drive;
  const std::size_t end = pathEnd(text, root);
  if (end == 0 || end > PATH_LENGTH || (hasServer && server == 0)) {
    return -1;
  }
  normalise(text.substr(0, end), record.path);
  record.server = makePart(0, server);
  record.drive = makePart(server, root);
  splitSegments(record, root, end);
  if (isRefused(record, mode)) {
    record = PathRecord{};
    return -1;
  }
  return static_cast<int>(end);
}

int decodePath(PathRecord& record, const SCL_StringRef& text, int mode) {
  return scanPath(record, text.view(), mode);
}

int composePath(const PathRecord& record, unsigned int mask, unsigned int size, char* buffer) {
  char path[PATH_SIZE];
  std::size_t length = 0;
  for (const Component& component : COMPONENTS) {
    if ((mask & component.bit) != 0) {
      const std::string_view text = partOf(record, record.*component.part);
      text.copy(path + length, text.size());
      length += text.size();
    }
  }
  if (length >= size) {
    return -1;
  }
  std::memcpy(buffer, path, length);
  buffer[length] = '\0';
  return 0;
}

SCL_String composePath(const PathRecord& record, unsigned int mask) {
  char buffer[PATH_SIZE];
  composePath(record, mask, sizeof buffer, buffer);  // a record's components fit, whichever
  return SCL_String(buffer);
}

bool isRooted(const PathRecord& record) noexcept {
  return record.server.length != 0 ||
         (record.directory.length != 0 && record.path[record.directory.offset] == SEPARATOR);
}

bool isDirectoryLink(const PathRecord& record) noexcept {
  const std::string_view name = partOf(record, record.name);
  return record.extension.length == 0 && (name == "." || name == "..");
}

void PathWriter::add(PathPart& part, std::string_view text) noexcept {
  add(part, text, {});
}

void PathWriter::add(PathPart& part, std::string_view first, std::string_view second) noexcept {
  const std::size_t begin = m_length;
  append(first);
  append(second);
  part = makePart(begin, m_length);
}

void PathWriter::append(std::string_view text) noexcept {
  m_fits = m_fits && m_length + text.size() < PATH_SIZE;
  if (m_fits) {
    text.copy(m_record.path + m_length, text.size());
    m_length += text.size();
  }
}

}  // namespace dv
