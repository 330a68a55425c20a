// Checking the phonebook entry of a post office, and listing it in the log.
#include "gen/GENCODES.h"
#include "krx/krxapi.h"
#include "krx/krxras.h"
#include "log/LOGGLB.h"
#include "log/LOGLOG.h"

#define KRX_RAS_ERROR(...) \
  LOG_globalLog().writeText(KRX_LOG_ALL, KRX_FACILITY, LOG_Logging::BRIEF, __VA_ARGS__)
#define KRX_RAS_LIST(...) \
  LOG_globalLog().writeText(LIST_STREAMS, KRX_FACILITY, LOG_Logging::VERBOSE, __VA_ARGS__)
#define KRX_RAS_LIST_TEXT(format, field) KRX_RAS_LIST(format, LOG_Clean(KRX_rasText(field)).c_str())
#define KRX_RAS_LIST_ADDRESS(format, field) \
  KRX_RAS_LIST(format, (field)[0], (field)[1], (field)[2], (field)[3])

namespace {

constexpr unsigned int LIST_STREAMS = 4;

void listData(const void* bytes, std::size_t length) {
  LOG_globalLog().writeData(LIST_STREAMS, KRX_FACILITY, LOG_Logging::VERBOSE,
                            static_cast<unsigned int>(length), bytes);
}

void listNumbers(const RasEntry& entry) {
  KRX_RAS_LIST("\tOptions %X", entry.options);
  KRX_RAS_LIST("\tCountryId %u", entry.countryId);
  KRX_RAS_LIST("\tCountryCode %u", entry.countryCode);
  KRX_RAS_LIST_TEXT("\tAreaCode %s", entry.areaCode);
  KRX_RAS_LIST_TEXT("\tLocalPhoneNumber %s", entry.localPhoneNumber);
  KRX_RAS_LIST("\tAlternateOffset %u", entry.alternateOffset);
}

void listNetwork(const RasEntry& entry) {
  KRX_RAS_LIST_ADDRESS("\tipaddr %u.%u.%u.%u", entry.ipaddr);
  KRX_RAS_LIST_ADDRESS("\tipaddrDns %u.%u.%u.%u", entry.ipaddrDns);
  KRX_RAS_LIST_ADDRESS("\tipaddrDnsAlt %u.%u.%u.%u", entry.ipaddrDnsAlt);
  KRX_RAS_LIST_ADDRESS("\tipaddrWins %u.%u.%u.%u", entry.ipaddrWins);
  KRX_RAS_LIST_ADDRESS("\tipaddrWinsAlt %u.%u.%u.%u", entry.ipaddrWinsAlt);
  KRX_RAS_LIST("\tFrameSize %u", entry.frameSize);
  KRX_RAS_LIST("\tfNetProtocols %u", entry.netProtocols);
  KRX_RAS_LIST("\tFramingProtocol %u", entry.framingProtocol);
}

void listDevice(const RasEntry& entry) {
  KRX_RAS_LIST_TEXT("\tScript %s", entry.script);
  KRX_RAS_LIST_TEXT("\tAutodialDll %s", entry.autodialDll);
  KRX_RAS_LIST_TEXT("\tAutodialFunc %s", entry.autodialFunc);
  KRX_RAS_LIST_TEXT("\tDeviceType %s", entry.deviceType);
  KRX_RAS_LIST_TEXT("\tDeviceName %s", entry.deviceName);
  KRX_RAS_LIST_TEXT("\tX25PadType %s", entry.x25PadType);
  KRX_RAS_LIST_TEXT("\tX25Address %s", entry.x25Address);
  KRX_RAS_LIST_TEXT("\tX25Facilities %s", entry.x25Facilities);
  KRX_RAS_LIST_TEXT("\tX25UserData %s", entry.x25UserData);
}

void listMultilink(const RasEntry& entry) {
  KRX_RAS_LIST("\tChannels %u", entry.channels);
  KRX_RAS_LIST("\tSubEntries %u", entry.subEntries);
  KRX_RAS_LIST("\tDialMode %u", entry.dialMode);
  KRX_RAS_LIST("\tDialExtraPercent %u", entry.dialExtraPercent);
  KRX_RAS_LIST("\tDialExtraSampleSeconds %u", entry.dialExtraSampleSeconds);
  KRX_RAS_LIST("\tHangUpExtraPercent %u", entry.hangUpExtraPercent);
  KRX_RAS_LIST("\tHangUpExtraSampleSeconds %u", entry.hangUpExtraSampleSeconds);
  KRX_RAS_LIST("\tIdleDisconnectSeconds %u", entry.idleDisconnectSeconds);
}

void listProperties(const RasEntry& entry) {
  listNumbers(entry);
  listNetwork(entry);
  listDevice(entry);
  listMultilink(entry);
}

}  // namespace

