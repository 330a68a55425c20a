// The host's log: the streams of the configured log section, and one on the terminal.
#pragma once

#include <string>
#include <vector>

#include "log/LOGLOG.h"
#include "log/LOGSTRM.h"

class PFA_Profile;

namespace host {

// Writes entries to standard error, or to standard output without their prefix.
class TerminalStream : public LOG_Stream {
 public:
  enum class Output { error, plainOutput };
  TerminalStream(Output output, unsigned int level);
  void writeDataObject(unsigned int facility, unsigned int level, DAC_BaseDataAccess& object,
                       bool raw) override;
  void writeEntry(unsigned int facility, unsigned int level, unsigned int length, const char* text,
                  bool raw) override;
  void setMuted(bool muted) noexcept { m_muted = muted; }

 private:
  Output m_output;
  bool m_muted = false;
};

// Keeps the entries as they come.
class RecordingStream : public LOG_Stream {
 public:
  struct Entry {
    std::string facility;
    unsigned int level;
    std::string text;
  };
  RecordingStream();
  void writeDataObject(unsigned int facility, unsigned int level, DAC_BaseDataAccess& object,
                       bool raw) override;
  void writeEntry(unsigned int facility, unsigned int level, unsigned int length, const char* text,
                  bool raw) override;
  const std::vector<Entry>& entries() const noexcept { return m_entries; }
  void clear() { m_entries.clear(); }

 private:
  std::vector<Entry> m_entries;
};

// Puts the stream into the first free slot of those that every entry of the connector reaches.
// The log owns it; false when all are taken.
bool attachToFreeSlot(LOG_Logging& log, std::unique_ptr<LOG_Stream> stream);

inline constexpr unsigned int HOST_FACILITY = 1;
inline constexpr unsigned int ALL_STREAMS = 15;

}  // namespace host
