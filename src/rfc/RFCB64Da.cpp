// The view of a Base64 body.
#include "rfc/RFCB64Da.h"

#include "rfc/rfccodec.h"
#include "rfc/rfcline.h"

namespace {

constexpr std::int32_t LINE_PIECE = 511;
constexpr std::string_view NOTE = "Message body suppressed";

// What is known of one line, which may have come in pieces.
struct NoteLine {
  bool isEmpty = true;
  bool holdsNote = false;
};

// False when there is no further line.
bool readNoteLine(RFC_LineReader& reader, NoteLine& line, unsigned int& status) {
  line = NoteLine();
  bool found = false;
  while (reader.next(LINE_PIECE, status)) {
    found = true;
    line.isEmpty = line.isEmpty && reader.line().empty();
    line.holdsNote = line.holdsNote || reader.line().find(NOTE) != std::string_view::npos;
    if (!reader.isCut()) {
      break;
    }
  }
  return found;
}

}  // namespace

// The note is one line, an empty one, and nothing else. The first line tells nearly every body
// apart.
bool RFCB64Da::isSuppressedNote(unsigned int& status) {
  RFC_LineReader reader(*this, start());
  NoteLine first;
  NoteLine second;
  NoteLine third;
  const bool isNote = readNoteLine(reader, first, status) && first.holdsNote &&
                      readNoteLine(reader, second, status) && second.isEmpty &&
                      !readNoteLine(reader, third, status);
  return isNote && status == 0;
}

std::unique_ptr<DAC_BaseDataAccess> RFCB64Da::makeChild(std::uint32_t /*index*/,
                                                        unsigned int& status) {
  std::unique_ptr<DAC_BaseDataAccess> child = makeMemory();
  const std::int32_t length = rangeLength(status);
  const std::int32_t cursor = getPosition();
  const bool isNote = isSuppressedNote(status);
  unsigned int seekStatus = 0;  // the reader of the note leaves the cursor anywhere
  seek(FROM_START, cursor, seekStatus);
  if (!isNote) {
    rfc_b64_decode(*this, child.get(), start(), length, status);
  }
  noteSize(*child, status);
  return child;
}
