// LOG_Stream: one output stream of the log, with its maximum level and facility filter. The log
// owns its streams and calls them under its lock, one at a time; a kind that is also used past the
// log (a file stream) has a lock of its own. Operations that end in a status do nothing when it is
// nonzero on entry.
#pragma once

#include <cstdint>
#include <string>

#include "scl/SCLSTRNG.h"

class DAC_BaseDataAccess;
class PFA_Profile;

// What maintain needs to go on where it stopped. A record of all zeros begins at the oldest file.
struct LOG_Progress {
  std::uint32_t offset = 0;  // bytes of that file that have reached the target
  char date[12] = "";        // " 5-Jan-1998": the day of the file, for files named by date
  std::uint32_t number = 0;  // its number, for files named by number; 0: none
  bool done = false;         // at least one file was passed
};

enum LOG_StreamType : std::uint32_t {
  LOG_NO_TYPE = 0,
  LOG_SYSTEM_FILE = 1,
  LOG_USER_FILE = 2,
  LOG_TRANSIENT_FILE = 3,
  LOG_SYSTEM_EVENT = 4,
  LOG_APP_EVENT = 5,
  LOG_SECURITY_EVENT = 6
};

class LOG_Stream {
 public:
  explicit LOG_Stream(const char* name);  // copied; null: assertion 1 at LOGSTRM
  LOG_Stream(const LOG_Stream&) = delete;
  LOG_Stream& operator=(const LOG_Stream&) = delete;

  // The virtual operations, in slot order.

  // Called once, after the last key. The base does nothing.
  virtual void endOfConfiguration(unsigned int& status);
  // Applies one entry of the stream's section: StreamType (10623), MaxLevel (10628),
  // IncludeFacility, ExcludeFacility, which may repeat; 121 for any other key. A kind handles its
  // own keys and passes on the others.
  virtual void configureKey(const SCL_StringRef& key, const SCL_StringRef& value,
                            unsigned int& status);
  virtual ~LOG_Stream();
  // Reads the section that bears the stream's name, up to its end or the first status.
  virtual void configureFromProfile(PFA_Profile& profile, unsigned int& status);
  // Passes older files to `target`. The base does nothing, which counts as accepted; 10630 means
  // that there was nothing to do.
  virtual void maintain(const SCL_StringRef& target, bool deleteFiles, LOG_Progress& progress,
                        unsigned int& status);
  // Writes the whole content of `object`, whose cursor moves: as a dump when `raw`, else as lines.
  virtual void writeDataObject(unsigned int facility, unsigned int level,
                               DAC_BaseDataAccess& object, bool raw) = 0;
  // Writes `length` bytes of `text`, as a dump when `raw`. Level and facility were tested. An entry
  // that cannot be written is dropped.
  virtual void writeEntry(unsigned int facility, unsigned int level, unsigned int length,
                          const char* text, bool raw) = 0;
  virtual void close(bool deleteFile, unsigned int& status);
  virtual void open(unsigned int& status);
  virtual void copyLogToFile(const SCL_StringRef& path, unsigned int& status);
  // The base writes "Message log not accessible" with its NUL at the target's cursor.
  virtual void readLog(DAC_BaseDataAccess& target, unsigned int& status);

  std::uint32_t maximumLevel() const noexcept { return m_maximumLevel; }
  // Before the stream is attached: the log keeps what each of its streams lets through.
  void setMaximumLevel(std::uint32_t level) noexcept { m_maximumLevel = level; }
  // Before the first facility directive every facility passes; one above 50 always does.
  bool passesFacility(unsigned int facility) const noexcept;
  const std::string& name() const noexcept { return m_name; }

 protected:
  LOG_StreamType type() const noexcept { return m_type; }

 private:
  static constexpr unsigned int FILTERED_FACILITIES = 51;

  void facilityDirective(const SCL_StringRef& value, bool include);

  std::uint32_t m_maximumLevel = 2;
  bool m_filterSet = false;
  std::uint8_t m_facilities[FILTERED_FACILITIES] = {};  // 1: passes
  LOG_StreamType m_type = LOG_NO_TYPE;
  std::string m_name;
};

namespace logging {
// "hh:mm:ss.cc (FAC:lll) " for now into the buffer, at most size - 1 characters; the length
// written.
unsigned int formatPrefix(char* buffer, unsigned int size, unsigned int facility,
                          unsigned int level);

inline constexpr unsigned int FACILITY_SIZE = 12;  // any number and its NUL
// The three characters of facilities 0 to 48, else the number; `buffer` holds at least
// FACILITY_SIZE characters and may be what is returned.
const char* facilityCode(unsigned int facility, char* buffer);
// The facility of an exact code, or -1.
int facilityOfCode(const SCL_StringRef& code);
}  // namespace logging
