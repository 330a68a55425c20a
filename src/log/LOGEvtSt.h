// LOG_EventStream: a log stream that reports each entry to the platform's event log, as an error
// event of its source. Which log receives it is the platform's business, whatever the stream's
// type. No handle is held between events; what cannot be sent is dropped.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "log/LOGSTRM.h"
#include "scl/SCLSTRNG.h"

class LOG_EventStream : public LOG_Stream {
 public:
  explicit LOG_EventStream(const char* name) : LOG_Stream(name) {}

  // Without EventSource the source is "QDX.EXE".
  void endOfConfiguration(unsigned int& status) override;
  // CategoryId (10613), EventId, EventSource; the base's keys.
  void configureKey(const SCL_StringRef& key, const SCL_StringRef& value,
                    unsigned int& status) override;
  // One event with the first 8,192 bytes of the object as its data, whether raw or not.
  void writeDataObject(unsigned int facility, unsigned int level, DAC_BaseDataAccess& object,
                       bool raw) override;
  void writeEntry(unsigned int facility, unsigned int level, unsigned int length, const char* text,
                  bool raw) override;

 private:
  void report(std::string text, std::string_view data) const;

  std::uint32_t m_category = 0;
  std::uint32_t m_eventId = 0xC0000020U;
  SCL_String m_source;
};
