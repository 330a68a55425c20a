// The unique token.
#include "scl/SCLTOKEN.h"

#include <atomic>
#include <cstdio>

#include "plat/PlatClock.h"
#include "scl/SCLDAYNO.h"

void SCL_uniqueToken(SCL_String& token) {
  static std::atomic<unsigned int> counter{0};
  plat::LocalTime now;
  plat::localNow(now);  // without a local time the counter alone tells the tokens apart
  const int day = SCL_dayNumber(now.year, now.month, now.day);
  const int second = now.hour * 3600 + now.minute * 60 + now.second;
  char text[3 * 10 + 2 + 1];
  std::snprintf(text, sizeof text, "%u.%u.%u", static_cast<unsigned int>(day),
                static_cast<unsigned int>(second), ++counter);
  token = text;
}
