// Content to files, and files away.
#include "dac/DACTOFIL.h"

#include <cerrno>
#include <cstdio>
#include <utility>

#include "dac/DACBASDA.h"
#include "dv/DVPATH.h"
#include "fl/FLFILE.h"
#include "gen/GENCATCH.h"
#include "gen/GENCODES.h"
#include "gen/GENTMP.h"
#include "gen/GENTRC.h"
#include "gen/GENWNT.h"
#include "plat/PlatClock.h"

namespace {

constexpr std::int32_t PIECE_SIZE = 1024;
constexpr std::int32_t BLOCK_SIZE = 16 * PIECE_SIZE;  // what one write takes
constexpr int DELETE_ATTEMPTS = 100;
constexpr unsigned int DELETE_PAUSE = 100;  // milliseconds
constexpr int NAME_DRAWS = 100;

bool canPass(int error) noexcept {
  return error == EBUSY || error == ETXTBSY || error == EINTR || error == ESTALE;
}

// The first failure stays; the end of the data is none.
void note(unsigned int& status, unsigned int failure) noexcept {
  if (status == 0 || (status == DAC_END && failure != 0)) {
    status = failure;
  }
}

// Reads until the block is full or nothing more comes, which the status then tells.
std::int32_t readBlock(DAC_BaseDataAccess& object, char* block, unsigned int& status) {
  std::int32_t used = 0;
  while (status == 0 && used + PIECE_SIZE <= BLOCK_SIZE) {
    const std::int32_t count = object.read(PIECE_SIZE, block + used, status);
    if (count > 0 && (status == 0 || status == DAC_END)) {
      used += count;
    } else {
      note(status, DAC_END);
    }
  }
  return used;
}

unsigned int writeBlock(FL_File& file, std::int64_t position, const char* block,
                        std::int32_t count) {
  switch (count > 0 ? file.writeAt(position, block, static_cast<std::size_t>(count)) : 0) {
    case 0:
      return 0;
    case ENOSPC:
    case EDQUOT:
      return DACTOFIL_DISK_FULL;
    default:
      return DACTOFIL_WRITE;
  }
}

void copyContent(DAC_BaseDataAccess& object, FL_File& file, unsigned int& status) {
  char block[BLOCK_SIZE];
  std::int64_t position = 0;
  while (status == 0) {
    const std::int32_t count = readBlock(object, block, status);
    note(status, writeBlock(file, position, block, count));
    position += count;
  }
  note(status, file.commit() == 0 ? 0 : DACTOFIL_COMMIT);
  note(status, file.close() == 0 ? 0 : DACTOFIL_CLOSE);
  status = status == DAC_END ? 0 : status;
}

// Copies into the file, when it was opened, and notes on the object what went wrong.
void copyAndNote(DAC_BaseDataAccess& object, FL_File& file, unsigned int& status) {
  if (status == 0) {
    copyContent(object, file, status);
  }
  if (status != 0) {
    char text[64];
    std::snprintf(text, sizeof text, "Status error %u reading from stream.", status);
    object.setStringAttribute(dac::BAD_DATA, text);
  }
}

plat::OpenMode newContentMode() {
  plat::OpenMode mode;
  mode.read = mode.write = mode.create = true;
  return mode;
}

// A name that gen::tempFileName gives may be taken before it is used: then another is drawn. The
// opening's errno value; an empty path when no name can be had.
int openTemporary(FL_File& file, SCL_String& path, unsigned int& status) {
  plat::OpenMode mode = newContentMode();
  mode.exclusive = mode.noFollow = true;  // a file or link that waits under the name is not ours
  mode.permissions = 0600;
  int error = EEXIST;
  for (int draw = 0; error == EEXIST && draw < NAME_DRAWS; ++draw) {
    char name[dv::PATH_SIZE] = "";
    gen::tempFileName(name, sizeof name, status);
    path = status == 0 ? name : "";
    if (path.isEmpty()) {
      return 0;
    }
    error = file.open(path, mode);
  }
  return error;
}

// A file that goes again, also when an exception passes, unless it is kept.
class Unfinished {
 public:
  explicit Unfinished(const SCL_String& path) : m_path(path) {}
  Unfinished(const Unfinished&) = delete;
  Unfinished& operator=(const Unfinished&) = delete;
  ~Unfinished() {
    if (!m_path.isEmpty()) {
      GENSwallow([this] { plat::remove(m_path); });
    }
  }
  void keep() noexcept { m_path.clear(); }

 private:
  SCL_String m_path;
};

}  // namespace

void dac::copyToFile(DAC_BaseDataAccess* object, const SCL_StringRef& path, unsigned int& status) {
  if (object == nullptr) {
    GENAssert(GEN_NULL_POINTER, "DACTOFIL", __LINE__);
  }
  if (status != 0) {
    return;
  }
  object->seek(DAC_BaseDataAccess::FROM_START, 0, status);
  plat::OpenMode mode = newContentMode();
  mode.truncate = true;
  FL_File file;
  if (status == 0 && file.open(path, mode) != 0) {
    status = DACTOFIL_OPEN;
  }
  copyAndNote(*object, file, status);
}

void dac::copyToTemporaryFile(DAC_BaseDataAccess& object, SCL_String& path, unsigned int& status) {
  path.clear();
  if (status != 0) {
    return;
  }
  FL_File file;
  SCL_String drawn;
  const int error = openTemporary(file, drawn, status);
  if (drawn.isEmpty()) {
    return;
  }
  Unfinished unfinished(error == 0 ? drawn : SCL_String());
  status = error == 0 ? 0 : DACTOFIL_OPEN;
  object.seek(DAC_BaseDataAccess::FROM_START, 0, status);
  copyAndNote(object, file, status);
  if (status == 0) {
    unfinished.keep();
    path = std::move(drawn);
  }
}

void dac::deleteFilePatiently(const SCL_StringRef& path) noexcept {
  if (path.isEmpty()) {
    return;
  }
  GENSwallow([&path] {
    int error = plat::remove(path);
    for (int attempt = 1; attempt < DELETE_ATTEMPTS && canPass(error); ++attempt) {
      plat::sleepMilliseconds(DELETE_PAUSE);
      error = plat::remove(path);
    }
    if (error != 0 && error != ENOENT) {
      gen::traceIfOn(1, "Error deleting file %s - error %d.", path.c_str(), error);
    }
  });
}
