// The error codes of the dial-up service, their texts, and what a dialler's exit code means.
#pragma once

#include <cstdint>

namespace ras {

enum Error : std::uint32_t {
  OK = 0,
  INVALID_HANDLE = 6,
  INVALID_PARAMETER = 87,
  INSUFFICIENT_BUFFER = 122,
  ALREADY_OPEN = 602,
  BUFFER_TOO_SMALL = 603,
  NO_SUCH_DEVICE = 608,
  ALREADY_DISCONNECTING = 617,
  CANNOT_OPEN_PHONEBOOK = 621,
  CANNOT_LOAD_PHONEBOOK = 622,
  NO_SUCH_ENTRY = 623,
  CANNOT_WRITE_PHONEBOOK = 624,
  CORRUPT_PHONEBOOK = 625,
  DISCONNECTED = 628,
  REMOTE_DISCONNECTED = 629,
  USER_DISCONNECTED = 631,
  INVALID_SIZE = 632,
  PORT_NOT_AVAILABLE = 633,
  UNKNOWN = 635,
  FROM_DEVICE = 651,
  NO_CONNECTION = 668,
  AUTHENTICATION = 691,
  PEER_NOT_RESPONDING = 721,
  NOT_CONVERGING = 732
};

// Null for a code without a text.
const char* errorText(std::uint32_t code) noexcept;

// The exit codes are those of pppd; -1 and any other one are UNKNOWN.
Error dialError(int exitCode) noexcept;

}  // namespace ras
