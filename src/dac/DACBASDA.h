// DAC_BaseDataAccess: the one interface to content (a body, an attachment, a template, a decoded
// part): a cursor and positional reads and writes, lines, single characters, named attributes,
// child objects, and the content as a file on disk. The bytes live in a shared stream; the kinds
// differ in which stream they make and what they forward. An object owns its children and holds one
// reference on its stream; it does not own its parent. Used by one thread at a time.
//
// Every operation that ends in a status does nothing when that is nonzero on entry and returns 0; a
// failure puts a code of gen/GENCODES.h into it, the object keeps its state. Operations at a
// position advance it by the bytes processed, the cursor variants the cursor. Those on content
// need a stream (assertion 1 without).
//
//   DAC_MemoryDataAccess text;
//   text.writeLine(5, "hello", status);
//   text.setPosition(0, status);
//   dac::readStringLine(text, line, status);   // dac/DACSTRNG.h
#pragma once

#include <cstdint>
#include <iosfwd>
#include <memory>
#include <string_view>

#include "atr/ATRATLST.h"
#include "dac/DACABSST.h"
#include "dac/DACATTRN.h"
#include "scl/SCLPVEC.h"
#include "scl/SCLSTRNG.h"

class SCL_DumpIndent;

class DAC_BaseDataAccess {
 public:
  // Modes of seek. Any other makes the cursor the offset, unchecked.
  static constexpr int FROM_START = 1;
  static constexpr int FROM_CURSOR = 2;
  static constexpr int FROM_END = 3;

  DAC_BaseDataAccess() noexcept;
  // Takes one more reference on `stream`; null is an assertion (1).
  explicit DAC_BaseDataAccess(DAC_Stream* stream);
  DAC_BaseDataAccess(const DAC_BaseDataAccess&) = delete;
  DAC_BaseDataAccess& operator=(const DAC_BaseDataAccess&) = delete;

  // The virtual operations, in slot order.

  // 10039 when there is no such attribute, 10040 when it is of the other kind. `value` is 0 or
  // empty on every failure, also when the status was set on entry. Names are compared without
  // regard to case.
  virtual void getIntegerAttribute(const SCL_StringRef& name, std::uint32_t& value,
                                   unsigned int& status);
  virtual void getStringAttribute(const SCL_StringRef& name, SCL_String& value,
                                  unsigned int& status);
  // Deletes the children and the temporary file; a parent's slot becomes null.
  virtual ~DAC_BaseDataAccess();
  virtual std::int32_t size(unsigned int& status);
  virtual void setSize(std::int32_t newSize, unsigned int& status);
  // Both return the cursor; 10017 for a place before the start or beyond 2,147,483,647, the cursor
  // as it was.
  virtual std::int32_t setPosition(std::int32_t position, unsigned int& status);
  virtual std::int32_t seek(int mode, std::int32_t offset, unsigned int& status);
  virtual std::int32_t readAt(std::int32_t& position, std::int32_t count, void* buffer,
                              unsigned int& status);
  virtual std::int32_t read(std::int32_t count, void* buffer, unsigned int& status);
  // Lines as DAC_Stream::readLine and its kinds give them.
  virtual std::int32_t readLineAt(std::int32_t& position, std::int32_t size, char* buffer,
                                  unsigned int& status);
  virtual std::int32_t readLine(std::int32_t size, char* buffer, unsigned int& status);
  virtual void writeAt(std::int32_t& position, std::int32_t count, const void* data,
                       unsigned int& status);
  virtual void write(std::int32_t count, const void* data, unsigned int& status);
  virtual void writeLineAt(std::int32_t& position, std::int32_t count, const char* text,
                           unsigned int& status);
  virtual void writeLine(std::int32_t count, const char* text, unsigned int& status);
  virtual std::int32_t getPosition() const;
  virtual void fill(std::int32_t count, char byte, unsigned int& status);
  virtual char getCharAt(std::int32_t& position, unsigned int& status);
  virtual char getChar(unsigned int& status);
  virtual char peekChar(unsigned int& status);  // the cursor stays
  virtual void putCharAt(std::int32_t& position, char byte, unsigned int& status);
  virtual void putChar(char byte, unsigned int& status);
  virtual void flush(unsigned int& status);
  virtual void reservedHook(unsigned int& status);
  virtual bool hasChildren(unsigned int& status);
  virtual std::uint32_t childCount(unsigned int& status);
  // The child stays this object's; null for a detached slot. 10010 without children, 10015 beyond.
  virtual DAC_BaseDataAccess* getChild(std::uint32_t index, unsigned int& status);
  // The three that put a child in take ownership and make this object its parent; a null child is
  // an assertion (1). addChild returns the child.
  virtual DAC_BaseDataAccess* addChild(DAC_BaseDataAccess* child, unsigned int& status);
  // The child that the slot held becomes the caller's, without a parent. Beyond the count nothing
  // happens, and `child` stays the caller's.
  virtual void setChild(std::uint32_t index, DAC_BaseDataAccess* child, unsigned int& status);
  // Later children move up. Beyond the count the slots in between stay null; an index of a million
  // or more is an assertion (1).
  virtual void insertChild(std::uint32_t index, DAC_BaseDataAccess* child, unsigned int& status);
  // The slot becomes null, the child the caller's, without a parent; the count stays.
  virtual void detachChild(std::uint32_t index, unsigned int& status);
  // The path of a file that holds the whole content. It is a temporary one, made at the first call
  // (as the content is then) and deleted with this object. 140 no name, 10026 `buffer` too small
  // for path and terminator, 10027 no file, else as dac::copyToFile.
  virtual void getFileName(std::int32_t size, char* buffer, unsigned int& status);
  virtual void setIntegerAttribute(const SCL_StringRef& name, std::uint32_t value);
  virtual void setStringAttribute(const SCL_StringRef& name, const SCL_StringRef& value);
  virtual ATR_Attribute* findAttribute(const SCL_StringRef& name);
  // As the get operations, but `value` stays untouched when the status is set on entry.
  virtual void lookupIntegerAttribute(const SCL_StringRef& name, std::uint32_t& value,
                                      unsigned int& status);
  virtual void lookupStringAttribute(const SCL_StringRef& name, SCL_String& value,
                                     unsigned int& status);
  // As the get operations; a name that is not found is searched in the parents.
  virtual void getInheritedIntegerAttribute(const SCL_StringRef& name, std::uint32_t& value,
                                            unsigned int& status);
  virtual void getInheritedStringAttribute(const SCL_StringRef& name, SCL_String& value,
                                           unsigned int& status);
  // Null at the end. Valid until the next change of the attributes.
  virtual ATR_Attribute* firstAttribute();
  virtual ATR_Attribute* nextAttribute();
  virtual void dump(const SCL_StringRef& name, std::ostream& stream, SCL_DumpIndent& indent);

