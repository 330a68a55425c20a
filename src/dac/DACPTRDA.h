// DAC_PointerDataAccess: forwards content, children and cursor to another object, which it does
// not own and which must outlive it. Attributes of its own are found before that object's;
// setting one changes the own attributes only. hasChildren, setChild, getFileName, the inherited
// attributes and the dump are those of this very object, so children are asked for by childCount.
#pragma once

#include "dac/DACBASDA.h"

class DAC_PointerDataAccess : public DAC_BaseDataAccess {
 public:
  explicit DAC_PointerDataAccess(DAC_BaseDataAccess& referred) noexcept : m_referred(&referred) {}

  void getIntegerAttribute(const SCL_StringRef& name, std::uint32_t& value,
                           unsigned int& status) override;
  void getStringAttribute(const SCL_StringRef& name, SCL_String& value,
                          unsigned int& status) override;
  std::int32_t size(unsigned int& status) override;
  void setSize(std::int32_t newSize, unsigned int& status) override;
  std::int32_t setPosition(std::int32_t position, unsigned int& status) override;
  std::int32_t seek(int mode, std::int32_t offset, unsigned int& status) override;
  std::int32_t readAt(std::int32_t& position, std::int32_t count, void* buffer,
                      unsigned int& status) override;
  std::int32_t read(std::int32_t count, void* buffer, unsigned int& status) override;
  std::int32_t readLineAt(std::int32_t& position, std::int32_t size, char* buffer,
                          unsigned int& status) override;
  std::int32_t readLine(std::int32_t size, char* buffer, unsigned int& status) override;
  void writeAt(std::int32_t& position, std::int32_t count, const void* data,
               unsigned int& status) override;
  void write(std::int32_t count, const void* data, unsigned int& status) override;
  void writeLineAt(std::int32_t& position, std::int32_t count, const char* text,
                   unsigned int& status) override;
  void writeLine(std::int32_t count, const char* text, unsigned int& status) override;
  std::int32_t getPosition() const override;
  void fill(std::int32_t count, char byte, unsigned int& status) override;
  char getCharAt(std::int32_t& position, unsigned int& status) override;
  char getChar(unsigned int& status) override;
  char peekChar(unsigned int& status) override;
  void putCharAt(std::int32_t& position, char byte, unsigned int& status) override;
  void putChar(char byte, unsigned int& status) override;
  void flush(unsigned int& status) override;
  void reservedHook(unsigned int& status) override;
  std::uint32_t childCount(unsigned int& status) override;
  DAC_BaseDataAccess* getChild(std::uint32_t index, unsigned int& status) override;
  DAC_BaseDataAccess* addChild(DAC_BaseDataAccess* child, unsigned int& status) override;
  void insertChild(std::uint32_t index, DAC_BaseDataAccess* child, unsigned int& status) override;
  void detachChild(std::uint32_t index, unsigned int& status) override;
  ATR_Attribute* findAttribute(const SCL_StringRef& name) override;
  // The referred object's attributes come first.
  ATR_Attribute* firstAttribute() override;
  ATR_Attribute* nextAttribute() override;
  std::string_view window(std::int32_t position) override;
  DAC_Stream* stream() const noexcept override;

 private:
  DAC_BaseDataAccess* m_referred;
  bool m_ownIteration = false;  // the iteration has come to the own attributes
};
