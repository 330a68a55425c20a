// GMA_Message: the generic message that host and post offices exchange: typed headers, typed
// addresses, a body, further items and attributes. It owns all of them, but not its post office,
// which must outlive it. A post office kind derives its own class and supplies the pure operations.
//
//   std::unique_ptr<GMA_Message> message(postOffice.newMessage());
//   message->addAddress(GMA_Maddr(gma::TOADDR, "joe", "example"));
//   message->headers().add(GMA_Mhdr(gma::SUBJECT, "Hello"));
//   message->setBody(new DAC_MemoryDataAccess);
//   message->storeMessage(status);
//
// Memory that cannot be had is the assertion 1 (GMAMSG). Threads: a message, and all that is
// reached from it, is used by one thread at a time.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <memory>

#include "atr/ATRATLST.h"
#include "gma/GMAITEM.h"
#include "gma/GMAMADRT.h"
#include "gma/GMAMHDRT.h"
#include "scl/SCLPVEC.h"
#include "scl/SCLSTRNG.h"

class DAC_BaseDataAccess;
class DV_Date;
class GMA_PostOffice;

class GMA_Message {
 public:
  explicit GMA_Message(GMA_PostOffice* postOffice);
  GMA_Message(const GMA_Message&) = delete;
  GMA_Message& operator=(const GMA_Message&) = delete;

  // The virtual operations, in slot order. Those with a status do nothing when it is nonzero on
  // entry.
  virtual ~GMA_Message();
  // A copy that belongs to `destination`, the caller's; it is no inform message. Its body and items
  // refer to this message's: this message must stay alive and unchanged as long as the copy is
  // used. Addresses pass only between post offices of one kind ("Source and destination post
  // offices of different type."); a message without any passes between all.
  virtual GMA_Message* transferTo(GMA_PostOffice& destination);
  // The body, which stays the message's; null when there is none.
  virtual DAC_BaseDataAccess* getBody();
  // Puts a text before (behind) the body: the template's lines, in which %SENDER%, %SUBJECT%,
  // %DATE% and %NAME% of every attribute NAME are replaced by their values. The result is a new
  // body in memory with the old one's attributes, also an AttachmentSize that is no longer true;
  // the old body is deleted. The template stays the caller's; null is the assertion 1, and it must
  // not be the body. The text goes in as it stands: a body in a transfer encoding is not decoded.
  // 10110: no new body could be made; 10014: a line of the template is longer than 1,023
  // characters, or is the last one and has no line end in a template in memory. When the template
  // fails, prependText leaves the old body, appendText the lines written so far behind it.
  virtual void prependText(DAC_BaseDataAccess* textTemplate, unsigned int& status);
  virtual void appendText(DAC_BaseDataAccess* textTemplate, unsigned int& status);
  // An empty address of the post office's class, the caller's.
  virtual GMA_Maddr* newAddress() = 0;
  // The date from the headers; false when none was found.
  virtual bool getDate(DV_Date& date) = 0;
  virtual void loadMessage(unsigned int& status) = 0;
  virtual void storeMessage(unsigned int& status) = 0;
  // Keeps a copy of the message as it was received.
  virtual void save(void* argument, unsigned int& status) = 0;

  // Takes `body`; the body before it becomes the first item, not an original one.
  void setBody(DAC_BaseDataAccess* body);
  // Takes `body`; the one before it is not deleted and becomes the caller's.
  void setBodyPointer(DAC_BaseDataAccess* body) noexcept { m_body = body; }
  std::uint16_t itemCount() const noexcept { return m_items.count(); }
  // These three want an index below the count: "Message item index out of range.".
  DAC_BaseDataAccess* getItemData(std::uint16_t index) const;  // stays the message's
  bool isItemOriginal(std::uint16_t index) const;
  // Takes `data`; the object before it is not deleted and becomes the caller's.
  void setItemData(std::uint16_t index, DAC_BaseDataAccess* data);
  // Takes `data`, which is deleted when the item cannot be added.
  void addItem(DAC_BaseDataAccess* data, bool original);
  // Deletes the body and all items.
  void clearContent() noexcept;
  // Adds a copy in the post office's own class, unless an equal address is there.
  void addAddress(const GMA_Maddr& address);
  GMA_Maddr* findAddress(const GMA_Maddr& address) const { return m_addresses.find(address); }
  // Sets the attributes of gma/GMAMSGNM.h from addresses and headers, then NumAttachments,
  // MessageSize and SourcePostOffice; gives the body and every item an AttachmentSize. An attribute
  // of the first nine names that is there, in any letter case, is never changed: a loaded message
  // may have FROM or TO from its own, forgeable headers.
  void setStandardAttributes();
  // The attribute UniqueId, empty when there is none. The first value found is kept for good. An
  // integer under this name: "Attribute does not have a string value.".
  SCL_String getUniqueId();
  void dump(const SCL_StringRef& name, std::ostream& stream, SCL_DumpIndent& indent) const;
  // Writes addresses, headers, attributes and a summary into the global log. An address type
  // without a label (resent, apparently to, AMU) is the assertion 18 (GMAMSG).
  void dumpContents(const SCL_StringRef& title);

  GMA_MhdrTable& headers() noexcept { return m_headers; }
  GMA_MaddrTable& addresses() noexcept { return m_addresses; }
  ATR_AttributeList& attributes() noexcept { return m_attrs; }
  const GMA_MhdrTable& headers() const noexcept { return m_headers; }
  const GMA_MaddrTable& addresses() const noexcept { return m_addresses; }
  const ATR_AttributeList& attributes() const noexcept { return m_attrs; }
  GMA_PostOffice* postOffice() const noexcept { return m_postoffice; }
  bool isInform() const noexcept { return m_is_inform != 0; }
  void setInform(bool inform) noexcept { m_is_inform = inform ? 1 : 0; }
  std::uint32_t tag() const noexcept { return m_tag; }
  void setTag(std::uint32_t tag) noexcept { m_tag = tag; }
  bool isTransferred() const noexcept { return m_transferred != 0; }

 protected:
  GMA_PostOffice* m_postoffice;
  GMA_MhdrTable m_headers;
  GMA_MaddrTable m_addresses;
  DAC_BaseDataAccess* m_body = nullptr;
  SCL_PtrVector<GMA_Item> m_items;
  ATR_AttributeList m_attrs;
  std::uint32_t m_is_inform = 1;
  // Two words of the host's stand here; nothing in this library reads or changes them.
  std::uint32_t m_host_flag = 1;
  std::uint32_t m_host_word = 0;
  std::uint32_t m_tag = 0;
  std::uint32_t m_transferred = 0;
  SCL_String m_unique_id;
  // The part that the message's own headers describe, when it is known; not owned. prependText and
  // appendText move it to the new body, clearContent forgets it.
  DAC_BaseDataAccess* m_described = nullptr;

 private:
  DAC_BaseDataAccess* describedIn(const GMA_Message& copy) const;
  GMA_Item& itemAt(std::uint16_t index) const;
  const SCL_String& postOfficeName() const;
  void replaceBody(std::unique_ptr<DAC_BaseDataAccess> newBody, unsigned int& status);
};
