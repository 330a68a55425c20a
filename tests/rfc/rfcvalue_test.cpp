// Tests of the parsers of structured values and of the repair of content types.
#include "rfc/rfcvalue.h"

#include <gtest/gtest.h>

#include "atr/ATRATLST.h"
#include "rfc/Support.h"
#include "rfc/rfcpart.h"

using namespace rfctest;

namespace {

std::string contentType(const std::string& value) {
  SCL_String type("old");
  SCL_String subtype("old");
  ATR_AttributeList parameters;
  parameters.setString("old", "old");
  const unsigned int status = rfc_parse_content_type(value.c_str(), type, subtype, parameters);
  return std::to_string(status) + " " + (type + "/" + subtype).c_str() + " " + print(parameters);
}

std::string disposition(const char* value) {
  SCL_String word;
  ATR_AttributeList parameters;
  const unsigned int status = rfc_parse_disposition(value, word, parameters);
  return std::to_string(status) + " " + word.c_str() + " " + print(parameters);
}

std::string encodingList(const char* value) {
  RFC_PartList parts;
  std::string text = std::to_string(rfc_parse_encoding_list(value, parts)) + " ";
  for (std::uint16_t i = 0; i < parts.count(); ++i) {
    text += std::to_string(parts.get(i).number) + " " + parts.get(i).text.c_str() + "|";
  }
  return text;
}

std::string repaired(const char* value) {
  SCL_String text(value);
  const bool changed = rfc_repair_content_type(text);
  EXPECT_EQ(changed, text != SCL_StringRef(value));
  return text.c_str();
}

TEST(ContentType, ValuesAreAtomsQuotedStringsOrLiterals) {
  EXPECT_EQ(contentType(R"(multipart/mixed; boundary="a b")"), "0 multipart/mixed boundary=a b|");
  EXPECT_EQ(contentType("Text/Plain;;a=b  c;d=[1.2] (note);e=\"\""),
            "0 Text/Plain a=b c|d=[1.2]|e=|");
  EXPECT_EQ(contentType("a/b; n=1; N=\"2\""), "0 a/b n=2|");
  EXPECT_EQ(contentType("a/b; c=d=e; f=g"), "0 a/b c=d|");
}

TEST(ContentType, MalformedValuesAreRefused) {
  EXPECT_EQ(contentType("text"), "12001 / ");
  EXPECT_EQ(contentType("text/\"plain\""), "12001 / ");
  EXPECT_EQ(contentType("a/b (open"), "12001 / ");
  EXPECT_EQ(contentType("a/b;"), "12001 a/b ");
  EXPECT_EQ(contentType("a/b; c=d; e"), "12001 a/b c=d|");
  EXPECT_EQ(contentType("a/b; c=;"), "12001 a/b ");
  EXPECT_EQ(contentType("a/b" + repeated(" a", 65536)), "12001 / ");
}

TEST(Disposition, WantsASemicolonOrTheEnd) {
  EXPECT_EQ(disposition("attachment; filename=a.txt"), "0 attachment filename=a.txt|");
  EXPECT_EQ(disposition("inline"), "0 inline ");
  EXPECT_EQ(disposition("inline inline"), "12026 inline ");
  EXPECT_EQ(disposition("inline;"), "12026 inline ");
  EXPECT_EQ(disposition("") + disposition("\"inline\""), "12026  12026  ");
}

TEST(Word, IsExactlyOneAtom) {
  SCL_String word("old");
  EXPECT_EQ(rfc_parse_word(" base64 (so)", word), 0U);
  EXPECT_EQ(word, SCL_StringRef("base64"));
  EXPECT_EQ(rfc_parse_word("7bit;", word), 12010U);
  EXPECT_TRUE(word.isEmpty());
  EXPECT_EQ(rfc_parse_word("", word), 12010U);
}

TEST(EncodingList, EntriesAreCountedButTheLast) {
  EXPECT_EQ(encodingList("2 text, 40 uuencode too, message"),
            "0 2 text|40 uuencode too|-1 message|");
  EXPECT_EQ(encodingList("7,99999999999 text"), "0 7 |2147483647 text|");
  EXPECT_EQ(encodingList("") + encodingList("text, 2 text"), "12009 12009 ");
  EXPECT_EQ(encodingList("2 text,"), "12009 2 text|");
  EXPECT_EQ(encodingList("2 text \"x\""), "12009 2 text|");
}

TEST(Repair, CommonMistakesAreMended) {
  EXPECT_EQ(repaired("UNKNOWN"), "application/octet-stream");
  EXPECT_EQ(repaired("text"), "text/plain");
  EXPECT_EQ(repaired("text/plain;;"), "text/plain;");
  EXPECT_EQ(repaired("Text/plain charset=\"us-ascii\""), "text/plain; charset=\"us-ascii\"");
  EXPECT_EQ(repaired("text/plain; Charset-US-ascii"), "text/plain; Charset=US-ascii");
  EXPECT_EQ(repaired("text/plain; charset=\"us-ascii"), "text/plain; charset=us-ascii");
  EXPECT_EQ(repaired("text/plain; charset=\"US-ASCII; x=y"), "text/plain; charset=US-ASCII; x=y");
  EXPECT_EQ(repaired("Message-Delivery-Status"), "Message/Delivery-Status");
  EXPECT_EQ(repaired("application\\octet-stream"), "application/octet-stream");
  EXPECT_EQ(repaired("text/plain charset=\"us-ascii\";"), "text/plain; charset=\"us-ascii\"");
  EXPECT_EQ(repaired("text/plain; charset=\"us-ascii\""), "text/plain; charset=\"us-ascii\"");
}

}  // namespace
