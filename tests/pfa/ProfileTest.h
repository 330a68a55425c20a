// The fixture of the profile tests: a folder, a clock that does not wait, no pending report.
#pragma once

#include <string>

#include "fl/Folder.h"
#include "gen/GENWNT.h"
#include "gmock/gmock.h"
#include "pfa/PFAPROF.h"
#include "plat/PlatClock.h"

class ProfileTest : public testing::Test {
 protected:
  ProfileTest() {
    plat::setClock(&clock);
    GENSetStatus(0, 0, 0);
  }
  ~ProfileTest() override { plat::setClock(nullptr); }

  std::string ini() const { return folder.path("a.ini"); }
  // Writes the file and opens it.
  unsigned int open(PFA_Profile& profile, const std::string& text, bool writable) const {
    folder.write("a.ini", text);
    return profile.open(ini().c_str(), writable);
  }
  // Every entry in its order: "[section] text|text|[section] text|" and the walk's last status.
  static std::string contents(PFA_Profile& profile) {
    std::string text;
    std::string section = "?";
    unsigned int status = profile.nextEntryAnywhere(true);
    for (; status == 0; status = profile.nextEntryAnywhere(false)) {
      char buffer[300];
      profile.sectionName(buffer, sizeof buffer);
      if (section != buffer) {
        section = buffer;
        text += "[" + section + "] ";
      }
      profile.entryText(buffer, sizeof buffer);
      text += std::string(buffer) + "|";
    }
    return text + std::to_string(status);
  }
  // A field's text, or its status in round brackets.
  static std::string value(PFA_Profile& profile, unsigned int field, const char* name = nullptr,
                           unsigned int index = 0) {
    char buffer[300];
    const unsigned int status = profile.getValue(buffer, sizeof buffer, false, field, name, index);
    return status == 0 ? buffer : "(" + std::to_string(status) + ")";
  }

  Folder folder;
  plat::ManualClock clock{plat::Moment{883'627'506, 0}};
};
