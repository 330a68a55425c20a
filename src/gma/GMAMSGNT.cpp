// The notification texts: a template, its placeholders replaced by what the message holds, before
// or behind the body.
#include <new>
#include <string>
#include <string_view>

#include "dac/DACBASDA.h"
#include "dac/DACMEMDA.h"
#include "gen/GENCATCH.h"
#include "gma/GMAMSG.h"

namespace {

constexpr std::int32_t TEMPLATE_LINE_SIZE = 1024;

// A value may hold placeholders, also its own: senders choose attributes. So the expansion of one
// line is bounded; past a bound the line is written as it stands.
constexpr unsigned int MAX_REPLACEMENTS = 1000;
constexpr std::size_t MAX_EXPANDED_LINE = 1024UL * 1024;

constexpr std::size_t SHORTEST_ATTRIBUTE_TOKEN = 3;  // "%%" names nothing

void senderText(const GMA_Message& message, std::string& value) {
  for (std::uint16_t i = 0; i < message.addresses().count(); ++i) {
    const GMA_Maddr& address = *message.addresses().get(i);
    if (address.isFrom()) {
      SCL_String text;
      address.getText(text);
      value = text.view();
      return;
    }
  }
}

void headerText(const GMA_Message& message, std::uint32_t type, std::string& value) {
  if (const GMA_Mhdr* header = message.headers().findByType(type)) {
    value = header->firstLine().view();
  }
}

bool attributeText(const GMA_Message& message, std::string_view name, std::string& value) {
  const std::string terminated(name);
  const ATR_Attribute* attribute = message.attributes().find(terminated.c_str());
  if (attribute == nullptr) {
    return false;
  }
  if (attribute->getType() == STRING) {
    value = attribute->string().view();
  } else {
    value = std::to_string(static_cast<std::int32_t>(attribute->getInteger()));
  }
  return true;
}

// The value of a token, its percent signs included; false when it stands for nothing.
bool resolve(const GMA_Message& message, std::string_view token, std::string& value) {
  value.clear();
  if (SCL_equalNoCase(token, std::string_view("%SENDER%"))) {
    senderText(message, value);
  } else if (SCL_equalNoCase(token, std::string_view("%SUBJECT%"))) {
    headerText(message, gma::SUBJECT, value);
  } else if (SCL_equalNoCase(token, std::string_view("%DATE%"))) {
    headerText(message, gma::SENTDATE, value);
  } else if (token.size() < SHORTEST_ATTRIBUTE_TOKEN ||
             !attributeText(message, token.substr(1, token.size() - 2), value)) {
    return false;
  }
  value = SCL_trimmed(value);
  return true;
}

// Replaces the placeholders from left to right, those inside a value included: the scan goes on
// where the value begins. What stands before it has been found to stand for nothing and has not
// changed since.
void expand(const GMA_Message& message, std::string& line) {
  std::string value;
  unsigned int replacements = 0;
  std::size_t begin = line.find('%');
  while (begin != std::string::npos) {
    const std::size_t end = line.find('%', begin + 1);
    if (end == std::string::npos) {
      return;
    }
    const std::size_t length = end + 1 - begin;
    if (!resolve(message, std::string_view(line).substr(begin, length), value)) {
      begin = line.find('%', end + 1);
      continue;
    }
    if (replacements == MAX_REPLACEMENTS ||
        line.size() - length + value.size() > MAX_EXPANDED_LINE) {
      return;
    }
    ++replacements;
    line.replace(begin, length, value);
    begin = line.find('%', begin);
  }
}

void writeExpanded(const GMA_Message& message, DAC_BaseDataAccess& destination,
                   std::string_view templateLine, unsigned int& status) {
  try {
    std::string line(templateLine);
    expand(message, line);
    destination.writeLine(static_cast<std::int32_t>(line.size()), line.data(), status);
  } catch (const std::bad_alloc&) {
    GENAssert(GEN_NULL_POINTER, "GMAMSG", __LINE__);
  }
}

// Writes the template's lines, expanded, at the end of the destination.
void writeTemplate(const GMA_Message& message, DAC_BaseDataAccess* destination,
                   DAC_BaseDataAccess* textTemplate, unsigned int& status) {
  if (destination == nullptr || textTemplate == nullptr) {
    GENAssert(GEN_NULL_POINTER, "GMAMSG", __LINE__);
  }
  if (status != 0) {
    return;
  }
  destination->seek(DAC_BaseDataAccess::FROM_END, 0, status);
  textTemplate->seek(DAC_BaseDataAccess::FROM_START, 0, status);
  char buffer[TEMPLATE_LINE_SIZE];
  while (status == 0) {
    const std::int32_t length = textTemplate->readLine(sizeof buffer, buffer, status);
    if (status == DAC_END && length > 0) {
      status = 0;  // a last line without a line end
    }
    if (status == 0) {
      writeExpanded(message, *destination, {buffer, static_cast<std::size_t>(length)}, status);
    }
  }
  if (status == DAC_END) {
    status = 0;
  }
}

// Makes CR LF the last two bytes.
void endLine(DAC_BaseDataAccess& object, unsigned int& status) {
  if (status != 0) {
    return;
  }
  char last[2] = {};
  object.seek(DAC_BaseDataAccess::FROM_END, -2, status);
  if (status == DAC_NEGATIVE_POSITION) {
    status = 0;  // the object is shorter than a line end
  } else {
    object.read(2, last, status);
  }
  if (last[0] != '\r' || last[1] != '\n') {
    object.seek(DAC_BaseDataAccess::FROM_END, 0, status);
    object.writeLine(0, "", status);
  }
}

// Null, with 10110, when there is no memory for it.
std::unique_ptr<DAC_BaseDataAccess> makeBody(unsigned int& status) {
  std::unique_ptr<DAC_BaseDataAccess> body;
  if (GENCatch([&] { body = std::make_unique<DAC_MemoryDataAccess>(); })) {
    status = GMA_NO_BODY_OBJECT;
  }
  return body;
}

}  // namespace

// Copies the old body, with its attributes and a line end, behind what `newBody` holds, and puts
// `newBody` into its place, whatever status the copying leaves.
void GMA_Message::replaceBody(std::unique_ptr<DAC_BaseDataAccess> newBody, unsigned int& status) {
  if (m_body != nullptr) {
    m_body->copyTo(newBody.get(), 0, status);
    m_body->copyAttributesTo(newBody.get(), status);
    endLine(*newBody, status);
    if (m_described == m_body) {
      m_described = newBody.get();
    }
    delete m_body;
  }
  m_body = newBody.release();
}

void GMA_Message::prependText(DAC_BaseDataAccess* textTemplate, unsigned int& status) {
  if (status != 0) {
    return;
  }
  std::unique_ptr<DAC_BaseDataAccess> newBody = makeBody(status);
  if (newBody == nullptr) {
    return;
  }
  writeTemplate(*this, newBody.get(), textTemplate, status);
  if (status == 0) {
    replaceBody(std::move(newBody), status);
  }
}

void GMA_Message::appendText(DAC_BaseDataAccess* textTemplate, unsigned int& status) {
  if (status != 0) {
    return;
  }
  std::unique_ptr<DAC_BaseDataAccess> newBody = makeBody(status);
  if (newBody == nullptr) {
    return;
  }
  replaceBody(std::move(newBody), status);
  writeTemplate(*this, m_body, textTemplate, status);
}
