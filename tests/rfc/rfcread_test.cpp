// Tests of the header reader. Every content is read from memory, from memory in small blocks and
// through a stream that shows no memory at all.
#include "rfc/rfcread.h"

#include <algorithm>

#include <gtest/gtest.h>

#include "atr/ATRATLST.h"
#include "gma/GMAMHDRT.h"
#include "rfc/Support.h"

using namespace rfctest;

namespace {

// The headers, then what is left to be read.
std::string headers(DAC_BaseDataAccess& object) {
  GMA_MhdrTable read;
  unsigned int status = 0;
  const int found = rfc_read_headers(object, read, status);
  return print(read) + "found " + std::to_string(found) +
         (status != 0 ? " status " + std::to_string(status) : "") + " rest " + restOf(object);
}

std::string headers(const std::string& text) {
  const std::string fromMemory = headers(*inMemory(text));
  EXPECT_EQ(headers(*inBlocks(text, 0)), fromMemory) << text;
  EXPECT_EQ(headers(*inBlocks(text, 7)), fromMemory) << text;
  return fromMemory;
}

// "1 name: line|line| cut rest ..."
std::string field(const std::string& text, std::int32_t maximum = RFC_MAX_LINE) {
  SCL_String name("left over");
  SCL_StringTable lines;
  bool cut = false;
  unsigned int status = 0;
  const Object object = inMemory(text);
  const int found = rfc_read_field_checked(*object, maximum, name, lines, cut, status);
  return std::to_string(found) + " " + name.c_str() + ": " + print(lines) + (cut ? " cut" : "") +
         " rest " + restOf(*object);
}

TEST(ReadField, EndsAtTheNextFieldABlankLineOrTheEnd) {
  EXPECT_EQ(field("Subject: Hi\r\n there\r\n\r\nx"), "1 Subject:  Hi| there| rest \r\nx");
  EXPECT_EQ(field("A:1\nB:2\n"), "1 A: 1| rest B:2\n");
  EXPECT_EQ(field("A:1"), "1 A: 1| rest ");
  EXPECT_EQ(field(" \t\nA:1"), "0 :  rest  \t\nA:1");
  EXPECT_EQ(field(""), "0 :  rest ");
}

TEST(ReadField, LinesThatAreNoFieldBecomeABadOneAndMoreThanTenText) {
  EXPECT_EQ(field(" first\nA:1\n"), "1 Bad-Header:  first| rest A:1\n");
  EXPECT_EQ(field("To: a\nno colon\nA:1\n"), "1 Bad-Header: To: a|no colon| rest A:1\n");
  EXPECT_EQ(field("a b: c\nno colon\n"), "1 Bad-Header: a b: c|no colon| rest ");
  EXPECT_EQ(field(":x\n"), "1 Bad-Header: :x| rest ");
  EXPECT_EQ(field("A:1\na b: c\n"), "1 A: 1| rest a b: c\n");
  EXPECT_EQ(field("A:1\nmore than sixteen: c\n"), "1 Bad-Header: A:1|more than sixteen: c| rest ");
  EXPECT_EQ(field("A:1\n" + repeated("bad\n", 9)).substr(0, 14), "1 Bad-Header: ");
  const std::string text = "A:1\n" + repeated(" good\n", 20) + "bad\n";
  EXPECT_EQ(field(text), "0 :  rest " + text);
}

TEST(ReadField, OfALongLineTheRestIsALineOfItsOwn) {
  EXPECT_EQ(field("A:12345\nB:\n", 7), "1 A: 12345| rest B:\n");
  EXPECT_EQ(field("A:12345\r\nB:\n", 6), "1 Bad-Header: A:1234|5| cut rest B:\n");
  EXPECT_EQ(field("A:1234 5\nB:\n", 6), "1 A: 1234| 5| cut rest B:\n");
}

TEST(ReadField, NulCharactersAreDropped) {
  EXPECT_EQ(field(std::string("A\0B:\0x\0\n", 8)), "1 AB: x| rest ");
  EXPECT_EQ(field(std::string("\0\nA:1\n", 6)), "0 :  rest " + std::string("\0\nA:1\n", 6));
}

TEST(ReadField, ManyLinesStopBeforeTheTableIsFull) {
  takeLog();
  const std::string read = field("A:\n" + repeated(" \xE9\n", 65005));
  EXPECT_EQ(std::count(read.begin(), read.end(), '|'), 65000);
  EXPECT_EQ(takeLog(), "11:1 Too many header lines, the rest is left out.\n");
}

TEST(ReadHeaders, OnlyUnknownFieldsKeepTheirNames) {
  EXPECT_EQ(headers("to: a\nX-B: b\nx400-C: c\nD: d\n\nbody"),
            "28 | a|\n83 X-B| b|\n86 x400-C| c|\n46 D| d|\nfound 1 rest \nbody");
}

TEST(ReadHeaders, FourBadFieldsInARowAreTheBody) {
  const std::string bad = repeated("a b: c\n", 3);
  EXPECT_EQ(headers("To: a\n" + bad + "a b: c\nbody"),
            "28 | a|\nfound 1 rest " + bad + "a b: c\nbody");
  EXPECT_EQ(headers(bad + "bad-header: c\n"), "found 0 rest " + bad + "bad-header: c\n");
  const std::string kept = repeated("82 |a b: c|\n", 3);
  EXPECT_EQ(headers(bad + "To: a\n" + bad + "\nb"), kept + "28 | a|\n" + kept + "found 1 rest \nb");
}

TEST(ReadHeaders, ATimeOfDayIsText) {
  EXPECT_EQ(headers("10:23:45 it began\n"), "82 |10:23:45 it began|\nfound 0 rest ");
  EXPECT_EQ(headers("10:23:45 and\n"), "46 10|23:45 and|\nfound 1 rest ");
  EXPECT_EQ(headers("10:2a:45 it began\n"), "46 10|2a:45 it began|\nfound 1 rest ");
}

TEST(ReadHeaders, TheRepairedContentTypeStaysInItsPlace) {
  EXPECT_EQ(headers("Content-Type: text;\nTo: a\n" + repeated("a b: c\n", 4)),
            "78 |text|\n28 | a|\nfound 1 rest " + repeated("a b: c\n", 4));
  EXPECT_EQ(headers("Content-Type: text/plain\n"), "78 | text/plain|\nfound 1 rest ");
}

TEST(ReadHeaders, AFailingStreamEndsTheHeaderBeforeItsField) {
  EXPECT_EQ(headers(*inBlocks("To: a\nSubject: b\nB: c\n", 0, 17)),
            "28 | a|\nfound 1 status 10021 rest ");
  EXPECT_EQ(headers(*inBlocks("To: a\nSubject: b\n", 0, 6)), "found 0 status 10021 rest ");
}

TEST(ReadHeaders, ManyHeadersLeaveRoomForOurOwn) {
  takeLog();
  const std::string read = headers(*inMemory(repeated("X-a:b\n", 65002) + "\nbody"));
  EXPECT_TRUE(read.ends_with("found 1 rest X-a:b\nX-a:b\n\nbody"));
  EXPECT_EQ(takeLog(), "11:1 Too many headers, the rest is left out.\n");
}

TEST(ReadHeaders, EveryWayToTheBytesGivesTheSameHeaders) {
  Dice dice(2);
  const std::string longName(1080, 'n');
  const std::string longValue(RFC_MAX_LINE - 3, 'v');
  for (int round = 0; round < 3000; ++round) {
    headers(dice.text({"To:", "X-1: ", " a", "\tb", "c ", ":", "\n", "\r\n", "\n\r", "\r", "\n",
                       "\r\n", std::string_view("\0", 1), longName, longValue, "10:23:45 it began",
                       "Content-Type: text;"},
                      24));
  }
}

TEST(SkipBlankLine, OnlyABlankLineIsConsumed) {
  const auto rest = [](std::string_view text) {
    const Object object = inMemory(text);
    rfc_skip_blank_line(*object);
    return restOf(*object);
  };
  EXPECT_EQ(rest(" \t\r\n\nbody"), "\nbody");
  EXPECT_EQ(rest(" body\n") + rest(" "), " body\n");
  EXPECT_EQ(rest(std::string(2000, 'x')), std::string(2000, 'x'));
  EXPECT_EQ(rfc_skip_blank_line(*inMemory("")), 0);
}

TEST(Unfold, TheFoldingCharacterIsThereTwiceButAQuotedFoldStaysALineBreak) {
  EXPECT_STREQ(rfc_unfold(table({" a", "\tb"})).c_str(), " a\t\tb");
  EXPECT_STREQ(rfc_unfold(table({"", " a", "", " b"})).c_str(), " a  b");
  EXPECT_STREQ(rfc_unfold(table({"\"a\\", " b\""})).c_str(), "\"a\r\nb\"");
  EXPECT_STREQ(rfc_unfold(table({"\"a\" \\", " b"})).c_str(), "\"a\" \\  b");
  EXPECT_STREQ(rfc_unfold(table({"\"a\\\"\\", " b"})).c_str(), "\"a\\\"\r\nb");
  EXPECT_STREQ(rfc_unfold(table({"\"a\\\\\"\\", " b"})).c_str(), "\"a\\\\\"\r\nb");
}

TEST(HeadersToAttributes, LaterHeadersReplaceEarlierOnes) {
  GMA_MhdrTable headerTable;
  unsigned int status = 0;
  rfc_read_headers(*inMemory("Subject:  a \nX-B: b\n c\nSUBJECT: d\nx-b: e\n\n"), headerTable,
                   status);
  headerTable.add(GMA_Mhdr(161, SCL_StringRef("nameless")));
  ATR_AttributeList attributes;
  rfc_headers_to_attributes(headerTable, attributes);
  EXPECT_EQ(print(attributes), "SUBJECT=d|X-B=e|UNKNOWN=nameless|");
}

TEST(HeadersToAttributes, ManyNamesLeaveRoomForOurOwn) {
  ATR_AttributeList attributes;
  GMA_MhdrTable headerTable;
  for (int i = 0; i < 65002; ++i) {
    headerTable.add(GMA_Mhdr(46, SCL_StringRef(std::to_string(i).c_str()), "v"));
  }
  headerTable.add(GMA_Mhdr(46, SCL_StringRef("1"), "replaced"));
  takeLog();
  rfc_headers_to_attributes(headerTable, attributes);
  EXPECT_EQ(attributes.count(), 65000U);
  EXPECT_STREQ(attributes.find("1")->string().c_str(), "replaced");
  EXPECT_EQ(takeLog(), "11:1 Too many attributes, the rest is left out.\n");
}

}  // namespace
