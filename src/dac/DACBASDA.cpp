// The data access object: construction, content and children.
#include "dac/DACBASDA.h"

#include "dac/DACTOFIL.h"
#include "gen/GENCODES.h"
#include "gen/GENWNT.h"

namespace {

constexpr const char* SOURCE = "DACBASDA";
constexpr std::uint32_t MAX_CHILDREN = 1000000;

DAC_BaseDataAccess& require(DAC_BaseDataAccess* object) {
  if (object == nullptr) {
    GENAssert(GEN_NULL_POINTER, SOURCE, __LINE__);
  }
  return *object;
}

}  // namespace

DAC_BaseDataAccess::DAC_BaseDataAccess() noexcept = default;

DAC_BaseDataAccess::DAC_BaseDataAccess(DAC_Stream* stream)
    : m_Stream(DAC_StreamRef::share(stream)) {
  requireStream();
}

DAC_BaseDataAccess::DAC_BaseDataAccess(CopyOf, const DAC_BaseDataAccess& source)
    : m_CurPos(source.m_CurPos),
      m_Attributes(source.m_Attributes),
      m_Parent(source.m_Parent),
      m_Stream(DAC_StreamRef::share(source.m_Stream.get())) {}

DAC_BaseDataAccess::DAC_BaseDataAccess(Replace, DAC_BaseDataAccess* other)
    : m_Modified(require(other).m_Modified),
      m_CurPos(other->m_CurPos),
      m_Attributes(other->m_Attributes),
      m_Parent(other->m_Parent),
      m_Stream(DAC_StreamRef::share(other->m_Stream.get())) {
  if (other->m_slot != NO_SLOT) {
    m_Parent->replaceChild(*other, this);
    m_slot = other->m_slot;
    other->m_slot = NO_SLOT;
  }
  DACList.swap(other->DACList);
  for (std::uint32_t i = 0; i < DACList.count(); ++i) {
    if (DACList[i] != nullptr) {
      DACList[i]->m_Parent = this;
    }
  }
  delete other;
}

DAC_BaseDataAccess::~DAC_BaseDataAccess() {
  for (std::uint32_t i = 0; i < DACList.count(); ++i) {
    letGo(i);  // so that a child does not look for its slot
  }
  DACList.clear();
  if (m_slot != NO_SLOT) {  // a copy stands in no slot, and its parent may be gone
    m_Parent->replaceChild(*this, nullptr);
  }
  m_Stream = DAC_StreamRef();
  if (m_HaveTempFile) {
    dac::deleteFilePatiently(m_TempFile);
  }
}

DAC_Stream& DAC_BaseDataAccess::requireStream() const {
  if (!m_Stream) {
    GENAssert(GEN_NULL_POINTER, SOURCE, __LINE__);
  }
  return *m_Stream.get();
}

std::int32_t DAC_BaseDataAccess::size(unsigned int& status) {
  return status == 0 ? requireStream().size(status) : 0;
}

void DAC_BaseDataAccess::setSize(std::int32_t newSize, unsigned int& status) {
  if (status == 0) {
    requireStream().setSize(newSize, status);
    m_Modified = 1;
  }
}

std::int32_t DAC_BaseDataAccess::setPosition(std::int32_t position, unsigned int& status) {
  return seek(FROM_START, position, status);
}

std::int32_t DAC_BaseDataAccess::seek(int mode, std::int32_t offset, unsigned int& status) {
  if (status != 0) {
    return 0;
  }
  switch (mode) {
    case FROM_START:
      moveTo(offset, status);
      break;
    case FROM_CURSOR:
      moveTo(std::int64_t{m_CurPos} + offset, status);
      break;
    case FROM_END:
      moveTo(std::int64_t{size(status)} + offset, status);
      break;
    default:
      m_CurPos = offset;
  }
  return m_CurPos;
}

void DAC_BaseDataAccess::moveTo(std::int64_t position, unsigned int& status) noexcept {
  if (status == 0 && (position < 0 || position > DAC_Stream::MAX_SIZE)) {
    status = DAC_NEGATIVE_POSITION;
  }
  if (status == 0) {
    m_CurPos = static_cast<std::int32_t>(position);
  }
}

std::int32_t DAC_BaseDataAccess::readAt(std::int32_t& position, std::int32_t count, void* buffer,
                                        unsigned int& status) {
  return status == 0 ? requireStream().read(position, count, buffer, status) : 0;
}

std::int32_t DAC_BaseDataAccess::read(std::int32_t count, void* buffer, unsigned int& status) {
  return readAt(m_CurPos, count, buffer, status);
}

std::int32_t DAC_BaseDataAccess::readLineAt(std::int32_t& position, std::int32_t size, char* buffer,
                                            unsigned int& status) {
  return status == 0 ? requireStream().readLine(position, size, buffer, status) : 0;
}

std::int32_t DAC_BaseDataAccess::readLine(std::int32_t size, char* buffer, unsigned int& status) {
  return readLineAt(m_CurPos, size, buffer, status);
}

void DAC_BaseDataAccess::writeAt(std::int32_t& position, std::int32_t count, const void* data,
                                 unsigned int& status) {
  if (status == 0) {
    requireStream().write(position, count, data, status);
    m_Modified = 1;
  }
}

