// The header type codes shared by every post office kind and by the host. Codes 0 to 122 have
// names (GMAMHDR.h); 123 to 162 are used by the HTTP vocabulary and have none; 163 stands for a
// name that is not in the table.
#pragma once

#include <cstdint>

namespace gma {

enum HeaderType : std::uint32_t {
  SUBJECT = 0,
  SENTDATE = 1,
  SENTTIME = 2,
  RESENTDATE = 3,
  EXPIREDATE = 6,
  MESSAGEID = 12,
  RESENTMESSAGEID = 13,
  PRIORITY = 15,
  RETURNPATH = 20,
  CUSTOM = 26,
  TO = 28,
  FROM = 29,
  CC = 30,
  BCC = 31,
  RECIPIENT = 32,
  UNKNOWN = 46,
  LOCATION = 49,
  RECEIVED = 63,
  SENDER = 64,
  REPLY_TO = 65,
  RESENT_FROM = 66,
  RESENT_SENDER = 67,
  RESENT_REPLY_TO = 68,
  RESENT_TO = 69,
  RESENT_CC = 70,
  RESENT_BCC = 71,
  IN_REPLY_TO = 72,
  REFERENCES = 73,
  KEYWORDS = 74,
  COMMENTS = 75,
  ENCRYPTED = 76,
  MIME_VERSION = 77,               // Mime-Version
  CONTENT_TYPE = 78,               // Content-Type
  CONTENT_TRANSFER_ENCODING = 79,  // Content-Transfer-Encoding
  CONTENT_ID = 80,                 // Content-ID
  CONTENT_DESCRIPTION = 81,        // Content-Description
  BAD_FORMAT = 82,
  X_HEADER = 83,
  CONTENT_IDENTIFIER = 84,  // Content-Identifier
  ALTERNATE_RECIPIENT = 85,
  X400 = 86,
  RCP_UNKNOWN = 88,  // Rcp-Unknown
  RCPMESSAGEID = 89,
  PREAMBLE = 90,
  POSTAMBLE = 91,
  CONTENT_DISPOSITION = 92,  // Content-Disposition
  ENCODING = 93,             // Encoding
  APPARENTLY_TO = 94,        // Apparently-To
  CONTENT_LANGUAGE = 97,     // Content-Language
  NO_HEADER_TYPE = 163
};

// Address type codes: bit sets, of which only the combinations named here are named types.
enum AddressType : std::uint32_t {
  NULLADDR = 0,
  FROMADDR = 1,
  TOADDR = 2,
  CCADDR = 4,
  BCCADDR = 8,
  SENTTOADDR = 18,
  SENTCCADDR = 20,
  SENTBCCADDR = 24,
  RESENTFROMADDR = 33,  // has no name
  RESENTTOADDR = 34,
  RESENTCCADDR = 36,
  RESENTBCCADDR = 40,
  APPARENTLYTOADDR = 66,
  AMUADDR = 128,
  NO_ADDRESS_TYPE = 255
};

inline constexpr std::uint32_t FROM_BIT = 1;
inline constexpr std::uint32_t TO_BIT = 2;
inline constexpr std::uint32_t CC_BIT = 4;
inline constexpr std::uint32_t BCC_BIT = 8;
inline constexpr std::uint32_t SENT_BIT = 16;
inline constexpr std::uint32_t RESENT_BIT = 32;

}  // namespace gma
