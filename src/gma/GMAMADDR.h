// GMA_Maddr: one typed address: role, user part, location part, the text as written in the source
// and a display name. Post office kinds derive their own syntax from it; the base reads and writes
// the plain form user@location.
//
//   GMA_Maddr address(gma::TOADDR, "joe smith", "example");
//   SCL_String text;
//   address.getText(text);  // "joe smith"@example
//
// Threads: an address is used by one thread at a time.
#pragma once

#include <cstdint>
#include <iosfwd>

#include "gma/GMATYPES.h"
#include "scl/SCLSTRNG.h"

class SCL_DumpIndent;

class GMA_Maddr {
 public:
  GMA_Maddr() noexcept = default;
  // Type 255: "Inappropriate address type supplied.".
  GMA_Maddr(std::uint32_t type, const SCL_StringRef& user, const SCL_StringRef& location);
  GMA_Maddr(const GMA_Maddr& other);
  // Copies all five fields; an address that stands in a table keeps its place.
  GMA_Maddr& operator=(const GMA_Maddr& other);

  // The virtual operations, in slot order.
  virtual ~GMA_Maddr();
  // A new address of the same class, the caller's; null when storage cannot be had.
  virtual GMA_Maddr* clone() const;
  // Takes user and location from a text user@location, either of them quoted where it has to be;
  // what follows the first "@" is the location and may be empty. 10132 for any other text; the
  // address is then as it was. Nothing happens when the status is nonzero on entry.
  virtual void parse(const SCL_StringRef& text, unsigned int& status);
  // The text as written in the source where it was kept, else composeText.
  virtual void getText(SCL_String& text) const;
  virtual void dump(const SCL_StringRef& name, std::ostream& stream, SCL_DumpIndent& indent) const;
  // The same type, and user and location the same, letter case aside.
  virtual bool equals(const GMA_Maddr& other) const;

  // Beyond the slots: whether a table may look this address up by type, user and location. A
  // derived class answers true when both hold: addresses that its equals calls equal always agree
  // in these three, letter case aside (as with the base's equals), and whatever changes them goes
  // through the setters, the assignment or partsChanged(). Any other class is compared one by one.
  virtual bool isFoundByParts() const noexcept;

  std::uint32_t getType() const noexcept { return m_type; }
  // Type 255: "Inappropriate address type supplied.".
  void setType(std::uint32_t type);
  const SCL_String& getUser() const noexcept { return m_user; }
  void setUser(const SCL_StringRef& text) {
    m_user = text;
    partsChanged();
  }
  const SCL_String& getLocation() const noexcept { return m_location; }
  void setLocation(const SCL_StringRef& text) {
    m_location = text;
    partsChanged();
  }
  const SCL_String& getOriginal() const noexcept { return m_original; }
  void setOriginal(const SCL_StringRef& text) { m_original = text; }
  const SCL_String& getFriendly() const noexcept { return m_friendly; }
  void setFriendly(const SCL_StringRef& text) { m_friendly = text; }
  bool isFrom() const noexcept { return (m_type & gma::FROM_BIT) != 0; }
  bool isRecipient() const noexcept {
    return (m_type & (gma::TO_BIT | gma::CC_BIT | gma::BCC_BIT)) != 0;
  }
  bool isTo() const noexcept { return (m_type & gma::TO_BIT) != 0; }
  bool isCc() const noexcept { return (m_type & gma::CC_BIT) != 0; }
  bool isBcc() const noexcept { return (m_type & gma::BCC_BIT) != 0; }
  bool isSent() const noexcept { return (m_type & gma::SENT_BIT) != 0; }
  // user@location; a part that holds an "@" or white space is written in quotes.
  void composeText(SCL_String& text) const;

 protected:
  // The field lines of the dump, for derived classes.
  void dumpFields(std::ostream& stream, SCL_DumpIndent& indent) const;
  // What a derived class that writes m_type, m_user or m_location itself calls after it.
  void partsChanged() noexcept {
    if (m_changed != nullptr) {
      *m_changed = true;
    }
  }

  std::uint32_t m_type = gma::NULLADDR;
  SCL_String m_user;
  SCL_String m_location;
  SCL_String m_original;
  SCL_String m_friendly;

 private:
  friend class GMA_MaddrTable;

  // Set at a change of the parts, for the table that the address belongs to; not copied.
  bool* m_changed = nullptr;
};

// `a == b` asks b's equals when b is an AMUADDR, else a's.
bool operator==(const GMA_Maddr& a, const GMA_Maddr& b);
bool operator!=(const GMA_Maddr& a, const GMA_Maddr& b);

namespace gma {
// The name of an address type code; one without a name is the assertion 18 (GMAMADDR).
const char* addressTypeName(std::uint32_t type);
void writeAddressType(std::ostream& stream, std::uint32_t type);
// Reads one word and looks it up exactly, letter case included; 255 for no name.
std::istream& readAddressType(std::istream& stream, std::uint32_t& type);
}  // namespace gma
