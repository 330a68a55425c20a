// What all stream kinds have in common: the reference count and operations made of others.
#include "dac/DACABSST.h"

#include <algorithm>
#include <cstring>

#include "dac/DACLINE.h"
#include "gen/GENCODES.h"

namespace {

constexpr std::int32_t PIECE_SIZE = 256;
constexpr std::int32_t FILL_BLOCK = 64;

}  // namespace

DAC_Stream::~DAC_Stream() = default;

void DAC_Stream::release() noexcept {
  if (--m_references == 0) {
    delete this;
  }
}

std::int32_t DAC_Stream::readLine(std::int32_t& position, std::int32_t size, char* buffer,
                                  unsigned int& status) {
  if (status != 0) {
    return 0;
  }
  const std::int32_t start = position;
  const std::int32_t room = std::max(size, 1) - 1;
  std::int32_t length = 0;
  status = position < 0 ? DAC_NEGATIVE_POSITION : 0;
  for (bool ended = false; status == 0 && !ended;) {
    if (length == room) {
      status = DAC_LINE_TOO_LONG;
      break;
    }
    char piece[PIECE_SIZE];
    const std::string_view bytes = nextPiece(position, room - length, piece, status);
    const std::size_t fits = std::min(bytes.size(), static_cast<std::size_t>(room - length));
    const std::size_t taken = dac::findLineEnd(bytes.substr(0, fits));
    bytes.copy(buffer + length, taken);
    length += static_cast<std::int32_t>(taken);
    position += static_cast<std::int32_t>(taken);
    if (taken < fits) {
      skipLineEnd(position, bytes.substr(taken));
      ended = true;
    }
  }
  if (size > 0) {
    buffer[length] = '\0';
  }
  if (status == DAC_END && position > start) {
    status = 0;  // the content's end ends its last line
  }
  return length;
}

// The next bytes at `position`: those at hand, else at most `room` that are read into `buffer`.
std::string_view DAC_Stream::nextPiece(std::int32_t position, std::int32_t room, char* buffer,
                                       unsigned int& status) {
  const std::string_view ready = window(position);
  if (!ready.empty()) {
    return ready;
  }
  const std::int32_t count = read(position, std::min(room, PIECE_SIZE), buffer, status);
  if (count <= 0 && status == 0) {
    status = DAC_END;  // content that became shorter must not be asked for again and again
  }
  return {buffer, static_cast<std::size_t>(std::max(count, 0))};
}

// Moves past the line end that `bytes` begins with. The second byte of a pair may lie beyond them;
// that there is none is no failure of this line.
void DAC_Stream::skipLineEnd(std::int32_t& position, std::string_view bytes) {
  // The look-ahead may refill what `bytes` lies in.
  const char first = bytes[0];
  ++position;
  std::int32_t ahead = position;
  unsigned int ignored = 0;
  const char second = bytes.size() > 1 ? bytes[1] : getChar(ahead, ignored);
  if (dac::isLineEndPair(first, second)) {
    ++position;
  }
}

void DAC_Stream::writeLine(std::int32_t& position, std::int32_t count, const char* text,
                           unsigned int& status) {
  write(position, count, text, status);
  write(position, 2, "\r\n", status);
}

void DAC_Stream::fill(std::int32_t& position, std::int32_t count, char byte, unsigned int& status) {
  char block[FILL_BLOCK];
  std::memset(block, byte, sizeof block);
  while (status == 0 && count > 0) {
    const std::int32_t piece = std::min(count, FILL_BLOCK);
    write(position, piece, block, status);
    count -= piece;
  }
}

void DAC_Stream::flush(unsigned int&) {}

std::string_view DAC_Stream::window(std::int32_t) {
  return {};
}
