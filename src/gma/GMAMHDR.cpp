// Headers, and the table of the names of their types.
#include "gma/GMAMHDR.h"

#include <istream>
#include <iterator>
#include <ostream>
#include <utility>

#include "gen/GENCODES.h"
#include "gen/GENWNT.h"
#include "scl/SCLDUMP.h"

namespace {

constexpr unsigned int VALUE_LINES = 5;

// By type code. The older, generic names are in upper case; the later ones are written like the
// mail header field that they stand for.
constexpr const char* TYPE_NAMES[] = {
    "SUBJECT",
    "SENTDATE",
    "SENTTIME",
    "RESENTDATE",
    "DELIVERYDATE",
    "READDATE",
    "EXPIREDATE",
    "DISTRIBUTEDATE",
    "REPLYDATE",
    "MESSAGEVIEW",
    // 10
    "MESSAGEACTION",
    "MESSAGECHARSET",
    "MESSAGEID",
    "RESENTMESSAGEID",
    "ORIGMESSAGEID",
    "PRIORITY",
    "DELIVERYRPT",
    "NONDELIVERYPRT",
    "READRECEIPT",
    "APPROXLEN",
    // 20
    "RETURNPATH",
    "SECURITY",
    "SENDOPTIONS",
    "SETSTATUS",
    "STATUSREQUEST",
    "STATUSREPORT",
    "CUSTOM",
    "VERSION",
    "TO",
    "FROM",
    // 30
    "CC",
    "BCC",
    "RECIPIENT",
    "P2TO",
    "P2CC",
    "P2SEND",
    "P1GROUP",
    "P1FROM",
    "P2ATT",
    "ATTACHMENTS",
    // 40
    "XATTACH",
    "TEXT",
    "XTEXT",
    "HEADERCHARSET",
    "MSGTYPE",
    "COMMAND",
    "UNKNOWN",
    "BEGINTIME",
    "ENDTIME",
    "LOCATION",
    // 50
    "BUSYFOR",
    "BUSYREPORT",
    "CALLACTION",
    "CALLERCOMPANY",
    "CALLERNAME",
    "CALLERPHONE",
    "DSPOSTOFFICE",
    "DSGROUP",
    "DSRESOURCE",
    "DSUSER",
    // 60
    "FOLDERNAME",
    "TASKCATEGORY",
    "TASKPRIORITY",
    "RECEIVED",
    "SENDER",
    "REPLY_TO",
    "RESENT_FROM",
    "RESENT_SENDER",
    "RESENT_REPLY_TO",
    "RESENT_TO",
    // 70
    "RESENT_CC",
    "RESENT_BCC",
    "IN_REPLY_TO",
    "REFERENCES",
    "KEYWORDS",
    "COMMENTS",
    "ENCRYPTED",
    "Mime-Version",
    "Content-Type",
    "Content-Transfer-Encoding",
    // 80
    "Content-ID",
    "Content-Description",
    "BAD_FORMAT",
    "X_HEADER",
    "Content-Identifier",
    "ALTERNATE_RECIPIENT",
    "X400",
    "Body-8Bit",
    "Rcp-Unknown",
    "RCPMESSAGEID",
    // 90
    "PREAMBLE",
    "POSTAMBLE",
    "Content-Disposition",
    "Encoding",
    "Apparently-To",
    "AutoForwarded",
    "AutoSubmitted",
    "Content-Language",
    "Conversion",
    "Conversion-With-Loss",
    // 100
    "Delivery-Date",
    "Discarded-X400-IPMS-Extensions",
    "Discarded-X400-MTS-Extensions",
    "DL-Expansion-History",
    "Deferred-Delivery",
    "Importance",
    "Incomplete-Copy",
    "Latest-Delivery-Time",
    "Message-Type",
    "Obsoletes",
    // 110
    "Original-Encoded-Information-Types",
    "Originator-Return-Address",
    "Reply-By",
    "Requested-Delivery-Method",
    "Sensitivity",
    "Prevent-NonDelivery-Report",
    "Generate-Delivery-Report",
    "Disclose-Recipients",
    "Content-Return",
    "FTBP-Creation-Date",
    // 120
    "FTBP-Object-Size",
    "FTBP-Modification-Date",
    "FTBP-Read-Date",
};
static_assert(std::size(TYPE_NAMES) == 123);

}  // namespace

GMA_Mhdr::GMA_Mhdr(std::uint32_t type, const SCL_StringRef& value)
    : GMA_Mhdr(type, SCL_StringRef(), value) {}

GMA_Mhdr::GMA_Mhdr(std::uint32_t type, const SCL_StringRef& ownName, const SCL_StringRef& value)
    : m_type(type), m_custom(ownName), m_value(VALUE_LINES) {
  m_value.add(value);
}

GMA_Mhdr::GMA_Mhdr(std::uint32_t type, const SCL_StringTable& lines)
    : GMA_Mhdr(type, SCL_StringRef(), lines) {}

GMA_Mhdr::GMA_Mhdr(std::uint32_t type, const SCL_StringRef& ownName, const SCL_StringTable& lines)
    : m_type(type), m_custom(ownName), m_value(lines) {}

GMA_Mhdr::GMA_Mhdr(std::uint32_t type, SCL_String&& ownName, SCL_StringTable&& lines) noexcept
    : m_type(type), m_custom(std::move(ownName)), m_value(std::move(lines)) {}

GMA_Mhdr& GMA_Mhdr::operator=(const GMA_Mhdr& other) {
  if (this != &other) {
    m_type = other.m_type;
    m_custom = other.m_custom;
    m_value = other.m_value;
  }
  return *this;
}

SCL_String GMA_Mhdr::getTypeName() const {
  return gma::headerTypeName(m_type);
}

void GMA_Mhdr::getValueText(SCL_String& text) const {
  text.clear();
  for (std::uint16_t i = 0; i < m_value.count(); ++i) {
    const SCL_StringRef line = m_value.get(i);
    if (!text.isEmpty() && !SCL_isSpace(SCL_firstChar(line))) {
      text += ' ';
    }
    text += line;
  }
}

SCL_StringRef GMA_Mhdr::firstLine() const {
  return m_value.count() > 0 ? m_value.get(0) : SCL_StringRef();
}

void GMA_Mhdr::dump(const SCL_StringRef& name, std::ostream& stream, SCL_DumpIndent& indent) const {
  SCL_Dump dump(stream, indent, name, "GMA_Mhdr", this);
  dump.line() << "m_type = " << gma::headerTypeName(m_type) << ";" << std::endl;
  dump.quoted("m_custom", m_custom);
  m_value.dump("m_value", stream, indent);
}

bool gma::hasHeaderTypeName(std::uint32_t type) noexcept {
  return type < std::size(TYPE_NAMES);
}

const char* gma::headerTypeName(std::uint32_t type) {
  if (!hasHeaderTypeName(type)) {
    GENAssert(GEN_BAD_SWITCH_VALUE, "GMAMHDR", __LINE__);
  }
  return TYPE_NAMES[type];
}

void gma::writeHeaderType(std::ostream& stream, std::uint32_t type) {
  stream << headerTypeName(type);
}

std::istream& gma::readHeaderType(std::istream& stream, std::uint32_t& type) {
  SCL_String word;
  SCL_readWord(stream, word);
  type = NO_HEADER_TYPE;
  for (std::uint32_t code = 0; code < std::size(TYPE_NAMES); ++code) {
    if (word == TYPE_NAMES[code]) {
      type = code;
    }
  }
  return stream;
}
