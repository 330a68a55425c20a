// The two ways in which a message is shown: the dump of its fields to a text stream, and the
// listing of its contents in the global log.
#include <ostream>

#include "dac/DACBASDA.h"
#include "gen/GENCODES.h"
#include "gen/GENWNT.h"
#include "gma/GMAMSG.h"
#include "log/LOGGLB.h"
#include "log/LOGLOG.h"
#include "scl/SCLDUMP.h"

namespace {

constexpr unsigned int DETAIL_STREAMS = 6;
constexpr unsigned int SUMMARY_STREAMS = 5;
constexpr unsigned int FACILITY = 1;
constexpr unsigned int ATTACHMENT_FACILITY = 8;

// How the listing calls a role.
const char* roleLabel(std::uint32_t type) {
  switch (type) {
    case gma::NULLADDR:
      return "NULL";
    case gma::FROMADDR:
      return "From";
    case gma::TOADDR:
      return "To";
    case gma::CCADDR:
      return "CC";
    case gma::BCCADDR:
      return "BCC";
    case gma::SENTTOADDR:
      return "SentTo";
    case gma::SENTCCADDR:
      return "SentCc";
    case gma::SENTBCCADDR:
      return "SentBcc";
    case gma::NO_ADDRESS_TYPE:
      return "_INPUT_";
    default:
      GENAssert(GEN_BAD_SWITCH_VALUE, "GMAMSG", __LINE__);
  }
}

// The logs print a value as a signed number.
std::int32_t signedValue(const ATR_Attribute& attribute) {
  return static_cast<std::int32_t>(attribute.getInteger());
}

// One listing. Every text in it is a sender's and goes through LOG_Clean.
class Listing {
 public:
  Listing(GMA_Message& message, const SCL_StringRef& title)
      : m_message(message),
        m_title(title),
        m_log(LOG_globalLog()),
        m_isDetailed(m_log.wants(DETAIL_STREAMS, LOG_Logging::NORMAL)) {}

  void write() {
    if (m_isDetailed) {
      m_log.writeText(DETAIL_STREAMS, FACILITY, LOG_Logging::NORMAL, "Contents of \"%s\"",
                      m_title.c_str());
    }
    writeAddresses();
    writeHeaders();
    if (m_isDetailed) {
      writeAttributes();
      writeItems();
    }
    m_log.writeText(SUMMARY_STREAMS, FACILITY, LOG_Logging::BRIEF,
                    "%s, From Address \"%s\", To address \"%s\", Message Subject \"%s\"",
                    m_title.c_str(), LOG_Clean(m_sender).c_str(), LOG_Clean(m_recipient).c_str(),
                    LOG_Clean(m_subject).c_str());
  }

 private:
  void writeHeading(const char* heading) {
    m_log.writeText(DETAIL_STREAMS, FACILITY, LOG_Logging::NORMAL, "\t%s", heading);
  }
  void writePair(std::string_view name, std::string_view value) {
    if (m_isDetailed) {
      m_log.writeText(DETAIL_STREAMS, FACILITY, LOG_Logging::NORMAL, "\t\t%s = \"%s\"",
                      LOG_Clean(name).c_str(), LOG_Clean(value).c_str());
    }
  }

  void writeAddresses() {
    writeHeading("Address List");
    SCL_String text;
    for (std::uint16_t i = 0; i < m_message.addresses().count(); ++i) {
      const GMA_Maddr& address = *m_message.addresses().get(i);
      address.getText(text);
      writePair(roleLabel(address.getType()), text.view());
      noteForSummary(address.getType(), text);
    }
  }

  // The last sender counts; of the recipients the first TOADDR, else the last SENTTOADDR, else the
  // first of any other kind.
  void noteForSummary(std::uint32_t type, const SCL_String& text) {
    switch (type) {
      case gma::FROMADDR:
        m_sender = text;
        break;
      case gma::TOADDR:
        noteRecipient(TO, m_rank < TO, text);
        break;
      case gma::SENTTOADDR:
        noteRecipient(SENT_TO, m_rank <= SENT_TO, text);
        break;
      case gma::CCADDR:
      case gma::BCCADDR:
      case gma::SENTCCADDR:
      case gma::SENTBCCADDR:
        noteRecipient(OTHER, m_rank < OTHER, text);
        break;
      default:
        break;
    }
  }

  enum Rank { NONE, OTHER, SENT_TO, TO };

