// Tests of status texts, the last-status record and assertions.
#include "gen/GENWNT.h"

#include <cstring>
#include <new>
#include <stdexcept>
#include <string>

#include "gen/GENCATCH.h"
#include "gmock/gmock.h"
#include "scl/Failure.h"
#include "scl/SCLSTRNG.h"

namespace {

bool memoryIsOut = false;

std::string statusText(unsigned int code) {
  char buffer[4096];
  return GENStatusText(code, sizeof buffer, buffer);
}

std::string record(unsigned int size = 200) {
  unsigned int code = 0;
  int val1 = 0;
  int val2 = 0;
  char text[200];
  unsigned int length = 0;
  GENGetStatus(code, val1, val2, size, text, length);
  return std::to_string(code) + " " + std::to_string(val1) + " " + std::to_string(val2) + " " +
         text + "/" + std::to_string(length);
}

std::string expanded(const char* format, unsigned int size = 100) {
  char buffer[100] = "old";
  GENExpandValues(format, -1, 255, size, buffer);
  return buffer;
}

}  // namespace

// The allocation that an assertion makes, so that it can be made to fail.
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  try {
    return memoryIsOut ? nullptr : ::operator new(size);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

namespace {

TEST(StatusText, CodesWithoutATextReadAsTheirNumber) {
  EXPECT_EQ(statusText(1), "Null pointer");
  EXPECT_EQ(statusText(20), "Number out of desired range in GENAddToInt");
  EXPECT_EQ(statusText(6), "Message code 00006");
  EXPECT_EQ(statusText(21), "Message code 00021");
}

TEST(StatusText, BuffersThatWouldCutTheTextAreRefused) {
  char buffer[20];
  const auto textIn = [&](unsigned int size, unsigned int code) {
    return GENCatch([&] { GENStatusText(code, size, buffer); }).value_or(buffer);
  };
  const std::string refused = "!!Assert: Index out of range in GENWNT at 632";
  EXPECT_EQ(textIn(18, 11970), refused);
  EXPECT_EQ(textIn(19, 11970), "Message code 11970");
  EXPECT_EQ(textIn(19, 100000), refused);
  EXPECT_EQ(textIn(20, 100000), "Message code 100000");
}

TEST(StatusString, KnowsNoBuiltInTexts) {
  SCL_String text("old");
  GENStatusString(4, text);
  EXPECT_EQ(text.view(), "Unknown error code (4)");
}

TEST(Assert, ThrowsTheLineAsAnOwnedException) {
  EXPECT_EQ(GENCatch([] { GENAssert(4, "DVDATE", 256); }),
            "!!Assert: Value out of range in DVDATE at 256");
  try {
    GENAssertText(std::string(3000, 'x').c_str(), "krxmsg", 788);
    FAIL() << "an assertion returned";
  } catch (scl_exception_base* thrown) {
    EXPECT_TRUE(thrown->isAutoDelete());
    EXPECT_EQ(std::strlen(thrown->message()), 1023U);
    thrown->release();
  }
}

TEST(Assert, WithoutMemoryTheStaticExceptionIsThrown) {
  for (int i = 0; i < 2; ++i) {  // releasing it must not destroy it
    memoryIsOut = true;
    const auto failure = GENCatch([] { GENAssert(1, "krxmsg", 788); });
    memoryIsOut = false;
    EXPECT_EQ(failure, "Exception thrown by GENAssertText ()");
  }
}

std::string reported;

TEST(Assert, IsReportedFirstAndAReporterThatFailsDoesNoHarm) {
  reported.clear();
  const auto before = GENSetAssertionReporter([](int severity, const char* line) {
    reported += std::to_string(severity) + line;
    GENAssert(2, "reporter", 1);
  });
  const auto failure = GENCatch([] { GENAssert(1, "krxmsg", 788); });
  GENSetAssertionReporter(before);
  EXPECT_EQ(failure, "!!Assert: Null pointer in krxmsg at 788");
  EXPECT_EQ(reported, "1!!Assert: Null pointer in krxmsg at 788");
}

TEST(LastStatus, KeepsAHundredCharacters) {
  GENSetStatus(11970, -1, 2, std::string(150, 'x').c_str());
  EXPECT_EQ(record(), "11970 -1 2 " + std::string(100, 'x') + "/100");
  EXPECT_EQ(record(4), "11970 -1 2 xxx/100");
  GENSetStatus(4, 5, 6);
  EXPECT_EQ(record(), "4 5 6 /0");
}

TEST(LastStatus, AssertsWithTheTextOfItsCode) {
  GENSetStatus(17, 1, 2, "%s%n");
  EXPECT_EQ(failureOf([] { GENAssertStatus("GMAPO", 9); }), "Non-specific internal error in GMAPO");
  GENSetStatus(0, 0, 0);
  EXPECT_EQ(failureOf([] { GENAssertStatus("GMAPO", 9); }), "none");
}

TEST(ExpandValues, FillsTwoNumbersAndCopiesTheRest) {
  EXPECT_EQ(expanded("a %d b %lX%% %d"), "a -1 b FF% %d");
  EXPECT_EQ(expanded("%hu %x"), "4294967295 ff");
  EXPECT_EQ(expanded("%s %n %5d %l %"), "%s %n %5d %l %");
  EXPECT_EQ(expanded("%i%i", 4), "-12");
  EXPECT_EQ(expanded("%i", 0), "old");
}

TEST(Catch, TurnsWhateverIsThrownIntoAText) {
  EXPECT_EQ(GENCatch([] {}), std::nullopt);
  EXPECT_EQ(GENCatch([] { throw std::bad_alloc(); }), "Out of memory");
  EXPECT_EQ(GENCatch([] { throw std::runtime_error("broken"); }), "broken");
  EXPECT_EQ(GENCatch([] { throw 1; }), "Unknown exception");
  EXPECT_EQ(GENCatch([] { throw new scl_exception_base; }), "Generic exception");
}

TEST(Make, TurnsMissingMemoryIntoTheOwnersAssertion) {
  struct Greedy {
    Greedy() { throw std::bad_alloc(); }
  };
  EXPECT_EQ(failureOf([] { GENMake<Greedy>("ATRATLST", 1); }), "Null pointer in ATRATLST");
}

}  // namespace
