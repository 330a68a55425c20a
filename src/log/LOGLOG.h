// LOG_Logging: the log that the host owns and everything reports to: up to sixteen streams, each
// with a level and a facility filter. Operations take a mask of streams (bit i: stream i) and hold
// the log's recursive lock, so any thread may call them, and a stream may call back; entries of
// several threads are written whole, in one order. Writing never reports to its caller and never
// throws; an operation that ends in a status does nothing when that is nonzero on entry.
//
//   LOG_Logging log;
//   log.configure(profile, "Log", status);
//   log.writeText(15, 11, LOG_Logging::BRIEF, "Message %s could not be loaded.", name);
#pragma once

#include <atomic>
#include <cstdarg>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>

#include "log/LOGSTRM.h"
#include "scl/SCLSTRNG.h"

class DAC_BaseDataAccess;
class PFA_Profile;

class LOG_Logging {
 public:
  static constexpr unsigned int STREAMS = 16;
  static constexpr unsigned int BRIEF = 1;
  static constexpr unsigned int NORMAL = 2;
  static constexpr unsigned int VERBOSE = 3;
  static constexpr unsigned int DEBUG = 4;
  static constexpr unsigned int TEXT_SIZE = 1024;  // of a formatted entry, its NUL included

  LOG_Logging() noexcept = default;
  LOG_Logging(const LOG_Logging&) = delete;
  LOG_Logging& operator=(const LOG_Logging&) = delete;
  ~LOG_Logging();

  // Makes and configures the streams that the log section names: each entry's name is the name of
  // a stream's section, its value the stream's number. Reading the log section ends at the first
  // bad entry (10615, 10616, 10623, 10601, or the profile's status); the streams made until then
  // are configured. One that fails is removed and its status kept; the others become active all
  // the same. The status is the first of all; the profile stands at some other section then.
  void configure(PFA_Profile& profile, const SCL_StringRef& section, unsigned int& status);
  // Puts a stream made by the host into a free slot (10615 for a slot of 16 or more, 10616 when it
  // is taken) and makes it active. The stream is gone when that fails; null is the assertion 1.
  void attach(unsigned int slot, std::unique_ptr<LOG_Stream> stream, unsigned int& status);

  // The format is always a literal of the code; at most 1,023 characters are written. An entry
  // that no stream would take costs a few nanoseconds.
  void writeText(unsigned int mask, unsigned int facility, unsigned int level, const char* format,
                 ...) __attribute__((format(printf, 5, 6)));
  // Binary data: file streams print a hexadecimal dump, event streams attach it to the event.
  void writeData(unsigned int mask, unsigned int facility, unsigned int level, unsigned int length,
                 const void* bytes);
  // The content of an object, whose cursor moves: a dump when `raw`, else its lines.
  void writeDataObject(unsigned int mask, unsigned int facility, unsigned int level,
                       DAC_BaseDataAccess& object, bool raw);
  // Lets each selected stream pass its older files to `target`, up to the first failure. 10612
  // without a selected stream, 10630 when none of them had anything to do.
  void maintain(unsigned int mask, const SCL_StringRef& target, bool deleteFiles,
                LOG_Progress& progress, unsigned int& status);
  // Each selected stream in turn, up to the first failure; 10612 without one.
  void close(unsigned int mask, bool deleteFile, unsigned int& status);
  void open(unsigned int mask, unsigned int& status);
  // The first selected stream; 10610 without one.
  void copyLogToFile(unsigned int mask, const SCL_StringRef& path, unsigned int& status);
  void readLog(unsigned int mask, DAC_BaseDataAccess& target, unsigned int& status);

  // The streams that are there and configured.
  std::uint32_t activeMask() const noexcept { return m_active.load(std::memory_order_relaxed); }
  // Would an entry with this mask and level reach any stream (facility filters aside)? For callers
  // whose arguments cost something to make.
  bool wants(unsigned int mask, unsigned int level) const noexcept {
    return (mask & m_levels[level < DEBUG ? level : DEBUG].load(std::memory_order_relaxed)) != 0;
  }

 private:
  void offerFormatted(unsigned int mask, unsigned int facility, unsigned int level,
                      const char* format, std::va_list arguments) noexcept
      __attribute__((format(printf, 5, 0)));
  template <class Write>
  void offer(unsigned int mask, unsigned int facility, unsigned int level, Write write) noexcept;
  template <class Operation>
  void inTurn(unsigned int mask, unsigned int& status, Operation operation);
  template <class Operation>
  void withFirst(unsigned int mask, unsigned int& status, Operation operation);

  unsigned int addStream(PFA_Profile& profile, const SCL_StringRef& name,
                         const SCL_StringRef& number);
  unsigned int makeStream(PFA_Profile& profile, const SCL_StringRef& name, unsigned int slot);
  unsigned int configureStream(PFA_Profile& profile, unsigned int slot);
  void publish(unsigned int slot) noexcept;

  std::recursive_mutex m_lock;
  // Both are changed under the lock and read without it, so that an entry that nobody wants does
  // not wait; the lock orders everything else.
  std::atomic<std::uint32_t> m_active{0};
  std::atomic<std::uint32_t> m_levels[DEBUG + 1] = {};  // for each level, the streams reaching it
  std::uint32_t m_attached = 0;                         // the host's, which have no section
  std::unique_ptr<LOG_Stream> m_streams[STREAMS];
};

// Mail text as a log argument: control characters become blanks, so that no mail forges a line.
//
//   log.writeText(15, 11, 1, "Bad value \"%s\" found.", LOG_Clean(value).c_str());
class LOG_Clean {
 public:
  explicit LOG_Clean(std::string_view text);
  const char* c_str() const noexcept { return m_text.c_str(); }

 private:
  std::string m_text;
};
