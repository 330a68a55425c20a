// The file stream's housekeeping: passing the older files of the series to a target.
#include <algorithm>
#include <iterator>

#include "dac/DACFILDA.h"
#include "dv/DVPATH.h"
#include "fl/FLFILES.h"
#include "gen/GENCODES.h"
#include "log/LOGFilSt.h"
#include "plat/PlatFile.h"

namespace {

constexpr std::int32_t BLOCK_SIZE = 65536;

// The record's date may be a text that fills it.
DV_Date recordedDate(const LOG_Progress& progress) {
  const std::string text(std::begin(progress.date),
                         std::find(std::begin(progress.date), std::end(progress.date), '\0'));
  DV_Date date = DV_Date::NULL_DATE;
  return date.parse(text.c_str()) ? date : DV_Date::NULL_DATE;
}

bool isSameFile(const SCL_StringRef& a, const SCL_StringRef& b) {
  plat::FileStatus first;
  plat::FileStatus second;
  return plat::status(a, first) == 0 && plat::status(b, second) == 0 &&
         second.kind == plat::Kind::regular && first.device == second.device &&
         first.inode == second.inode;
}

// Moves `offset` on by what has reached the target's file, so that a later call can go on there.
void copyBlocks(DAC_FileDataAccess& from, DAC_FileDataAccess& to, std::int32_t size,
                std::uint32_t& offset, unsigned int& status) {
  std::vector<char> block(BLOCK_SIZE);
  auto position = static_cast<std::int32_t>(offset);
  to.seek(DAC_BaseDataAccess::FROM_END, 0, status);
  while (status == 0 && position < size) {
    const std::int32_t count =
        from.readAt(position, std::min(BLOCK_SIZE, size - position), block.data(), status);
    if (status == 0 && count <= 0) {
      status = DAC_READ;  // somebody cut the file
    }
    to.write(count, block.data(), status);
    to.flush(status);
    if (status == 0) {
      offset = static_cast<std::uint32_t>(position);
    }
  }
}

// A file that would be its own copy is refused: with the delete flag it would be lost.
void copyRest(const SCL_StringRef& source, const SCL_StringRef& target, std::uint32_t& offset,
              unsigned int& status) {
  SCL_String destination;
  status = fl::composeTarget(source, target, destination);
  DAC_FileDataAccess from(source, DAC_FileDataAccess::READ_ONLY, status);
  if (status != 0) {
    return;
  }
  const std::int32_t size = from.size(status);
  if (status != 0 || size <= 0 || offset >= static_cast<std::uint32_t>(size)) {
    return;
  }
  if (isSameFile(source, destination)) {
    status = FL_EXISTS;
    return;
  }
  DAC_FileDataAccess to(destination, DAC_FileDataAccess::CREATE | DAC_FileDataAccess::LOG_FILE,
                        status);
  if (status == 0) {
    copyBlocks(from, to, size, offset, status);
    to.commit(status);
    to.close(status);
  }
}

}  // namespace

void LOG_FileStream::maintain(const SCL_StringRef& target, bool deleteFiles, LOG_Progress& progress,
                              unsigned int& status) {
  const std::lock_guard guard(m_lock);
  if (status != 0 || m_nameType == Kind::none) {
    return;
  }
  const std::uint32_t first = firstKey(progress);
  std::vector<std::uint32_t> keys;
  status = olderFiles(first, keys);
  bool passed = false;
  for (const std::uint32_t key : keys) {
    if (dv::checkFile(m_names.nameOf(key).c_str()) != 0) {
      continue;
    }
    if (key != first) {  // the offset told of a file that is gone
      progress.offset = 0;
    }
    passFile(key, target, deleteFiles, progress, status);
    if (status != 0) {
      return noteFailure(key, progress);
    }
    passed = true;
  }
  if (status == 0 && !passed) {
    status = LOG_NOT_SUPPORTED;
  }
}

// The files that there are, oldest first: a stray name far away costs no walk over the years
// between.
unsigned int LOG_FileStream::olderFiles(std::uint32_t first,
                                        std::vector<std::uint32_t>& keys) const {
  const std::uint32_t end = keyInUse();
  const unsigned int status = m_names.forEachFile([&](std::uint32_t key) {
    if (key >= first && key < end) {
      keys.push_back(key);
    }
  });
  std::sort(keys.begin(), keys.end());
  keys.erase(std::unique(keys.begin(), keys.end()), keys.end());  // "7" and "007" are one number
  return status;
}

std::uint32_t LOG_FileStream::firstKey(const LOG_Progress& progress) const {
  if (m_nameType == Kind::number) {
    return progress.number != 0 ? progress.number : m_lowest;
  }
  const DV_Date date = recordedDate(progress);
  return date.isValid() ? static_cast<std::uint32_t>(date.dayNumber()) : m_lowest;
}

std::uint32_t LOG_FileStream::keyInUse() const {
  if (m_nameType == Kind::number) {
    return m_highest;
  }
  const DV_Date date = m_object != nullptr ? m_openDate : DV_Date();
  return static_cast<std::uint32_t>(date.dayNumber());
}

// When the file cannot be deleted the offset stays at its end, so that the next call copies
// nothing twice.
void LOG_FileStream::passFile(std::uint32_t key, const SCL_StringRef& target, bool deleteFile,
                              LOG_Progress& progress, unsigned int& status) {
  const std::string path = m_names.nameOf(key);
  copyRest(path.c_str(), target, progress.offset, status);
  if (status == 0 && deleteFile) {
    status = fl::deleteFile(path.c_str());
    m_lowest = status == 0 ? key + 1 : m_lowest;
  }
  if (status == 0) {
    progress.offset = 0;
    progress.done = true;
  }
}

void LOG_FileStream::noteFailure(std::uint32_t key, LOG_Progress& progress) const {
  if (m_nameType == Kind::number) {
    progress.number = key;
    return;
  }
  DV_Date day = DV_Date::NULL_DATE;
  day.setDayNumber(static_cast<std::int32_t>(key));
  day.format(progress.date, sizeof progress.date);
}
