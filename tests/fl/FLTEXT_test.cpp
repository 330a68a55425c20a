// Tests of text files.
#include "fl/FLTEXT.h"

#include "fl/Folder.h"
#include "fl/FullDisk.h"
#include "gmock/gmock.h"
#include "scl/Failure.h"

namespace {

// Every line as "<line number>:<text>" and a bar, then the last result.
std::string linesOf(const std::string& text, unsigned int size = 256) {
  const Folder folder;
  FL_TextFile file;
  EXPECT_EQ(file.openForInput(folder.write("a.txt", text).c_str(), FL_TextFile::READ), 0);
  std::vector<char> buffer(size);
  std::string lines;
  int result = file.readLine(size, buffer.data());
  for (; result == 0; result = file.readLine(size, buffer.data())) {
    lines += std::to_string(file.lineNumber()) + ":" + buffer.data() + "|";
  }
  return lines + std::to_string(result);
}

TEST(ReadTextLine, EndsAtEitherLineEndOrWhereTheBufferDoes) {
  EXPECT_EQ(linesOf("a\nb\rc\r\n\nlast"), "1:a|2:b|3:c|4:|4:|5:last|1");
  EXPECT_EQ(linesOf("\n\n") + " " + linesOf(""), "1:|2:|1 1");
  EXPECT_EQ(linesOf("abcdefg\nh", 4), "1:abc|1:def|1:g|2:h|1");
  EXPECT_EQ(linesOf("abc\nh", 4), "1:abc|1:|2:h|1");
  EXPECT_EQ(linesOf(std::string("a\0b\nc", 5)), "1:a|2:c|1");
  const std::string block(16383, 'x');  // one less than is read ahead
  EXPECT_EQ(linesOf(block + "\r\ny", 20000), "1:" + block + "|2:|2:y|1");
  EXPECT_EQ(linesOf("ab" + block + "\ny", 20000), "1:ab" + block + "|2:y|1");
}

TEST(TextFile, ModesTruncateAppendAndUpdate) {
  const Folder folder;
  const std::string path = folder.write("a.txt", "one\ntwo\n");
  FL_TextFile file;
  EXPECT_EQ(file.openForInput(folder.path("b.txt").c_str(), 1), -1);
  EXPECT_EQ(file.openForOutput(folder.path("a*.txt").c_str(), 4), -1);
  EXPECT_EQ(file.createNew(path.c_str()), -1);
  ASSERT_EQ(file.openForOutput(path.c_str(), FL_TextFile::APPEND), 0);
  EXPECT_EQ(file.writeLine("three") + file.writeFormatted("%s-%d", "four", 4) + file.close(), 0);
  char line[10];
  ASSERT_EQ(file.openForInput(folder.path("a.TXT").c_str(), 2), 0);
  EXPECT_EQ(file.readLine(sizeof line, line), 0);
  EXPECT_EQ(file.writeLine("TWO") + file.readLine(sizeof line, line), 0);
  EXPECT_STREQ(line, "three");
  EXPECT_EQ(file.close(), 0);
  EXPECT_EQ(folder.read("a.txt"), "one\nTWO\nthree\nfour-4\n");

  ASSERT_EQ(file.openForOutput(path.c_str(), FL_TextFile::WRITE), 0);
  EXPECT_EQ(file.writeLine(std::string(40000, 'y').c_str()) + file.commit() + file.close(), 0);
  EXPECT_EQ(folder.read("a.txt"), std::string(40000, 'y') + "\n");
}

TEST(TextFile, AFullDiskIsToldAtTheLatestByClose) {
  const Folder folder;
  FL_TextFile file;
  ASSERT_EQ(file.openForOutput(folder.path("a.txt").c_str(), 4), 0);
  const FullDisk full(0);
  EXPECT_EQ(file.writeLine("x"), 0);
  EXPECT_EQ(file.commit(), -1);
  EXPECT_EQ(file.commit(), -1) << "what was lost once stays lost";
  EXPECT_EQ(file.close(), -1);
}

TEST(TextFile, MisuseIsAnAssertion) {
  const Folder folder;
  FL_TextFile file;
  char line[2];
  for (const unsigned int mode : {0U, 12U, 48U}) {
    EXPECT_EQ(failureOf([&] { file.openForOutput("x", mode); }), "Bad value in switch in FLTEXT");
  }
  EXPECT_EQ(failureOf([&] { file.readLine(0, line); }), "Index out of range in FLTEXT");
  ASSERT_EQ(file.openForOutput(folder.path("a.txt").c_str(), 4), 0);
  EXPECT_EQ(file.writeFormatted("%0255d", 1), 0);
  EXPECT_EQ(failureOf([&] { file.writeFormatted("%0256d", 1); }), "Index out of range in FLTEXT");
}

}  // namespace