  // Beyond the slots: the bytes from `position` on that lie ready in memory (DAC_Stream::window),
  // and the stream itself (of the referred object, for a pointer object). May be empty / null.
  virtual std::string_view window(std::int32_t position);
  virtual DAC_Stream* stream() const noexcept;

  // 0 without a stream. An unterminated last line counts where readLine gives it with status 0, so
  // in a file and in a sub-range, but not in memory.
  std::uint32_t lineCount();
  // Copies from `start` to the end into `destination` at its cursor; null: nothing happens.
  void copyTo(DAC_BaseDataAccess* destination, std::int32_t start, unsigned int& status);
  // The destination is emptied first; one that shares this object's stream stays as it is.
  void copyAllTo(DAC_BaseDataAccess* destination, std::int32_t start, unsigned int& status);
  void copyAttributesTo(DAC_BaseDataAccess* destination, unsigned int& status);
  // Whether `bytes` stand at `position`, which moves past the first byte that differs; the
  // content's end before them is false with status 0. Null bytes are an assertion (1).
  bool matchesAt(std::int32_t& position, std::int32_t count, const void* bytes,
                 unsigned int& status);
  // 10016 and 0 when the content ends too early.
  std::uint16_t readUInt16LE(std::int32_t& position, unsigned int& status);
  std::uint16_t readUInt16BE(std::int32_t& position, unsigned int& status);
  std::uint32_t readUInt32LE(std::int32_t& position, unsigned int& status);
  std::uint32_t readUInt32BE(std::int32_t& position, unsigned int& status);

  ATR_AttributeList& attributes() noexcept { return m_Attributes; }
  DAC_BaseDataAccess* parent() const noexcept { return m_Parent; }
  bool isModified() const noexcept { return m_Modified != 0; }

 protected:
  struct CopyOf {};
  struct Replace {};
  // A view's constructor: cursor, deep copy of the attributes, parent pointer (without a slot in
  // it; it must live when inherited attributes are asked for), one more reference on the stream;
  // not modified, no temporary file, no children.
  DAC_BaseDataAccess(CopyOf, const DAC_BaseDataAccess& source);
  // Takes the place of the heap object `other` (attributes, cursor, stream, its slot in the parent,
  // its children) and deletes it. Null is an assertion (1).
  DAC_BaseDataAccess(Replace, DAC_BaseDataAccess* other);

  std::uint32_t m_Modified = 0;
  std::int32_t m_CurPos = 0;
  ATR_AttributeList m_Attributes;
  DAC_BaseDataAccess* m_Parent = nullptr;
  std::uint32_t m_CurAttr = 0;
  DAC_StreamRef m_Stream;
  SCL_String m_TempFile;
  bool m_HaveTempFile = false;
  SCL_PtrVector<DAC_BaseDataAccess, std::uint32_t> DACList;

 private:
  static constexpr std::uint32_t NO_SLOT = 0xFFFFFFFF;

  DAC_Stream& requireStream() const;  // assertion 1 when there is none
  ATR_Attribute* attributeOf(const SCL_StringRef& name, ATR_AttributeType type,
                             unsigned int& status) const;
  ATR_Attribute* currentAttribute() const;
  void moveTo(std::int64_t position, unsigned int& status) noexcept;
  void place(std::uint32_t index, DAC_BaseDataAccess* child);
  void letGo(std::uint32_t index) noexcept;
  void replaceChild(const DAC_BaseDataAccess& child, DAC_BaseDataAccess* replacement) noexcept;
  std::string_view readPiece(std::int32_t& position, std::int32_t count,
                             std::unique_ptr<char[]>& buffer, unsigned int& status);
  template <class Unsigned>
  Unsigned readUnsigned(std::int32_t& position, bool leastFirst, unsigned int& status);

  // Where the parent holds this object, or held it before other children moved; NO_SLOT for one
  // that stands in no parent's list. So a child need not be searched for among thousands.
  std::uint32_t m_slot = NO_SLOT;
};
