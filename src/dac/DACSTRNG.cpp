// Words and lines between data access objects and strings.
#include "dac/DACSTRNG.h"

#include <algorithm>
#include <memory>
#include <new>
#include <string_view>

#include "dac/DACBASDA.h"
#include "dac/DACLINE.h"
#include "dac/DACPIECE.h"
#include "gen/GENCODES.h"
#include "gen/GENWNT.h"

namespace {

std::size_t countSpaces(std::string_view text) noexcept {
  return static_cast<std::size_t>(std::find_if_not(text.begin(), text.end(), SCL_isSpace) -
                                  text.begin());
}

std::size_t countWord(std::string_view text) noexcept {
  return static_cast<std::size_t>(std::find_if(text.begin(), text.end(), SCL_isSpace) -
                                  text.begin());
}

// Moves `position` past the bytes that `count` counts at the beginning of what follows, and appends
// them to `out` when there is one. 10016 when the content ends before a byte that does not belong.
void take(DAC_BaseDataAccess& object, std::int32_t& position,
          std::size_t (*count)(std::string_view), SCL_String* out, unsigned int& status) {
  while (true) {
    dac::Piece piece;
    const std::string_view bytes = piece.at(object, position, status);
    if (status != 0) {
      return;
    }
    const std::size_t taken = count(bytes);
    if (out != nullptr) {
      out->append(bytes.substr(0, taken));
    }
    position += static_cast<std::int32_t>(taken);
    if (taken < bytes.size()) {
      return;
    }
  }
}

// Moves the cursor whatever the status is.
void moveCursor(DAC_BaseDataAccess& object, std::int32_t position) {
  unsigned int ignored = 0;
  object.setPosition(position, ignored);
}

// The byte at `position`; 0 where there is none.
char peekAt(DAC_BaseDataAccess& object, std::int32_t position) {
  unsigned int ignored = 0;
  return object.getCharAt(position, ignored);
}

// The limited line when all of it that decides lies ready in memory: its end and the byte after,
// or more than it may have. False, and nothing has changed, else.
bool takeReadyLine(DAC_BaseDataAccess& object, std::size_t maximum, SCL_String& out, bool& cut,
                   std::int32_t& length, unsigned int& status) {
  const std::int32_t start = object.getPosition();
  const std::string_view ready = object.window(start);
  if (ready.size() < 2) {
    return false;
  }
  const std::size_t found = dac::findLineEnd(ready.substr(0, std::min(maximum, ready.size() - 1)));
  std::size_t consumed = found;
  if (dac::isLineEnd(ready[found]) && found + 1 < ready.size()) {
    consumed += dac::isLineEndPair(ready[found], ready[found + 1]) ? 2 : 1;
  } else if (dac::isLineEnd(ready[found]) || found < maximum) {
    return false;
  }
  cut = consumed == found;
  if (found > 0) {
    out.clear();
    out.append(ready.substr(0, found));
  }
  length = static_cast<std::int32_t>(found);
  object.setPosition(start + static_cast<std::int32_t>(consumed), status);
  return true;
}

// Goes past a line end at the cursor; false when there is none.
bool skipLineEnd(DAC_BaseDataAccess& object) {
  const std::int32_t position = object.getPosition();
  const char first = peekAt(object, position);
  if (!dac::isLineEnd(first)) {
    return false;
  }
  moveCursor(object, position + (dac::isLineEndPair(first, peekAt(object, position + 1)) ? 2 : 1));
  return true;
}

bool isAtEnd(DAC_BaseDataAccess& object) {
  unsigned int status = 0;
  object.peekChar(status);
  return status == DAC_END;
}

std::int32_t readLimitedLine(DAC_BaseDataAccess& object, std::int32_t size, char* buffer,
                             SCL_String& out, bool& cut, unsigned int& status) {
  const std::int32_t length = object.readLine(size, buffer, status);
  if (status == DAC_LINE_TOO_LONG) {
    status = 0;
    // The reader of some kinds leaves the end of a line that just fits for the next line.
    cut = !skipLineEnd(object) && !isAtEnd(object);
  }
  if (length > 0) {
    out.clear();
    out.append(std::string_view(buffer, static_cast<std::size_t>(length)));
  }
  return length;
}

}  // namespace

void dac::readWord(DAC_BaseDataAccess& object, SCL_String& out, unsigned int& status) {
  out.clear();
  if (status != 0) {
    return;
  }
  std::int32_t position = object.getPosition();
  take(object, position, countSpaces, nullptr, status);
  if (status == 0) {
    take(object, position, countWord, &out, status);
  }
  if (status != 0) {
    out.clear();
  }
  moveCursor(object, position);
}

void dac::readStringLine(DAC_BaseDataAccess& object, SCL_String& out, unsigned int& status) {
  out.clear();
  if (status != 0) {
    return;
  }
  std::int32_t position = object.getPosition();
  take(object, position, dac::findLineEnd, &out, status);
  if (status != 0) {
    out.clear();
  } else if (peekAt(object, position++) == '\r' && peekAt(object, position) == '\n') {
    ++position;
  }
  moveCursor(object, position);
}

std::int32_t dac::readStringLineLimited(DAC_BaseDataAccess& object, std::int32_t maximum,
                                        SCL_String& out, bool& cut, unsigned int& status) {
  cut = false;
  if (status != 0) {
    return 0;
  }
  const auto most = static_cast<std::size_t>(std::max(maximum, 0));
  std::int32_t length = 0;
  if (takeReadyLine(object, most, out, cut, length, status)) {
    return length;
  }
  const auto size =
      static_cast<std::int32_t>(std::min<std::int64_t>(most + 1, DAC_Stream::MAX_SIZE));
  char usual[2048];
  if (size <= static_cast<std::int32_t>(sizeof usual)) {
    return readLimitedLine(object, size, usual, out, cut, status);
  }
  const std::unique_ptr<char[]> large(new (std::nothrow) char[static_cast<std::size_t>(size)]);
  if (large == nullptr) {
    GENAssert(GEN_NULL_POINTER, "DACSTRNG", __LINE__);
  }
  return readLimitedLine(object, size, large.get(), out, cut, status);
}

std::int32_t dac::readStringLineLimited(DAC_BaseDataAccess& object, std::int32_t maximum,
                                        SCL_String& out, unsigned int& status) {
  bool cut = false;
  return readStringLineLimited(object, maximum, out, cut, status);
}

void dac::writeStringLine(DAC_BaseDataAccess& object, const SCL_StringRef& text,
                          unsigned int& status) {
  object.writeLine(static_cast<std::int32_t>(text.length()), text.c_str(), status);
}
