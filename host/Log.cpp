// The host's own log streams.
#include "host/Log.h"

#include <cstdio>

#include "gen/GENCODES.h"

namespace host {

TerminalStream::TerminalStream(Output output, unsigned int level)
    : LOG_Stream("Terminal"), m_output(output) {
  setMaximumLevel(level);
}

void TerminalStream::writeDataObject(unsigned int /*facility*/, unsigned int /*level*/,
                                     DAC_BaseDataAccess& /*object*/, bool /*raw*/) {
  // Content is for log files; a terminal gets the texts.
}

void TerminalStream::writeEntry(unsigned int facility, unsigned int level, unsigned int length,
                                const char* text, bool raw) {
  if (m_muted || raw) {
    return;
  }
  if (m_output == Output::plainOutput) {
    std::printf("%.*s\n", static_cast<int>(length), text);
    return;
  }
  char prefix[132];
  logging::formatPrefix(prefix, sizeof prefix, facility, level);
  std::fprintf(stderr, "%s%.*s\n", prefix, static_cast<int>(length), text);
}

RecordingStream::RecordingStream() : LOG_Stream("Recording") {
  setMaximumLevel(LOG_Logging::DEBUG);
}

void RecordingStream::writeDataObject(unsigned int /*facility*/, unsigned int /*level*/,
                                      DAC_BaseDataAccess& /*object*/, bool /*raw*/) {}

void RecordingStream::writeEntry(unsigned int facility, unsigned int level, unsigned int length,
                                 const char* text, bool raw) {
  if (raw) {
    return;
  }
  char buffer[16];
  m_entries.push_back({logging::facilityCode(facility, buffer), level, std::string(text, length)});
}

bool attachToFreeSlot(LOG_Logging& log, std::unique_ptr<LOG_Stream> stream) {
  constexpr unsigned int REACHED_BY_ALL = 4;
  for (unsigned int slot = 0; slot < REACHED_BY_ALL; ++slot) {
    if ((log.activeMask() & (1U << slot)) == 0) {
      unsigned int status = 0;
      log.attach(slot, std::move(stream), status);
      return status == 0;
    }
  }
  return false;
}

}  // namespace host
