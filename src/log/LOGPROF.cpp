// Finding a stream's section and its type in a profile.
#include "log/LOGPROF.h"

#include <algorithm>
#include <string>

#include "log/LOGKINDS.h"

namespace {

std::string withoutSpace(std::string text) {
  std::erase_if(text, SCL_isSpace);
  return text;
}

// The section's name as the profile has it; `name` itself when there is none.
std::string sectionNamed(const PFA_Profile& profile, std::string_view name) {
  const std::vector<std::string> sections = profile.sectionNames();
  auto found = std::find_if(sections.begin(), sections.end(), [&](const std::string& section) {
    return SCL_equalNoCase(section, name);
  });
  if (found == sections.end()) {
    found = std::find_if(sections.begin(), sections.end(), [&](const std::string& section) {
      return SCL_equalNoCase(withoutSpace(section), name);
    });
  }
  return found != sections.end() ? *found : std::string(name);
}

}  // namespace

namespace logging {

unsigned int selectStreamSection(PFA_Profile& profile, const SCL_StringRef& name) {
  return profile.selectSection(sectionNamed(profile, name).c_str());
}

unsigned int readStreamType(PFA_Profile& profile, LOG_StreamType& type) {
  unsigned int status = profile.nextEntry(true);
  for (; status == 0; status = profile.nextEntry(false)) {
    char text[VALUE_SIZE];
    if (profile.entryName(text, sizeof text) != 0 || !SCL_equalNoCase(text, "StreamType")) {
      continue;
    }
    status = profile.getValue(text, sizeof text, false, 1);
    if (status != 0) {
      return status;
    }
    type = streamTypeOf(text);
    return type != LOG_NO_TYPE ? 0 : LOG_STREAM_TYPE;
  }
  return status == PFA_NO_MORE ? PFA_ENTRY_NOT_FOUND : status;
}

}  // namespace logging
