// Status texts, the last-status record and assertions.
#include "gen/GENWNT.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <new>

#include "gen/GENCATCH.h"
#include "gen/GENCODES.h"
#include "scl/SCLEXCPT.h"
#include "scl/SCLSTRNG.h"

namespace {

constexpr unsigned int TEXT_SIZE = 4096;
constexpr std::size_t STATUS_TEXT_LENGTH = 100;
constexpr int SEVERITY_ERROR = 1;

// By code from 1 on; a code without a text reads as any other number.
constexpr const char* GENERAL_TEXTS[] = {
    "Null pointer",
    "Null handle",
    "Index out of range",
    "Value out of range",
    "Divide by zero",
    nullptr,
    "Operation out of sequence",
    "Unexpected value encountered",
    "Attempt to use undefined function or value",
    "Invalid value encountered",
    "Duplicate value definition encountered",
    "Operation abandoned",
    "Unimplemented feature used",
    "Inconsistent value encountered",
    "Assignment made through NULL pointer",
    "Watched data is changed",
    "Non-specific internal error",
    "Bad value in switch",
    "Heap free space low or exhausted",
    "Number out of desired range in GENAddToInt",
};
static_assert(std::size(GENERAL_TEXTS) == 20);

struct Message {
  unsigned int code;
  const char* text;
};
// Texts beyond the general ones, up to the first null text. The host words the codes of the
// libraries in its own catalogue, so there are none here.
constexpr Message MESSAGES[] = {{0, nullptr}};

struct LastStatus {
  unsigned int code = 0;
  int val1 = 0;
  int val2 = 0;
  char text[STATUS_TEXT_LENGTH + 1] = {};  // empty: none
};
constinit LastStatus lastStatus;

constinit GENAssertionReporter assertionReporter = nullptr;

const char* generalText(unsigned int code) noexcept {
  return code >= 1 && code <= std::size(GENERAL_TEXTS) ? GENERAL_TEXTS[code - 1] : nullptr;
}

const char* messageText(unsigned int code) noexcept {
  const Message* message = MESSAGES;
  while (message->text != nullptr && message->code != code) {
    ++message;
  }
  return message->text;
}

// Thrown when no memory is left for an exception of its own.
scl_exception_base* fallbackException() noexcept {
  static scl_exception_base fallback("Exception thrown by GENAssertText ()", false);
  return &fallback;
}

// A reporter that asserts itself would otherwise call itself without end.
void report(const char* line) noexcept {
  thread_local bool reporting = false;
  if (assertionReporter == nullptr || reporting) {
    return;
  }
  reporting = true;
  GENSwallow([line] { assertionReporter(SEVERITY_ERROR, line); });
  reporting = false;
}

// Where the conversion that begins at the percent sign `format` ends: its letter.
const char* conversionLetter(const char* format) noexcept {
  return format + 1 + std::strspn(format + 1, "lh");
}

bool isNumberConversion(char letter) noexcept {
  return letter != '\0' && std::strchr("diuxX", letter) != nullptr;
}

SCL_StringRef formatValue(char letter, int value, char (&digits)[16]) noexcept {
  const auto bits = static_cast<unsigned int>(value);
  switch (letter) {
    case 'd':
    case 'i':
      std::snprintf(digits, sizeof digits, "%d", value);
      break;
    case 'u':
      std::snprintf(digits, sizeof digits, "%u", bits);
      break;
    case 'x':
      std::snprintf(digits, sizeof digits, "%x", bits);
      break;
    default:
      std::snprintf(digits, sizeof digits, "%X", bits);
  }
  return digits;
}

// A text that is cut where its buffer ends.
class BoundedText {
 public:
  BoundedText(char* buffer, unsigned int size) noexcept : m_next(buffer), m_room(size) {}
  void add(std::string_view text) noexcept {
    const std::size_t taken = std::min(text.size(), m_room - 1);
    m_next += text.copy(m_next, taken);
    m_room -= taken;
  }
  void terminate() noexcept { *m_next = '\0'; }

