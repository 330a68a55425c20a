// The envelope file: read into the identifying header and the envelope addresses, and written.
#include "dac/DACBASDA.h"
#include "gen/GENCATCH.h"
#include "gen/GENCODES.h"
#include "gen/GENWNT.h"
#include "krx/krxapi.h"
#include "krx/krxlines.h"
#include "krx/krxmaddr.h"
#include "krx/krxmsg.h"
#include "log/LOGGLB.h"
#include "log/LOGLOG.h"
#include "rfc/rfcread.h"
#include "rfc/rfcwrite.h"

namespace {

constexpr char MESSAGE_ID[] = "Message-ID";
constexpr char RETURN_PATH[] = "Return-path";
constexpr char RECIPIENT[] = "Recipient";
constexpr char SPOOF_WARNING[] = "SpoofWarning";

SCL_String joined(const SCL_StringTable& lines) {
  SCL_String text = rfc_unfold(lines);
  text.trim();
  return text;
}

// Nothing but blank lines may follow the header block.
void readBlankRest(DAC_BaseDataAccess& stream, unsigned int& status) {
  char buffer[1024];
  while (status == 0 || status == DAC_LINE_TOO_LONG) {
    status = 0;
    const std::int32_t length = stream.readLine(sizeof buffer, buffer, status);
    for (std::int32_t i = 0; i < length; ++i) {
      if (!SCL_isBlank(buffer[i]) && buffer[i] != '\0') {
        status = KRX_ENVELOPE_FORM;
        return;
      }
    }
  }
  if (status == DAC_END) {
    status = 0;
  }
}

// A line longer than the reader's limit would come back as two at the next hop.
bool fitsLine(const char* name, const SCL_StringRef& text) {
  return std::string_view(name).size() + 2 + text.length() <= RFC_MAX_LINE;
}

// No line is written that the next hop would refuse the whole pair for.
void writeAddress(DAC_BaseDataAccess& stream, const char* name, const GMA_Maddr& address,
                  unsigned int& status) {
  SCL_String text;
  address.getText(text);
  if (status == 0 && !fitsLine(name, text)) {
    status = KRX_ENVELOPE_FORM;
  }
  rfc_write_field(stream, name, text, false, status);
}

}  // namespace

void KRX_Message::readEnvelope(DAC_BaseDataAccess& stream, unsigned int& status) {
  SCL_String name;
  SCL_StringTable lines(5);
  bool cut = false;
  while (status == 0 &&
         rfc_read_field_checked(stream, RFC_MAX_LINE, name, lines, cut, status) != 0 &&
         status == 0) {
    if (cut || SCL_equalNoCase(name, "Bad-Header")) {
      status = KRX_ENVELOPE_FORM;
      return;
    }
    const bool isSender = SCL_equalNoCase(name, RETURN_PATH);
    if (isSender || SCL_equalNoCase(name, RECIPIENT)) {
      const SCL_String text = joined(lines);
      if (!text.isEmpty()) {
        addEnvelopeAddress(isSender ? gma::FROMADDR : gma::BCCADDR, text, status);
      }
      continue;
    }
    if (m_headers.count() >= RFC_MAX_HEADERS) {
      KRX_logTooMany("headers");
      status = KRX_ENVELOPE_FORM;
      return;
    }
    if (SCL_equalNoCase(name, MESSAGE_ID)) {
      m_headers.add(GMA_Mhdr(gma::RCPMESSAGEID, lines));
    } else {
      m_headers.add(GMA_Mhdr(gma::RCP_UNKNOWN, name, lines));
    }
  }
  if (status == 0) {
    readBlankRest(stream, status);
  }
}

void KRX_Message::addEnvelopeAddress(std::uint32_t type, const SCL_StringRef& text,
                                     unsigned int& status) {
  if (status != 0) {
    return;
  }
  if (!fitsLine(type == gma::FROMADDR ? RETURN_PATH : RECIPIENT, text)) {
    status = KRX_ENVELOPE_FORM;
    return;
  }
  auto address = GENMake<KRX_Maddr>("krxmsg", __LINE__, type, text, m_dflt_domain, status);
  if (status == KRX_RELAYED_ADDRESS) {
    m_attrs.setString(SPOOF_WARNING, "TRUE");
    status = 0;
  }
  if (status != 0) {
    return;
  }
  if (m_addresses.count() == UINT16_MAX && !m_addresses.contains(*address)) {
    KRX_logTooMany("addresses");
    status = KRX_ENVELOPE_FORM;
    return;
  }
  m_addresses.add(std::move(address));
}

void KRX_Message::writeEnvelope(DAC_BaseDataAccess& stream, unsigned int& status) {
  if (status != 0) {
    return;
  }
  const GMA_Mhdr* id = m_headers.findByType(gma::RCPMESSAGEID);
  if (id == nullptr) {
    GENAssert(GEN_NULL_POINTER, "krxmsg", __LINE__);
  }
  KRX_writeField(stream, MESSAGE_ID, id->value(), status);
  for (std::uint16_t i = 0; i < m_headers.count(); ++i) {
    const GMA_Mhdr& header = *m_headers.get(i);
    if (header.type() == gma::RCP_UNKNOWN && !header.custom().isEmpty()) {
      KRX_writeField(stream, header.custom(), header.value(), status);
    }
  }
  bool hasSender = false;
  for (std::uint16_t i = 0; i < m_addresses.count(); ++i) {
    const GMA_Maddr& address = *m_addresses.get(i);
    if (address.isFrom()) {
      writeAddress(stream, RETURN_PATH, address, status);
      hasSender = true;
    }
  }
  if (!hasSender) {
    rfc_write_field(stream, RETURN_PATH, " ", false, status);
  }
  for (std::uint16_t i = 0; i < m_addresses.count(); ++i) {
    const GMA_Maddr& address = *m_addresses.get(i);
    if (address.isRecipient() && !address.isSent()) {
      writeAddress(stream, RECIPIENT, address, status);
    }
  }
}
