// DAC_FileDataAccess: content in a named file (dac/DACFILST.h). Sets ContentTitle (name and
// extension) and ContentPath.
#pragma once

#include "dac/DACBASDA.h"

class DAC_FileStream;

class DAC_FileDataAccess : public DAC_BaseDataAccess {
 public:
  static constexpr unsigned int CREATE = 1;  // made when missing, opened when it exists
  static constexpr unsigned int DELETE_ON_CLOSE = 2;
  // Further flags of this system's own callers.
  static constexpr unsigned int READ_ONLY = 0x100;   // open: no write access is asked for
  static constexpr unsigned int EXCLUSIVE = 0x200;   // with CREATE: 10013 stays when it exists
  static constexpr unsigned int SPOOL = 0x400;       // no symbolic links; created with mode 0660
  static constexpr unsigned int OTHER_CASE = 0x800;  // try the extension in the other letter case
  static constexpr unsigned int LOG_FILE = 0x1000;   // created with mode 0640
  // With CREATE and EXCLUSIVE: the file has its name once it is committed, whole.
  static constexpr unsigned int LATE_NAME = 0x2000;

  // The statuses of DAC_FileStream's open and create. The object of a failed open has a stream
  // without a file, whose operations fail.
  DAC_FileDataAccess(const SCL_StringRef& path, unsigned int flags, unsigned int& status);

  // What a destructor cannot report; see DAC_FileStream.
  void commit(unsigned int& status);
  void close(unsigned int& status);

 private:
  DAC_FileStream& fileStream() const noexcept;
  void setNameAttributes(const SCL_StringRef& path, unsigned int& status);
};
