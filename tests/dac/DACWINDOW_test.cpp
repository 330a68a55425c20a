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

void add(std::string& log, std::string_view text, DAC_BaseDataAccess& object, unsigned int status) {
  (log += text) += "/" + std::to_string(status) + "@" + std::to_string(object.getPosition()) + " ";
}

// Calls `read` from the start until the status tells the end.
template <class Read>
void readAll(std::string& log, DAC_BaseDataAccess& object, Read&& read) {
  unsigned int status = 0;
  object.setPosition(0, status);
  for (int i = 0; status == 0 && i < 100; ++i) {
    SCL_String out("before");
    read(out, status);
    add(log, out.view(), object, status);
  }
}

// Everything that reads, as one text.
std::string reading(DAC_BaseDataAccess& object) {
  std::string log;
  for (const std::int32_t size : {1, 2, 3, 5, 300}) {
    unsigned int status = 0;
    object.setPosition(0, status);
    log += linesOf(object, size);
  }
  readAll(log, object, [&](auto& out, auto& status) { dac::readWord(object, out, status); });
  readAll(log, object, [&](auto& out, auto& status) { dac::readStringLine(object, out, status); });
  for (const std::int32_t maximum : {0, 1, 2, 3, 7, 3000}) {
    readAll(log, object, [&](auto& out, auto& status) {
      bool cut = false;
      dac::readStringLineLimited(object, maximum, out, cut, status);
      log += cut ? "cut " : "";
    });
  }
  log += std::to_string(object.lineCount()) + " ";
  for (const std::string_view bytes : {"a", "a\r", "\r\n", ""}) {
    for (std::int32_t start = -1; start < 5; ++start) {
      unsigned int status = 0;
      std::int32_t position = start;
      log +=
          object.matchesAt(position, static_cast<std::int32_t>(bytes.size()), bytes.data(), status)
              ? "yes"
              : "no";
      log += std::to_string(position) + "/" + std::to_string(status) + " ";
    }
  }
  MemoryAccess copy("0");
  unsigned int status = 0;
  object.copyTo(&copy, 1, status);
  return log + contentOf(copy) + "/" + std::to_string(status);
}

TEST(Window, HowMuchLiesReadyIsNotSeen) {
  std::mt19937 random(1);
  for (int i = 0; i < 300; ++i) {
    const std::string bytes = randomContent(random);
    for (const bool defaultLines : {false, true}) {
      StreamAccess plain(new PartlyReadyStream(0, defaultLines), bytes);
      const std::string expected = reading(plain);
      for (const std::size_t ready : {1U, 2U, 3U, 100U}) {
        StreamAccess object(new PartlyReadyStream(ready, defaultLines), bytes);
        ASSERT_EQ(reading(object), expected) << testing::PrintToString(bytes) << ready;
      }
    }
  }
}

class WindowFileTest : public DirectoryTest {};

TEST_F(WindowFileTest, FilesAndRangesReadAlike) {
  std::mt19937 random(2);
  for (int i = 0; i < 60; ++i) {
    const std::string bytes = randomContent(random);
    StreamAccess plain(new PartlyReadyStream(0, true), bytes);
    const std::string expected = reading(plain);
    MemoryAccess base("<<" + bytes + "\n>");
    DAC_SubRangeDataAccess range(base, 2, static_cast<std::int32_t>(bytes.size()));
    ASSERT_EQ(reading(range), expected) << testing::PrintToString(bytes);
    unsigned int status = 0;
    DAC_FileDataAccess file(makeFile("f", bytes).c_str(), 0, status);
    ASSERT_EQ(reading(file), expected) << testing::PrintToString(bytes);
  }
}

TEST_F(WindowFileTest, LinesGoOnAcrossTheFilesWindow) {
  std::string bytes;
  while (bytes.size() < 200000) {
    bytes += std::string(bytes.size() % 83, 'x') + (bytes.size() % 3 == 0 ? "\n" : "\r\n");
  }
  StreamAccess plain(new PartlyReadyStream(0, true), bytes);
  unsigned int status = 0;
  DAC_FileDataAccess file(makeFile("f", bytes).c_str(), 0, status);
  EXPECT_EQ(file.lineCount(), plain.lineCount());
  std::string lines[2];
  readAll(lines[0], plain, [&](auto& out, auto& s) { dac::readStringLine(plain, out, s); });
  readAll(lines[1], file, [&](auto& out, auto& s) { dac::readStringLine(file, out, s); });
  EXPECT_EQ(lines[0], lines[1]);
}

TEST(StringLines, LastWordAndLineMustBeEnded) {
  MemoryAccess object(" one\ttwo");
  std::string log;
  readAll(log, object, [&](auto& out, auto& status) { dac::readWord(object, out, status); });
  EXPECT_EQ(log, "one/0@4 /10016@8 ");
  MemoryAccess lines("a\n\rb\r\nc\rd");
  log.clear();
  readAll(log, lines, [&](auto& out, auto& status) { dac::readStringLine(lines, out, status); });
  EXPECT_EQ(log, "a/0@2 /0@3 b/0@6 c/0@8 /10016@9 ");
  MemoryAccess carriageReturn("a\r");
  log.clear();
  readAll(log, carriageReturn,
          [&](auto& out, auto& status) { dac::readStringLine(carriageReturn, out, status); });
  EXPECT_EQ(log, "a/0@2 /10016@2 ");
}

TEST(StringLines, LineOfExactlyTheLimitIsWhole) {
  const std::string line(1087, 'x');
  for (const bool defaultLines : {false, true}) {
    StreamAccess object(new PartlyReadyStream(0, defaultLines), line + "\r\n\r\n" + line + "y");
    SCL_String out;
    bool cut = false;
    unsigned int status = 0;
    EXPECT_EQ(dac::readStringLineLimited(object, 1087, out, cut, status), 1087);
    EXPECT_FALSE(cut);
    EXPECT_EQ(dac::readStringLineLimited(object, 1087, out, cut, status), 0);
    EXPECT_EQ(out.view(), line) << "an empty line leaves the text";
    EXPECT_EQ(dac::readStringLineLimited(object, 1087, out, cut, status), 1087);
    EXPECT_TRUE(cut);
    EXPECT_EQ(dac::readStringLineLimited(object, 1087, out, cut, status), 1);
    EXPECT_FALSE(cut);
    EXPECT_EQ(status, 0U);
    dac::readStringLineLimited(object, 1087, out, status);
    EXPECT_EQ(status, DAC_END);
  }
}

}  // namespace
