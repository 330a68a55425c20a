// Reading and printing the fields of an entry.
#include "ras/rasfield.h"

#include <cstdio>
#include <cstring>

#include "dv/DVDECODE.h"

namespace ras {

#define RAS_FIELD(name, kind, member) \
  { name, Field::kind, offsetof(RasEntry, member), sizeof(RasEntry::member) }

namespace {

constexpr Field FIELDS[] = {
    RAS_FIELD("Options", HEX, options),
    RAS_FIELD("CountryId", NUMBER, countryId),
    RAS_FIELD("CountryCode", NUMBER, countryCode),
    RAS_FIELD("AreaCode", TEXT, areaCode),
    RAS_FIELD("LocalPhoneNumber", TEXT, localPhoneNumber),
    RAS_FIELD("IpAddress", ADDRESS, ipaddr),
    RAS_FIELD("IpAddressDns", ADDRESS, ipaddrDns),
    RAS_FIELD("IpAddressDnsAlt", ADDRESS, ipaddrDnsAlt),
    RAS_FIELD("IpAddressWins", ADDRESS, ipaddrWins),
    RAS_FIELD("IpAddressWinsAlt", ADDRESS, ipaddrWinsAlt),
    RAS_FIELD("FrameSize", NUMBER, frameSize),
    RAS_FIELD("NetProtocols", NUMBER, netProtocols),
    RAS_FIELD("FramingProtocol", NUMBER, framingProtocol),
    RAS_FIELD("Script", TEXT, script),
    RAS_FIELD("AutodialDll", TEXT, autodialDll),
    RAS_FIELD("AutodialFunc", TEXT, autodialFunc),
    RAS_FIELD("DeviceType", TEXT, deviceType),
    RAS_FIELD("DeviceName", TEXT, deviceName),
    RAS_FIELD("X25PadType", TEXT, x25PadType),
    RAS_FIELD("X25Address", TEXT, x25Address),
    RAS_FIELD("X25Facilities", TEXT, x25Facilities),
    RAS_FIELD("X25UserData", TEXT, x25UserData),
    RAS_FIELD("Channels", NUMBER, channels),
    RAS_FIELD("SubEntries", NUMBER, subEntries),
    RAS_FIELD("DialMode", NUMBER, dialMode),
    RAS_FIELD("DialExtraPercent", NUMBER, dialExtraPercent),
    RAS_FIELD("DialExtraSampleSeconds", NUMBER, dialExtraSampleSeconds),
    RAS_FIELD("HangUpExtraPercent", NUMBER, hangUpExtraPercent),
    RAS_FIELD("HangUpExtraSampleSeconds", NUMBER, hangUpExtraSampleSeconds),
    RAS_FIELD("IdleDisconnectSeconds", NUMBER, idleDisconnectSeconds),
};

char* at(const Field& field, RasEntry& entry) {
  return reinterpret_cast<char*>(&entry) + field.offset;
}

const char* at(const Field& field, const RasEntry& entry) {
  return reinterpret_cast<const char*>(&entry) + field.offset;
}

bool parseNumber(const Field& field, const std::string& text, RasEntry& entry) {
  std::uint32_t value = 0;
  const int base = field.kind == Field::HEX ? 16 : 10;
  const int used = dv::readUnsigned(value, base, text.c_str());
  if (used < 0 || static_cast<std::size_t>(used) != text.size()) {
    return false;
  }
  std::memcpy(at(field, entry), &value, sizeof value);
  return true;
}

bool parseAddress(const Field& field, const std::string& text, RasEntry& entry) {
  std::uint32_t parts[4];
  int furthest = 0;
  if (dv::decode("%U.%U.%U.%U", true, parts, sizeof parts, furthest, text.c_str()) < 0) {
    return false;
  }
  std::uint8_t bytes[4];
  for (std::size_t i = 0; i < 4; ++i) {
    if (parts[i] > 255) {
      return false;
    }
    bytes[i] = static_cast<std::uint8_t>(parts[i]);
  }
  std::memcpy(at(field, entry), bytes, sizeof bytes);
  return true;
}

bool parseText(const Field& field, const std::string& text, RasEntry& entry) {
  if (text.size() >= field.size) {
    return false;
  }
  std::memset(at(field, entry), 0, field.size);
  std::memcpy(at(field, entry), text.data(), text.size());
  return true;
}

std::uint32_t numberOf(const Field& field, const RasEntry& entry) {
  std::uint32_t value = 0;
  std::memcpy(&value, at(field, entry), sizeof value);
  return value;
}

std::string printHex(std::uint32_t value) {
  char text[9];
  std::snprintf(text, sizeof text, "%X", value);
  return text;
}

std::string printAddress(const Field& field, const RasEntry& entry) {
  std::string text;
  for (std::size_t i = 0; i < field.size; ++i) {
    text += (i == 0 ? "" : ".");
    text += std::to_string(static_cast<unsigned char>(at(field, entry)[i]));
  }
  return text;
}

}  // namespace

std::span<const Field> fields() noexcept {
  return FIELDS;
}

const Field* findField(std::string_view name) noexcept {
  for (const Field& field : FIELDS) {
    if (name == field.name) {
      return &field;
    }
  }
  return nullptr;
}

bool parseField(const Field& field, const std::string& text, RasEntry& entry) {
  switch (field.kind) {
    case Field::TEXT:
      return parseText(field, text, entry);
    case Field::ADDRESS:
      return parseAddress(field, text, entry);
    default:
      return parseNumber(field, text, entry);
  }
}

std::string printField(const Field& field, const RasEntry& entry) {
  const char* const text = at(field, entry);
  switch (field.kind) {
    case Field::TEXT:
      return {text, std::find(text, text + field.size, '\0')};
    case Field::ADDRESS:
      return printAddress(field, entry);
    case Field::HEX:
      return printHex(numberOf(field, entry));
    default:
      return std::to_string(numberOf(field, entry));
  }
}

}  // namespace ras