 private:
  char* m_next;
  std::size_t m_room;  // the terminator's place counted
};

}  // namespace

const char* GENStatusText(unsigned int code, unsigned int bufferLength, char* buffer) {
  if (const char* text = generalText(code)) {
    return text;
  }
  if (const char* text = messageText(code)) {
    return text;
  }
  const int length = std::snprintf(buffer, bufferLength, "Message code %05u", code);
  if (static_cast<unsigned int>(length) >= bufferLength) {
    GENAssert(GEN_INDEX_RANGE, "GENWNT", 632);
  }
  return buffer;
}

void GENStatusString(unsigned int code, SCL_String& string) {
  string.clear();
  if (const char* text = messageText(code)) {
    string = text;
  }
  if (string.isEmpty()) {
    char text[40];
    std::snprintf(text, sizeof text, "Unknown error code (%u)", code);
    string = text;
  }
}

void GENAssert(unsigned int code, const char* source, unsigned int line) {
  char buffer[TEXT_SIZE];
  GENAssertText(GENStatusText(code, sizeof buffer, buffer), source, line);
}

void GENAssertText(const char* text, const char* source, unsigned int line) {
  scl_exception_base* const fallback = fallbackException();
  char message[TEXT_SIZE];
  std::snprintf(message, sizeof message, "!!Assert: %s in %s at %u", text, source, line);
  report(message);
  scl_exception_base* const owned = new (std::nothrow) scl_exception_base(message, true);
  throw owned != nullptr ? owned : fallback;
}

void GENSetStatus(unsigned int code, int val1, int val2, const char* text) {
  lastStatus = {code, val1, val2, {}};
  BoundedText record(lastStatus.text, sizeof lastStatus.text);
  record.add(SCL_StringRef(text));
  record.terminate();
}

void GENSetStatus(unsigned int code, int val1, int val2) {
  GENSetStatus(code, val1, val2, nullptr);
}

void GENGetStatus(unsigned int& code, int& val1, int& val2) {
  code = lastStatus.code;
  val1 = lastStatus.val1;
  val2 = lastStatus.val2;
}

void GENGetStatus(unsigned int& code, int& val1, int& val2, unsigned int bufferLength, char* buffer,
                  unsigned int& textLength) {
  GENGetStatus(code, val1, val2);
  const SCL_StringRef text(lastStatus.text);
  textLength = text.length();
  if (bufferLength > 0) {
    BoundedText copy(buffer, bufferLength);
    copy.add(text);
    copy.terminate();
  }
}

void GENAssertStatus(const char* source, unsigned int line) {
  if (lastStatus.code == 0) {
    return;
  }
  char buffer[TEXT_SIZE];
  char text[TEXT_SIZE];
  GENExpandValues(GENStatusText(lastStatus.code, sizeof buffer, buffer), lastStatus.val1,
                  lastStatus.val2, sizeof text, text);
  GENAssertText(text, source, line);
}

GENAssertionReporter GENSetAssertionReporter(GENAssertionReporter reporter) {
  return std::exchange(assertionReporter, reporter);
}

void GENExpandValues(const char* format, int val1, int val2, unsigned int size, char* buffer) {
  if (size == 0) {
    return;
  }
  const int values[] = {val1, val2};
  std::size_t used = 0;
  BoundedText text(buffer, size);
  while (*format != '\0') {
    const char* const letter = *format == '%' ? conversionLetter(format) : format;
    if (isNumberConversion(*letter) && letter != format && used < std::size(values)) {
      char digits[16];
      text.add(formatValue(*letter, values[used++], digits));
      format = letter + 1;
    } else if (format[0] == '%' && format[1] == '%') {
      text.add("%");
      format += 2;
    } else {
      text.add({format, 1});
      ++format;
    }
  }
  text.terminate();
}
