// Reading the log's sections of a profile.
#pragma once

#include "gen/GENCODES.h"
#include "log/LOGSTRM.h"
#include "pfa/PFAPROF.h"

namespace logging {

inline constexpr unsigned int KEY_SIZE = 32;
inline constexpr unsigned int VALUE_SIZE = 128;

// Selects a stream's section: the one of this name in any letter case, else the one whose name
// without its white space is this name, because an entry "Main Log = 0" names its section so: the
// profile drops the white space of an entry's name. 0, or the profile's status.
unsigned int selectStreamSection(PFA_Profile& profile, const SCL_StringRef& name);

// The type that the selected section's first StreamType entry tells, in any letter case: 10623 for
// a value that is none, 1831 without such an entry.
unsigned int readStreamType(PFA_Profile& profile, LOG_StreamType& type);

// Calls visit(key, value) for each entry of the selected section until it answers a status; the
// comments of a writable profile are passed over. The end of the section is 0.
template <class Visit>
unsigned int forEachEntry(PFA_Profile& profile, Visit&& visit) {
  unsigned int status = profile.nextEntry(true);
  for (; status == 0; status = profile.nextEntry(false)) {
    char key[KEY_SIZE];
    char value[VALUE_SIZE];
    status = profile.entryName(key, sizeof key);
    if (status == 0) {
      status = profile.getValue(value, sizeof value, false, 1);
    }
    if (status == 0) {
      status = visit(SCL_StringRef(key), SCL_StringRef(value));
    }
    if (status != 0 && status != PFA_COMMENT) {
      return status;
    }
  }
  return status == PFA_NO_MORE ? 0 : status;
}

}  // namespace logging
