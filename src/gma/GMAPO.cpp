// The base of the post offices: the open state and the marker file that takes a post office out of
// service. The reading of the profile section is in GMAPOCFG.cpp.
#include "gma/GMAPO.h"

#include <ostream>

#include "dv/DVDECODE.h"
#include "dv/DVPATH.h"
#include "gen/GENCATCH.h"
#include "gen/GENCODES.h"
#include "gma/GMAPOGRP.h"
#include "log/LOGGLB.h"
#include "log/LOGLOG.h"
#include "scl/SCLDUMP.h"

namespace {

constexpr char SOURCE[] = "gmapo";
constexpr unsigned int FACILITY = 8;
constexpr unsigned int DIRECTORY_STREAMS = 15;
constexpr unsigned int MARKER_STREAMS = 5;

// The directory of `file` as it was written: empty when the file stands in the current directory.
// False when the text is no path, as when no file is configured.
bool directoryOf(const SCL_String& file, char (&directory)[dv::PATH_SIZE]) {
  dv::PathRecord path;
  return !SCL_trimmed(file).empty() &&
         dv::decodePath(path, file, dv::MODE_UNC | dv::MODE_DRIVE) >= 0 &&
         dv::composePath(path, dv::PART_FOLDER, sizeof directory, directory) >= 0;
}

}  // namespace

GMA_PostOffice::GMA_PostOffice(GMA_POGroup* group, const SCL_StringRef& name)
    : m_name(name), m_group(group) {}

GMA_PostOffice::~GMA_PostOffice() = default;

void GMA_PostOffice::open(unsigned int& status) {
  if (status == 0) {
    GENWithMemory(SOURCE, __LINE__, [&] { openOrClose(status); });
  }
}

void GMA_PostOffice::openOrClose(unsigned int& status) {
  if (isDown(status)) {
    if (m_state == OPEN) {
      doClose(status);
    }
    m_state = CLOSED;
  } else if (m_state == CLOSED) {
    doOpen(status);
    if (status == 0) {
      m_state = OPEN;
    }
  }
}

void GMA_PostOffice::close(unsigned int& status) {
  if (status != 0) {
    return;
  }
  if (m_state == OPEN) {
    GENWithMemory(SOURCE, __LINE__, [&] { doClose(status); });
  }
  m_state = CLOSED;
}

void GMA_PostOffice::doOpen(unsigned int&) {}

void GMA_PostOffice::doClose(unsigned int&) {}

bool GMA_PostOffice::isDown(unsigned int& status) {
  char directory[dv::PATH_SIZE] = "";
  if (!directoryOf(m_down_file, directory)) {
    return false;
  }
  return GENWithMemory(SOURCE, __LINE__,
                       [&] { return !checkDirectory(directory) || checkMarker(status); });
}

// Whether the marker file's directory can be reached; the current directory always counts so.
bool GMA_PostOffice::checkDirectory(const char* directory) {
  const bool reached = *directory == '\0' || dv::checkDirectory(dv::PATH_SIZE, directory) == 0;
  if (reached && m_dir_ok == 0) {
    LOG_globalLog().writeText(
        DIRECTORY_STREAMS, FACILITY, LOG_Logging::BRIEF,
        "Post office directory \"%s\" now accessible again, network server has recovered.",
        directory);
  } else if (!reached && m_dir_ok != 0) {
    LOG_globalLog().writeText(
        DIRECTORY_STREAMS, FACILITY, LOG_Logging::BRIEF,
        "Post office directory \"%s\" no longer accessible, network server maybe down.", directory);
  }
  m_dir_ok = reached ? 1 : 0;
  return reached;
}

// Whether the marker file exists. A failure to find out is no answer: it stays in the status and
// changes nothing else.
bool GMA_PostOffice::checkMarker(unsigned int& status) {
  status = dv::decodeStatus(dv::checkFile(m_down_file));
  if (status == 0) {
    if (m_state == OPEN || m_disabled == 0) {
      logMarker("exists", "disabled");
    }
    m_disabled = 1;
    return true;
  }
  if (status == DV_NOT_FOUND) {
    status = 0;
    if (m_disabled != 0) {
      logMarker("removed", "enabled");
    }
    m_disabled = 0;
  }
  return false;
}

void GMA_PostOffice::logMarker(const char* what, const char* state) const {
  LOG_Logging& log = LOG_globalLog();
  log.writeText(MARKER_STREAMS, FACILITY, LOG_Logging::BRIEF, "Post office marker file \"%s\" %s.",
                m_down_file.c_str(), what);
  log.writeText(MARKER_STREAMS, FACILITY, LOG_Logging::BRIEF,
                "  Post office \"%s\" %s (Group \"%s\").", m_name.c_str(), state,
                m_group != nullptr ? m_group->name().c_str() : "");
}

void GMA_PostOffice::dump(const SCL_StringRef& name, std::ostream& stream,
                          SCL_DumpIndent& indent) const {
  SCL_Dump dump(stream, indent, name, "GMA_PostOffice", this);
  dump.quoted("m_name", m_name);
  m_hdrmap.dump("m_hdrmap", stream, indent);
}