void KRX_RasLine::check(unsigned int& status) {
  if (status != 0) {
    return;
  }
  if (m_settings.entry.isEmpty()) {
    status = KRX_NO_ENTRY;
    KRX_RAS_ERROR(
        "Error in configuration section %s, RAS dialups are scheduled but no phone book entry is "
        "given.",
        m_settings.office.c_str());
    return;
  }
  RasEntryBuffer buffer{};
  std::uint32_t size = 0;
  std::uint8_t deviceInfo[RAS_DEVICE_INFO_SIZE] = {};
  std::uint32_t deviceInfoSize = sizeof deviceInfo;
  const std::uint32_t error = readEntry(buffer, size, deviceInfo, &deviceInfoSize);
  if (error != 0) {
    refuseEntry(error, status);
    return;
  }
  listEntry(buffer, size, deviceInfo, deviceInfoSize);
  if (buffer.entry.idleDisconnectSeconds != m_settings.idleTime) {
    writeIdleTime(buffer, status);
  }
}

// The sizes that come back never exceed the buffers, whatever the service says.
std::uint32_t KRX_RasLine::readEntry(RasEntryBuffer& buffer, std::uint32_t& size,
                                     std::uint8_t* deviceInfo, std::uint32_t* deviceInfoSize) {
  buffer = {};
  buffer.entry.size = sizeof buffer.entry;
  size = sizeof buffer;
  const auto error = m_api.getEntryProperties(nullptr, m_settings.entry.c_str(), &buffer.entry,
                                              &size, deviceInfo, deviceInfoSize);
  size = std::clamp<std::uint32_t>(size, sizeof buffer.entry, sizeof buffer);
  if (deviceInfoSize != nullptr) {
    *deviceInfoSize = std::min<std::uint32_t>(*deviceInfoSize, RAS_DEVICE_INFO_SIZE);
  }
  return error;
}

void KRX_RasLine::refuseEntry(std::uint32_t error, unsigned int& status) {
  if (error == RAS_NO_SUCH_ENTRY) {
    status = KRX_NO_SUCH_ENTRY;
    KRX_RAS_ERROR("Error in configuration section %s,Phonebook entry \"%s\" does not exist.",
                  m_settings.office.c_str(), m_settings.entry.c_str());
    return;
  }
  status = KRX_PHONEBOOK;
  if (error == RAS_CANNOT_OPEN_PHONEBOOK) {
    KRX_RAS_ERROR("Error in configuration section %s,Cannot open RAS phonebook, is RAS installed.",
                  m_settings.office.c_str());
  } else {
    report(error, "Calling RasGetEntryProperties");
  }
}

void KRX_RasLine::listEntry(const RasEntryBuffer& buffer, std::uint32_t size,
                            const std::uint8_t* deviceInfo, std::uint32_t deviceInfoSize) {
  KRX_RAS_LIST("Phonebook entry \"%s\".", m_settings.entry.c_str());
  listProperties(buffer.entry);
  KRX_RAS_LIST("Alternate phonenumbers.");
  listData(buffer.following, size - sizeof buffer.entry);
  KRX_RAS_LIST("DeviceInfo.");
  listData(deviceInfo, deviceInfoSize);
}

void KRX_RasLine::writeIdleTime(RasEntryBuffer& buffer, unsigned int& status) {
  buffer.entry.idleDisconnectSeconds = m_settings.idleTime;
  buffer.entry.alternateOffset = 0;
  if (const auto error = m_api.setEntryProperties(nullptr, m_settings.entry.c_str(), &buffer.entry,
                                                  sizeof buffer.entry, nullptr, 0);
      error != 0) {
    status = KRX_ENTRY_WRITE;
    report(error, "Calling RasSetEntryProperties");
    return;
  }
  std::uint32_t size = 0;
  if (const std::uint32_t error = readEntry(buffer, size, nullptr, nullptr); error != 0) {
    report(error, "Calling RasGetEntryProperties");
    return;
  }
  KRX_RAS_LIST("Updated Phonebook entry \"%s\".", m_settings.entry.c_str());
  listProperties(buffer.entry);
}