  void noteRecipient(Rank rank, bool takesPlace, const SCL_String& text) {
    if (takesPlace) {
      m_rank = rank;
      m_recipient = text;
    }
  }

  void writeHeaders() {
    writeHeading("Headers");
    for (std::uint16_t i = 0; i < m_message.headers().count(); ++i) {
      const GMA_Mhdr& header = *m_message.headers().get(i);
      writeHeader(header);
      if (header.type() == gma::SUBJECT) {
        m_subject = header.firstLine();
      }
    }
  }

  void writeHeader(const GMA_Mhdr& header) {
    SCL_String name = header.getTypeName();
    if (!header.custom().isEmpty()) {
      name += "::";
      name += header.custom();
    }
    writePair(name.view(), header.firstLine().view());
    for (std::uint16_t i = 1; m_isDetailed && i < header.value().count(); ++i) {
      m_log.writeText(DETAIL_STREAMS, FACILITY, LOG_Logging::NORMAL, "\t\t\t\"%s\"",
                      LOG_Clean(header.value().get(i)).c_str());
    }
  }

  void writeAttributes() {
    writeHeading("Attributes");
    for (std::uint16_t i = 0; i < m_message.attributes().count(); ++i) {
      const ATR_Attribute& attribute = *m_message.attributes().get(i);
      if (attribute.getType() == STRING) {
        writePair(attribute.name().view(), attribute.string().view());
      } else {
        m_log.writeText(DETAIL_STREAMS, FACILITY, LOG_Logging::NORMAL, "\t\t%s = %li",
                        LOG_Clean(attribute.name()).c_str(),
                        static_cast<long>(signedValue(attribute)));
      }
    }
  }

  void writeItems() {
    for (std::uint16_t i = 0; i < m_message.itemCount(); ++i) {
      m_log.writeText(DETAIL_STREAMS, ATTACHMENT_FACILITY, LOG_Logging::NORMAL,
                      "Attribute for Attachment %u", static_cast<unsigned int>(i));
      if (DAC_BaseDataAccess* data = m_message.getItemData(i)) {
        writeItemAttributes(*data);
      }
    }
  }

  void writeItemAttributes(DAC_BaseDataAccess& data) {
    for (const ATR_Attribute* attribute = data.firstAttribute(); attribute != nullptr;
         attribute = data.nextAttribute()) {
      const LOG_Clean name(attribute->name());
      if (attribute->getType() == STRING) {
        m_log.writeText(DETAIL_STREAMS, ATTACHMENT_FACILITY, LOG_Logging::NORMAL,
                        "\tAttribute '%s' = '%s'", name.c_str(),
                        LOG_Clean(attribute->string()).c_str());
      } else if (attribute->getType() == INTEGER) {
        m_log.writeText(DETAIL_STREAMS, ATTACHMENT_FACILITY, LOG_Logging::NORMAL,
                        "\tAttribute '%s' = %i", name.c_str(), signedValue(*attribute));
      } else {
        m_log.writeText(DETAIL_STREAMS, ATTACHMENT_FACILITY, LOG_Logging::NORMAL,
                        "\tAttribute '%s', Unknown Type", name.c_str());
      }
    }
  }

  GMA_Message& m_message;
  const LOG_Clean m_title;
  LOG_Logging& m_log;
  const bool m_isDetailed;
  SCL_String m_sender;
  SCL_String m_recipient;
  Rank m_rank = NONE;
  SCL_String m_subject;
};

}  // namespace

void GMA_Message::dump(const SCL_StringRef& name, std::ostream& stream,
                       SCL_DumpIndent& indent) const {
  SCL_Dump dump(stream, indent, name, "GMA_Message", this);
  dump.line() << "m_is_inform = " << (isInform() ? "INFORM" : "USER") << " MESSAGE" << std::endl;
  dump.quoted("m_postoffice", postOfficeName());
  m_addresses.dump("m_addresses", stream, indent);
  m_headers.dump("m_headers", stream, indent);
  dump.line() << "m_body = " << SCL_Address{m_body} << ";" << std::endl;
  dump.line() << "m_num_item = " << itemCount() << ";" << std::endl;
  for (std::uint16_t i = 0; i < itemCount(); ++i) {
    m_items[i]->dump(SCL_indexedName("m_items", i), stream, indent);
  }
  m_attrs.dump("m_attrs", stream, indent);
}

void GMA_Message::dumpContents(const SCL_StringRef& title) {
  Listing(*this, title).write();
}
