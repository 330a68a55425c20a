// The file data access object.
#include "dac/DACFILDA.h"

#include "dac/DACFILST.h"
#include "dv/DVPATH.h"
#include "gen/GENCATCH.h"
#include "gen/GENCODES.h"

namespace {

constexpr unsigned int SPOOL_PERMISSIONS = 0660;
constexpr unsigned int LOG_PERMISSIONS = 0640;

DAC_FileStream::Options optionsOf(unsigned int flags) noexcept {
  DAC_FileStream::Options options;
  options.deleteOnClose = (flags & DAC_FileDataAccess::DELETE_ON_CLOSE) != 0;
  options.readOnly = (flags & DAC_FileDataAccess::READ_ONLY) != 0;
  options.noFollow = (flags & DAC_FileDataAccess::SPOOL) != 0;
  options.lateName = (flags & DAC_FileDataAccess::LATE_NAME) != 0;
  options.otherCase = (flags & DAC_FileDataAccess::OTHER_CASE) != 0;
  if ((flags & DAC_FileDataAccess::SPOOL) != 0) {
    options.permissions = SPOOL_PERMISSIONS;
  } else if ((flags & DAC_FileDataAccess::LOG_FILE) != 0) {
    options.permissions = LOG_PERMISSIONS;
  }
  return options;
}

}  // namespace

DAC_FileDataAccess::DAC_FileDataAccess(const SCL_StringRef& path, unsigned int flags,
                                       unsigned int& status) {
  m_Stream = DAC_StreamRef::adopt(GENMake<DAC_FileStream>("DACFILDA", __LINE__).release());
  if (status != 0) {
    return;
  }
  const DAC_FileStream::Options options = optionsOf(flags);
  if ((flags & CREATE) != 0) {
    fileStream().create(path, options, status);
  }
  const bool isMade = (flags & CREATE) != 0 && status == 0;
  const bool isThere = status == DAC_EXISTS && (flags & EXCLUSIVE) == 0;
  if ((flags & CREATE) == 0 || isThere) {
    status = 0;
    fileStream().open(path, options, status);
  }
  if (status != 0) {
    return;
  }
  // Nobody else can take away a file that was made by an object that then could not be.
  fileStream().setDeleteOnClose(options.deleteOnClose || (isMade && !options.lateName));
  setNameAttributes(path, status);
  fileStream().setDeleteOnClose(options.deleteOnClose);
}

void DAC_FileDataAccess::setNameAttributes(const SCL_StringRef& path, unsigned int& status) {
  dv::PathRecord record;
  const int length = dv::decodePath(record, path, dv::MODE_UNC | dv::MODE_DRIVE);
  if (length < 0) {
    status = dac::fileCheckStatus(length);
    return;
  }
  setStringAttribute(dac::CONTENT_TITLE, dv::composePath(record, dv::PART_FILE));
  setStringAttribute(dac::CONTENT_PATH, dv::composePath(record, dv::PART_ALL));
}

void DAC_FileDataAccess::commit(unsigned int& status) {
  fileStream().commit(status);
}

void DAC_FileDataAccess::close(unsigned int& status) {
  fileStream().close(status);
}

DAC_FileStream& DAC_FileDataAccess::fileStream() const noexcept {
  return static_cast<DAC_FileStream&>(*m_Stream.get());
}
