// The vocabulary of the log's tests: a clock that is moved by hand, a directory of their own, log
// files as text.
#pragma once

#include <regex>
#include <string>

#include <gtest/gtest.h>
#include <stdlib.h>
#include <time.h>

#include "fl/Folder.h"
#include "log/LOGFilSt.h"
#include "log/LOGLOG.h"
#include "pfa/PFAPROF.h"
#include "plat/PlatClock.h"

namespace logtest {

// 28 February 2024, 14:05:09.27, in UTC.
inline constexpr plat::Moment START{1709129109, 270};
inline constexpr std::int64_t HOUR = 3600 * std::int64_t{1000};

class LogTest : public testing::Test {
 protected:
  LogTest() {
    setenv("TZ", "UTC0", 1);
    tzset();
    plat::setClock(&clock);
  }
  ~LogTest() override { plat::setClock(nullptr); }

  // The file's content with its CR LF shown as "\n"; a bare LF shows as "<LF>".
  std::string read(const std::string& name) const { return shown(folder.read(name)); }
  static std::string shown(const std::string& content) {
    const std::string marked = std::regex_replace(content, std::regex("(^|[^\r])\n"), "$1<LF>");
    return std::regex_replace(marked, std::regex("\r\n"), "\n");
  }
  static unsigned int set(LOG_Stream& stream, const char* key, const std::string& value) {
    unsigned int status = 0;
    stream.configureKey(key, value.c_str(), status);
    return status;
  }
  // Configures a file stream over the root and name type, which may be empty; the status.
  unsigned int make(LOG_FileStream& stream, const char* type, const std::string& root,
                    const char* nameType) const {
    unsigned int status = set(stream, "StreamType", type);
    if (status == 0 && !root.empty()) {
      status = set(stream, "FileRootName", folder.path(root));
    }
    if (status == 0 && *nameType != '\0') {
      status = set(stream, "NameType", nameType);
    }
    stream.endOfConfiguration(status);
    return status;
  }

  plat::ManualClock clock{START};
  Folder folder;
};

}  // namespace logtest
