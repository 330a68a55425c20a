// The line prefix with the facility codes, and the dump line.
#include "log/LOGLINE.h"

#include <algorithm>
#include <cstdio>

#include "log/LOGSTRM.h"

namespace {

constexpr unsigned int CODED_FACILITIES = 49;

struct Facility {
  unsigned int number;
  char code[4];
};

// The rows that name components of this system. The others of the 49 belong to components of the
// host product and stand for their number.
constexpr Facility NAMED[] = {
    {0, "???"}, {1, "QDX"}, {4, "DAC"}, {5, "LOG"}, {8, "GMA"}, {11, "KRX"},
};

char printable(unsigned char byte) {
  const auto low = static_cast<char>(byte & 0x7F);
  return low >= ' ' && low <= '~' ? low : '^';
}

// "%2X ": padded with a blank, not with a zero.
char* putHexadecimal(char* to, unsigned char byte) {
  static constexpr char DIGITS[] = "0123456789ABCDEF";
  *to++ = byte > 0xF ? DIGITS[byte >> 4] : ' ';
  *to++ = DIGITS[byte & 0xF];
  *to++ = ' ';
  return to;
}

}  // namespace

namespace logging {

const char* facilityCode(unsigned int facility, char* buffer) {
  for (const Facility& named : NAMED) {
    if (named.number == facility) {
      return named.code;
    }
  }
  std::snprintf(buffer, FACILITY_SIZE, "%03u", facility);
  return buffer;
}

int facilityOfCode(const SCL_StringRef& code) {
  char buffer[FACILITY_SIZE];
  for (unsigned int facility = 0; facility < CODED_FACILITIES; ++facility) {
    if (code == facilityCode(facility, buffer)) {
      return static_cast<int>(facility);
    }
  }
  return -1;
}

unsigned int formatPrefix(char* buffer, unsigned int size, const plat::LocalTime& now,
                          unsigned int facility, unsigned int level) {
  char code[FACILITY_SIZE];
  const int length =
      std::snprintf(buffer, size, "%02d:%02d:%02d.%02d (%s:%03u) ", now.hour, now.minute,
                    now.second, now.millisecond / 10, facilityCode(facility, code), level);
  return length < 0 || size == 0 ? 0 : std::min(static_cast<unsigned int>(length), size - 1);
}

unsigned int formatPrefix(char* buffer, unsigned int size, unsigned int facility,
                          unsigned int level) {
  plat::LocalTime now;
  plat::localNow(now);
  return formatPrefix(buffer, size, now, facility, level);
}

unsigned int formatDump(char (&buffer)[DUMP_SIZE], std::uint32_t offset, const void* bytes,
                        unsigned int count) {
  const auto* from = static_cast<const unsigned char*>(bytes);
  count = std::min(count, DUMP_BYTES);
  char* to = buffer + std::snprintf(buffer, DUMP_SIZE, "%04X: ", offset);
  for (unsigned int i = 0; i < count; ++i) {
    to = putHexadecimal(to, from[i]);
  }
  to = std::fill_n(to, 3 * (DUMP_BYTES - count), ' ');
  *to++ = '|';
  to = std::transform(from, from + count, to, printable);
  to = std::fill_n(to, DUMP_BYTES - count, ' ');
  *to++ = '|';
  *to = '\0';
  return static_cast<unsigned int>(to - buffer);
}

}  // namespace logging
