// The address grammar behind KRX_Maddr.
#pragma once

#include <optional>

#include "scl/SCLSTRNG.h"

struct KRX_ParsedAddress {
  SCL_String user;
  SCL_String location;
  bool relayed = false;
};

// Reads an RFC 822 address text; `domain` is the location of one without "@". 10132 when it is
// none.
void KRX_parseRfcAddress(const SCL_StringRef& text, const SCL_StringRef& domain,
                         KRX_ParsedAddress& address, unsigned int& status);

// Maps an X.400 attribute list (a text that begins with "/") to a user part, in place. When it
// holds an /RFC-822 attribute, returns that address's decoded text instead, still to be parsed.
std::optional<SCL_String> KRX_mapX400Local(SCL_String& user);
