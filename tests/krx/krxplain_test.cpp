// Runs of lines that go over as they stand.
#include "krx/krxplain.h"

#include <random>
#include <string>

#include <gtest/gtest.h>

namespace {

// The rule, line by line.
std::size_t slowPlainLines(const std::string& text) {
  std::size_t line = 0;
  while (line < text.size() && text[line] != '.' && text[line] != '-') {
    const std::size_t end = text.find_first_of("\r\n", line);
    if (end == std::string::npos || text.compare(end, 2, "\r\n") != 0) {
      break;
    }
    line = end + 2;
  }
  return line;
}

TEST(PlainLines, EndAtTheFirstThatNeedsALook) {
  std::mt19937 random(1);
  constexpr std::string_view PIECES[] = {"\r\n", "\r\n", "\r\n", "a",  "word. -",
                                         "-",    ".",    "\r",   "\n", "\n\r"};
  std::size_t most = 0;
  for (int round = 0; round < 50000; ++round) {
    std::string text;
    // Seldom anything but plain lines, so that it comes anywhere in a block of a run.
    for (std::size_t count = random() % 30; count > 0; --count) {
      text += std::string(random() % 70, 'x') + "\r\n";
    }
    for (std::size_t count = random() % 4; count > 0; --count) {
      text.insert(random() % (text.size() + 1), PIECES[random() % std::size(PIECES)]);
    }
    const std::size_t end = slowPlainLines(text);
    const std::size_t found = KRX_plainLines(text);
    ASSERT_LE(found, end) << text;
    ASSERT_TRUE(found == 0 || text[found - 1] == '\n') << text;
    // A run of blocks may leave its last line and what is no whole block, and no more.
    most = std::max(most, end - found);
  }
  EXPECT_LT(most, __builtin_cpu_supports("avx2") != 0 ? 140U : 3000U);
}

}  // namespace
