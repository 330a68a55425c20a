// Reading words and lines from a stream, on its buffer directly: the formatted reads of the
// library fail on an empty line and cut at a NUL.
#include <array>
#include <istream>

#include "scl/SCLSTRNG.h"

namespace {

using Traits = std::char_traits<char>;
constexpr unsigned int CR_ENDS = 1;
constexpr unsigned int CR_LF_ENDS = 3;

bool isEnd(Traits::int_type c) noexcept {
  return Traits::eq_int_type(c, Traits::eof());
}

bool isSpace(Traits::int_type c) noexcept {
  return SCL_isSpace(Traits::to_char_type(c));
}

// Collects characters so that the string grows by blocks, NUL characters included.
class Collector {
 public:
  explicit Collector(SCL_String& target) noexcept : m_target(target) {}
  void add(char c) {
    if (m_used == m_block.size()) {
      flush();
    }
    m_block[m_used++] = c;
  }
  void flush() {
    m_target.append(std::string_view(m_block.data(), m_used));
    m_used = 0;
  }

 private:
  SCL_String& m_target;
  std::size_t m_used = 0;
  std::array<char, 1024> m_block;
};

// Whether the delimiter that was just taken ends the line. In a file of CR LF lines a lone CR is
// text, at the end of the file too.
bool completesLine(std::streambuf& source, unsigned int lineEnd) {
  if (lineEnd != CR_LF_ENDS) {
    return true;
  }
  if (!Traits::eq_int_type(source.sgetc(), '\n')) {
    return false;
  }
  source.sbumpc();
  return true;
}

// True when the end of the stream, not a delimiter, ended the line.
bool collectLine(std::streambuf& source, Collector& line, unsigned int lineEnd) {
  const char delimiter = (lineEnd & CR_ENDS) != 0 ? '\r' : '\n';
  for (;;) {
    const Traits::int_type taken = source.sbumpc();
    if (isEnd(taken)) {
      return true;
    }
    const char c = Traits::to_char_type(taken);
    if (c == delimiter && completesLine(source, lineEnd)) {
      return false;
    }
    line.add(c);
  }
}

}  // namespace

std::istream& SCL_readWord(std::istream& stream, SCL_String& word) {
  word.clear();
  const std::istream::sentry ready(stream, true);
  if (!ready) {
    return stream;
  }
  std::streambuf& source = *stream.rdbuf();
  Traits::int_type c = source.sgetc();
  while (!isEnd(c) && isSpace(c)) {
    c = source.snextc();
  }
  const bool none = isEnd(c);
  for (; !isEnd(c) && !isSpace(c); c = source.snextc()) {
    word.append(Traits::to_char_type(c));
  }
  const auto ended = isEnd(c) ? std::ios::eofbit : std::ios::goodbit;
  stream.setstate(none ? ended | std::ios::failbit : ended);
  return stream;
}

int SCL_readLine(std::istream& stream, SCL_String& line, int lineEnd) {
  line.clear();
  if (!stream.good()) {
    return 0;
  }
  std::streambuf& source = *stream.rdbuf();
  if (isEnd(source.sgetc())) {
    stream.setstate(std::ios::eofbit);
    return 0;
  }
  Collector collector(line);
  const bool ended = collectLine(source, collector, static_cast<unsigned int>(lineEnd));
  collector.flush();
  if (ended) {
    stream.setstate(std::ios::eofbit);
  }
  return 1;
}
