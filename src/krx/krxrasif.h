// The dial-up interface as the connector and a dial-up service module see it: the seven operations
// by name, their records with 8-bit texts, and the bounded copies of those texts. Every operation
// returns 0 or a dial-up error code. A record's first field is its size, which the caller sets, so
// that a service can tell which layout it was built with.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

inline constexpr char KRX_RAS_LIBRARY_NAME[] = "RASAPI32.DLL";

// The error codes that the connector tells apart.
inline constexpr std::uint32_t RAS_CANNOT_OPEN_PHONEBOOK = 621;
inline constexpr std::uint32_t RAS_NO_SUCH_ENTRY = 623;

inline constexpr std::uint32_t RAS_CONNECTED = 8192;
inline constexpr std::uint32_t RAS_DISCONNECTED = 8193;

// A connection; 0 is none.
using RasHandle = std::uint32_t;

// An entry of the phonebook. `alternateOffset` is the distance from the start of the record to the
// alternate phone numbers, each NUL-terminated, an empty one behind the last; 0 means none when an
// entry is read, and that they stay as they are when it is written.
struct RasEntry {
  std::uint32_t size;
  std::uint32_t options;
  std::uint32_t countryId;
  std::uint32_t countryCode;
  char areaCode[11];
  char localPhoneNumber[129];
  std::uint32_t alternateOffset;
  std::uint8_t ipaddr[4];
  std::uint8_t ipaddrDns[4];
  std::uint8_t ipaddrDnsAlt[4];
  std::uint8_t ipaddrWins[4];
  std::uint8_t ipaddrWinsAlt[4];
  std::uint32_t frameSize;
  std::uint32_t netProtocols;
  std::uint32_t framingProtocol;
  char script[260];
  char autodialDll[260];
  char autodialFunc[260];
  char deviceType[17];
  char deviceName[129];
  char x25PadType[33];
  char x25Address[201];
  char x25Facilities[201];
  char x25UserData[201];
  std::uint32_t channels;
  std::uint32_t reserved[2];
  std::uint32_t subEntries;
  std::uint32_t dialMode;
  std::uint32_t dialExtraPercent;
  std::uint32_t dialExtraSampleSeconds;
  std::uint32_t hangUpExtraPercent;
  std::uint32_t hangUpExtraSampleSeconds;
  std::uint32_t idleDisconnectSeconds;
};
static_assert(sizeof(RasEntry) == 1796);

// What the connector reads an entry into: alternate phone numbers follow the record.
struct RasEntryBuffer {
  RasEntry entry;
  char following[2048];
};
static_assert(sizeof(RasEntryBuffer) == 3844);

inline constexpr std::size_t RAS_DEVICE_INFO_SIZE = 1024;
inline constexpr std::size_t RAS_ERROR_TEXT_SIZE = 256;

struct RasStatus {
  std::uint32_t size;
  std::uint32_t state;
  std::uint32_t error;
  char deviceType[17];
  char deviceName[129];
  char phoneNumber[129];
};
static_assert(sizeof(RasStatus) == 288);

// An active connection.
struct RasConnection {
  std::uint32_t size;
  RasHandle handle;
  char entryName[257];
  char deviceType[17];
  char deviceName[129];
  char phonebook[260];
  std::uint32_t subEntry;
};
static_assert(sizeof(RasConnection) == 676);

inline constexpr std::uint32_t RAS_MAX_CONNECTIONS = 20;
static_assert(RAS_MAX_CONNECTIONS * sizeof(RasConnection) == 13520);

struct RasDialParameters {
  std::uint32_t size;
  char entryName[257];
  char phoneNumber[129];  // instead of the entry's, unless empty
  char callbackNumber[129];
  char userName[257];
  char password[257];
  char domain[16];
  std::uint32_t subEntry;
  std::uint32_t callbackId;
};
static_assert(sizeof(RasDialParameters) == 1060);

// The operations. A null phonebook is the default one; extensions and notifier are null, so that
// dialling returns when the line is up or has failed. A failed dial may leave a handle all the
// same, which the caller hangs up.
using RasDialFunction = std::uint32_t(const void* extensions, const char* phonebook,
                                      const RasDialParameters* parameters,
                                      std::uint32_t notifierType, const void* notifier,
                                      RasHandle* connection);
using RasGetConnectStatusFunction = std::uint32_t(RasHandle connection, RasStatus* status);
// `size` and `deviceInfoSize`: the room in bytes, then what is needed. Both device arguments may be
// null.
using RasGetEntryPropertiesFunction = std::uint32_t(const char* phonebook, const char* entryName,
                                                    RasEntry* entry, std::uint32_t* size,
                                                    std::uint8_t* deviceInfo,
                                                    std::uint32_t* deviceInfoSize);
using RasSetEntryPropertiesFunction = std::uint32_t(const char* phonebook, const char* entryName,
                                                    const RasEntry* entry, std::uint32_t size,
                                                    const std::uint8_t* deviceInfo,
                                                    std::uint32_t deviceInfoSize);
// `size`: the room in bytes, then what is needed for all connections.
using RasEnumConnectionsFunction = std::uint32_t(RasConnection* connections, std::uint32_t* size,
                                                 std::uint32_t* count);
using RasGetErrorStringFunction = std::uint32_t(std::uint32_t code, char* text, std::uint32_t size);
using RasHangUpFunction = std::uint32_t(RasHandle connection);

// The text of a record's field, whether it is terminated or not. Valid as long as the record.
template <std::size_t SIZE>
std::string_view KRX_rasText(const char (&field)[SIZE]) noexcept {
  return {field, static_cast<std::size_t>(std::find(field, field + SIZE, '\0') - field)};
}
// Sets a field; what does not fit is cut.
template <std::size_t SIZE>
void KRX_setRasText(char (&field)[SIZE], std::string_view text) noexcept {
  const std::size_t length = std::min(text.size(), SIZE - 1);
  std::memcpy(field, text.data(), length);
  std::memset(field + length, 0, SIZE - length);
}
