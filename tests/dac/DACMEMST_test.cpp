// Streams in memory, whole and in ranges.
#include "dac/DACMEMST.h"

#include "dac/Content.h"
#include "dac/DACSubDa.h"
#include "dac/DACSubSt.h"
#include "gen/GENCODES.h"

namespace {

std::int32_t capacityFor(std::int32_t size) {
  DAC_MemoryStream stream;
  unsigned int status = 0;
  stream.setSize(size, status);
  EXPECT_EQ(status, 0U);
  return stream.capacity();
}

TEST(MemoryStream, GrowsToPowersOfTwoWithABoundedSurplus) {
  EXPECT_EQ(capacityFor(0), 0);
  EXPECT_EQ(capacityFor(1), 1);
  EXPECT_EQ(capacityFor(5), 8);
  EXPECT_EQ(capacityFor(256), 256);
  EXPECT_EQ(capacityFor(16777216 - 5000000), 16777216);
  EXPECT_EQ(capacityFor(20000000), 30000000);
}

TEST(MemoryStream, PutCharAtTheCapacityGrows) {
  MemoryAccess object("abcd");
  std::int32_t position = 4;
  unsigned int status = 0;
  object.putCharAt(position, 'e', status);
  EXPECT_EQ(contentOf(object), "abcde");
  EXPECT_EQ(static_cast<DAC_MemoryStream*>(object.stream())->capacity(), 8);
}

TEST(MemoryStream, SkippedAndRegainedBytesAreZero) {
  MemoryAccess object("secret");
  unsigned int status = 0;
  object.setSize(1, status);
  object.setSize(3, status);
  object.setPosition(5, status);
  object.putChar('x', status);
  EXPECT_EQ(contentOf(object), std::string("s\0\0\0\0x", 6));
}

TEST(MemoryStream, TakesItsOwnBytesWhileItMoves) {
  MemoryAccess object("0123456789");
  unsigned int status = 0;
  std::int32_t position = 1;
  object.writeAt(position, 9, object.window(0).data(), status);
  EXPECT_EQ(contentOf(object), "0012345678");
  object.setSize(256, status);  // the buffer is full, so that the next write moves it
  object.seek(DAC_BaseDataAccess::FROM_END, 0, status);
  object.write(256, object.window(0).data(), status);
  EXPECT_EQ(contentOf(object).substr(256, 10), "0012345678");
}

TEST(MemoryStream, RefusesPlacesThatDoNotExist) {
  MemoryAccess object("ab");
  char buffer[] = "##";
  const auto at = [&](std::int32_t position, auto operation) {
    unsigned int status = 0;
    operation(position, status);
    return std::to_string(status) + "@" + std::to_string(position);
  };
  const auto read = [&](auto& p, auto& s) { object.readAt(p, 2, buffer, s); };
  const auto write = [&](auto& p, auto& s) { object.writeAt(p, 2, "xy", s); };
  const auto getChar = [&](auto& p, auto& s) { object.getCharAt(p, s); };
  const auto putChar = [&](auto& p, auto& s) { object.putCharAt(p, 'x', s); };
  EXPECT_EQ(at(-1, read) + at(2, read), "10017@-110016@2");
  EXPECT_EQ(buffer[0], '\0');
  EXPECT_EQ(at(-1, getChar) + at(2, getChar), "10017@-110016@2");
  EXPECT_EQ(at(-1, write) + at(-1, putChar), "10017@-110017@-1");
  EXPECT_EQ(at(2147483647, write) + at(2147483647, putChar), "10011@214748364710011@2147483647");
  unsigned int status = 0;
  object.setSize(-1, status);
  EXPECT_EQ(status, DAC_NEGATIVE_POSITION);
  EXPECT_EQ(contentOf(object), "ab");
}

TEST(MemoryStreamDeathTest, ContentIsBoundedByTheEnvironment) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";  // the bound is read once
  EXPECT_EXIT(
      {
        setenv("KRX_MAX_CONTENT", "1000", 1);
        DAC_MemoryStream stream;
        unsigned int status = 0;
        std::int32_t position = 0;
        stream.fill(position, 1000, 'x', status);
        stream.putChar(position, 'x', status);
        std::exit(status == DAC_NO_MEMORY && position == 1000 ? 0 : 1);
      },
      testing::ExitedWithCode(0), "");
}