void DAC_BaseDataAccess::write(std::int32_t count, const void* data, unsigned int& status) {
  writeAt(m_CurPos, count, data, status);
}

void DAC_BaseDataAccess::writeLineAt(std::int32_t& position, std::int32_t count, const char* text,
                                     unsigned int& status) {
  if (status == 0) {
    requireStream().writeLine(position, count, text, status);
    m_Modified = 1;
  }
}

void DAC_BaseDataAccess::writeLine(std::int32_t count, const char* text, unsigned int& status) {
  writeLineAt(m_CurPos, count, text, status);
}

std::int32_t DAC_BaseDataAccess::getPosition() const {
  return m_CurPos;
}

void DAC_BaseDataAccess::fill(std::int32_t count, char byte, unsigned int& status) {
  if (status == 0) {
    requireStream().fill(m_CurPos, count, byte, status);
    m_Modified = 1;
  }
}

char DAC_BaseDataAccess::getCharAt(std::int32_t& position, unsigned int& status) {
  return status == 0 ? requireStream().getChar(position, status) : '\0';
}

char DAC_BaseDataAccess::getChar(unsigned int& status) {
  return getCharAt(m_CurPos, status);
}

char DAC_BaseDataAccess::peekChar(unsigned int& status) {
  std::int32_t position = m_CurPos;
  return status == 0 ? requireStream().getChar(position, status) : '\0';
}

void DAC_BaseDataAccess::putCharAt(std::int32_t& position, char byte, unsigned int& status) {
  if (status == 0) {
    requireStream().putChar(position, byte, status);
    m_Modified = 1;
  }
}

void DAC_BaseDataAccess::putChar(char byte, unsigned int& status) {
  putCharAt(m_CurPos, byte, status);
}

void DAC_BaseDataAccess::flush(unsigned int& status) {
  if (status == 0) {
    requireStream().flush(status);
  }
}

void DAC_BaseDataAccess::reservedHook(unsigned int&) {}

std::string_view DAC_BaseDataAccess::window(std::int32_t position) {
  return m_Stream ? m_Stream->window(position) : std::string_view();
}

DAC_Stream* DAC_BaseDataAccess::stream() const noexcept {
  return m_Stream.get();
}

bool DAC_BaseDataAccess::hasChildren(unsigned int& status) {
  return status == 0 && DACList.count() > 0;
}

std::uint32_t DAC_BaseDataAccess::childCount(unsigned int& status) {
  return status == 0 ? DACList.count() : 0;
}

DAC_BaseDataAccess* DAC_BaseDataAccess::getChild(std::uint32_t index, unsigned int& status) {
  if (status != 0) {
    return nullptr;
  }
  if (DACList.count() == 0) {
    status = DAC_NO_CHILDREN;
  } else if (index >= DACList.count()) {
    status = DAC_CHILD_INDEX;
  }
  return status == 0 ? DACList[index] : nullptr;
}

DAC_BaseDataAccess* DAC_BaseDataAccess::addChild(DAC_BaseDataAccess* child, unsigned int& status) {
  if (status != 0) {
    return nullptr;
  }
  require(child);
  DACList.append(child);
  place(DACList.count() - 1, child);
  return child;
}

void DAC_BaseDataAccess::setChild(std::uint32_t index, DAC_BaseDataAccess* child,
                                  unsigned int& status) {
  if (status != 0) {
    return;
  }
  require(child);
  if (index < DACList.count()) {
    letGo(index);
    place(index, child);
  }
}

void DAC_BaseDataAccess::insertChild(std::uint32_t index, DAC_BaseDataAccess* child,
                                     unsigned int& status) {
  if (status != 0) {
    return;
  }
  require(child);
  if (index < DACList.count()) {
    DACList.insert(index, std::unique_ptr<DAC_BaseDataAccess>(child));
  } else if (index < MAX_CHILDREN) {
    DACList.setCount(index + 1);
  } else {
    GENAssert(GEN_NULL_POINTER, SOURCE, __LINE__);
  }
  place(index, child);
}

void DAC_BaseDataAccess::detachChild(std::uint32_t index, unsigned int& status) {
  if (status == 0 && index < DACList.count()) {
    letGo(index);
    DACList.slot(index) = nullptr;
  }
}

// Stores the child in a slot below the count.
void DAC_BaseDataAccess::place(std::uint32_t index, DAC_BaseDataAccess* child) {
  DACList.slot(index) = child;
  child->m_Parent = this;
  child->m_slot = index;
}

// Makes the child of a slot forget its parent, which it may outlive.
void DAC_BaseDataAccess::letGo(std::uint32_t index) noexcept {
  if (DAC_BaseDataAccess* child = DACList[index]) {
    child->m_Parent = nullptr;
    child->m_slot = NO_SLOT;
  }
}

// Puts `replacement` into the slot that holds `child`, which stands in one.
void DAC_BaseDataAccess::replaceChild(const DAC_BaseDataAccess& child,
                                      DAC_BaseDataAccess* replacement) noexcept {
  std::uint32_t index = child.m_slot;
  if (DACList[index] != &child) {  // others were inserted before it
    for (index = 0; index < DACList.count() && DACList[index] != &child;) {
      ++index;
    }
  }
  if (index < DACList.count()) {
    DACList.slot(index) = replacement;
  }
}
