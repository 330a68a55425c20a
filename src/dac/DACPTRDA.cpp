// The pointer data access object.
#include "dac/DACPTRDA.h"

#include "gen/GENCODES.h"

void DAC_PointerDataAccess::getIntegerAttribute(const SCL_StringRef& name, std::uint32_t& value,
                                                unsigned int& status) {
  const bool mayAsk = status == 0;
  DAC_BaseDataAccess::getIntegerAttribute(name, value, status);
  if (mayAsk && status == DAC_NO_ATTRIBUTE) {
    status = 0;
    m_referred->getIntegerAttribute(name, value, status);
  }
}

void DAC_PointerDataAccess::getStringAttribute(const SCL_StringRef& name, SCL_String& value,
                                               unsigned int& status) {
  const bool mayAsk = status == 0;
  DAC_BaseDataAccess::getStringAttribute(name, value, status);
  if (mayAsk && status == DAC_NO_ATTRIBUTE) {
    status = 0;
    m_referred->getStringAttribute(name, value, status);
  }
}

std::int32_t DAC_PointerDataAccess::size(unsigned int& status) {
  return m_referred->size(status);
}

void DAC_PointerDataAccess::setSize(std::int32_t newSize, unsigned int& status) {
  m_referred->setSize(newSize, status);
}

std::int32_t DAC_PointerDataAccess::setPosition(std::int32_t position, unsigned int& status) {
  return m_referred->setPosition(position, status);
}

std::int32_t DAC_PointerDataAccess::seek(int mode, std::int32_t offset, unsigned int& status) {
  return m_referred->seek(mode, offset, status);
}

std::int32_t DAC_PointerDataAccess::readAt(std::int32_t& position, std::int32_t count, void* buffer,
                                           unsigned int& status) {
  return m_referred->readAt(position, count, buffer, status);
}

std::int32_t DAC_PointerDataAccess::read(std::int32_t count, void* buffer, unsigned int& status) {
  return m_referred->read(count, buffer, status);
}

std::int32_t DAC_PointerDataAccess::readLineAt(std::int32_t& position, std::int32_t size,
                                               char* buffer, unsigned int& status) {
  return m_referred->readLineAt(position, size, buffer, status);
}

std::int32_t DAC_PointerDataAccess::readLine(std::int32_t size, char* buffer,
                                             unsigned int& status) {
  return m_referred->readLine(size, buffer, status);
}

void DAC_PointerDataAccess::writeAt(std::int32_t& position, std::int32_t count, const void* data,
                                    unsigned int& status) {
  m_referred->writeAt(position, count, data, status);
}

void DAC_PointerDataAccess::write(std::int32_t count, const void* data, unsigned int& status) {
  m_referred->write(count, data, status);
}

void DAC_PointerDataAccess::writeLineAt(std::int32_t& position, std::int32_t count,
                                        const char* text, unsigned int& status) {
  m_referred->writeLineAt(position, count, text, status);
}

void DAC_PointerDataAccess::writeLine(std::int32_t count, const char* text, unsigned int& status) {
  m_referred->writeLine(count, text, status);
}

std::int32_t DAC_PointerDataAccess::getPosition() const {
  return m_referred->getPosition();
}

void DAC_PointerDataAccess::fill(std::int32_t count, char byte, unsigned int& status) {
  m_referred->fill(count, byte, status);
}

char DAC_PointerDataAccess::getCharAt(std::int32_t& position, unsigned int& status) {
  return m_referred->getCharAt(position, status);
}

char DAC_PointerDataAccess::getChar(unsigned int& status) {
  return m_referred->getChar(status);
}

char DAC_PointerDataAccess::peekChar(unsigned int& status) {
  return m_referred->peekChar(status);
}

void DAC_PointerDataAccess::putCharAt(std::int32_t& position, char byte, unsigned int& status) {
  m_referred->putCharAt(position, byte, status);
}

void DAC_PointerDataAccess::putChar(char byte, unsigned int& status) {
  m_referred->putChar(byte, status);
}

void DAC_PointerDataAccess::flush(unsigned int& status) {
  m_referred->flush(status);
}

void DAC_PointerDataAccess::reservedHook(unsigned int& status) {
  m_referred->reservedHook(status);
}

std::uint32_t DAC_PointerDataAccess::childCount(unsigned int& status) {
  return m_referred->childCount(status);
}

DAC_BaseDataAccess* DAC_PointerDataAccess::getChild(std::uint32_t index, unsigned int& status) {
  return m_referred->getChild(index, status);
}

DAC_BaseDataAccess* DAC_PointerDataAccess::addChild(DAC_BaseDataAccess* child,
                                                    unsigned int& status) {
  return m_referred->addChild(child, status);
}

void DAC_PointerDataAccess::insertChild(std::uint32_t index, DAC_BaseDataAccess* child,
                                        unsigned int& status) {
  m_referred->insertChild(index, child, status);
}

void DAC_PointerDataAccess::detachChild(std::uint32_t index, unsigned int& status) {
  m_referred->detachChild(index, status);
}

ATR_Attribute* DAC_PointerDataAccess::findAttribute(const SCL_StringRef& name) {
  ATR_Attribute* own = DAC_BaseDataAccess::findAttribute(name);
  return own != nullptr ? own : m_referred->findAttribute(name);
}

ATR_Attribute* DAC_PointerDataAccess::firstAttribute() {
  ATR_Attribute* attribute = m_referred->firstAttribute();
  m_ownIteration = attribute == nullptr;
  return m_ownIteration ? DAC_BaseDataAccess::firstAttribute() : attribute;
}

ATR_Attribute* DAC_PointerDataAccess::nextAttribute() {
  if (m_ownIteration) {
    return DAC_BaseDataAccess::nextAttribute();
  }
  ATR_Attribute* attribute = m_referred->nextAttribute();
  m_ownIteration = attribute == nullptr;
  return m_ownIteration ? DAC_BaseDataAccess::firstAttribute() : attribute;
}

std::string_view DAC_PointerDataAccess::window(std::int32_t position) {
  return m_referred->window(position);
}

DAC_Stream* DAC_PointerDataAccess::stream() const noexcept {
  return m_referred->stream();
}
