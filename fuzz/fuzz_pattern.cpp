// The pattern decoder: a text against every pattern of the system, and against one of its own.
// Input: the pattern, then the text. A pattern is program text, whose repetitions may take as long
// as they say: one with more than three digits is not tried.
#include <algorithm>

#include "dv/DVDATTIM.h"
#include "dv/DVDECODE.h"
#include "dv/DVPATH.h"
#include "fuzz/Fuzz.h"

namespace {

constexpr const char* PATTERNS[] = {" %U-{+JAN|FEB|MAR|APR|MAY|JUN|JUL|AUG|SEP|OCT|NOV|DEC}-%U ",
                                    " %U:%U[:%U[.%U]] ",
                                    " [{++|-}%U:]%U:%U[:%U[.%U]] ",
                                    "{* T{/RUE}| Y{/ES}| ON| F{/ALSE}| N{/O}| OFF}",
                                    "{+Y{/ES}|N{/O}}|",
                                    " %LI",
                                    "{ Brief | Normal | Verbose | Debug }",
                                    "%P",
                                    "%F %Q %H"};

void decode(const char* pattern, const SCL_StringRef& text) {
  alignas(8) char record[512];
  int furthest = 0;
  for (const unsigned int size : {512U, 10U}) {
    const int result = dv::decode(pattern, false, record, size, furthest, text);
    fuzz::require(result >= -12 && result <= static_cast<int>(text.length()),
                  "a match consumes what is there");
    fuzz::require(furthest <= static_cast<int>(text.length()), "nothing is read behind the text");
    dv::decodeStatus(result);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  return fuzz::run([&] {
    const std::vector<std::string> fields = fuzz::split(fuzz::viewOf(data, size), 2);
    const SCL_StringRef text(fields[1].c_str());
    for (const char* pattern : PATTERNS) {
      decode(pattern, text);
    }
    if (std::count_if(fields[0].begin(), fields[0].end(), SCL_isDigit) <= 3) {
      decode(fields[0].c_str(), text);
    }
    dv::PathRecord path;
    dv::decodePath(path, text, dv::MODE_UNC | dv::MODE_DRIVE);
  });
}
