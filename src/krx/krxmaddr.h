// KRX_Maddr: an address as it appears in SMTP envelopes and headers (RFC 822 section 6), reduced to
// user and location: route addresses, the relayed forms host!user and user%host@relay, and X.400
// attribute lists in the local part (RFC 1327).
#pragma once

#include "gma/GMAMADDR.h"

class KRX_Maddr : public GMA_Maddr {
 public:
  KRX_Maddr() noexcept = default;
  KRX_Maddr(std::uint32_t type, const SCL_StringRef& user, const SCL_StringRef& location)
      : GMA_Maddr(type, user, location) {}
  // Parses `text`; an address without "@" gets `defaultDomain`.
  KRX_Maddr(std::uint32_t type, const SCL_StringRef& text, const SCL_StringRef& defaultDomain,
            unsigned int& status);
  KRX_Maddr(std::uint32_t type, const SCL_StringRef& text, unsigned int& status);
  // The default domain of a copy is empty.
  explicit KRX_Maddr(const GMA_Maddr& other) : GMA_Maddr(other) {}
  KRX_Maddr(const KRX_Maddr& other) : GMA_Maddr(other) {}
  // Leaves the default domain as it is.
  KRX_Maddr& operator=(const GMA_Maddr& other);
  KRX_Maddr& operator=(const KRX_Maddr& other);

  GMA_Maddr* clone() const override;
  // 10132 for a text that is no address (user, location and original text are cleared); 11925 for a
  // relayed form: the address is complete and usable all the same.
  void parse(const SCL_StringRef& text, unsigned int& status) override;
  void getText(SCL_String& text) const override;
  void dump(const SCL_StringRef& name, std::ostream& stream, SCL_DumpIndent& indent) const override;
  // Equality is the base's.
  bool isFoundByParts() const noexcept override { return true; }

 private:
  SCL_String m_default_domain;
};
