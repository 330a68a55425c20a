// The entries to the pattern decoder; the matching itself is in DVSEQ, DVGROUP and DVCONV.
#include "dv/DVDECODE.h"

#include <new>

#include "dv/DVMATCH.h"
#include "gen/GENCODES.h"
#include "gen/GENWNT.h"

namespace dv {

int decode(const SCL_StringRef& pattern, bool caseSensitive, void* output, unsigned int outputSize,
           int& furthest, const SCL_StringRef& input) {
  furthest = 0;
  try {
    Matcher matcher(pattern.view(), caseSensitive, OutputRecord(output, outputSize), input.view());
    const int result = matcher.match();
    furthest = matcher.furthest();
    return result;
  } catch (const std::bad_alloc&) {
    GENAssert(GEN_NULL_POINTER, "DVDECODE", __LINE__);
  }
}

unsigned int decodeStatus(int result) noexcept {
  if (result >= 0) {
    return 0;
  }
  return result >= OUT_OF_RANGE ? DV_NO_MATCH + static_cast<unsigned int>(NO_MATCH - result)
                                : DV_BAD_RESULT;
}

unsigned int keywordIndex(const SCL_StringRef& pattern, const SCL_StringRef& text) {
  std::uint32_t selector = 0;
  int furthest = 0;
  return decode(pattern, false, &selector, sizeof selector, furthest, text) >= 0 ? selector : 0;
}

bool decodeUnsigned(const SCL_StringRef& text, std::uint32_t& value) {
  std::uint32_t decoded = 0;
  int furthest = 0;
  if (decode(" %U ", false, &decoded, sizeof decoded, furthest, text) < 0) {
    return false;
  }
  value = decoded;
  return true;
}

}  // namespace dv
