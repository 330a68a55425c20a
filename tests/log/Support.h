// The vocabulary of the log's tests: a clock that is moved by hand, a directory of their own, log
// files as text, and a stream that remembers what it is asked.
#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <set>
#include <string>

#include <gtest/gtest.h>
#include <stdlib.h>
#include <time.h>

#include "log/LOGFilSt.h"
#include "log/LOGLOG.h"
#include "pfa/PFAPROF.h"
#include "plat/PlatClock.h"

namespace logtest {

// 28 February 2024, 14:05:09.27, in UTC.
inline constexpr plat::Moment START{1709129109, 270};
inline constexpr std::int64_t HOUR = 3600 * std::int64_t{1000};
inline constexpr std::int64_t DAY = 24 * HOUR;

class LogTest : public testing::Test {
 protected:
  LogTest() {
    setZone("UTC0");
    std::string pattern = testing::TempDir() + "krxlogXXXXXX";
    directory = std::string(mkdtemp(pattern.data())) + "/";
    plat::setClock(&clock);
  }
  ~LogTest() override {
    plat::setClock(nullptr);
    std::filesystem::remove_all(directory);
  }

  static void setZone(const char* zone) {
    setenv("TZ", zone, 1);
    tzset();
  }
  void write(const std::string& name, const std::string& content) const {
    std::ofstream(directory + name, std::ios::binary) << content;
  }
  // The file's content with its CR LF shown as "\n"; a bare LF shows as "<LF>".
  std::string read(const std::string& name) const {
    std::ifstream file(directory + name, std::ios::binary);
    return shown({std::istreambuf_iterator<char>(file), {}});
  }
  static std::string shown(const std::string& content) {
    const std::string marked = std::regex_replace(content, std::regex("(^|[^\r])\n"), "$1<LF>");
    return std::regex_replace(marked, std::regex("\r\n"), "\n");
  }
  // The names in a directory in order, each followed by a blank.
  std::string files(const std::string& folder = "") const {
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(directory + folder)) {
      names.insert(entry.path().filename().string() + " ");
    }
    std::string text;
    for (const std::string& name : names) {
      text += name;
    }
    return text;
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
      status = set(stream, "FileRootName", directory + root);
    }
    if (status == 0 && *nameType != '\0') {
      status = set(stream, "NameType", nameType);
    }
    stream.endOfConfiguration(status);
    return status;
  }

  plat::ManualClock clock{START};
  std::string directory;
};

}  // namespace logtest
