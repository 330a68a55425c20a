// The search for complete pairs.
#include "krx/krxpair.h"

#include <cerrno>

#include "dv/DVPATH.h"
#include "fl/FLFILES.h"
#include "fl/FLSTATUS.h"
#include "gen/GENCODES.h"
#include "krx/krxapi.h"
#include "log/LOGGLB.h"
#include "log/LOGLOG.h"
#include "plat/PlatError.h"
#include "plat/PlatFile.h"

namespace {

constexpr char ENVELOPE_PATTERN[] = "*.RCP";

// In use, gone, or no regular file: what a spool directory may hold. Anything else is trouble of
// the machine, which would leave mail waiting without a word.
bool isOrdinary(int error) {
  return error == EBUSY || error == ENOENT || error == ELOOP || error == EISDIR || error == EINVAL;
}

// Opens the file as a writer that knows nothing of the directory lock would notice, and closes it
// again: free only when nobody else has it open.
bool isFree(const SCL_StringRef& path) {
  plat::OpenMode mode;
  mode.read = true;
  mode.noFollow = true;
  mode.share = plat::Share::denyAll;
  plat::File file;
  const int error = file.open(path.view(), mode);
  if (error != 0 && !isOrdinary(error)) {
    LOG_globalLog().writeText(KRX_LOG_ALL, KRX_FACILITY, LOG_Logging::BRIEF,
                              "File %s cannot be tested, %s.", path.c_str(),
                              plat::errorText(error).c_str());
  }
  return error == 0;
}

// A name that nobody could open by it: every path with a wildcard is a pattern.
bool isPattern(std::string_view name) {
  return name.find_first_of("*?") != std::string_view::npos;
}

// As the search sees it; one that cannot be asked about counts as marked.
bool isMarked(const SCL_StringRef& path) {
  constexpr unsigned int MARKS =
      plat::ATTRIBUTE_READ_ONLY | plat::ATTRIBUTE_HIDDEN | plat::ATTRIBUTE_SYSTEM;
  unsigned int bits = 0;
  return plat::attributes(path.view(), bits) != 0 || (bits & MARKS) != 0;
}

SCL_String fileNameOf(const SCL_StringRef& path) {
  dv::PathRecord record;
  if (dv::decodePath(record, path, dv::MODE_UNC | dv::MODE_DRIVE) < 0) {
    return SCL_String();
  }
  return dv::composePath(record, dv::PART_FILE);
}

// The message file of an envelope path that is there and free. The letter case of the envelope's
// extension is tried first, so that ".rcp" goes with ".msg".
bool findMessageFile(const SCL_StringRef& envelopePath, SCL_String& messagePath) {
  const bool lower = SCL_isLower(SCL_lastChar(envelopePath));
  for (const char* extension : {lower ? ".msg" : ".MSG", lower ? ".MSG" : ".msg"}) {
    if (fl::composeTarget(envelopePath, extension, messagePath) != 0) {
      return false;
    }
    plat::FileStatus file;
    if (plat::status(messagePath.view(), file, false) == 0 && file.kind != plat::Kind::missing) {
      return isFree(messagePath);
    }
  }
  return false;
}

bool testPair(const SCL_StringRef& envelopePath, KRX_PairNames& names) {
  SCL_String messagePath;
  if (isPattern(envelopePath) || !isFree(envelopePath) ||
      !findMessageFile(envelopePath, messagePath)) {
    return false;
  }
  names.envelope = fileNameOf(envelopePath);
  names.message = fileNameOf(messagePath);
  return !names.envelope.isEmpty() && !names.message.isEmpty();
}

}  // namespace

void KRX_PairSearch::restart(const SCL_StringRef& directory) {
  m_directory = directory;
  m_search.startSearch(directory + ENVELOPE_PATTERN, 0);
}

KRX_PairSearch::Step KRX_PairSearch::step(const SCL_StringRef& directory,
                                          const KRX_StuckPairs& stuck, KRX_PairNames& names) {
  char path[dv::PATH_SIZE];
  const unsigned int status = m_search.nextMatch(sizeof path, path);
  if (status == FL_SHORT_BUFFER) {
    return Step::skipped;
  }
  if (status != 0) {
    if (fl::isSearchEnd(status)) {
      return Step::end;
    }
    LOG_globalLog().writeText(KRX_LOG_ALL, KRX_FACILITY, LOG_Logging::BRIEF,
                              "Directory %s cannot be searched, status %u, %s.", directory.c_str(),
                              status, plat::errorText(plat::lastFailure().error).c_str());
    return Step::failed;
  }
  if (!testPair(path, names) || stuck.contains(directory, names.envelope)) {
    return Step::skipped;
  }
  return Step::pair;
}

std::optional<KRX_PairNames> KRX_PairSearch::next(const SCL_StringRef& directory,
                                                  const KRX_StuckPairs& stuck) {
  KRX_PairNames names;
  if (m_last && m_directory == directory) {
    const SCL_String path = directory + m_last->envelope;
    if (testPair(path, names) && !isMarked(path) && !stuck.contains(directory, names.envelope)) {
      m_last = names;
      return m_last;
    }
  }
  m_last.reset();
  bool wholePass = m_directory != directory;
  if (wholePass) {
    restart(directory);
  }
  for (;;) {
    switch (step(directory, stuck, names)) {
      case Step::pair:
        m_last = names;
        return m_last;
      case Step::skipped:
        break;
      case Step::end:
        if (wholePass) {
          m_directory.clear();
          return std::nullopt;
        }
        wholePass = true;
        restart(directory);
        break;
      case Step::failed:
        m_directory.clear();
        return std::nullopt;
    }
  }
}
