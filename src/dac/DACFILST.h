// DAC_FileStream: content in a file. An existing file is opened for reading and appending (every
// write lands at its end), a created one for reading and writing. Reads go through a window of
// up to 64 KiB that is filled again at its end, so that growth by others is seen; a file that was
// opened for reading only has the size and the end that it had at the open. Writes are gathered and
// handed on to the system at flush, size, any read and close. A flush is not a commit to the disk.
// The destructor closes; close() and commit() tell what it cannot.
//
// Failures: 10020 the position or size cannot be had (also of a stream that is not open, and of a
// file that has grown past 2,147,483,647 bytes), 10021 reading, 10022 writing, also of what was
// gathered before, 10023 setSize, 10034 flush and commit. What was gathered stays to be written
// again, but for an appending stream, which might write a part twice and drops it.
#pragma once

#include <cstddef>
#include <cstdlib>
#include <memory>

#include "dac/DACABSST.h"
#include "fl/FLFILE.h"
#include "scl/SCLSTRNG.h"

class DAC_FileStream : public DAC_Stream {
 public:
  struct Options {
    bool deleteOnClose = false;
    bool readOnly = false;            // open: no write access is asked for
    bool noFollow = false;            // a symbolic link is refused
    bool otherCase = false;           // open: try the extension in the other letter case
    bool lateName = false;            // create: the name is there once the file is committed
    unsigned int permissions = 0666;  // create: masked by the umask
  };

  DAC_FileStream() noexcept = default;
  ~DAC_FileStream() override;

  // Both close what was open first. On failure nothing is open.
  // 121, 122, 123 from the file name check; 4294967295 when the file layer refuses or the file is
  // larger than 2,147,483,647 bytes.
  void open(const SCL_StringRef& path, const Options& options, unsigned int& status);
  // 10013 for anything but a name that does not exist, also when another process makes it at the
  // same moment; 4294967295 when the file layer refuses.
  void create(const SCL_StringRef& path, const Options& options, unsigned int& status);
  // The checked close: 10022 when gathered bytes could not be written, 10034 when closing failed;
  // the file is closed in any case, and deleted when that was asked for.
  void close(unsigned int& status);
  void setDeleteOnClose(bool isDeleted) noexcept { m_DeleteOnClose = isDeleted; }
  void commit(unsigned int& status);  // flush, then to stable storage; 10034

  const SCL_String& path() const noexcept { return m_Path; }  // empty when none is open

  std::int32_t size(unsigned int& status) override;
  void setSize(std::int32_t newSize, unsigned int& status) override;
  std::int32_t read(std::int32_t& position, std::int32_t count, void* buffer,
                    unsigned int& status) override;
  void write(std::int32_t& position, std::int32_t count, const void* data,
             unsigned int& status) override;
  char getChar(std::int32_t& position, unsigned int& status) override;
  void putChar(std::int32_t& position, char byte, unsigned int& status) override;
  void flush(unsigned int& status) override;
  std::string_view window(std::int32_t position) override;

 private:
  static constexpr std::size_t BUFFER_SIZE = 65536;
  static constexpr std::size_t LEAST_BUFFER_SIZE = 4096;  // mails are small and come by thousands
  static constexpr std::size_t LEAST_READ_BUFFER = 512;   // envelopes are smaller still
  struct Free {
    void operator()(char* buffer) const noexcept { std::free(buffer); }
  };
  // The one buffer holds what was read of the file or what is still to be written to it.
  enum class Buffered { nothing, read, gathered };

  void opened(SCL_String&& path, const Options& options) noexcept;
  bool seekTo(std::int32_t position, unsigned int& status) const noexcept;
  std::string_view fetch(std::int64_t position, unsigned int& status);
  void gather(std::int64_t position, std::string_view bytes, unsigned int& status);
  bool takesUp(std::int64_t position, std::size_t count) const noexcept;
  bool haveBuffer(std::int64_t bytes, unsigned int& status) noexcept;
  bool handOn() noexcept;
  void dropBuffered() noexcept;

  FL_File m_file;
  SCL_String m_Path;
  bool m_DeleteOnClose = false;
  bool m_readOnly = false;
  Buffered m_buffered = Buffered::nothing;
  std::unique_ptr<char[], Free> m_buffer;
  std::size_t m_capacity = 0;   // of the buffer
  std::int64_t m_lastSize = 0;  // of the file when it was asked last: how much a read may bring
  std::int64_t m_start = 0;     // where the buffered bytes lie in the file
  std::size_t m_used = 0;
};

namespace dac {
// The status of a result of dv::checkFile or dv::decodePath: 0, 121 for wildcards in the name, 123
// for a file that does not exist, 122 for anything else that names no file.
unsigned int fileCheckStatus(int result) noexcept;
}  // namespace dac
