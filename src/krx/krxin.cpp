// The message file on its way in: the header block, the classification of the content, and single
// parts with their views and attributes.
#include <new>

#include "atr/ATRATLST.h"
#include "dac/DACMEMDA.h"
#include "gen/GENCODES.h"
#include "gen/GENWNT.h"
#include "krx/krxapi.h"
#include "krx/krxlines.h"
#include "krx/krxmsg.h"
#include "log/LOGGLB.h"
#include "log/LOGLOG.h"
#include "rfc/RFCB64Da.h"
#include "rfc/RFCMptDa.h"
#include "rfc/RFCMsgDa.h"
#include "rfc/RFCQprDa.h"
#include "rfc/rfcread.h"
#include "rfc/rfcvalue.h"

namespace {

constexpr char SPOOF_WARNING[] = "SpoofWarning";
constexpr char BODY_TITLE[] = "<body>";
constexpr char ATTACHMENT_TITLE[] = "<attachment>";
constexpr char SYSTEM_TYPE[] = "SMTP";
constexpr char NO_NESTED_BOUNDARY[] = "No boundary parameter on nested Multipart.";

void logBadValue(const char* field, const SCL_StringRef& value) {
  LOG_globalLog().writeText(KRX_LOG_ALL, KRX_FACILITY, LOG_Logging::BRIEF,
                            "Bad %s header field value \"%s\" found.", field,
                            LOG_Clean(value).c_str());
}

// Copies headers into attributes, but for one name that a sender must not set: what the attribute
// was before, or that there was none, is brought back.
void copyHeadersExcept(const GMA_MhdrTable& headers, ATR_AttributeList& attributes,
                       const char* kept) {
  const ATR_Attribute* before = attributes.find(kept);
  const bool wasSet = before != nullptr && before->getType() == STRING;
  const SCL_String value = wasSet ? before->getString() : SCL_String();
  rfc_headers_to_attributes(headers, attributes);
  if (wasSet) {
    attributes.setString(kept, value);
  } else {
    attributes.remove(static_cast<const ATR_Attribute*>(attributes.find(kept)));
  }
}

// Of two fields of one name an attribute has the later one, but a part is read by the first: stored
// by the other it would be another part, or none that can be read.
void setFieldsInUse(const GMA_MhdrTable& headers, ATR_AttributeList& attributes) {
  for (const std::uint32_t type : {gma::CONTENT_TYPE, gma::CONTENT_TRANSFER_ENCODING}) {
    if (const GMA_Mhdr* header = headers.findByType(type)) {
      SCL_String value = rfc_unfold(header->value());
      value.trim();
      attributes.setString(gma::headerTypeName(type), value);
    }
  }
}

// The Content-Transfer-Encoding token; a value that is not one word means none.
SCL_String readEncoding(const GMA_MhdrTable& headers) {
  SCL_String encoding;
  const GMA_Mhdr* header = headers.findByType(gma::CONTENT_TRANSFER_ENCODING);
  if (header != nullptr) {
    const SCL_String value = rfc_unfold(header->value());
    if (rfc_parse_word(value, encoding) != 0) {
      encoding.clear();
      logBadValue("Content-Transfer-Encoding", value);
    }
  }
  return encoding;
}

template <class View, class... Arguments>
std::unique_ptr<DAC_BaseDataAccess> newView(Arguments&&... arguments) {
  auto view = std::unique_ptr<View>(new (std::nothrow) View(std::forward<Arguments>(arguments)...));
  if (!view) {
    GENAssert(GEN_NULL_POINTER, "krxmsg", __LINE__);
  }
  return view;
}

void logIllegalEncoding(const SCL_StringRef& encoding, const SCL_StringRef& type) {
  LOG_globalLog().writeText(KRX_LOG_ALL, KRX_FACILITY, LOG_Logging::BRIEF,
                            "Illegal content encoding field %s on Content Type %s",
                            LOG_Clean(encoding).c_str(), LOG_Clean(type).c_str());
}

}  // namespace

KRX_Message::ContentType::ContentType()
    : type("text"), subtype("plain"), parameters(std::make_unique<ATR_AttributeList>()) {}

KRX_Message::ContentType::~ContentType() = default;

const SCL_String* KRX_Message::ContentType::parameter(const char* name) const {
  const ATR_Attribute* found = parameters->find(name);
  return found != nullptr && found->getType() == STRING ? &found->string() : nullptr;
}

void KRX_Message::readMessage(DAC_BaseDataAccess& stream, unsigned int& status) {
  if (status != 0) {
    return;
  }
  // A message that begins with the end-of-data line has no header block.
  const bool hasHeaders = peekLine(stream, SCL_StringRef()) == LineKind::content;
  if (hasHeaders) {
    rfc_read_headers(stream, m_headers, status);
  }
  copyHeadersToAttributes();
  if (status != 0) {
    return;
  }
  if (hasHeaders) {
    rfc_skip_blank_line(stream);
  }
  ContentType type;
  const int kind = classifyContentType(m_headers, type, status);
  if (status != 0) {
    return;
  }
  if (kind == 2) {
    readMultipart(stream, type, status);
  } else {
    readPart(stream, m_headers, false, SCL_StringRef(), type, status);
  }
}

// The envelope's verdict on a relayed address is not the sender's to take back.
void KRX_Message::copyHeadersToAttributes() {
  copyHeadersExcept(m_headers, m_attrs, SPOOF_WARNING);
}

