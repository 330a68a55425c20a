// Tests of reading words and lines.
#include <sstream>

#include "gmock/gmock.h"
#include "scl/SCLSTRNG.h"

namespace {

std::string shown(std::string_view text) {
  SCL_String quoted;
  SCL_quote(text.data(), text.data() + text.size(), quoted);
  return quoted.c_str();
}

std::string lines(std::string_view text, int lineEnd) {
  std::istringstream stream{std::string(text)};
  std::string result;
  SCL_String line("old");
  while (SCL_readLine(stream, line, lineEnd) == 1) {
    result += shown(line);
  }
  return result + (stream.eof() && !stream.fail() && line.isEmpty() ? "" : " not at its end");
}

TEST(ReadLine, EachModeHasItsLineEnd) {
  const std::string_view text = "a\rb\nc\r\n\r\nd";
  EXPECT_EQ(lines(text, 1), R"("a""b\nc""\n""\nd")");
  EXPECT_EQ(lines(text, 2), R"("a\rb""c\r""\r""d")");
  EXPECT_EQ(lines(text, 3), R"("a\rb\nc""""d")");
}

TEST(ReadLine, LoneCarriageReturnsAreTextInCrLfLines) {
  EXPECT_EQ(lines("a\r\r\nb\r", 3), R"("a\r""b\r")");
  EXPECT_EQ(lines("a\n", 2), R"("a")");
  EXPECT_EQ(lines("", 3), "");
}

TEST(ReadLine, LongLinesAndNulCharactersAreKept) {
  const std::string line = std::string(1023, 'x') + std::string(2, '\0') + std::string(2000, 'y');
  EXPECT_EQ(lines(line + "\r\nz", 3), shown(line) + "\"z\"");
}

TEST(ReadWord, LiesBetweenWhiteSpace) {
  std::istringstream stream(" \t ab\r\ncd");
  SCL_String word;
  std::string words;
  while (SCL_readWord(stream, word)) {
    words += shown(word);
  }
  EXPECT_EQ(words + shown(word), R"("ab""cd""")");
}

}  // namespace
