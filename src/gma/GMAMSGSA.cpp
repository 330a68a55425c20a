// The standard attributes of a message: what it says of itself to rules, templates and logs.
#include <cstdint>
#include <limits>

#include "dac/DACBASDA.h"
#include "gen/GENCODES.h"
#include "gma/GMAMSG.h"
#include "gma/GMAMSGNM.h"

namespace {

// The texts, in the order in which new attributes are appended.
enum Text : unsigned int {
  TO,
  CC,
  BCC,
  FROM,
  RETURN_PATH,
  RECIPIENT,
  SUBJECT,
  SENT_DATE,
  PRIORITY,
  TEXTS
};

constexpr const char* NAMES[TEXTS] = {
    gma::ATTRIBUTE_TO,      gma::ATTRIBUTE_CC,          gma::ATTRIBUTE_BCC,
    gma::ATTRIBUTE_FROM,    gma::ATTRIBUTE_RETURN_PATH, gma::ATTRIBUTE_RECIPIENT,
    gma::ATTRIBUTE_SUBJECT, gma::ATTRIBUTE_SENT_DATE,   gma::ATTRIBUTE_PRIORITY};

// In which lists the recipients of a type appear. Types that are not here appear in none.
struct Role {
  std::uint32_t type;
  Text list;
  bool isRecipient;  // also in Recipient: those that the message is still to be sent to
};

constexpr Role ROLES[] = {
    {gma::TOADDR, TO, true},   {gma::RESENTTOADDR, TO, true},   {gma::SENTTOADDR, TO, false},
    {gma::CCADDR, CC, true},   {gma::RESENTCCADDR, CC, true},   {gma::SENTCCADDR, CC, false},
    {gma::BCCADDR, BCC, true}, {gma::RESENTBCCADDR, BCC, true}, {gma::SENTBCCADDR, BCC, false},
};

// Collects the texts of those attributes that a message does not have yet.
class Collector {
 public:
  explicit Collector(const ATR_AttributeList& attributes) {
    for (unsigned int i = 0; i < TEXTS; ++i) {
      m_wanted[i] = attributes.find(NAMES[i]) == nullptr;
    }
  }

  void addAddress(const GMA_Maddr& address) {
    address.getText(m_address);
    if (address.getType() == gma::FROMADDR || address.getType() == gma::RESENTFROMADDR) {
      m_texts[FROM] = m_address;
      m_texts[RETURN_PATH] = m_address;
      return;
    }
    for (const Role& role : ROLES) {
      if (role.type == address.getType()) {
        append(role.list);
        if (role.isRecipient) {
          append(RECIPIENT);
        }
      }
    }
  }

  void addHeader(const GMA_Mhdr& header) {
    switch (header.type()) {
      case gma::SUBJECT:
        header.getValueText(m_texts[SUBJECT]);
        break;
      case gma::SENTDATE:
        header.getValueText(m_texts[SENT_DATE]);
        break;
      case gma::PRIORITY:
        header.getValueText(m_texts[PRIORITY]);
        break;
      default:
        break;
    }
  }

  void setNew(ATR_AttributeList& attributes) const {
    for (unsigned int i = 0; i < TEXTS; ++i) {
      if (m_wanted[i] && !m_texts[i].isEmpty()) {
        attributes.setString(NAMES[i], m_texts[i]);
      }
    }
  }

 private:
  void append(Text text) {
    if (!m_wanted[text]) {
      return;
    }
    if (!m_texts[text].isEmpty()) {
      m_texts[text] += ", ";
    }
    m_texts[text] += m_address;
  }

  bool m_wanted[TEXTS];
  SCL_String m_texts[TEXTS];
  SCL_String m_address;  // of the address in hand
};

// The size that `data` carries as its AttachmentSize, also when it is no longer true; else its real
// size, which it then carries. A sender may have planted a text under that name: it does not count.
// A size that cannot be had counts as 0 and is not noted.
std::uint32_t sizeOf(DAC_BaseDataAccess* data) {
  if (data == nullptr) {
    return 0;
  }
  unsigned int status = 0;
  std::uint32_t size = 0;
  data->getIntegerAttribute(dac::ATTACHMENT_SIZE, size, status);
  if (status != DAC_NO_ATTRIBUTE && status != DAC_ATTRIBUTE_TYPE) {
    return size;
  }
  status = 0;
  const std::int32_t real = data->size(status);
  if (status != 0 || real < 0) {
    return 0;
  }
  size = static_cast<std::uint32_t>(real);
  data->setIntegerAttribute(dac::ATTACHMENT_SIZE, size);
  return size;
}

}  // namespace

void GMA_Message::setStandardAttributes() {
  Collector collector(m_attrs);
  for (std::uint16_t i = 0; i < m_addresses.count(); ++i) {
    collector.addAddress(*m_addresses.get(i));
  }
  for (std::uint16_t i = 0; i < m_headers.count(); ++i) {
    collector.addHeader(*m_headers.get(i));
  }
  collector.setNew(m_attrs);
  m_attrs.setInteger(dac::NUM_ATTACHMENTS, itemCount());

  std::uint64_t total = sizeOf(m_body);
  for (std::uint16_t i = 0; i < itemCount(); ++i) {
    total += sizeOf(getItemData(i));
  }
  constexpr std::uint64_t LARGEST = std::numeric_limits<std::uint32_t>::max();
  m_attrs.setInteger(dac::MESSAGE_SIZE,
                     static_cast<std::uint32_t>(total < LARGEST ? total : LARGEST));
  m_attrs.setString(gma::ATTRIBUTE_SOURCE_POST_OFFICE, postOfficeName());
}
