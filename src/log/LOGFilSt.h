// LOG_FileStream: a log stream that writes text lines into files named by date or number, or into
// memory (TransientFile). Its file is opened by the first entry, and by the first of a new day for
// files named by date; each entry is handed to the system in one write at the end of the file, so
// that several processes may log into one. A lock of its own keeps its operations apart.
//
// An entry that cannot be written is dropped, whatever the reason; a file that cannot be opened is
// tried again at most once a second, so that a broken log costs its writers nothing.
#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "dv/DVDATE.h"
#include "log/LOGNAME.h"
#include "log/LOGSTRM.h"
#include "plat/PlatClock.h"

class LOG_FileStream : public LOG_Stream {
 public:
  explicit LOG_FileStream(const char* name);
  ~LOG_FileStream() override;

  // 10625 for a NameType without FileRootName; 10618 or 10626 for a root that does not fit it.
  // Finds the oldest (and, by number, the newest) of the series' files.
  void endOfConfiguration(unsigned int& status) override;
  // FileRootName (10626; 10629 for a directory that does not exist; 121 to 125 for a name that is
  // none) and NameType (10617); the base's keys. A root without NameType is the file's name.
  void configureKey(const SCL_StringRef& key, const SCL_StringRef& value,
                    unsigned int& status) override;
  // Appends each file that is older than the one in use to the file that `target` and its own name
  // make together, oldest first; with `deleteFiles` each is deleted after that. Stops at the first
  // failure, which `progress` then tells, and goes on from there when it is called again with it.
  void maintain(const SCL_StringRef& target, bool deleteFiles, LOG_Progress& progress,
                unsigned int& status) override;
  void writeDataObject(unsigned int facility, unsigned int level, DAC_BaseDataAccess& object,
                       bool raw) override;
  void writeEntry(unsigned int facility, unsigned int level, unsigned int length, const char* text,
                  bool raw) override;
  // The next entry opens the log again. With `deleteFile` a UserFile is deleted, a SystemFile
  // refuses with 10622 and stays open; a TransientFile's entries are gone either way.
  void close(bool deleteFile, unsigned int& status) override;
  // Without a root name: the assertion 1 at LOGFilSt.
  void open(unsigned int& status) override;
  // Nothing happens while the log is not open.
  void copyLogToFile(const SCL_StringRef& path, unsigned int& status) override;
  void readLog(DAC_BaseDataAccess& target, unsigned int& status) override;

 private:
  using Kind = LOG_NamePattern::Kind;

  void setRootName(const SCL_StringRef& value, unsigned int& status);
  void findExisting(unsigned int& status);

  // Opening.
  bool isReady(const plat::LocalTime& now);
  void closeAtNewDay(const plat::LocalTime& now);
  void openLog(const plat::LocalTime& now, unsigned int& status);
  std::unique_ptr<DAC_BaseDataAccess> makeLog(const DV_Date& today, unsigned int& status);
  std::unique_ptr<DAC_BaseDataAccess> openFile(const DV_Date& today, unsigned int& status);
  std::string nextNumberedName(std::uint32_t& number, unsigned int& status) const;

  // Writing.
  template <class Write>
  void append(Write write);
  void writeLine(const plat::LocalTime& now, unsigned int facility, unsigned int level,
                 std::string_view text, unsigned int& status);
  void writeDump(const plat::LocalTime& now, unsigned int facility, unsigned int level,
                 std::uint32_t offset, std::string_view bytes, unsigned int& status);
  void writeLinesOf(DAC_BaseDataAccess& object, const plat::LocalTime& now, unsigned int facility,
                    unsigned int level, unsigned int& status);
  void writeDumpOf(DAC_BaseDataAccess& object, const plat::LocalTime& now, unsigned int facility,
                   unsigned int level, unsigned int& status);

  // Maintaining.
  unsigned int olderFiles(std::uint32_t first, std::vector<std::uint32_t>& keys) const;
  std::uint32_t firstKey(const LOG_Progress& progress) const;
  std::uint32_t keyInUse() const;
  void passFile(std::uint32_t key, const SCL_StringRef& target, bool deleteFile,
                LOG_Progress& progress, unsigned int& status);
  void noteFailure(std::uint32_t key, LOG_Progress& progress) const;

  std::recursive_mutex m_lock;
  std::string m_root;  // as configured; empty: none
  Kind m_nameType = Kind::none;
  LOG_NamePattern m_names;
  DV_Date m_openDate = DV_Date::NULL_DATE;
  std::uint32_t m_lowest = 0;  // key of the oldest file: a day's number, at most today, or a number
  std::uint32_t m_highest = 0;                   // by number only: the newest
  std::unique_ptr<DAC_BaseDataAccess> m_object;  // the open log
  std::int64_t m_retryAt = 0;                    // monotonic: no earlier attempt to open
  std::string m_line;                            // the line being put together; keeps its room
};
