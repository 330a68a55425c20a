// The data access object: operations on much content at once.
#include <algorithm>
#include <cstring>
#include <new>

#include "dac/DACBASDA.h"
#include "dac/DACLINE.h"
#include "dac/DACPIECE.h"
#include "dac/DACTOFIL.h"
#include "gen/GENCODES.h"
#include "gen/GENWNT.h"

namespace {

constexpr std::int32_t TRANSFER_SIZE = 10240;
constexpr std::int32_t COUNT_LINE_SIZE = 2048;
constexpr int UNCHECKED = 0;  // a mode of seek

// Counts line ends in content that lies ready in memory.
class LineCounter {
 public:
  std::uint32_t count() const noexcept { return m_count; }
  // Where the first line begins that is not counted yet.
  std::int32_t lineStart() const noexcept { return static_cast<std::int32_t>(m_lineStart); }
  std::int32_t end() const noexcept { return static_cast<std::int32_t>(m_end); }

  // The bytes that follow those that were added before.
  void add(std::string_view bytes) {
    std::size_t at = m_pending != '\0' ? finishLine(0, m_pending, bytes[0]) : 0;
    m_pending = '\0';
    for (at += dac::findLineEnd(bytes.substr(at)); at < bytes.size();
         at += dac::findLineEnd(bytes.substr(at))) {
      if (at + 1 == bytes.size()) {
        m_pending = bytes[at];  // the next bytes may complete it
        break;
      }
      at = finishLine(at + 1, bytes[at], bytes[at + 1]);
    }
    m_end += static_cast<std::int64_t>(bytes.size());
  }

 private:
  // `next` is the offset behind the line end's first byte; the offset of the next line.
  std::size_t finishLine(std::size_t next, char first, char second) noexcept {
    next += dac::isLineEndPair(first, second) ? 1 : 0;
    ++m_count;
    m_lineStart = m_end + static_cast<std::int64_t>(next);
    return next;
  }

  std::uint32_t m_count = 0;
  std::int64_t m_lineStart = 0;
  std::int64_t m_end = 0;
  char m_pending = '\0';  // the line end that the bytes so far end with
};

std::uint32_t countByReading(DAC_BaseDataAccess& object) {
  char line[COUNT_LINE_SIZE];
  std::uint32_t count = 0;
  while (true) {
    unsigned int status = 0;
    const std::int32_t length = object.readLine(sizeof line, line, status);
    if (status == 0 || (status == DAC_END && length > 0)) {
      ++count;
    } else if (status != DAC_LINE_TOO_LONG) {
      return count;
    }
  }
}

// Gives the destination its final size at once, so that it need not grow piece by piece. Content
// that only takes appended bytes would get them behind the reserved ones.
void reserveAtCursor(DAC_BaseDataAccess& destination, std::int64_t count, unsigned int& status) {
  const DAC_Stream* stream = destination.stream();
  if (stream != nullptr && stream->appendOnly()) {
    return;
  }
  const std::int32_t cursor = destination.getPosition();
  const std::int64_t end = cursor + count;
  const std::int32_t size = destination.size(status);
  if (status != 0 || size >= end) {
    return;
  }
  if (end > DAC_Stream::MAX_SIZE) {
    status = DAC_NO_MEMORY;
    return;
  }
  destination.setSize(static_cast<std::int32_t>(end), status);
  destination.setPosition(cursor, status);
}

}  // namespace

std::uint32_t DAC_BaseDataAccess::lineCount() {
  if (stream() == nullptr) {
    return 0;
  }
  LineCounter counter;
  for (std::string_view bytes = window(0); !bytes.empty(); bytes = window(counter.end())) {
    counter.add(bytes);
  }
  // What lies ready ends here; the last line's end is for the kind of content to judge.
  const std::int32_t cursor = getPosition();
  unsigned int status = 0;
  setPosition(counter.lineStart(), status);
  const std::uint32_t count = counter.count() + countByReading(*this);
  seek(UNCHECKED, cursor, status);
  return count;
}

void DAC_BaseDataAccess::copyTo(DAC_BaseDataAccess* destination, std::int32_t start,
                                unsigned int& status) {
  if (status != 0 || destination == nullptr) {
    return;
  }
  if (start < 0) {
    status = DAC_NEGATIVE_POSITION;
    return;
  }
  std::int64_t left = std::max(std::int64_t{size(status)} - start, std::int64_t{0});
  if (status == 0) {
    reserveAtCursor(*destination, left, status);
  }
  std::unique_ptr<char[]> buffer;
  while (left > 0 && status == 0) {
    const auto count = static_cast<std::int32_t>(std::min<std::int64_t>(left, TRANSFER_SIZE));
    const std::string_view piece = readPiece(start, count, buffer, status);
    left -= static_cast<std::int64_t>(piece.size());
    destination->write(static_cast<std::int32_t>(piece.size()), piece.data(), status);
  }
}