TEST(MemoryLines, UnterminatedLastLineIsTooLong) {
  MemoryAccess object("ab\r\ncd");
  EXPECT_EQ(linesOf(object, 10), "ab/0@4 cd/10014@6 /10016@6 ");
}

TEST(MemoryLines, OnlyDifferentLineEndBytesPair) {
  const auto lines = [](std::string_view bytes) {
    MemoryAccess object(bytes);
    return linesOf(object, 10);
  };
  EXPECT_EQ(lines("a\n\nb\n"), "a/0@2 /0@3 b/0@5 /10016@5 ");
  EXPECT_EQ(lines("a\r\nb\r"), "a/0@3 b/0@5 /10016@5 ");
  EXPECT_EQ(lines("a\n\rb\n"), "a/0@3 b/0@5 /10016@5 ");
  EXPECT_EQ(lines("a\r\rb\n"), "a/0@2 /0@3 b/0@5 /10016@5 ");
}

TEST(MemoryLines, LongLineComesInPieces) {
  MemoryAccess object("abcd\r\ne");
  EXPECT_EQ(linesOf(object, 3), "ab/10014@2 cd/0@6 e/10014@7 /10016@7 ");
}

TEST(DefaultLines, LineThatFillsTheBufferLeavesItsEnd) {
  StreamAccess object(new PartlyReadyStream(0, true), "abcd\r\ne");
  EXPECT_EQ(linesOf(object, 3), "ab/10014@2 cd/10014@4 /0@6 e/0@7 /10016@7 ");
  StreamAccess lastEmpty(new PartlyReadyStream(0, true), "a\n\r\r");
  EXPECT_EQ(linesOf(lastEmpty, 9), "a/0@3 /0@4 /10016@4 ");
}

TEST(Lines, BufferWithoutRoomIsLeftAlone) {
  for (const bool defaultLines : {false, true}) {
    StreamAccess object(new PartlyReadyStream(0, defaultLines), "ab");
    unsigned int status = 0;
    EXPECT_EQ(object.readLine(0, nullptr, status), 0);
    EXPECT_EQ(status, DAC_LINE_TOO_LONG);
  }
}

TEST(SubRange, EndsWhereItsBaseEnds) {
  MemoryAccess base("0123456789AB");
  DAC_SubRangeDataAccess range(base, 10, 5);
  unsigned int status = 0;
  char buffer[5];
  EXPECT_EQ(range.size(status), 2);
  EXPECT_EQ(range.read(5, buffer, status), 2);
  EXPECT_EQ(range.read(5, buffer, status), 0);
  EXPECT_EQ(status, DAC_END);
  status = 0;
  base.setSize(3, status);
  EXPECT_EQ(range.size(status), 0);
}

TEST(SubRange, IsNeverWritten) {
  MemoryAccess base("0123");
  DAC_SubRangeDataAccess range(base, -1, 2147483647);
  EXPECT_EQ(contentOf(range), "0123");
  const auto refused = [&](auto operation) {
    unsigned int status = 0;
    operation(status);
    return status;
  };
  EXPECT_EQ(refused([&](auto& s) { range.setSize(0, s); }), DAC_READ_ONLY);
  EXPECT_EQ(refused([&](auto& s) { range.writeLine(1, "x", s); }), DAC_READ_ONLY);
  EXPECT_EQ(refused([&](auto& s) { range.fill(1, 'x', s); }), DAC_READ_ONLY);
  EXPECT_EQ(refused([&](auto& s) { range.putChar('x', s); }), DAC_READ_ONLY);
  EXPECT_EQ(refused([&](auto& s) { range.flush(s); }), 0U);
  EXPECT_EQ(contentOf(base), "0123");
}

TEST(SubRange, KeepsItsBaseAlive) {
  auto base = std::make_unique<MemoryAccess>("0123");
  DAC_SubRangeDataAccess range(*base, 1, 2);
  DAC_SubRangeDataAccess inner(range, 1, 2147483647);
  base.reset();
  EXPECT_EQ(contentOf(range) + contentOf(inner), "122");
  EXPECT_EQ(range.stream()->references(), 2);
}

}  // namespace
