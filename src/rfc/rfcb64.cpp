// The Base64 decoder (RFC 2045 section 6.8). Whole groups of four are decoded at once; padding,
// line ends in odd places and everything else that is no value go one character at a time.
#include <algorithm>
#include <array>

#include "dac/DACATTRN.h"
#include "gen/GENCODES.h"
#include "gen/GENWNT.h"
#include "rfc/rfcb64grp.h"
#include "rfc/rfcblock.h"
#include "rfc/rfccodec.h"
#include "rfc/rfcline.h"

namespace {

// Characters of a line that are read at once.
constexpr std::int32_t LINE_PIECE = 1023;

// Characters that are decoded at once.
constexpr std::size_t PIECE = 4096;
static_assert(rfc::base64Room(PIECE) <= RFC_BlockWriter::BLOCK);

constexpr unsigned int PAD = rfc::B64_PAD;

char low8(unsigned int bits) noexcept {
  return static_cast<char>(static_cast<unsigned char>(bits));
}

class Base64 {
 public:
  explicit Base64(RFC_BlockWriter& output) noexcept : m_output(output) {}

  void feed(std::string_view text);
  void finish();
  // The last problem; null when there was none.
  const char* problem() const noexcept { return m_problem; }

 private:
  std::size_t takeGroups(std::string_view text);
  void takeCharacter(char c);
  void decodeGroup();

  RFC_BlockWriter& m_output;
  std::array<unsigned int, 4> m_group{};
  std::size_t m_pending = 0;  // characters of a group that is not yet whole
  const char* m_problem = nullptr;
};

void Base64::feed(std::string_view text) {
  while (!text.empty()) {
    if (m_pending == 0) {
      text.remove_prefix(takeGroups(text));
    }
    if (!text.empty()) {
      takeCharacter(text.front());
      text.remove_prefix(1);
    }
  }
}

// Decodes the groups at the front, with the line ends between them.
std::size_t Base64::takeGroups(std::string_view text) {
  text = text.substr(0, PIECE);  // so that the output has room
  const rfc::Base64Step step =
      rfc::decodeBase64Groups(text, m_output.room(rfc::base64Room(text.size())));
  m_output.use(step.put);
  return step.taken;
}

void Base64::takeCharacter(char c) {
  const unsigned int value = rfc::base64Value(c);
  if (value == rfc::B64_SKIP) {
    return;
  }
  m_group[m_pending++] = value;
  if (m_pending == m_group.size()) {
    decodeGroup();
  }
}

void Base64::decodeGroup() {
  m_pending = 0;
  const auto [c0, c1, c2, c3] = m_group;
  if (c0 == PAD || c1 == PAD) {
    m_problem = "Base64 Invalid Data/2";
    return;
  }
  m_output.put(low8(c0 << 2 | c1 >> 4));
  if (c2 == PAD) {
    return;
  }
  m_output.put(low8(c1 << 4 | c2 >> 2));
  if (c3 != PAD) {
    m_output.put(low8(c2 << 6 | c3));
  }
}

void Base64::finish() {
  if (m_pending != 0) {
    m_problem = "Base 64 encoding incorrectly terminated.";
    std::fill(m_group.begin() + static_cast<std::ptrdiff_t>(m_pending), m_group.end(), PAD);
    decodeGroup();
  }
}

// Grows the destination's buffer once, to what the whole source can give at most, and empties it.
void makeRoom(DAC_BaseDataAccess& source, DAC_BaseDataAccess& destination, unsigned int& status) {
  const std::int64_t most = std::int64_t{source.size(status)} * 3 / 4 + 10;
  destination.setSize(static_cast<std::int32_t>(most), status);
  destination.setSize(0, status);
}

}  // namespace

void rfc_b64_decode(DAC_BaseDataAccess& source, DAC_BaseDataAccess* destination, std::int32_t start,
                    std::int32_t length, unsigned int& status) {
  if (status != 0) {
    return;
  }
  if (destination == nullptr) {
    GENAssert(GEN_NULL_POINTER, "rfcb64", __LINE__);
  }
  makeRoom(source, *destination, status);
  source.seek(DAC_BaseDataAccess::FROM_START, start, status);
  if (status != 0) {
    return;
  }
  const std::int64_t end = std::int64_t{start} + std::max(length, std::int32_t{0});
  RFC_LineReader input(source, start);
  RFC_BlockWriter output(*destination, status);
  Base64 decoder(output);
  // Line ends are no values and may come along; the last line counts whole, wherever the range
  // ends.
  while (input.position() < end) {
    const std::string_view lines = input.nextStretch(end);
    if (lines.empty() && !input.next(LINE_PIECE, status)) {
      break;
    }
    decoder.feed(lines.empty() ? input.line() : lines);
  }
  if (status == 0) {
    decoder.finish();
  }
  output.flush();
  unsigned int seekStatus = 0;
  source.seek(DAC_BaseDataAccess::FROM_START, input.position(), seekStatus);
  if (decoder.problem() != nullptr) {
    source.setStringAttribute(dac::BAD_DATA, decoder.problem());
  }
}
