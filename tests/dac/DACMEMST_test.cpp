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
  EXPECT_EQ(capacityFor(5), 8);
  EXPECT_EQ(capacityFor(16777216 - 5000000), 16777216);
  EXPECT_EQ(capacityFor(20000000), 30000000);
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

TEST(MemoryStream, LargeContentStaysWhereverItsMemoryComesFrom) {
  MemoryAccess object(std::string(5000, 'a'));
  unsigned int status = 0;
  std::string expected(5000, 'a');
  for (const std::int32_t size : {3000000, 20000000, 19000000, 90000000}) {
    object.setSize(size, status);  // what is regained is zero
    expected.resize(static_cast<std::size_t>(size));
    object.seek(DAC_BaseDataAccess::FROM_END, 0, status);
    object.write(5, "bytes", status);
    expected += "bytes";
    ASSERT_TRUE(contentOf(object) == expected) << size;
  }
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
  const auto nothing = [&](auto& p, auto& s) {
    object.readAt(p, 0, nullptr, s);
    object.readAt(p, -1, buffer, s);
    object.writeAt(p, -1, "x", s);
    object.fill(-1, 'x', s);
  };
  EXPECT_EQ(at(-1, read) + at(2, read), "10017@-110016@2");
  EXPECT_EQ(buffer[0], '\0');
  EXPECT_EQ(at(-1, getChar) + at(2, getChar), "10017@-110016@2");
  EXPECT_EQ(at(-1, write) + at(-1, putChar), "10017@-110017@-1");
  EXPECT_EQ(at(1, nothing), "0@1");
  EXPECT_EQ(at(2147483647, write) + at(2147483647, putChar), "10011@214748364710011@2147483647");
  unsigned int status = 0;
  object.setSize(-1, status);
  EXPECT_EQ(status, DAC_NEGATIVE_POSITION);
  EXPECT_EQ(contentOf(object), "ab");
}

// Runs in a child: the bound is read once.
[[noreturn]] void fillUnder(const char* bound, std::int32_t count) {
  setenv("KRX_MAX_CONTENT", bound, 1);
  DAC_MemoryStream stream;
  unsigned int status = 0;
  std::int32_t position = 0;
  stream.fill(position, count, 'x', status);
  std::fprintf(stderr, "%u@%d", status, position);
  std::exit(0);
}

TEST(MemoryStreamDeathTest, ContentIsBoundedByTheEnvironment) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  EXPECT_EXIT(fillUnder("1000", 1000), testing::ExitedWithCode(0), "^0@1000");
  EXPECT_EXIT(fillUnder("1000", 1001), testing::ExitedWithCode(0), "^10011@0");
  EXPECT_EXIT(fillUnder("1G", 1000), testing::ExitedWithCode(0), "^0@1000");
}

std::string lines(std::string_view bytes, bool defaultLines, std::int32_t size = 10) {
  StreamAccess object(new PartlyReadyStream(0, defaultLines), bytes);
  return linesOf(object, size);
}

TEST(Lines, EndWithOneByteOrTwoDifferentOnes) {
  for (const bool defaultLines : {false, true}) {
    EXPECT_EQ(lines("a\n\nb\n", defaultLines), "a/0@2 /0@3 b/0@5 /10016@5 ");
    EXPECT_EQ(lines("a\r\nb\r", defaultLines), "a/0@3 b/0@5 /10016@5 ");
    EXPECT_EQ(lines("a\n\rb\n", defaultLines), "a/0@3 b/0@5 /10016@5 ");
    EXPECT_EQ(lines("a\r\r\n", defaultLines), "a/0@2 /0@4 /10016@4 ");
  }
  // The readers differ where a line has no end or no room.
  EXPECT_EQ(lines("ab\r\ncd", false), "ab/0@4 cd/10014@6 /10016@6 ");
  EXPECT_EQ(lines("abcd\r\ne", false, 3), "ab/10014@2 cd/0@6 e/10014@7 /10016@7 ");
  EXPECT_EQ(lines("abcd\r\ne", true, 3), "ab/10014@2 cd/10014@4 /0@6 e/0@7 /10016@7 ");
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
  EXPECT_EQ(std::exchange(status, 0), DAC_END);
  EXPECT_EQ(DAC_SubRangeDataAccess(base, 2, 3).read(5, buffer, status), 3);
  EXPECT_EQ(DAC_SubRangeDataAccess(base, 2, -1).size(status), 0);
  status = DAC_END;
  EXPECT_EQ(range.stream()->size(status), 0) << "only memory tells it in spite of a status";
  status = 0;
  base.setSize(3, status);
  EXPECT_EQ(range.size(status), 0);
}

TEST(SubRange, IsNeverWritten) {
  MemoryAccess base("0123");
  DAC_SubRangeDataAccess range(base, -1, 2147483647);
  EXPECT_EQ(contentOf(range), "0123");
  unsigned int status[5] = {};
  range.setSize(0, status[0]);
  range.writeLine(1, "x", status[1]);
  range.fill(1, 'x', status[2]);
  range.putChar('x', status[3]);
  range.flush(status[4]);
  EXPECT_THAT(status, testing::ElementsAre(10038U, 10038U, 10038U, 10038U, 0U));
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
