// The model as JSON.
#include "host/Json.h"

#include "dac/DACBASDA.h"
#include "gma/GMAMADDR.h"
#include "gma/GMAMHDR.h"
#include "rfc/RFCB64Da.h"
#include "rfc/RFCMptDa.h"
#include "rfc/RFCMsgDa.h"
#include "rfc/RFCQprDa.h"

namespace host {
namespace {

constexpr int FORMAT_VERSION = 1;

Json jsonAttribute(const ATR_Attribute& attribute) {
  Json row;
  row["name"] = jsonText(attribute.name().view());
  if (attribute.getType() == STRING) {
    row["value"] = jsonText(attribute.string().view());
  } else {
    row["value"] = attribute.getInteger();
  }
  return row;
}

Json jsonAttributes(DAC_BaseDataAccess& data) {
  Json rows = Json::array();
  for (const ATR_Attribute* attribute = data.firstAttribute(); attribute != nullptr;
       attribute = data.nextAttribute()) {
    rows.push_back(jsonAttribute(*attribute));
  }
  return rows;
}

Json jsonLines(const SCL_StringTable& lines) {
  Json rows = Json::array();
  for (std::uint16_t i = 0; i < lines.count(); ++i) {
    rows.push_back(jsonText(lines.get(i).view()));
  }
  return rows;
}

Json jsonHeaders(const GMA_MhdrTable& headers) {
  Json rows = Json::array();
  for (std::uint16_t i = 0; i < headers.count(); ++i) {
    const GMA_Mhdr& header = *headers.get(i);
    Json row;
    row["type"] = header.type();
    row["typeName"] =
        gma::hasHeaderTypeName(header.type()) ? gma::headerTypeName(header.type()) : "";
    row["name"] = jsonText(header.custom().view());
    row["lines"] = jsonLines(header.value());
    rows.push_back(std::move(row));
  }
  return rows;
}

Json jsonAddresses(const GMA_MaddrTable& addresses) {
  Json rows = Json::array();
  for (std::uint16_t i = 0; i < addresses.count(); ++i) {
    const GMA_Maddr& address = *addresses.get(i);
    Json row;
    row["type"] = address.getType();
    row["typeName"] = gma::addressTypeName(address.getType());
    row["user"] = jsonText(address.getUser().view());
    row["location"] = jsonText(address.getLocation().view());
    row["original"] = jsonText(address.getOriginal().view());
    row["friendly"] = jsonText(address.getFriendly().view());
    rows.push_back(std::move(row));
  }
  return rows;
}

const char* viewName(const DAC_BaseDataAccess& data) {
  if (dynamic_cast<const RFCB64Da*>(&data) != nullptr) {
    return "base64";
  }
  if (dynamic_cast<const RFCQprDa*>(&data) != nullptr) {
    return "quoted-printable";
  }
  if (dynamic_cast<const RFCMsgDa*>(&data) != nullptr) {
    return "message";
  }
  return dynamic_cast<const RFCMptDa*>(&data) != nullptr ? "multipart" : "raw";
}

std::string readContent(DAC_BaseDataAccess& data) {
  unsigned int status = 0;
  std::string content(static_cast<std::size_t>(std::max(data.size(status), 0)), '\0');
  std::int32_t position = 0;
  const std::int32_t got = content.empty()
                               ? 0
                               : data.readAt(position, static_cast<std::int32_t>(content.size()),
                                             content.data(), status);
  content.resize(static_cast<std::size_t>(std::max(got, 0)));
  return content;
}

Json jsonChildren(DAC_BaseDataAccess& data) {
  Json rows = Json::array();
  unsigned int status = 0;
  const std::uint32_t count = data.childCount(status);
  for (std::uint32_t i = 0; i < count; ++i) {
    unsigned int childStatus = 0;
    DAC_BaseDataAccess* child = data.getChild(i, childStatus);
    if (child == nullptr) {
      continue;
    }
    const std::string content = readContent(*child);
    Json row;
    row["size"] = content.size();
    row["content"] = jsonText(content);
    row["attributes"] = jsonAttributes(*child);
    rows.push_back(std::move(row));
  }
  return rows;
}

// Adds the part's members to `row`. The children come first: making them may note what is wrong
// with the part as an attribute.
void addPart(Json& row, DAC_BaseDataAccess& data) {
  Json children = jsonChildren(data);
  const std::string content = readContent(data);
  row["view"] = viewName(data);
  row["size"] = content.size();
  row["content"] = jsonText(content);
  row["attributes"] = jsonAttributes(data);
  row["children"] = std::move(children);
}

Json jsonItems(GMA_Message& message) {
  Json rows = Json::array();
  for (std::uint16_t i = 0; i < message.itemCount(); ++i) {
    Json row;
    row["original"] = message.isItemOriginal(i);
    addPart(row, *message.getItemData(i));
    rows.push_back(std::move(row));
  }
  return rows;
}

Json jsonLog(const std::vector<RecordingStream::Entry>& entries) {
  Json rows = Json::array();
  for (const RecordingStream::Entry& entry : entries) {
    Json row;
    row["facility"] = jsonText(entry.facility);
    row["level"] = entry.level;
    row["text"] = jsonText(entry.text);
    rows.push_back(std::move(row));
  }
  return rows;
}

}  // namespace

Json jsonText(std::string_view text) {
  std::string utf8;
  utf8.reserve(text.size());
  for (const char c : text) {
    const auto code = static_cast<unsigned char>(c);
    if (code < 0x80) {
      utf8 += c;
    } else {
      utf8 += static_cast<char>(0xC0 | (code >> 6));
      utf8 += static_cast<char>(0x80 | (code & 0x3F));
    }
  }
  return utf8;
}

Json jsonMessage(GMA_Message& message, unsigned int status,
                 const std::vector<RecordingStream::Entry>& log) {
  Json attributes = Json::array();
  for (std::uint16_t i = 0; i < message.attributes().count(); ++i) {
    attributes.push_back(jsonAttribute(*message.attributes().get(i)));
  }
  Json root;
  root["version"] = FORMAT_VERSION;
  root["status"] = status;
  root["headers"] = jsonHeaders(message.headers());
  root["addresses"] = jsonAddresses(message.addresses());
  root["attributes"] = std::move(attributes);
  root["body"] = nullptr;
  if (DAC_BaseDataAccess* body = message.getBody()) {
    Json part;
    addPart(part, *body);
    root["body"] = std::move(part);
  }
  root["items"] = jsonItems(message);
  root["log"] = jsonLog(log);
  return root;
}

std::string jsonString(const Json& value, int indent) {
  return value.dump(indent, ' ', true);
}

}  // namespace host
