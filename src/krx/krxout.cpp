// The message file on its way out: the header block, rebuilt from the typed headers and addresses,
// and a single part's content.
#include <cstdio>

#include "dac/DACMEMDA.h"
#include "dv/DVDATTIM.h"
#include "gen/GENCODES.h"
#include "gen/GENWNT.h"
#include "krx/krxapi.h"
#include "krx/krxlayout.h"
#include "krx/krxlines.h"
#include "log/LOGGLB.h"
#include "log/LOGLOG.h"
#include "rfc/rfctable.h"
#include "rfc/rfcwrite.h"

namespace {

void writeLine(DAC_BaseDataAccess& stream, std::string_view text, unsigned int& status) {
  stream.writeLine(static_cast<std::int32_t>(text.size()), text.data(), status);
}

void write(DAC_BaseDataAccess& stream, std::string_view text, unsigned int& status) {
  stream.write(static_cast<std::int32_t>(text.size()), text.data(), status);
}

// Travels in the envelope, or stands elsewhere in the message.
bool isOutsideHeaderBlock(std::uint32_t type) {
  return type >= gma::RCP_UNKNOWN && type <= gma::POSTAMBLE;
}

}  // namespace

// Which fields a header block already has.
struct KRX_Message::PresentFields {
  bool date = false, sender = false, recipient = false, copyRecipient = false;

  void note(std::uint32_t type) {
    switch (type) {
      case gma::SENTDATE:
        date = true;
        break;
      case gma::RETURNPATH:
      case gma::FROM:
      case gma::SENDER:
      case gma::RESENT_FROM:
      case gma::RESENT_SENDER:
        sender = true;
        break;
      case gma::TO:
      case gma::RESENT_TO:
        recipient = true;
        break;
      case gma::CC:
      case gma::RESENT_CC:
        copyRecipient = true;
        break;
      default:
        break;
    }
  }
};

namespace {

const char* addressFieldName(std::uint32_t type) {
  switch (type) {
    case gma::FROMADDR:
      return "From";
    case gma::TOADDR:
      return "To";
    case gma::CCADDR:
      return "Cc";
    case gma::BCCADDR:
      return "Bcc";
    case gma::RESENTFROMADDR:
      return "Resent-From";
    case gma::RESENTTOADDR:
      return "Resent-To";
    case gma::RESENTCCADDR:
      return "Resent-Cc";
    case gma::RESENTBCCADDR:
      return "Resent-Bcc";
    case gma::APPARENTLYTOADDR:
      return "Apparently-To";
    default:
      GENAssert(GEN_BAD_SWITCH_VALUE, "krxmsg", __LINE__);
  }
}

bool isMalformed(const GMA_Mhdr& header) {
  return header.type() == gma::BAD_FORMAT && header.custom().isEmpty();
}

SCL_String fieldName(const GMA_Mhdr& header) {
  return header.custom().isEmpty() ? rfc_header_name(header.type()) : header.custom();
}

// Whether two blocks were read as the same fields, whatever a clock wrote into them.
bool areAlike(const GMA_MhdrTable& a, const GMA_MhdrTable& b) {
  std::uint16_t i = 0;
  while (i < a.count() && i < b.count() && a.get(i)->type() == b.get(i)->type() &&
         a.get(i)->value().count() == b.get(i)->value().count()) {
    ++i;
  }
  return i == a.count() && i == b.count();
}

}  // namespace

void KRX_Message::writeMessage(DAC_BaseDataAccess& stream, unsigned int& status) {
  if (status != 0) {
    return;
  }
  const Layout layout = planLayout();
  writeHeaderBlock(stream, layout, status);
  switch (layout.shape) {
    case Layout::Shape::empty:
      writeLine(stream, "", status);
      break;
    case Layout::Shape::single:
      writeSinglePart(stream, status);
      break;
    case Layout::Shape::multipart:
      writeMultipart(stream, layout, status);
      break;
  }
  writeLine(stream, ".", status);
}

void KRX_Message::logNamelessHeaders(const Layout& layout) const {
  for (std::uint16_t i = 0; i < m_headers.count(); ++i) {
    const GMA_Mhdr& header = *m_headers.get(i);
    if (!isOutsideHeaderBlock(header.type()) && !layout.leavesOut(header.type()) &&
        !isMalformed(header) && fieldName(header).isEmpty()) {
      LOG_globalLog().writeText(KRX_LOG_ALL, KRX_FACILITY, LOG_Logging::VERBOSE,
                                "Header of type %u has no field name, it is left out.",
                                header.type());
    }
  }
}

// Malformed lines stand bare, unless the next reader would then take a part of the block for text,
// read the content by other fields, or lose a field: bare lines join the one before them.
void KRX_Message::writeHeaderBlock(DAC_BaseDataAccess& stream, const Layout& layout,
                                   unsigned int& status) {
  logNamelessHeaders(layout);
  if (m_headers.findByType(gma::BAD_FORMAT) == nullptr) {
    writeHeaderBlock(stream, layout, true, status);
    return;
  }
  DAC_MemoryDataAccess bare;
  DAC_MemoryDataAccess apart;
  writeHeaderBlock(bare, layout, true, status);
  writeHeaderBlock(apart, layout, false, status);
  GMA_MhdrTable found;
  GMA_MhdrTable wanted;
  const bool canStandBare = KRX_isHeaderBlock(bare, found, status) &&
                            keepsStructure(found, layout) &&
                            (!KRX_isHeaderBlock(apart, wanted, status) || areAlike(found, wanted));
  (canStandBare ? bare : apart).copyTo(&stream, 0, status);
}

