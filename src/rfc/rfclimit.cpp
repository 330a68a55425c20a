// The mark that a limit leaves in the log.
#include "rfc/rfclimit.h"

#include "log/LOGGLB.h"
#include "log/LOGLOG.h"

void rfc_note_limit(const char* what) {
  constexpr unsigned int STREAMS = 15;
  constexpr unsigned int FACILITY = 11;
  if (LOG_hasGlobalLog()) {
    LOG_globalLog().writeText(STREAMS, FACILITY, LOG_Logging::BRIEF,
                              "Too many %s, the rest is left out.", what);
  }
}
