// The generic message: its content, its addresses, and its copy for another post office. The
// standard attributes, the notification texts and the dumps have files of their own.
#include "gma/GMAMSG.h"

#include "dac/DACBASDA.h"
#include "dac/DACPTRDA.h"
#include "gen/GENCATCH.h"
#include "gma/GMAMSGNM.h"
#include "gma/GMAPO.h"
#include "gma/GMATXADR.h"

namespace {

// A post office kind's answer, which must not be null.
template <class T>
std::unique_ptr<T> required(T* made) {
  if (made == nullptr) {
    GENAssert(GEN_NULL_POINTER, "GMAMSG", __LINE__);
  }
  return std::unique_ptr<T>(made);
}

// A reference to content of the copied message; null stays null.
std::unique_ptr<DAC_BaseDataAccess> pointerTo(DAC_BaseDataAccess* content) {
  if (content == nullptr) {
    return nullptr;
  }
  return GENMake<DAC_PointerDataAccess>("GMAMSG", __LINE__, *content);
}

}  // namespace

GMA_Message::GMA_Message(GMA_PostOffice* postOffice) : m_postoffice(postOffice) {}

GMA_Message::~GMA_Message() {
  clearContent();
}

DAC_BaseDataAccess* GMA_Message::getBody() {
  return m_body;
}

void GMA_Message::setBody(DAC_BaseDataAccess* body) {
  std::unique_ptr<DAC_BaseDataAccess> newBody(body);
  if (m_body != nullptr) {
    // The item takes the old body only when it has its place, so that a failure leaves the message
    // as it was.
    m_items.insert(0, GENMake<GMA_Item>("GMAMSG", __LINE__, nullptr, false));
    m_items[0]->setData(m_body);
  }
  m_body = newBody.release();
}

GMA_Item& GMA_Message::itemAt(std::uint16_t index) const {
  if (index >= itemCount()) {
    GENAssertText("Message item index out of range.", "GMAMSG", __LINE__);
  }
  return *m_items[index];
}

DAC_BaseDataAccess* GMA_Message::getItemData(std::uint16_t index) const {
  return itemAt(index).getData();
}

bool GMA_Message::isItemOriginal(std::uint16_t index) const {
  return itemAt(index).isOriginal();
}

void GMA_Message::setItemData(std::uint16_t index, DAC_BaseDataAccess* data) {
  itemAt(index).setData(data);
}

void GMA_Message::addItem(DAC_BaseDataAccess* data, bool original) {
  std::unique_ptr<DAC_BaseDataAccess> owned(data);
  auto item = GENMake<GMA_Item>("GMAMSG", __LINE__, data, original);
  static_cast<void>(owned.release());  // the item's now
  m_items.append(std::move(item));
}

void GMA_Message::clearContent() noexcept {
  delete m_body;
  m_body = nullptr;
  m_items.clear();
  m_described = nullptr;
}

void GMA_Message::addAddress(const GMA_Maddr& address) {
  const std::unique_ptr<GMA_Maddr> converted = required(newAddress());
  *converted = address;
  m_addresses.add(*converted);
}

SCL_String GMA_Message::getUniqueId() {
  if (m_unique_id.isEmpty()) {
    if (const ATR_Attribute* attribute = m_attrs.find(gma::ATTRIBUTE_UNIQUE_ID)) {
      m_unique_id = attribute->string();
    }
  }
  return m_unique_id;
}

const SCL_String& GMA_Message::postOfficeName() const {
  if (m_postoffice == nullptr) {
    GENAssert(GEN_NULL_POINTER, "GMAMSG", __LINE__);
  }
  return m_postoffice->name();
}

// What stands in the copy for the part that this message's own headers describe.
DAC_BaseDataAccess* GMA_Message::describedIn(const GMA_Message& copy) const {
  if (m_described == nullptr || m_described == m_body) {
    return m_described == nullptr ? nullptr : copy.m_body;
  }
  for (std::uint16_t i = 0; i < itemCount(); ++i) {
    if (getItemData(i) == m_described) {
      return copy.getItemData(i);
    }
  }
  return nullptr;
}

GMA_Message* GMA_Message::transferTo(GMA_PostOffice& destination) {
  std::unique_ptr<GMA_Message> copy = required(destination.newMessage());
  const std::unique_ptr<GMA_Maddr> scratch = required(copy->newAddress());
  for (std::uint16_t i = 0; i < m_addresses.count(); ++i) {
    gma::transferAddress(m_postoffice, m_addresses.get(i), &destination, scratch.get());
    copy->addAddress(*scratch);
  }
  for (std::uint16_t i = 0; i < m_headers.count(); ++i) {
    copy->m_headers.add(*m_headers.get(i));
  }
  for (std::uint16_t i = 0; i < m_attrs.count(); ++i) {
    copy->m_attrs.add(*m_attrs.get(i));
  }
  if (m_body != nullptr) {
    copy->setBody(pointerTo(m_body).release());
  }
  for (std::uint16_t i = 0; i < itemCount(); ++i) {
    copy->addItem(pointerTo(getItemData(i)).release(), isItemOriginal(i));
  }
  copy->m_described = describedIn(*copy);
  copy->m_is_inform = 0;
  copy->m_tag = m_tag;
  m_transferred = 1;
  return copy.release();
}
