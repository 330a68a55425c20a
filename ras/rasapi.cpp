// The seven operations of the dial-up interface: what the records say is checked here, and nothing
// that is thrown passes the library's edge. Nothing is kept between calls but, for each thread,
// what its last dialler said when it failed: the text of its error tells that, too.
#include <algorithm>

#include "gen/GENCATCH.h"
#include "krx/krxrasif.h"
#include "ras/rasbook.h"
#include "ras/rasdial.h"
#include "ras/raslink.h"

namespace {

using namespace ras;

template <class Operation>
std::uint32_t guarded(Operation operation) noexcept {
  std::uint32_t error = UNKNOWN;
  GENSwallow([&] { error = operation(); });
  return error;
}

thread_local Error lastDialError = OK;
thread_local std::string lastDialWords;

// "The dialler failed: what it said", as much of it as callers have room for.
std::string textOf(std::uint32_t code, const char* known) {
  std::string text = known;
  if (code == lastDialError && !lastDialWords.empty()) {
    text.replace(text.size() - 1, 1, ": " + lastDialWords);
    text.resize(std::min(text.size(), RAS_ERROR_TEXT_SIZE - 1));
  }
  return text;
}

struct Connection {
  Entry entry;
  Link link;
};

// The entry whose link has this handle, in the default phonebook.
Error findConnection(RasHandle handle, Connection& connection) {
  std::vector<Entry> entries;
  if (const Error error = Phonebook(nullptr).readAll(entries); error != OK) {
    return error;
  }
  for (Entry& entry : entries) {
    Link link = findLink(entry);
    if (handle != 0 && link.process == handle) {
      connection = {std::move(entry), std::move(link)};
      return OK;
    }
  }
  return INVALID_HANDLE;
}

void describe(const Entry& entry, const Link& link, const std::string& phonebook,
              RasConnection& connection) {
  connection = {};
  connection.size = sizeof connection;
  connection.handle = link.process;
  KRX_setRasText(connection.entryName, entry.name);
  KRX_setRasText(connection.deviceType, KRX_rasText(entry.properties.deviceType));
  KRX_setRasText(connection.deviceName, KRX_rasText(entry.properties.deviceName));
  KRX_setRasText(connection.phonebook, phonebook);
}

// Hands `data` out when it fits into the `*size` bytes at `target`; `*size` becomes its length.
Error handOut(std::string_view data, void* target, std::uint32_t* size) {
  const bool fits = target != nullptr && *size >= data.size();
  *size = static_cast<std::uint32_t>(data.size());
  if (fits) {
    std::memcpy(target, data.data(), data.size());
  }
  return fits ? OK : BUFFER_TOO_SMALL;
}

Error getProperties(const Entry& entry, RasEntry* target, std::uint32_t* size) {
  if (target != nullptr && target->size != sizeof *target) {
    return INVALID_SIZE;
  }
  const std::string alternates = entry.alternateBlock();
  RasEntry properties = entry.properties;
  properties.alternateOffset = alternates.empty() ? 0 : sizeof properties;
  std::string record(reinterpret_cast<const char*>(&properties), sizeof properties);
  return handOut(record + alternates, target, size);
}

// The numbers from `offset` of the record that the caller gave `size` bytes to.
std::vector<std::string> alternatesOf(const RasEntry& properties, std::uint32_t size) {
  const char* at = reinterpret_cast<const char*>(&properties) + properties.alternateOffset;
  const char* const end = reinterpret_cast<const char*>(&properties) + size;
  std::vector<std::string> numbers;
  while (at < end && *at != '\0') {
    numbers.emplace_back(at, std::find(at, end, '\0'));
    at = std::min(end, at + numbers.back().size() + 1);
  }
  return numbers;
}

}  // namespace

