// FL_TextFile: a text file read and written line by line. One thread at a time uses an object.
//
//   FL_TextFile file;
//   char line[256];
//   if (file.openForInput("/etc/krx/krx.ini", FL_TextFile::READ) == 0)
//     while (file.readLine(sizeof line, line) == 0) ...
#pragma once

#include <cstdint>
#include <memory>

#include "fl/FLFILE.h"
#include "scl/SCLSTRNG.h"

class FL_TextFile {
 public:
  // Open modes; the low four bits also know 2, 3 read and update; 5, 7 write and update; 9, 11
  // append and update; 6 and 10 are the same as 4 and 8. Any other is an assertion (18).
  static constexpr unsigned int READ = 1;
  static constexpr unsigned int WRITE = 4;  // truncates
  static constexpr unsigned int APPEND = 8;
  static constexpr unsigned int WRITERS_EXCLUDED = 16;
  static constexpr unsigned int NOTHING_EXCLUDED = 32;
  static constexpr unsigned int TEXT = 64;  // text translation: none is needed on this platform

  FL_TextFile() noexcept = default;
  FL_TextFile(const FL_TextFile&) = delete;
  FL_TextFile& operator=(const FL_TextFile&) = delete;
  ~FL_TextFile();  // closes; who must know whether all was written calls close()

  // 0 or -1. Input requires an existing file, whose extension may stand in the other letter case;
  // output any valid name.
  int openForInput(const SCL_StringRef& path, unsigned int mode);
  int openForOutput(const SCL_StringRef& path, unsigned int mode, unsigned int permissions = 0666);
  // For writing, only when nothing has this name yet.
  int createNew(const SCL_StringRef& path, unsigned int permissions = 0666);
  // 0 when something was read (an empty line counts), 1 at the end of the file, -1 on an error.
  // Stops at LF or CR, which is not stored; a longer line comes in pieces. Size below 1: assertion.
  int readLine(unsigned int size, char* buffer);
  // The line of the file, from 1, in which the last readLine began; CR LF ends one line.
  unsigned int lineNumber() const noexcept { return m_lineNumber; }
  int writeLine(const SCL_StringRef& text);  // the text and LF; 0 or -1
  // For lines of a fixed shape: more than 255 characters are an assertion.
  int writeFormatted(const char* format, ...) __attribute__((format(printf, 2, 3)));
  int commit();  // what was written is on stable storage; 0 or -1
  int close();   // 0 or -1: what was written reached the file
  FL_File& file() noexcept { return m_file; }

 private:
  static constexpr std::size_t BUFFER_SIZE = 16384;

  int openFile(const SCL_StringRef& path, const plat::OpenMode& mode);
  void reset() noexcept;
  int startReading();
  int startWriting();
  int fill();
  bool takePart(std::size_t room, char* buffer, std::size_t& length);
  void countLineEnd(char end) noexcept;
  int put(const char* text, std::size_t count);
  int flush();

  FL_File m_file;
  std::unique_ptr<char[]> m_buffer;  // read ahead, or gathered for writing
  std::size_t m_used = 0;
  std::size_t m_next = 0;  // reading: the next unread byte
  std::int64_t m_position =
      0;  // reading: where the buffer ends in the file; writing: where it goes
  bool m_append = false;
  bool m_writing = false;
  bool m_failed = false;  // something that was written is lost
  unsigned int m_lineNumber = 0;
  unsigned int m_lineEnds = 0;
  bool m_afterReturn = false;  // the byte read last was a CR
};
