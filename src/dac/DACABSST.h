// DAC_Stream: a store of bytes with positional access, the base of all stream kinds. Several data
// access objects may share one; it counts its references and deletes itself at the last release.
//
// Positions are signed 32-bit byte offsets, passed by reference and advanced by the bytes
// processed. Every operation with a status does nothing when that is nonzero on entry and puts a
// code of gen/GENCODES.h into it on failure: 10016 for a position at or beyond the end, 10017 for a
// negative one, others as each kind tells. A stream keeps its content across every failure.
//
//   DAC_StreamRef stream = DAC_StreamRef::adopt(new DAC_MemoryStream);
//   std::int32_t position = 0;
//   stream->write(position, 5, "hello", status);   // position is 5 now
//
// Threads: a stream and all that share it are used by one thread; the count is a plain integer.
#pragma once

#include <cstdint>
#include <string_view>

class DAC_Stream {
 public:
  static constexpr std::int64_t MAX_SIZE = 2147483647;  // positions are signed 32-bit

  DAC_Stream() noexcept = default;
  DAC_Stream(const DAC_Stream&) = delete;
  DAC_Stream& operator=(const DAC_Stream&) = delete;

  virtual ~DAC_Stream();
  virtual std::int32_t size(unsigned int& status) = 0;
  // Content beyond a smaller size is gone, bytes up to a larger one are zero.
  virtual void setSize(std::int32_t newSize, unsigned int& status) = 0;
  // The number of bytes read, below `count` where the content ends.
  virtual std::int32_t read(std::int32_t& position, std::int32_t count, void* buffer,
                            unsigned int& status) = 0;
  // One line without its line end (LF, CR, CR LF or LF CR) into a buffer of `size` bytes, always
  // terminated. 10014: the buffer is full; what follows, be it only the line end, is the next line.
  // A last line need not be ended. The result is the line's length.
  virtual std::int32_t readLine(std::int32_t& position, std::int32_t size, char* buffer,
                                unsigned int& status);
  // A count of 0 or less writes nothing. `data` may be a part of this very content (a window).
  virtual void write(std::int32_t& position, std::int32_t count, const void* data,
                     unsigned int& status) = 0;
  virtual void writeLine(std::int32_t& position, std::int32_t count, const char* text,
                         unsigned int& status);  // the text, then CR LF
  virtual void fill(std::int32_t& position, std::int32_t count, char byte, unsigned int& status);
  virtual char getChar(std::int32_t& position, unsigned int& status) = 0;  // 0 on failure
  virtual void putChar(std::int32_t& position, char byte, unsigned int& status) = 0;
  virtual void flush(unsigned int& status);

  // Beyond the interface's slots: the bytes from `position` on that lie ready in memory, without a
  // copy; empty at the end, for a position outside, where the kind keeps nothing in memory, and
  // where a read would fail (a read then tells why). May be shorter than what follows. Valid until
  // the next operation on the stream.
  virtual std::string_view window(std::int32_t position);

  // True when every write lands at the end of the content whatever the position, which still
  // advances by the bytes written.
  bool appendOnly() const noexcept { return m_appendOnly; }

  void addReference() noexcept { ++m_references; }
  void release() noexcept;  // deletes the stream at the last one
  std::int32_t references() const noexcept { return m_references; }

 protected:
  bool m_appendOnly = false;

 private:
  std::string_view nextPiece(std::int32_t position, std::int32_t room, char* buffer,
                             unsigned int& status);
  void skipLineEnd(std::int32_t& position, std::string_view bytes);

  std::int32_t m_references = 1;  // the creator's
};

// Holds one reference.
class DAC_StreamRef {
 public:
  DAC_StreamRef() noexcept = default;
  // Takes over the caller's reference.
  static DAC_StreamRef adopt(DAC_Stream* stream) noexcept { return DAC_StreamRef(stream); }
  // Takes a further reference; the caller keeps its own.
  static DAC_StreamRef share(DAC_Stream* stream) noexcept {
    if (stream != nullptr) {
      stream->addReference();
    }
    return DAC_StreamRef(stream);
  }
  DAC_StreamRef(DAC_StreamRef&& other) noexcept : m_stream(other.m_stream) {
    other.m_stream = nullptr;
  }
  DAC_StreamRef& operator=(DAC_StreamRef&& other) noexcept {
    DAC_Stream* mine = m_stream;
    m_stream = other.m_stream;
    other.m_stream = mine;
    return *this;
  }
  DAC_StreamRef(const DAC_StreamRef&) = delete;
  DAC_StreamRef& operator=(const DAC_StreamRef&) = delete;
  ~DAC_StreamRef() {
    if (m_stream != nullptr) {
      m_stream->release();
    }
  }
  DAC_Stream* get() const noexcept { return m_stream; }
  DAC_Stream* operator->() const noexcept { return m_stream; }
  explicit operator bool() const noexcept { return m_stream != nullptr; }

 private:
  explicit DAC_StreamRef(DAC_Stream* stream) noexcept : m_stream(stream) {}
  DAC_Stream* m_stream = nullptr;
};
