// KRX_NameDraw: draws base names from the clock, a bounded number of them, each in a millisecond of
// its own.
#pragma once

#include "scl/SCLSTRNG.h"

class KRX_NameDraw {
 public:
  static constexpr int MAX_DRAWS = 1000;
  // False when all draws are used up.
  bool draw(SCL_String& base);

 private:
  int m_draws = 0;
};