// Up to `count` bytes from `position` on, which moves past them: those at hand, else read into the
// buffer, which is made at the first need.
std::string_view DAC_BaseDataAccess::readPiece(std::int32_t& position, std::int32_t count,
                                               std::unique_ptr<char[]>& buffer,
                                               unsigned int& status) {
  const std::string_view ready = window(position).substr(0, static_cast<std::size_t>(count));
  if (!ready.empty()) {
    position += static_cast<std::int32_t>(ready.size());
    return ready;
  }
  if (buffer == nullptr) {
    buffer.reset(new (std::nothrow) char[TRANSFER_SIZE]);
  }
  if (buffer == nullptr) {
    status = DAC_NO_MEMORY;
    return {};
  }
  const std::int32_t done = readAt(position, count, buffer.get(), status);
  if (done <= 0 && status == 0) {
    status = DAC_END;  // the content became shorter
  }
  return {buffer.get(), static_cast<std::size_t>(std::max(done, 0))};
}

void DAC_BaseDataAccess::copyAllTo(DAC_BaseDataAccess* destination, std::int32_t start,
                                   unsigned int& status) {
  if (status != 0 || destination == nullptr) {
    return;
  }
  if (stream() != nullptr && destination->stream() == stream()) {
    return;  // emptying it would empty the source
  }
  destination->setSize(0, status);
  destination->setPosition(0, status);
  copyTo(destination, start, status);
}

bool DAC_BaseDataAccess::matchesAt(std::int32_t& position, std::int32_t count, const void* bytes,
                                   unsigned int& status) {
  if (status != 0) {
    return false;
  }
  if (bytes == nullptr) {
    GENAssert(GEN_NULL_POINTER, "DACBASDA", __LINE__);
  }
  std::string_view expected(static_cast<const char*>(bytes),
                            static_cast<std::size_t>(std::max(count, 0)));
  while (!expected.empty()) {
    dac::Piece piece;
    const std::string_view found = piece.at(*this, position, status).substr(0, expected.size());
    if (status != 0) {
      break;
    }
    const auto differs = std::mismatch(found.begin(), found.end(), expected.begin()).first;
    if (differs != found.end()) {
      position += static_cast<std::int32_t>(differs - found.begin()) + 1;
      return false;
    }
    position += static_cast<std::int32_t>(found.size());
    expected.remove_prefix(found.size());
  }
  const bool isMatch = status == 0;
  status = status == DAC_END ? 0 : status;
  return isMatch;
}

template <class Unsigned>
Unsigned DAC_BaseDataAccess::readUnsigned(std::int32_t& position, bool leastFirst,
                                          unsigned int& status) {
  unsigned char bytes[sizeof(Unsigned)] = {};
  if (readAt(position, sizeof bytes, bytes, status) < static_cast<std::int32_t>(sizeof bytes)) {
    status = status == 0 ? DAC_END : status;
    return 0;
  }
  if (leastFirst) {
    std::reverse(std::begin(bytes), std::end(bytes));
  }
  std::uint32_t value = 0;
  for (const unsigned char byte : bytes) {
    value = value << 8 | byte;
  }
  return static_cast<Unsigned>(value);
}

std::uint16_t DAC_BaseDataAccess::readUInt16LE(std::int32_t& position, unsigned int& status) {
  return readUnsigned<std::uint16_t>(position, true, status);
}

std::uint16_t DAC_BaseDataAccess::readUInt16BE(std::int32_t& position, unsigned int& status) {
  return readUnsigned<std::uint16_t>(position, false, status);
}

std::uint32_t DAC_BaseDataAccess::readUInt32LE(std::int32_t& position, unsigned int& status) {
  return readUnsigned<std::uint32_t>(position, true, status);
}

std::uint32_t DAC_BaseDataAccess::readUInt32BE(std::int32_t& position, unsigned int& status) {
  return readUnsigned<std::uint32_t>(position, false, status);
}

void DAC_BaseDataAccess::getFileName(std::int32_t size, char* buffer, unsigned int& status) {
  if (status != 0) {
    return;
  }
  if (!m_HaveTempFile) {
    dac::copyToTemporaryFile(*this, m_TempFile, status);
    m_HaveTempFile = !m_TempFile.isEmpty();
  }
  if (status != 0) {
    return;
  }
  if (!m_HaveTempFile) {
    status = DAC_NO_FILE;
  } else if (std::int64_t{m_TempFile.length()} >= size) {
    status = DAC_PATH_TOO_LONG;
  } else {
    std::memcpy(buffer, m_TempFile.c_str(), m_TempFile.length() + 1);
  }
}
