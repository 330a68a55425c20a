// The profile: reading everything of it, and writing it back with one value changed.
#include "fuzz/Fuzz.h"
#include "pfa/PFAPROF.h"

namespace {

std::string printed(PFA_Profile& profile) {
  std::string text;
  char buffer[PFA_Profile::VALUE_SIZE];
  for (unsigned int end = profile.nextEntryAnywhere(true); end == 0;
       end = profile.nextEntryAnywhere(false)) {
    profile.sectionName(buffer, sizeof buffer);
    text += std::string(buffer) + "/";
    profile.entryName(buffer, sizeof buffer);
    text += std::string(buffer) + "=";
    for (unsigned int field = 1; field <= profile.fieldCount(); ++field) {
      profile.getValue(buffer, sizeof buffer, false, field);
      text += std::string(buffer) + ",";
      std::int32_t number = 0;
      bool answer = false;
      profile.getSigned(number, false, field);
      profile.getBoolean(answer, false, field);
    }
    text += "\n";
  }
  return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  return fuzz::run([&] {
    const std::string path = fuzz::fileWith(fuzz::viewOf(data, size));
    PFA_Profile profile;
    if (profile.open(path.c_str(), true) != 0) {
      return;
    }
    profile.selectSection("Fuzz");
    if (profile.setValue("value", false, 1, "Entry") != 0) {
      return;
    }
    const std::string changed = printed(profile);
    fuzz::require(profile.flush() == 0, "a profile can be written");
    PFA_Profile again;
    again.setFlags(PFA_Profile::KEEP_COMMENTS, true);  // as a writable profile does
    fuzz::require(again.open(path.c_str(), false) == 0, "a profile of ours can be read");
    fuzz::require(printed(again) == changed, "a profile is read as what was written");
  });
}
