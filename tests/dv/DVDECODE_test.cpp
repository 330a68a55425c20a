// The pattern decoder: the system's own patterns, the language's corners, and its conversions.
#include "dv/DVDECODE.h"

#include <cstring>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "dv/DVPATH.h"
#include "scl/Failure.h"

namespace {

const char* const DATE = " %U-{+JAN|FEB|MAR|APR|MAY|JUN|JUL|AUG|SEP|OCT|NOV|DEC}-%U ";
const char* const TIME = " %U:%U[:%U[.%U]] ";
const char* const DATE_TIME =
    " [%U-{+JAN|FEB|MAR|APR|MAY|JUN|JUL|AUG|SEP|OCT|NOV|DEC}-%U] [%U:%U[:%U[.%U]]] ";
const char* const OFFSET = " [{++|-}%U:]%U:%U[:%U[.%U]] ";
const char* const BOOLEAN = "{* T{/RUE}| Y{/ES}| ON| F{/ALSE}| N{/O}| OFF}";
const char* const ANSWER = "{+Y{/ES}|N{/O}}|";
const char* const LEVELS = "{ Brief | Normal | Verbose | Debug }";

// The result, and after a match the record: as 32-bit words, or as bytes ("." for a zero).
std::string words(const char* pattern, const char* input, unsigned int count) {
  constexpr std::uint32_t BEHIND = 0xEEEEEEEE;
  std::vector<std::uint32_t> record(count + 1, BEHIND);
  int furthest = 0;
  const int result = dv::decode(pattern, false, record.data(), count * 4, furthest, input);
  EXPECT_EQ(record[count], BEHIND) << "written past the record by " << pattern;
  std::string text = std::to_string(result);
  for (std::size_t i = 0; result >= 0 && i < count; ++i) {
    text += (i == 0 ? " [" : ",") + std::to_string(record[i]);
  }
  return result >= 0 && count != 0 ? text + "]" : text;
}

std::string bytes(const char* pattern, const char* input, unsigned int count,
                  bool caseSensitive = false) {
  std::string record(count, '~');
  int furthest = 0;
  const int result = dv::decode(pattern, caseSensitive, record.data(), count, furthest, input);
  for (char& c : record) {
    c = c == '\0' ? '.' : c;
  }
  return std::to_string(result) + (result >= 0 ? " " + record : "");
}

struct Vector {
  const char* pattern;
  const char* input;
  unsigned int count;
  const char* expected;
};

void expectAll(const std::vector<Vector>& vectors) {
  for (const Vector& v : vectors) {
    EXPECT_EQ(words(v.pattern, v.input, v.count), v.expected) << v.pattern << " on " << v.input;
  }
}

TEST(Decode, ReadsTheSystemsPatterns) {
  expectAll({
      {DATE, "5-Jan-1998", 3, "10 [5,1,1998]"},
      {DATE, " 05-jan-98 ", 3, "11 [5,1,98]"},
      {DATE, "150-Jan-1998", 3, "12 [150,1,1998]"},
      {DATE, "5 Jan 1998", 3, "-1"},
      {DATE, "5-January-1998", 3, "-1"},
      {DATE, "5-Jan-99999999999", 3, "-12"},
      {TIME, "12:30", 6, "5 [12,30,0,0,0,0]"},
      {TIME, "12:30:15", 6, "8 [12,30,1,15,0,0]"},
      {TIME, "12:30:15.5", 6, "10 [12,30,1,15,1,5]"},
      {TIME, "12:30:", 6, "-1"},
      {TIME, "12:30:15.", 6, "-1"},
      {TIME, "99:99", 6, "5 [99,99,0,0,0,0]"},
      {DATE_TIME, "10:30", 11, "5 [0,0,0,0,1,10,30,0,0,0,0]"},
      {DATE_TIME, "5-Jan-1998", 11, "10 [1,5,1,1998,0,0,0,0,0,0,0]"},
      {DATE_TIME, "5-Jan-1998 10:30", 11, "16 [1,5,1,1998,1,10,30,0,0,0,0]"},
      {DATE_TIME, "5-Jan-1998 10", 11, "-1"},
      {DATE_TIME, "", 11, "0 [0,0,0,0,0,0,0,0,0,0,0]"},
      {DATE_TIME, "99999999999", 11, "-12"},
      {OFFSET, "01:00", 9, "5 [0,0,0,1,0,0,0,0,0]"},
      {OFFSET, "+1:02:03", 9, "8 [1,1,1,2,3,0,0,0,0]"},
      {OFFSET, "-1:02:03", 9, "8 [1,2,1,2,3,0,0,0,0]"},
      {OFFSET, "1:02:03", 9, "7 [0,0,0,1,2,1,3,0,0]"},
      {OFFSET, "-1:02", 9, "-1"},
      {OFFSET, "+ 1:02:03", 9, "-1"},
      {OFFSET, "00003:12:00:00", 9, "-1"},
      {BOOLEAN, "tr", 1, "2 [1]"},
      {BOOLEAN, "on", 1, "2 [3]"},
      {BOOLEAN, "off", 1, "3 [6]"},
      {BOOLEAN, "no", 1, "2 [5]"},
      {BOOLEAN, "", 1, "0 [0]"},
      {BOOLEAN, "maybe", 1, "-1"},
      {BOOLEAN, "nope", 1, "-1"},
      {BOOLEAN, "o", 1, "-1"},
      {BOOLEAN, "true ", 1, "-1"},
      {BOOLEAN, "   ", 1, "-1"},
      {ANSWER, "yes please", 1, "3 [1]"},
      {ANSWER, "Nobody", 1, "2 [2]"},
      {ANSWER, "n", 1, "1 [2]"},
      {ANSWER, " yes", 1, "-1"},
      {LEVELS, " verbose\t", 1, "9 [3]"},
      {LEVELS, "Brief", 1, "5 [1]"},
      {LEVELS, " Brief ", 1, "7 [1]"},
      {LEVELS, "Verb", 1, "-1"},
      {LEVELS, "Debug on", 1, "-1"},
      {"%LI", "-2147483648", 1, "-12"},
      {"%LI", "-2147483647", 1, "11 [2147483649]"},
      {" %LU", "-5", 1, "-1"},
      {" %LU", "4294967295", 1, "-12"},
  });
}

TEST(Decode, LaysOutGroupsWhateverMatches) {
  expectAll({
      {"%U,%U", "1,2", 1, "-10"},
      {"%U,%U", "1-2", 1, "-10"},  // the record is too small for any input
      {"%U,%U", "1,2", 2, "3 [1,2]"},
      {"[A%U%U]", "", 2, "-10"},
      {"{3+A|B}|", "ABX", 4, "2 [2,1,2,0]"},
      {"{3+A|B}", "X", 4, "-1"},
      {"{2*A%U|B}C", "C", 5, "1 [0,0,0,0,0]"},
      {"{2*A%U|B}C", "A7C", 5, "3 [1,1,7,0,0]"},
      {"{2*A%U|B}C", "A7BC", 5, "4 [2,1,7,2,0]"},
      {"{2*|B}", "B", 3, "-1"},  // the empty alternative matches first, twice
      {"{2*|B}", "", 3, "0 [2,1,1]"},
      {"{2*%U|B}", "99999999999", 3, "-12"},
      {"{/AB{/CD}}|", "ACD", 2, "1 [0,0]"},
      {"{+A%U-|A}%U", "A5", 3, "2 [2,0,5]"},
      {"[A{2+B}%U]%U", "7", 6, "1 [0,0,0,0,0,7]"},
      {"{#A%U|B|C}.", "CA5.", 2, "4 [5,5]"},
      {"{#A|B}", "", 1, "-1"},
      {"{#A|B}|", "AA", 1, "1 [1]"},
      {"{5 A}{5#B}", "AB", 2, "2 [1,1]"},
      {"{/AB%U}C%U", "AC3", 2, "3 [0,3]"},
      {"{/A[B%U]C}%U", "A7", 3, "2 [0,0,7]"},
      {"[{/AB|C}D]%U", "AD7", 2, "3 [1,7]"},
      {"{+A|B", "B", 1, "1 [2]"},  // the end closes what is open
      {"%l", "", 0, "0"},
      {"{?A}", "A", 1, "-11"},
      {"{", "", 1, "-11"},
      {"[B{?A}]", "A", 4, "-11"},
      {"{=|[*+]", "", 1, "-11"},
  });
}

TEST(Decode, ReadsIntegersIntoWordsAndBytes) {
  expectAll({
      {"%U", "2147483647", 1, "10 [2147483647]"},
      {"%u", "9999999999", 1, "-12"},
      {"%H|", "fFg", 1, "2 [255]"},
      {"%O|", "178", 1, "2 [15]"},
      {"%I", "+7", 1, "2 [7]"},
      {"%I", "-", 1, "-1"},
      {"%bU%bI%2=", "255-128", 2, "7 [33023,2]"},
      {"%bU,%U", "1,2", 2, "3 [1,2]"},
      {"%bU", "256", 1, "-12"},
      {"%bI", "-129", 1, "-12"},
      {"%0=%99999999999=%3.7=", "", 3, "0 [1,65535,3]"},
      {"%4+%U,%8-%U%4+", "1,2", 2, "3 [2,1]"},
      {"%5-", "", 1, "-10"},
  });
}

TEST(Decode, ARecordMayStandAnywhere) {
  char buffer[1 + sizeof(std::uint32_t)];
  int furthest = 0;
  EXPECT_EQ(dv::decode("%U", false, buffer + 1, sizeof(std::uint32_t), furthest, "7"), 1);
  EXPECT_EQ(std::string(buffer + 1, sizeof(std::uint32_t)), std::string("\7\0\0\0", 4));
}

TEST(Decode, ReadsTextsIntoFieldsOfTheirCount) {
  EXPECT_EQ(bytes("%3C%4C", "abcd", 7), "4 abcd   ");
  EXPECT_EQ(bytes("%3C", "", 3), "0    ");
  EXPECT_EQ(bytes("%4S", "abcdef", 4), "6 abc.");
  EXPECT_EQ(bytes("%0S", "abc", 1), "3 .");
  EXPECT_EQ(bytes("%5Q;", "\"a\"\"b\";", 5), "7 a\"b..");
  EXPECT_EQ(bytes("%3Q|", "\"\"\"\"\"\"x", 3), "6 \"\".");
  EXPECT_EQ(bytes("%5Q", "\"ab", 5), "-1");
  EXPECT_EQ(bytes("%5Q", "\"ab\"\"", 5), "-1");
  EXPECT_EQ(bytes("%4N-", "_a1-", 4), "4 _a1 ");
  EXPECT_EQ(bytes("%4N", "1a", 4), "-1");
  EXPECT_EQ(bytes("%4T|", "$1_ab c", 4), "5 $1_.");
  EXPECT_EQ(bytes("%4N", "\xE9t\xE9", 4), "-1");
  EXPECT_EQ(bytes("[%4S%4C]", "ab", 4), "-10");
}

TEST(Decode, ReadsAnswersAndLiterals) {
  EXPECT_EQ(bytes("%A,%A", "ye,no", 2), "5 \x01.");
  EXPECT_EQ(bytes("%A", "maybe", 1), "-1");
  EXPECT_EQ(bytes("%A", "yes", 1, true) + bytes("%A", "YES", 1, true), "-13 \x01");
  EXPECT_EQ(bytes("%{%%%|", "{%|", 0), "3 ");
  EXPECT_EQ(bytes("a B", "A   b", 0), "5 ");
  EXPECT_EQ(bytes("aB", "AB", 0, true), "-1");
  EXPECT_EQ(bytes("%xB", "xB", 0, true), "2 ");
  EXPECT_EQ(bytes("\xC9", "\xE9", 0), "-1");
}

template <class T>
std::string decodedFloat(const char* pattern, const char* input) {
  T value = 0;
  int furthest = 0;
  const int result = dv::decode(pattern, false, &value, sizeof value, furthest, input);
  return std::to_string(result) + (result >= 0 ? " " + std::to_string(value) : "");
}

TEST(Decode, ReadsFractionsWithAPointInEveryLocale) {
  EXPECT_EQ(decodedFloat<float>("%F", "+1.5e-1"), "7 0.150000");
  EXPECT_EQ(decodedFloat<double>("%lF", "-.25"), "4 -0.250000");
  EXPECT_EQ(decodedFloat<double>("%lF|", "3.ex"), "2 3.000000");
  EXPECT_EQ(decodedFloat<double>("%lF", "."), "-1");
  EXPECT_EQ(decodedFloat<double>("%lF", "inf"), "-1");
  EXPECT_EQ(decodedFloat<float>("%F", "1e40"), "-12");
}

TEST(Decode, ReadsPathsUpToWhatNoPathHolds) {
  struct {
    char mark;
    dv::PathRecord path;
  } out;
  int furthest = 0;
  EXPECT_EQ(dv::decode("%C%P>", false, &out, sizeof out, furthest, "!d:/x.y>"), 8);
  EXPECT_STREQ(out.path.path, "d:\\x.y");
  EXPECT_EQ(dv::decode("%C%P", false, &out, sizeof out - 4, furthest, "!d:/x.y"), -10);
  EXPECT_EQ(dv::decode("%C%P", false, &out, sizeof out, furthest, "!"), -1);
}

TEST(Decode, TellsTheFurthestOffsetOfFailedAlternativesToo) {
  std::uint32_t record[11];
  int furthest = 0;
  EXPECT_EQ(dv::decode(DATE_TIME, false, record, sizeof record, furthest, "5-Jan-x"), -1);
  EXPECT_EQ(furthest, 6);
}

TEST(Decode, StatusesNameTheResults) {
  std::string text;
  for (const int result : {7, 0, -1, -6, -11, -12, -13, std::numeric_limits<int>::min()}) {
    text += std::to_string(dv::decodeStatus(result)) + " ";
  }
  EXPECT_EQ(text, "0 0 121 126 131 132 101 101 ");
}

TEST(Keyword, IsTheWholeTextOrNothing) {
  EXPECT_EQ(dv::keywordIndex(LEVELS, " debug "), 4U);
  EXPECT_EQ(dv::keywordIndex(LEVELS, "debugger"), 0U);
  std::uint32_t value = 3;
  EXPECT_FALSE(dv::decodeUnsigned("12x", value));
  EXPECT_EQ(value, 3U);
  EXPECT_TRUE(dv::decodeUnsigned(" 12\t", value));
  EXPECT_EQ(value, 12U);
}

std::string read(int base, const char* text) {
  std::int32_t value = -99;
  const int length = dv::readNumber(value, base, text);
  return std::to_string(length) + " " + std::to_string(value);
}

TEST(ReadNumber, TakesDigitsBelowItsBase) {
  EXPECT_EQ(read(-10, "-2147483647 "), "11 -2147483647");
  EXPECT_EQ(read(-10, "-2147483648"), "-12 -99");
  EXPECT_EQ(read(10, "-1"), "-1 -99");
  EXPECT_EQ(read(16, "7FFFffffg"), "8 2147483647");
  EXPECT_EQ(read(1, "0001"), "3 0");
  EXPECT_EQ(read(std::numeric_limits<int>::min(), "-f0"), "-12 -99");
  std::uint32_t value = 0;
  EXPECT_EQ(dv::readUnsigned(value, 10, "2147483648"), -12);
  EXPECT_EQ(failureOf([&] { dv::readUnsigned(value, 0, "1"); }), "Value out of range in DVREADNO");
}

}  // namespace
