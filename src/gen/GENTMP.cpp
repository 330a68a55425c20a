// Unique names in the temporary directory of the system's default user profile.
#include "gen/GENTMP.h"

#include <cstring>
#include <string>

#include "dv/DVDECODE.h"
#include "dv/DVPATH.h"
#include "gen/GENCODES.h"
#include "gen/GENWNT.h"
#include "plat/PlatClock.h"
#include "plat/PlatLock.h"
#include "plat/PlatRegistry.h"
#include "scl/SCLSTRNG.h"

namespace {

constexpr unsigned int NUMBER_SIZE = 9;  // eight digits and the terminator
constexpr unsigned int MAX_TRIES = 100'000;
constexpr std::size_t MAX_DIRECTORY = 128;
constexpr int USERS = 3;

std::string temporaryDirectory() {
  plat::RegistryValue value;
  if (plat::registryReadValue(USERS, ".DEFAULT\\Environment", "TMP", value) == 0) {
    std::string text = value.data.substr(0, value.data.find('\0'));
    if (value.type == plat::ValueType::expandString) {
      return plat::expandEnvironment(text, MAX_DIRECTORY);
    }
    if (value.type == plat::ValueType::string) {
      return text;
    }
  }
  return "C:\\";
}

// The wait makes sure that the next call sees another number.
std::string nextNumber() {
  plat::sleepMilliseconds(1);
  const plat::Moment now = plat::now();
  return std::to_string(now.seconds % 100'000 * 1000 + now.milliseconds);
}

bool endsInSeparator(const std::string& directory) noexcept {
  const char last = SCL_lastChar(directory);
  return last == '\\' || last == '/';
}

// The status of the first name that is not taken: 123, "does not exist", is what is wanted.
unsigned int findFreeName(const std::string& directory, unsigned int size, std::string& name) {
  for (unsigned int i = 0; i < MAX_TRIES; ++i) {
    name = directory + nextNumber();
    if (name.size() >= size) {
      return GEN_TEMP_NAME;
    }
    const unsigned int status = dv::decodeStatus(dv::checkFile(name.c_str()));
    if (status != 0) {
      return status == DV_NOT_FOUND ? 0 : status;
    }
  }
  return GEN_TEMP_NAME;
}

}  // namespace

namespace gen {

void tempFileName(char* buffer, unsigned int size, unsigned int& status) {
  if (status != 0) {
    return;
  }
  if (buffer == nullptr) {
    GENAssert(GEN_NULL_POINTER, "GENTMP", __LINE__);
  }
  if (size > 0) {
    buffer[0] = '\0';
  }
  if (size < NUMBER_SIZE) {
    status = GEN_TEMP_NAME;
    return;
  }
  std::string directory = temporaryDirectory();
  if (!endsInSeparator(directory)) {
    directory += '\\';
  }
  plat::NamedMutex mutex;
  if (mutex.lock("DCDTempFileName") != 0) {
    return;
  }
  std::string name;
  status = findFreeName(directory, size, name);
  if (status == 0) {
    std::memcpy(buffer, name.c_str(), name.size() + 1);
  }
}

}  // namespace gen