void KRX_Message::writeHeaderBlock(DAC_BaseDataAccess& stream, const Layout& layout, bool bare,
                                   unsigned int& status) {
  PresentFields present;
  const std::int32_t start = stream.getPosition();
  for (std::uint16_t i = 0; i < m_headers.count(); ++i) {
    const GMA_Mhdr& header = *m_headers.get(i);
    if (isOutsideHeaderBlock(header.type())) {
      continue;
    }
    present.note(header.type());
    if (layout.leavesOut(header.type())) {
      continue;
    }
    if (isMalformed(header)) {
      const bool alone = bare || stream.getPosition() == start;
      KRX_writeBadHeader(stream, header.value(), alone, status);
    } else {
      writeHeader(stream, header, status);
    }
  }
  writeMissingFields(stream, present, status);
}

void KRX_Message::writeMissingFields(DAC_BaseDataAccess& stream, const PresentFields& present,
                                     unsigned int& status) {
  if (!present.sender) {
    writeAddressLines(stream, gma::RESENTFROMADDR, status);
    writeAddressLines(stream, gma::FROMADDR, status);
  }
  if (!present.recipient) {
    writeAddressLines(stream, gma::RESENTTOADDR, status);
    writeAddressLines(stream, gma::TOADDR, status);
  }
  if (!present.copyRecipient) {
    writeAddressLines(stream, gma::RESENTCCADDR, status);
    writeAddressLines(stream, gma::CCADDR, status);
  }
  if (!present.date && isInform()) {
    rfc_write_field(stream, rfc_header_name(gma::SENTDATE), formatDate(DV_DateTime()), true,
                    status);
  }
}

// Without a name its value would become part of the field before it.
void KRX_Message::writeHeader(DAC_BaseDataAccess& stream, const GMA_Mhdr& header,
                              unsigned int& status) {
  const SCL_String name = fieldName(header);
  if (!name.isEmpty()) {
    KRX_writeField(stream, name, header.value(), status);
  }
}

// The addresses of one kind as one field, each further one on a line of its own. Sent addresses
// have no field: they are only a record of what was delivered.
void KRX_Message::writeAddressLines(DAC_BaseDataAccess& stream, std::uint32_t mask,
                                    unsigned int& status) {
  bool open = false;
  SCL_String text;
  for (std::uint16_t i = 0; i < m_addresses.count(); ++i) {
    const GMA_Maddr& address = *m_addresses.get(i);
    if ((address.getType() & mask) != mask || address.isSent()) {
      continue;
    }
    if (open) {
      write(stream, ",\r\n   ", status);
    } else {
      write(stream, addressFieldName(address.getType()), status);
      write(stream, ": ", status);
      open = true;
    }
    address.getText(text);
    write(stream, rfc_one_line(text.view()).view(), status);
  }
  if (open) {
    write(stream, "\r\n", status);
  }
}

SCL_String KRX_Message::formatDate(const DV_DateTime& time) {
  static constexpr const char* MONTHS[] = {"",    "Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                           "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
  unsigned int year = 0;
  unsigned int month = 0;
  unsigned int day = 0;
  unsigned int hours = 0;
  unsigned int minutes = 0;
  unsigned int seconds = 0;
  unsigned int hundredths = 0;
  time.date().get(year, month, day);
  time.time().get(hours, minutes, seconds, hundredths);
  char text[64];
  std::snprintf(text, sizeof text, "%2u %s %02u %02u:%02u:%02u", day,
                month <= 12 ? MONTHS[month] : "", year % 100, hours, minutes, seconds);
  return SCL_String(text);
}

DAC_BaseDataAccess& KRX_Message::part(unsigned int index) const {
  if (m_body != nullptr) {
    if (index == 0) {
      return *m_body;
    }
    --index;
  }
  DAC_BaseDataAccess* data = index < m_items.count() ? m_items[index]->getData() : nullptr;
  if (data == nullptr) {
    GENAssert(GEN_NULL_POINTER, "krxmsg", __LINE__);
  }
  return *data;
}

void KRX_Message::writeSinglePart(DAC_BaseDataAccess& stream, unsigned int& status) {
  writePartContent(stream, part(0), status);
}

void KRX_Message::writePartContent(DAC_BaseDataAccess& stream, DAC_BaseDataAccess& data,
                                   unsigned int& status) {
  constexpr std::int32_t LINE_BUFFER = 32768;
  writeLine(stream, "", status);
  data.setPosition(0, status);
  const auto buffer = std::make_unique_for_overwrite<char[]>(LINE_BUFFER);
  while (status == 0) {
    const std::int32_t length = data.readLine(LINE_BUFFER, buffer.get(), status);
    if (status == DAC_LINE_TOO_LONG) {
      // A last line without a line end answers like one that does not fit; only the latter goes on.
      unsigned int sizeStatus = 0;
      if (data.getPosition() == data.size(sizeStatus) && sizeStatus == 0) {
        status = 0;
      }
    }
    if (status != 0) {
      break;
    }
    if (length > 0 && buffer[0] == '.') {
      write(stream, ".", status);
    }
    writeLine(stream, {buffer.get(), static_cast<std::size_t>(length)}, status);
  }
  if (status == DAC_END) {
    status = 0;
  }
}
