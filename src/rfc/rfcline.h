// RFC_LineReader: the lines of an object's content, one after the other, for the readers of headers
// and multiparts. Where the content lies ready in memory a line is a view into it; otherwise, and
// for lines that run across the edge of what lies ready, it is read through the object. Both ways
// give the same lines. It moves a position of its own; the object's cursor is left anywhere.
#pragma once

#include <cstdint>
#include <string_view>

#include "scl/SCLSTRNG.h"

class DAC_BaseDataAccess;

class RFC_LineReader {
 public:
  explicit RFC_LineReader(DAC_BaseDataAccess& object, std::int32_t position) noexcept
      : m_object(object), m_position(position), m_lineStart(position) {}

  // Reads the next line of at most `maximum` bytes; of a longer one the rest is the next line.
  // False at the end of the content, with the status 0, and when the stream fails, with its status.
  bool next(std::int32_t maximum, unsigned int& status);

  // A stretch of whole lines with their line ends that lies ready in memory, in full before `end`,
  // for who does not look at lines; it does not end between two line ends. Empty when none is in
  // sight, at a long line perhaps: next() goes on there. It counts as no line.
  std::string_view nextStretch(std::int64_t end);

  // The line without its line end; valid until the next line is read or the object is used.
  std::string_view line() const noexcept { return m_line; }
  bool isCut() const noexcept { return m_cut; }
  std::int32_t lineStart() const noexcept { return m_lineStart; }
  // Behind the line that was read last and its line end.
  std::int32_t position() const noexcept { return m_position; }
  void moveTo(std::int32_t position) noexcept { m_position = position; }
  // To be called when the object was used since the last line.
  void refresh() noexcept { m_window = {}; }

 private:
  std::string_view ready() const noexcept;
  bool takeFrom(std::string_view ahead, std::size_t maximum) noexcept;
  void take(std::string_view ahead, std::size_t length, std::size_t lineEnd, bool cut) noexcept;
  bool readThroughObject(std::int32_t maximum, unsigned int& status);

  DAC_BaseDataAccess& m_object;
  std::int32_t m_position;
  std::int32_t m_lineStart;
  std::string_view m_window;  // what lay ready in memory at m_windowStart
  std::int64_t m_windowStart = 0;
  std::int64_t m_noStretchBefore = 0;  // it was looked for up to here
  std::string_view m_line;
  SCL_String m_text;  // a line that was read through the object
  bool m_cut = false;
};
