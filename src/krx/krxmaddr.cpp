// KRX_Maddr: the connector's address class on top of the address grammar.
#include "krx/krxmaddr.h"

#include <new>

#include "gen/GENCATCH.h"
#include "gen/GENCODES.h"
#include "krx/krxaddr.h"
#include "scl/SCLDUMP.h"

KRX_Maddr::KRX_Maddr(std::uint32_t type, const SCL_StringRef& text,
                     const SCL_StringRef& defaultDomain, unsigned int& status)
    : m_default_domain(defaultDomain) {
  setType(type);
  if (status == 0) {
    KRX_Maddr::parse(text, status);
  }
}

KRX_Maddr::KRX_Maddr(std::uint32_t type, const SCL_StringRef& text, unsigned int& status)
    : KRX_Maddr(type, text, SCL_StringRef(), status) {}

KRX_Maddr& KRX_Maddr::operator=(const GMA_Maddr& other) {
  GMA_Maddr::operator=(other);
  return *this;
}

KRX_Maddr& KRX_Maddr::operator=(const KRX_Maddr& other) {
  GMA_Maddr::operator=(other);
  return *this;
}

GMA_Maddr* KRX_Maddr::clone() const {
  return new (std::nothrow) KRX_Maddr(*this);
}

void KRX_Maddr::parse(const SCL_StringRef& text, unsigned int& status) {
  if (status != 0) {
    return;
  }
  KRX_ParsedAddress address;
  GENWithMemory("krxmaddr", __LINE__,
                [&] { KRX_parseRfcAddress(text, m_default_domain, address, status); });
  if (status != 0) {
    // The text goes too: getText must never answer with an address that was not understood.
    m_user.clear();
    m_location.clear();
    m_original.clear();
    partsChanged();
    return;
  }
  m_user = std::move(address.user);
  m_location = std::move(address.location);
  m_original = text;
  partsChanged();
  if (address.relayed) {
    status = KRX_RELAYED_ADDRESS;
  }
}

void KRX_Maddr::getText(SCL_String& text) const {
  if (!m_original.isEmpty()) {
    text = m_original;
    return;
  }
  text = m_user;
  text += '@';
  text += m_location;
}

void KRX_Maddr::dump(const SCL_StringRef& name, std::ostream& stream,
                     SCL_DumpIndent& indent) const {
  SCL_Dump dump(stream, indent, name, "KRX_Maddr", this);
  dumpFields(stream, indent);
  dump.quoted("m_default_domain", m_default_domain);
}