// 0: no MIME message, 1: a single part, 2: multipart. A failure leaves the parser's status.
int KRX_Message::classifyContentType(const GMA_MhdrTable& headers, ContentType& type,
                                     unsigned int& status) {
  if (status != 0 || m_headers.findByType(gma::MIME_VERSION) == nullptr) {
    return 0;
  }
  const GMA_Mhdr* header = headers.findByType(gma::CONTENT_TYPE);
  if (header == nullptr) {
    return 1;
  }
  const SCL_String value = rfc_unfold(header->value());
  status = rfc_parse_content_type(value, type.type, type.subtype, *type.parameters);
  if (status != 0) {
    logBadValue("Content-Type", value);
    return 0;
  }
  return type.isMultipart() ? 2 : 1;
}

KRX_Message::LineKind KRX_Message::readPart(DAC_BaseDataAccess& stream,
                                            const GMA_MhdrTable& headers, bool nested,
                                            const SCL_StringRef& boundary, const ContentType& type,
                                            unsigned int& status) {
  LineKind kind = LineKind::content;
  if (status != 0) {
    return kind;
  }
  const SCL_String encoding = readEncoding(headers);
  std::unique_ptr<DAC_BaseDataAccess> data = readPartContent(stream, boundary, kind, status);
  if (!data) {
    if (status == 0) {
      GENAssert(GEN_NULL_POINTER, "krxmsg", __LINE__);
    }
    return kind;
  }
  bool isView = false;
  data = makeView(std::move(data), type, encoding, isView);
  const auto size = static_cast<std::uint32_t>(data->size(status));
  setPartAttributes(*data, type, isView, size);
  if (nested) {
    copyHeadersExcept(headers, data->attributes(), dac::BAD_DATA);
    setFieldsInUse(headers, data->attributes());
    // A part's own fields must not take the place of what we know about it.
    setPartAttributes(*data, type, isView, size);
  }
  DAC_BaseDataAccess* const placed = data.get();
  placePart(std::move(data), type, status);
  if (!nested) {
    m_described = placed;
  }
  return kind;
}

void KRX_Message::setPartAttributes(DAC_BaseDataAccess& data, const ContentType& type, bool isView,
                                    std::uint32_t size) const {
  if (isView) {
    data.setStringAttribute(dac::CONTAINER_CLASS, m_container_class);
  }
  data.setStringAttribute(dac::MAIL_SYSTEM_TYPE, SYSTEM_TYPE);
  data.setIntegerAttribute(dac::ATTACHMENT_SIZE, size);
  data.setStringAttribute(dac::CONTAINER_NAME, containerName(type.type));
}

// The first plain text becomes the body, everything else an item.
void KRX_Message::placePart(std::unique_ptr<DAC_BaseDataAccess> data, const ContentType& type,
                            unsigned int& status) {
  if (status != 0) {
    return;
  }
  const SCL_String* name = type.parameter("name");
  const bool plain = SCL_equalNoCase(type.type, "text") && SCL_equalNoCase(type.subtype, "plain");
  if (name == nullptr && plain && m_body == nullptr && m_items.isEmpty()) {
    data->setStringAttribute(dac::CONTENT_TITLE, BODY_TITLE);
    setBody(data.release());
    return;
  }
  data->setStringAttribute(
      dac::CONTENT_TITLE, name != nullptr ? SCL_StringRef(*name) : SCL_StringRef(ATTACHMENT_TITLE));
  if (itemCount() == UINT16_MAX) {
    KRX_logTooMany("items");
    status = KRX_NO_PARTS;
    return;
  }
  addItem(data.release(), true);
}

std::unique_ptr<DAC_BaseDataAccess> KRX_Message::makeView(std::unique_ptr<DAC_BaseDataAccess> data,
                                                          const ContentType& type,
                                                          const SCL_StringRef& encoding,
                                                          bool& isView) {
  const bool base64 = SCL_equalNoCase(encoding, "base64");
  const bool quotedPrintable = SCL_equalNoCase(encoding, "quoted-printable");
  const bool isMessage = SCL_equalNoCase(type.type, "message");
  const SCL_String* boundary = type.parameter("boundary");
  isView = true;
  if (isMessage || type.isMultipart()) {
    if (!isMessage && boundary == nullptr) {
      data->setStringAttribute(dac::BAD_DATA, NO_NESTED_BOUNDARY);
      LOG_globalLog().writeText(KRX_LOG_ALL, KRX_FACILITY, LOG_Logging::BRIEF, "%s",
                                NO_NESTED_BOUNDARY);
    }
    if (base64 || quotedPrintable) {
      logIllegalEncoding(encoding, type.type);
    }
    if (isMessage) {
      return newView<RFCMsgDa>(*data);
    }
    if (boundary != nullptr) {
      return newView<RFCMptDa>(*data, *boundary);
    }
  } else if (base64) {
    return newView<RFCB64Da>(*data);
  } else if (quotedPrintable) {
    return newView<RFCQprDa>(*data);
  }
  isView = false;
  return data;
}

const char* KRX_Message::containerName(const SCL_StringRef& type) {
  static constexpr struct {
    const char* type;
    const char* name;
  } NAMES[] = {{"text", "MIME_Text"},
               {"multipart", "MIME_Multipart"},
               {"message", "MIME_Message"},
               {"image", "MIME_Image"},
               {"audio", "MIME_Audio"},
               {"video", "MIME_Video"},
               {"application", "MIME_Application"}};
  for (const auto& row : NAMES) {
    if (SCL_equalNoCase(type, row.type)) {
      return row.name;
    }
  }
  return "";
}
