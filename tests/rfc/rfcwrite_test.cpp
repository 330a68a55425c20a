// Tests of the field writer and of printable strings.
#include "rfc/rfcwrite.h"

#include <gtest/gtest.h>

#include "rfc/Support.h"
#include "scl/Failure.h"

using namespace rfctest;

namespace {

std::string written(const SCL_StringRef& name, const std::string& value, bool fold = true) {
  const Object object = inMemory("");
  unsigned int status = 0;
  rfc_write_field(*object, name, SCL_String(value.c_str()), fold, status);
  return contentOf(*object);
}

std::string writtenLines(const char* name, std::initializer_list<const char*> lines) {
  const Object object = inMemory("");
  unsigned int status = 0;
  rfc_write_field_lines(*object, name, table(lines), status);
  return contentOf(*object);
}

std::string xs(std::size_t count) {
  return std::string(count, 'x');
}

TEST(WriteField, AShortFieldIsOneLine) {
  EXPECT_EQ(written("Subject", "twenty characters ;;"), "Subject: twenty characters ;;\r\n");
  EXPECT_EQ(written("A", "\tb") + written("A", "") + written("", "b"), "A:\tb\r\nA:\r\n b\r\n");
}

TEST(WriteField, FoldingBeginsAt77Characters) {
  EXPECT_EQ(written("To", xs(72) + ";"), "To: " + xs(72) + ";\r\n");
  EXPECT_EQ(written("To", xs(73) + ";"), "To: " + xs(73) + "\r\n    ;\r\n");
  EXPECT_EQ(written("To", xs(73) + ";", false), "To: " + xs(73) + ";\r\n");
  EXPECT_EQ(written("To", xs(90) + ";(open"), "To: " + xs(90) + ";(open\r\n");
}

TEST(WriteField, FoldedTokensStandBetweenBlanks) {
  EXPECT_EQ(written("To", repeated("receiver0@host,", 7) + "one"),
            "To: receiver0 @ host , receiver0 @ host , receiver0 @ host , receiver0 @ \r\n"
            "    host , receiver0 @ host , receiver0 @ host , receiver0 @ host , one\r\n");
}

TEST(WriteField, ColumnsDecideWhereALineEnds) {
  const auto behindColumn = [](std::size_t column, const std::string& next) {
    return written("A", xs(column - 3) + " " + next).substr(column);
  };
  EXPECT_EQ(behindColumn(73, "b ccccc"), " b \r\n    ccccc\r\n");
  EXPECT_EQ(behindColumn(74, "bbb"), " \r\n    bbb\r\n");
  EXPECT_EQ(behindColumn(75, "bbb"), " \r\n    bbb\r\n");
  EXPECT_EQ(behindColumn(76, "bbb"), "\r\n    bbb\r\n");
}

TEST(WriteField, ATokenLongerThanALineStandsAlone) {
  EXPECT_EQ(written("Subject", xs(80) + " b"), "Subject: \r\n    " + xs(80) + "\r\n    b\r\n");
  EXPECT_EQ(written("Subject", xs(80)), "Subject: \r\n    " + xs(80) + "\r\n");
  EXPECT_EQ(written("To", xs(80)), "To: " + xs(80) + "\r\n");  // column 4 is a line's beginning
}

TEST(WriteField, NothingSeparatesATokenFromTheEqualsSignBefore) {
  EXPECT_EQ(written("A", xs(70) + "= yyyyy z"), "A: " + xs(70) + "=yyyyy\r\n    z\r\n");
  EXPECT_EQ(written("A", xs(80) + "= y"), "A: " + xs(80) + "=y\r\n");
}

TEST(WriteField, LineBreaksInsideAreBlanks) {
  EXPECT_EQ(written("A\nB", "\r\nc\rd"), "A B:  c d\r\n");
  EXPECT_EQ(written("A", xs(80) + " \"b\r\nc: d\""), "A: " + xs(80) + "\r\n    \"b  c: d\"\r\n");
  EXPECT_EQ(writtenLines("A", {"b", "c\nd"}), "A: b\r\nc d\r\n");
  EXPECT_EQ(rfc_one_line(std::string_view("a\0b", 3)), SCL_StringRef("a b"));
}

TEST(WriteLines, LinesAreWrittenAsTheyStand) {
  EXPECT_EQ(writtenLines("A", {" b", "\tc"}), "A: b\r\n\tc\r\n");
  EXPECT_EQ(writtenLines("A", {"", " b"}) + writtenLines("", {"b"}), "A:\r\n b\r\nb\r\n");
  EXPECT_EQ(writtenLines("A", {}) + writtenLines("", {}), "A:\r\n");
}

TEST(PrintableString, EscapesAreDecodedAndOtherParenthesesStay) {
  EXPECT_STREQ(rfc_ps_decode("user(a)host").c_str(), "user@host");
  EXPECT_STREQ(rfc_ps_decode("(A)(p)(b)(q)(u)(l)(r)").c_str(), "@%!\"_()");
  EXPECT_STREQ(rfc_ps_decode("a(065)b(321)").c_str(), "aAbA");
  EXPECT_EQ(rfc_ps_decode("a(000)b"), "ab");
  EXPECT_STREQ(rfc_ps_decode("((a))").c_str(), "(@)");
  for (const char* text : {"", "ab", "(x)", "(a", "(06)", "(065", "(a b)", "((a"}) {
    EXPECT_STREQ(rfc_ps_decode(text).c_str(), text);
  }
  EXPECT_EQ(failureOf([] { rfc_ps_encode("a"); }),
            "rfc_ps_encode() not yet implemented. in rfcfuncs");
}

}  // namespace
