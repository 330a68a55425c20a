// Error codes in words.
#include "ras/raserr.h"

#include "krx/krxrasif.h"

namespace ras {

static_assert(std::uint32_t{CANNOT_OPEN_PHONEBOOK} == RAS_CANNOT_OPEN_PHONEBOOK);
static_assert(std::uint32_t{NO_SUCH_ENTRY} == RAS_NO_SUCH_ENTRY);

namespace {

constexpr struct {
  Error code;
  const char* text;
} TEXTS[] = {
    {INVALID_HANDLE, "There is no such connection."},
    {INVALID_PARAMETER, "An argument is not valid."},
    {INSUFFICIENT_BUFFER, "The text does not fit."},
    {ALREADY_OPEN, "The entry is being dialled or connected already."},
    {BUFFER_TOO_SMALL, "The caller's buffer is too small."},
    {NO_SUCH_DEVICE, "The dialler cannot open its device."},
    {ALREADY_DISCONNECTING, "The line is still being hung up."},
    {CANNOT_OPEN_PHONEBOOK, "The phonebook cannot be opened."},
    {CANNOT_LOAD_PHONEBOOK, "The phonebook cannot be read."},
    {NO_SUCH_ENTRY, "The phonebook has no such entry."},
    {CANNOT_WRITE_PHONEBOOK, "The phonebook cannot be written."},
    {CORRUPT_PHONEBOOK, "A line of the phonebook entry is not valid."},
    {DISCONNECTED, "The line was disconnected."},
    {REMOTE_DISCONNECTED, "The other side hung up."},
    {USER_DISCONNECTED, "The dialler was ended from outside."},
    {INVALID_SIZE, "A record has another size than expected."},
    {PORT_NOT_AVAILABLE, "The device is in use."},
    {UNKNOWN, "The dialler failed."},
    {FROM_DEVICE, "The modem or its connect script reported an error."},
    {NO_CONNECTION, "The dialler succeeded but the line is not up."},
    {AUTHENTICATION, "The user name or the password was refused."},
    {PEER_NOT_RESPONDING, "The other side does not respond."},
    {NOT_CONVERGING, "The negotiation with the other side failed."},
};

constexpr struct {
  int exitCode;
  Error error;
} EXIT_CODES[] = {
    {5, USER_DISCONNECTED},     // a signal
    {6, PORT_NOT_AVAILABLE},    // locked
    {7, NO_SUCH_DEVICE},        // cannot be opened
    {8, FROM_DEVICE},           // connect script
    {9, FROM_DEVICE},           // pty command
    {10, NOT_CONVERGING},       // negotiation
    {11, AUTHENTICATION},       // of the other side
    {12, DISCONNECTED},         // idle
    {13, DISCONNECTED},         // connect time
    {15, PEER_NOT_RESPONDING},  // echo requests
    {16, REMOTE_DISCONNECTED},  // modem hung up
    {18, FROM_DEVICE},          // init script
    {19, AUTHENTICATION},       // of ours
};

}  // namespace

const char* errorText(std::uint32_t code) noexcept {
  for (const auto& row : TEXTS) {
    if (row.code == code) {
      return row.text;
    }
  }
  return nullptr;
}

Error dialError(int exitCode) noexcept {
  for (const auto& row : EXIT_CODES) {
    if (row.exitCode == exitCode) {
      return row.error;
    }
  }
  return UNKNOWN;
}

}  // namespace ras
