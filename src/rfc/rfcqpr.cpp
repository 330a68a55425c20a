// The quoted-printable decoder (RFC 2045 section 6.7): a state machine that is fed the range in
// pieces, so that the result does not depend on where they end.
#include "dac/DACATTRN.h"
#include "rfc/rfcblock.h"
#include "rfc/rfcchunk.h"
#include "rfc/rfccodec.h"

namespace {

constexpr int NO_DIGIT = -1;

constexpr int hexValue(char c) noexcept {
  if (SCL_isDigit(c)) {
    return c - '0';
  }
  const char letter = SCL_toLower(c);
  return letter >= 'a' && letter <= 'f' ? letter - 'a' + 10 : NO_DIGIT;
}

class QuotedPrintable {
 public:
  explicit QuotedPrintable(RFC_BlockWriter& output) noexcept : m_output(output) {}

  void feed(std::string_view text);
  // Whether the input so far ends inside an escape.
  bool isInsideEscape() const noexcept { return m_state != State::text; }

 private:
  enum class State { text, equals, digit, lineBreak };

  std::size_t takeText(std::string_view text);
  bool takeAfterEquals(char c);
  bool takeAfterDigit(char c);

  RFC_BlockWriter& m_output;
  State m_state = State::text;
  char m_digit = '\0';  // the first one of an escape
};

void QuotedPrintable::feed(std::string_view text) {
  while (!text.empty()) {
    std::size_t taken = 1;
    switch (m_state) {
      case State::text:
        taken = takeText(text);
        break;
      case State::equals:
        taken = takeAfterEquals(text.front()) ? 1 : 0;
        break;
      case State::digit:
        taken = takeAfterDigit(text.front()) ? 1 : 0;
        break;
      case State::lineBreak:
        m_state = State::text;  // whatever follows the CR goes with it
        break;
    }
    text.remove_prefix(taken);
  }
}

std::size_t QuotedPrintable::takeText(std::string_view text) {
  const std::size_t equals = text.find('=');
  m_output.append(text.substr(0, equals));
  if (equals == std::string_view::npos) {
    return text.size();
  }
  m_state = State::equals;
  return equals + 1;
}

// False when the character is to be looked at again as ordinary input.
bool QuotedPrintable::takeAfterEquals(char c) {
  if (c == '\r') {
    m_state = State::lineBreak;
    return true;
  }
  if (hexValue(c) != NO_DIGIT) {
    m_digit = c;
    m_state = State::digit;
    return true;
  }
  m_output.put('=');
  m_state = State::text;
  return false;
}

bool QuotedPrintable::takeAfterDigit(char c) {
  m_state = State::text;
  if (hexValue(c) == NO_DIGIT) {
    m_output.put('=');
    m_output.put(m_digit);
    return false;
  }
  const auto byte = static_cast<unsigned char>(hexValue(m_digit) * 16 + hexValue(c));
  m_output.put(static_cast<char>(byte));
  return true;
}

}  // namespace

void rfc_qp_decode(DAC_BaseDataAccess& source, DAC_BaseDataAccess& destination, std::int32_t start,
                   std::int32_t length, unsigned int& status) {
  source.seek(DAC_BaseDataAccess::FROM_START, start, status);
  if (status != 0) {
    return;
  }
  RFC_ChunkReader input(source, start, length);
  RFC_BlockWriter output(destination, status);
  QuotedPrintable decoder(output);
  for (std::string_view chunk = input.ahead(status); !chunk.empty() && status == 0;
       chunk = input.ahead(status)) {
    decoder.feed(chunk);
    input.consume(chunk.size());
  }
  output.flush();
  unsigned int seekStatus = 0;
  source.seek(DAC_BaseDataAccess::FROM_START, input.position(), seekStatus);
  if (status == 0 && decoder.isInsideEscape()) {
    source.setStringAttribute(dac::BAD_DATA, "Quoted-Printable, Insufficient data");
  }
}
