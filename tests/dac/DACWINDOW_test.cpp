// Reading content that lies ready in memory gives what reading it byte by byte gives, however much
// of it lies ready at a time and whatever kind of stream holds it.
#include <random>

#include "dac/Content.h"
#include "dac/DACFILDA.h"
#include "dac/DACSTRNG.h"
#include "dac/DACSubDa.h"
#include "gen/GENCODES.h"
#include "gmock/gmock.h"

namespace {

std::string randomContent(std::mt19937& random) {
  static constexpr std::string_view ALPHABETS[] = {"ab \r\n", "abcdefgh\r", {"a\0\n", 3}, "\r\n"};
  const std::string_view alphabet = ALPHABETS[random() % 4];
  std::string bytes(random() % 40, ' ');
  for (char& byte : bytes) {
    byte = alphabet[random() % alphabet.size()];
  }
  return bytes;
}

// "text/status@position" of every call of `read`, from the start until the status tells the end.
template <class Read>
std::string all(DAC_BaseDataAccess& object, Read&& read) {
  std::string log;
  unsigned int status = 0;
  object.setPosition(0, status);
  for (int i = 0; status == 0 && i < 100; ++i) {
    SCL_String out("before");
    read(object, out, status);
    (log += out.view()) +=
        "/" + std::to_string(status) + "@" + std::to_string(object.getPosition()) + " ";
  }
  return log;
}

// With "~" behind a line that was cut.
std::string limitedLines(DAC_BaseDataAccess& object, std::int32_t maximum) {
  return all(object, [=](DAC_BaseDataAccess& from, SCL_String& out, unsigned int& status) {
    bool cut = false;
    dac::readStringLineLimited(from, maximum, out, cut, status);
    out += cut ? "~" : "";
  });
}

std::string matches(DAC_BaseDataAccess& object, std::string_view bytes, std::int32_t position) {
  unsigned int status = 0;
  const auto count = static_cast<std::int32_t>(bytes.size());
  const bool isMatch = object.matchesAt(position, count, bytes.data(), status);
  return (isMatch ? "yes" : "no") + std::to_string(position) + "/" + std::to_string(status) + " ";
}

// Everything that reads, as one text.
std::string reading(DAC_BaseDataAccess& object) {
  std::string log;
  unsigned int status = 0;
  for (const std::int32_t size : {1, 2, 3, 5, 300}) {
    object.setPosition(0, status);
    log += linesOf(object, size);
  }
  log += all(object, dac::readWord) + all(object, dac::readStringLine);
  for (const std::int32_t maximum : {0, 1, 2, 3, 7, 3000}) {
    log += limitedLines(object, maximum);
  }
  log += std::to_string(object.lineCount()) + " ";
  for (const std::string_view bytes : {"a", "a\r", "\r\n", ""}) {
    for (std::int32_t start = -1; start < 5; ++start) {
      log += matches(object, bytes, start);
    }
  }
  MemoryAccess copy("0");
  object.copyTo(&copy, 1, status);
  return log + contentOf(copy) + "/" + std::to_string(status);
}

class Window : public DirectoryTest {};

TEST_F(Window, NeitherHowMuchLiesReadyNorTheKindIsSeen) {
  std::mt19937 random(1);
  for (int i = 0; i < 150; ++i) {
    const std::string bytes = randomContent(random);
    for (const bool defaultLines : {false, true}) {
      StreamAccess plain(new PartlyReadyStream(0, defaultLines), bytes);
      const std::string expected = reading(plain);
      for (const std::size_t block : {1U, 2U, 3U, 8U, 100U}) {
        StreamAccess object(new PartlyReadyStream(block, defaultLines), bytes);
        ASSERT_EQ(reading(object), expected) << testing::PrintToString(bytes) << block;
      }
    }
    StreamAccess plain(new PartlyReadyStream(0), bytes);
    const std::string expected = reading(plain);
    MemoryAccess base("<<" + bytes + "\n>");
    DAC_SubRangeDataAccess range(base, 2, static_cast<std::int32_t>(bytes.size()));
    ASSERT_EQ(reading(range), expected) << testing::PrintToString(bytes);
    unsigned int status = 0;
    DAC_FileDataAccess file(makeFile("f", bytes).c_str(), 0, status);
    ASSERT_EQ(reading(file), expected) << testing::PrintToString(bytes);
  }
}

TEST(StringLines, LastWordAndLineMustBeEnded) {
  MemoryAccess object(" one\ttwo");
  EXPECT_EQ(all(object, dac::readWord), "one/0@4 /10016@8 ");
  MemoryAccess lines("a\n\rb\r\nc\rd");
  EXPECT_EQ(all(lines, dac::readStringLine), "a/0@2 /0@3 b/0@6 c/0@8 /10016@9 ");
  MemoryAccess carriageReturn("a\r");
  EXPECT_EQ(all(carriageReturn, dac::readStringLine), "a/0@2 /10016@2 ");
}

TEST(StringLines, LineOfExactlyTheLimitIsWhole) {
  for (const bool defaultLines : {false, true}) {
    StreamAccess object(new PartlyReadyStream(0, defaultLines), "abc\r\n\r\nabcd");
    EXPECT_EQ(limitedLines(object, 3), "abc/0@5 before/0@7 abc~/0@10 d/0@11 before/10016@11 ");
  }
}

}  // namespace
