// Tests of the views of messages and multiparts.
#include <gtest/gtest.h>

#include "atr/ATRATLST.h"
#include "rfc/RFCMptDa.h"
#include "rfc/RFCMsgDa.h"
#include "rfc/Support.h"

using namespace rfctest;

namespace {

// "[content]" of every child, with "!" where AttachmentSize is not its length.
std::string childrenOf(DAC_BaseDataAccess& view) {
  unsigned int status = 0;
  std::string text;
  for (std::uint32_t i = 0; i < view.childCount(status); ++i) {
    DAC_BaseDataAccess& child = *view.getChild(i, status);
    std::uint32_t size = 0;
    child.getIntegerAttribute("AttachmentSize", size, status);
    const std::string content = contentOf(child);
    text += (size == content.size() ? "[" : "![") + content + "]";
    EXPECT_EQ(child.parent(), &view);
  }
  EXPECT_EQ(status, 0U);
  return text;
}

std::string partsOf(std::string_view text, const char* boundary = "simple", std::int32_t start = 0,
                    std::int32_t limit = RFC_View::NO_LIMIT) {
  const auto parts = [=](const Object& source) {
    RFCMptDa view(*source, boundary, start, limit);
    return childrenOf(view);
  };
  EXPECT_EQ(parts(inBlocks(text, 0)), parts(inMemory(text)));
  EXPECT_EQ(parts(inBlocks(text, 5)), parts(inMemory(text)));
  return parts(inMemory(text));
}

// "-" no boundary line, "1" a separating one, "2" the closing one.
std::string match(const char* boundary, std::initializer_list<const char*> lines) {
  const RFC_BoundaryMatcher matcher(boundary);
  std::string kinds;
  for (const char* line : lines) {
    kinds += "-12"[static_cast<int>(matcher.match(line))];
  }
  return kinds;
}

TEST(BoundaryMatcher, ForgivesBlanksAndNothingElse) {
  EXPECT_EQ(match("simple", {"--simple", "--  simple  ", "--simple--", "-- simple --",
                             "--simple--  ", "--simple -- "}),
            "11222-");
  EXPECT_EQ(match("simple", {"", "--", "-simple", "--simpleX", "--simpleXY", "--simpl", "--Simple",
                             " --simple", "--simple\t", "--simple-"}),
            "----------");
}

TEST(BoundaryMatcher, BlanksAndHyphensOfTheBoundaryAreItsOwn) {
  EXPECT_EQ(match("a ", {"--a ", "--a", "--a  ", "-- a ", "--a --", "--a--"}), "1---2-");
  EXPECT_EQ(match("a--", {"--a--", "--a----", "--a --", "--a"}), "121-");
}

TEST(Multipart, PartsEndBeforeTheLineBreakOfTheBoundary) {
  EXPECT_EQ(partsOf("--simple\r\npart one\r\n--simple\r\npart two\r\n--simple--\r\n"),
            "[part one][part two]");
  EXPECT_EQ(partsOf("--simple\na\n\n--simple\n\nb\r\n\r\n--simple--"), "[a][\nb\r\n]");
  EXPECT_EQ(partsOf("--simple\n--simple\n\n--simple--"), "[][\n]");
  EXPECT_EQ(partsOf("--simple\na\n.\n--simple\nb\n--simple--"), "[a\n.][b]");
}

TEST(Multipart, PreambleAndEpilogueBelongToNoPart) {
  EXPECT_EQ(partsOf("pre\n--simple\na\n--simple--\nepi\n--simple\nb\n--simple--\n"), "[a]");
  EXPECT_EQ(partsOf("pre\n--simple--\n--simple\na\n"), "");
  // Without a closing boundary line the last part runs to the end.
  EXPECT_EQ(partsOf("--simple\na\n--simple\nb\n") + partsOf("--simple\na"), "[a][b\n][a]");
  EXPECT_EQ(partsOf("--simple\n") + partsOf("--simple"), "[][]");
}

TEST(Multipart, PiecesOfLongLinesAreNoBoundaries) {
  const std::string line = std::string(511, 'x') + "--simple";
  EXPECT_EQ(partsOf("--simple\n" + line + "\n--simple--"), "[" + line + "]");
  const std::string padded = "--simple" + std::string(504, ' ');
  EXPECT_EQ(partsOf(padded + "\na\n--simple--"), "");
  EXPECT_EQ(partsOf(padded.substr(0, 511) + "\na\n--simple--"), "[a]");
}

TEST(Multipart, TheRangeBoundsWhereAPartMayBegin) {
  const char* text = "--simple\na\n--simple\nb\n--simple--\n";
  EXPECT_EQ(partsOf(text, "simple", 9), "[b]");
  EXPECT_EQ(partsOf(text, "simple", 0, 20), "[a]");
  EXPECT_EQ(partsOf(text, "simple", 0, 21), "[a][b]");
}

TEST(Multipart, ManyPartsStopWhenTheListIsFull) {
  takeLog();
  RFCMptDa view(*inMemory(repeated("--b\n", 65540)), "b");
  unsigned int status = 0;
  EXPECT_EQ(view.childCount(status), 65535U);
  EXPECT_EQ(takeLog(), "11:1 Too many parts, the rest is left out.\n");
}

TEST(Message, ItsChildIsTheRange) {
  const auto child = [](std::int32_t start, std::int32_t limit) {
    RFCMsgDa view(*inMemory("abcdef"), start, limit);
    return childrenOf(view);
  };
  EXPECT_EQ(child(0, RFC_View::NO_LIMIT) + child(2, RFC_View::NO_LIMIT), "[abcdef][cdef]");
  EXPECT_EQ(child(2, 3) + child(9, 3) + child(-1, 2) + child(2, -1), "[cde][][ab][]");
}

TEST(View, IsACopyThatOutlivesItsSource) {
  Object source = inMemory("abc");
  unsigned int status = 0;
  source->setStringAttribute("A", "1");
  source->setPosition(2, status);
  RFCMsgDa view(*source);
  source.reset();
  EXPECT_EQ(print(view.attributes()) + restOf(view), "A=1|c");
}

TEST(View, IndexesBeyondTheChildrenAreRefused) {
  unsigned int status = 0;
  EXPECT_EQ(RFCMptDa(*inMemory("no boundary"), "b").getChild(0, status), nullptr);
  EXPECT_EQ(status, 10010U);
  status = 0;
  EXPECT_EQ(RFCMsgDa(*inMemory("abc")).getChild(1, status), nullptr);
  EXPECT_EQ(status, 10015U);
}

}  // namespace
