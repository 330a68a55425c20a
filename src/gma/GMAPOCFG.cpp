// How a post office reads its profile section: the base keeps its own keywords, the derived class
// gets everything else.
#include <cstring>

#include "dv/DVDECODE.h"
#include "gen/GENCATCH.h"
#include "gen/GENCODES.h"
#include "gma/GMAPO.h"
#include "log/LOGGLB.h"
#include "log/LOGLOG.h"
#include "pfa/PFAPROF.h"

namespace {

constexpr char SOURCE[] = "gmapocfg";
constexpr unsigned int FACILITY = 8;
constexpr unsigned int STREAMS = 15;

// Buffers with their terminator; a longer name or value ends the configuration with 1820.
constexpr unsigned int NAME_SIZE = 32;
constexpr unsigned int VALUE_SIZE = 128;
constexpr unsigned int LINE_SIZE = 256;

constexpr char KEYWORDS[] = "{ PODownFile | MustOpenAtStart }";
enum Keyword : unsigned int { NO_KEYWORD = 0, DOWN_FILE = 1, MUST_OPEN = 2 };

// A word of yes or no; text behind it is not looked at.
constexpr char YES_OR_NO[] = "{+Y{/ES}|N{/O}}|";
constexpr std::uint32_t YES = 1;

void logNoSection(const SCL_String& section) {
  LOG_globalLog().writeText(STREAMS, FACILITY, LOG_Logging::BRIEF,
                            "Error in configuration section %s, there is no such section.",
                            section.c_str());
}

// Names the current entry as its line has it, also a name too long for the buffer; never a value,
// which may be a password.
void logBadEntry(const SCL_String& section, const PFA_Profile& profile, unsigned int status) {
  char line[LINE_SIZE] = "";
  profile.entryText(line, sizeof line);
  line[std::strcspn(line, ":=,")] = '\0';
  LOG_globalLog().writeText(
      STREAMS, FACILITY, LOG_Logging::BRIEF,
      "Error in configuration section %s, entry \"%s\" is not valid, status %u.", section.c_str(),
      line, status);
}

}  // namespace

void GMA_PostOffice::configure(PFA_Profile& profile, unsigned int& status) {
  if (status == 0) {
    GENWithMemory(SOURCE, __LINE__, [&] { readSection(profile, status); });
  }
}

void GMA_PostOffice::readSection(PFA_Profile& profile, unsigned int& status) {
  status = profile.selectSection(m_name);
  if (status == PFA_SECTION_NOT_FOUND) {
    logNoSection(m_name);
    return;
  }
  if (status == 0) {
    status = profile.nextEntry(true);
  }
  while (status == 0) {
    configureEntry(profile, status);
    if (status == 0) {
      status = profile.nextEntry(false);
    }
  }
  if (status == PFA_NO_MORE) {
    status = 0;
  }
  if (status == 0) {
    validate(status);
  }
}

// Applies the profile's current entry. A comment, which a writable profile keeps, is passed over.
void GMA_PostOffice::configureEntry(PFA_Profile& profile, unsigned int& status) {
  char name[NAME_SIZE] = "";
  char value[VALUE_SIZE] = "";
  status = profile.entryName(name, sizeof name);
  if (status == 0) {
    status = profile.getValue(value, sizeof value, false, 1);
  }
  if (status == 0) {
    applyEntry(name, value, status);
  } else if (status == PFA_COMMENT) {
    status = 0;
  } else {
    logBadEntry(m_name, profile, status);
  }
}

void GMA_PostOffice::applyEntry(const char* name, const char* value, unsigned int& status) {
  switch (dv::keywordIndex(KEYWORDS, name)) {
    case NO_KEYWORD:
      configDirective(name, value, status);
      break;
    case DOWN_FILE:
      m_down_file = value;
      break;
    case MUST_OPEN:
      setMustOpen(value);
      break;
    default:
      status = GMA_BAD_KEYWORD;
      break;
  }
}

void GMA_PostOffice::setMustOpen(const char* answer) {
  std::uint32_t selected = 0;
  int furthest = 0;
  if (dv::decode(YES_OR_NO, false, &selected, sizeof selected, furthest, answer) >= 0) {
    m_must_open = selected == YES;
    return;
  }
  LOG_globalLog().writeText(STREAMS, FACILITY, LOG_Logging::BRIEF,
                            "MustOpenAtStart has to be YES or NO not \"%s\".", answer);
}