extern "C" {

RasDialFunction RasDialA;
RasGetConnectStatusFunction RasGetConnectStatusA;
RasGetEntryPropertiesFunction RasGetEntryPropertiesA;
RasSetEntryPropertiesFunction RasSetEntryPropertiesA;
RasEnumConnectionsFunction RasEnumConnectionsA;
RasGetErrorStringFunction RasGetErrorStringA;
RasHangUpFunction RasHangUpA;

// Dials to the end before it returns: a caller that wants to be notified meanwhile is refused.
std::uint32_t RasDialA(const void* /*extensions*/, const char* phonebook,
                       const RasDialParameters* parameters, std::uint32_t /*notifierType*/,
                       const void* notifier, RasHandle* connection) {
  if (parameters == nullptr || connection == nullptr || notifier != nullptr) {
    return INVALID_PARAMETER;
  }
  if (parameters->size != sizeof *parameters) {
    return INVALID_SIZE;
  }
  lastDialError = OK;
  return guarded([&] {
    *connection = 0;
    Entry entry;
    if (const Error error = Phonebook(phonebook).read(KRX_rasText(parameters->entryName), entry);
        error != OK) {
      return error;
    }
    Link link;
    const Error error = dial(entry,
                             {KRX_rasText(parameters->userName), KRX_rasText(parameters->password),
                              KRX_rasText(parameters->phoneNumber)},
                             link, lastDialWords);
    lastDialError = error;
    *connection = link.process;
    return error;
  });
}

std::uint32_t RasGetConnectStatusA(RasHandle handle, RasStatus* status) {
  if (status == nullptr) {
    return INVALID_PARAMETER;
  }
  if (status->size != sizeof *status) {
    return INVALID_SIZE;
  }
  return guarded([&] {
    Connection connection;
    const Error error = findConnection(handle, connection);
    if (error == OK) {
      const RasEntry& properties = connection.entry.properties;
      status->state = isUp(connection.entry, connection.link) ? RAS_CONNECTED : RAS_DISCONNECTED;
      status->error = 0;
      KRX_setRasText(status->deviceType, KRX_rasText(properties.deviceType));
      KRX_setRasText(status->deviceName, KRX_rasText(properties.deviceName));
      KRX_setRasText(status->phoneNumber, KRX_rasText(properties.localPhoneNumber));
    }
    return error;
  });
}

std::uint32_t RasGetEntryPropertiesA(const char* phonebook, const char* entryName,
                                     RasEntry* properties, std::uint32_t* size,
                                     std::uint8_t* deviceInfo, std::uint32_t* deviceInfoSize) {
  if (entryName == nullptr || size == nullptr) {
    return INVALID_PARAMETER;
  }
  return guarded([&] {
    Entry entry;
    if (const Error error = Phonebook(phonebook).read(entryName, entry); error != OK) {
      return error;
    }
    const Error error = getProperties(entry, properties, size);
    const Error deviceError =
        deviceInfoSize != nullptr ? handOut(entry.deviceInfo, deviceInfo, deviceInfoSize) : OK;
    return error != OK ? error : deviceError;
  });
}

std::uint32_t RasSetEntryPropertiesA(const char* phonebook, const char* entryName,
                                     const RasEntry* properties, std::uint32_t size,
                                     const std::uint8_t* deviceInfo, std::uint32_t deviceInfoSize) {
  if (entryName == nullptr || properties == nullptr) {
    return INVALID_PARAMETER;
  }
  if (size < sizeof *properties || properties->size != sizeof *properties) {
    return INVALID_SIZE;
  }
  const std::uint32_t offset = properties->alternateOffset;
  if (offset != 0 && (offset < sizeof *properties || offset > size)) {
    return INVALID_PARAMETER;
  }
  return guarded([&] {
    const Phonebook book(phonebook);
    Entry before;
    if (const Error error = book.read(entryName, before); error != OK) {
      return error;
    }
    Phonebook::Change change{*properties, std::nullopt, std::nullopt};
    if (offset != 0) {
      change.alternates = alternatesOf(*properties, size);
    }
    if (deviceInfo != nullptr) {
      change.deviceInfo.emplace(reinterpret_cast<const char*>(deviceInfo), deviceInfoSize);
    }
    return book.write(before, change);
  });
}

std::uint32_t RasEnumConnectionsA(RasConnection* connections, std::uint32_t* size,
                                  std::uint32_t* count) {
  if (connections == nullptr || size == nullptr || count == nullptr) {
    return INVALID_PARAMETER;
  }
  if (*size < sizeof *connections || connections->size != sizeof *connections) {
    return INVALID_SIZE;
  }
  return guarded([&] {
    const Phonebook book(nullptr);
    std::vector<Entry> entries;
    if (const Error error = book.readAll(entries); error != OK) {
      return error;
    }
    const std::uint32_t room = *size / static_cast<std::uint32_t>(sizeof *connections);
    *count = 0;
    for (const Entry& entry : entries) {
      const Link link = findLink(entry);
      if (isUp(entry, link)) {
        if (*count < room) {
          describe(entry, link, book.path(), connections[*count]);
        }
        ++*count;
      }
    }
    *size = *count * static_cast<std::uint32_t>(sizeof *connections);
    return *count <= room ? OK : BUFFER_TOO_SMALL;
  });
}

std::uint32_t RasGetErrorStringA(std::uint32_t code, char* text, std::uint32_t size) {
  const char* const known = errorText(code);
  if (known == nullptr || text == nullptr) {
    return INVALID_PARAMETER;
  }
  return guarded([&] {
    const std::string whole = textOf(code, known);
    if (whole.size() >= size) {
      return INSUFFICIENT_BUFFER;
    }
    std::memcpy(text, whole.c_str(), whole.size() + 1);
    return OK;
  });
}

std::uint32_t RasHangUpA(RasHandle handle) {
  return guarded([&] {
    Connection connection;
    if (const Error error = findConnection(handle, connection); error != OK) {
      return error;
    }
    return endLink(connection.entry, connection.link) ? OK : ALREADY_DISCONNECTING;
  });
}

}  // extern "C"
