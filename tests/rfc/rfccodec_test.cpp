// Tests of the decoders, among them one of Base64 against the rules taken word by word.
#include "rfc/rfccodec.h"

#include <gtest/gtest.h>

#include "dac/DACLINE.h"
#include "rfc/RFCB64Da.h"
#include "rfc/RFCQprDa.h"
#include "rfc/Support.h"
#include "rfc/rfcb64grp.h"
#include "scl/Failure.h"

using namespace rfctest;

namespace {

// What the child of a view holds, and the note on the view.
template <class View>
std::string childOf(const DAC_BaseDataAccess& source, std::int32_t start = 0,
                    std::int32_t limit = RFC_View::NO_LIMIT) {
  View view(source, start, limit);
  unsigned int status = 0;
  DAC_BaseDataAccess* child = view.getChild(0, status);
  if (child == nullptr) {
    return "status " + std::to_string(status);
  }
  EXPECT_EQ(view.getChild(0, status), child);
  EXPECT_EQ(child->findAttribute("AttachmentSize")->getInteger(), contentOf(*child).size());
  SCL_String badData;
  view.getStringAttribute("BadData", badData, status);
  return contentOf(*child) + (badData.isEmpty() ? "" : " !") + badData.c_str();
}

std::string quotedPrintable(const std::string& text) {
  return childOf<RFCQprDa>(*inMemory(text));
}

std::string base64(const std::string& text) {
  return childOf<RFCB64Da>(*inMemory(text));
}

constexpr char OPEN_ESCAPE[] = " !Quoted-Printable, Insufficient data";
constexpr char OPEN_GROUP[] = " !Base 64 encoding incorrectly terminated.";
constexpr char BAD_GROUP[] = " !Base64 Invalid Data/2";

// The rules of Base64: collect, fill up, decode group by group.
std::string slowBase64(const std::string& in) {
  const std::string alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/=";
  std::string kept;
  std::copy_if(in.begin(), in.end(), std::back_inserter(kept),
               [&](char c) { return alphabet.find(c) != std::string::npos; });
  std::string out;
  const char* problem = "";
  for (std::size_t i = 0; i < kept.size(); i += 4) {
    std::string group = kept.substr(i, 4);
    problem = group.size() < 4 ? OPEN_GROUP : problem;
    group.resize(4, '=');
    const bool isBad = group[0] == '=' || group[1] == '=';
    problem = isBad ? BAD_GROUP : problem;
    std::size_t bits = 0;
    for (const char c : group) {
      bits = bits * 64 + alphabet.find(c) % 64;
    }
    const std::size_t size = isBad ? 0 : group[2] == '=' ? 1 : group[3] == '=' ? 2 : 3;
    for (std::size_t k = 0; k < size; ++k) {
      out += static_cast<char>(bits >> (16 - 8 * k) & 0xFF);
    }
  }
  return out + problem;
}

TEST(QuotedPrintable, EscapesAreDecodedAndTheRestStays) {
  EXPECT_EQ(quotedPrintable("a=3Db=3db=e9\r\n \xE9"), "a=b=b\xE9\r\n \xE9");
  EXPECT_EQ(quotedPrintable("abc=\r\ndef=\rXg"), "abcdefg");
  EXPECT_EQ(quotedPrintable("a=XY a=3X =\nb"), "a=XY a=3X =\nb");
  EXPECT_EQ(quotedPrintable("==41=4=41"), "=A=4A");
  // A range that ends inside an escape is noted.
  for (const char* open : {"abc=4", "abc=", "abc=\r"}) {
    EXPECT_EQ(quotedPrintable(open), std::string("abc") + OPEN_ESCAPE);
  }
  EXPECT_EQ(childOf<RFCQprDa>(*inMemory("abc=41"), 1, 4), std::string("bc") + OPEN_ESCAPE);
}

TEST(QuotedPrintable, IsTheSameWhereverPiecesEnd) {
  Dice dice(3);
  const std::string run(5000, 'x');
  for (int round = 0; round < 1000; ++round) {
    const std::string text =
        dice.text({"=", "\r", "\n", "4", "f", "A", "g", "=3D", "plain text", "\xE9", run}, 30);
    EXPECT_EQ(childOf<RFCQprDa>(*inBlocks(text, dice.below(5))), quotedPrintable(text)) << text;
  }
}

TEST(Base64, GroupsAreDecodedAndProblemsCostTheirOwn) {
  EXPECT_EQ(base64("TWFuTWE=TQ==TQ=x"), "ManMaMM");
  EXPECT_EQ(base64("TW\r\nFu \x80-T\r\nWFu"), "ManMan");
  EXPECT_EQ(base64("TWF"), std::string("Ma") + OPEN_GROUP);
  EXPECT_EQ(base64("=AAATWFu"), std::string("Man") + BAD_GROUP);
  EXPECT_EQ(base64("TWFuT"), std::string("Man") + BAD_GROUP);
}

TEST(Base64, FollowsTheRulesWhereverLinesEnd) {
  Dice dice(4);
  const std::string longLine(1021, 'Q');
  for (int round = 0; round < 1000; ++round) {
    const std::string text = dice.text({"T", "WFu", "=", "TWFu", "\r\n", "\n", " ", "-", "/+9",
                                        longLine, std::string_view("\0", 1)},
                                       30);
    const std::string expected = slowBase64(text);
    EXPECT_EQ(base64(text), expected) << text;
    EXPECT_EQ(childOf<RFCB64Da>(*inBlocks(text, dice.below(5))), expected) << text;
  }
}

// Any byte at any place of a text, so that it meets every lane of a vector; half of them with a
// line end somewhere.
TEST(Base64, VectorsTakeWhatThePlainPathTakes) {
  Dice dice(5);
  for (unsigned int round = 0; round < 100 * 256; ++round) {
    std::string text;
    while (text.size() < 100) {
      text += "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/"[dice.below(64)];
    }
    text[round / 256] = static_cast<char>(round % 256);
    if (dice.below(2) == 0) {
      text.insert(dice.below(text.size()), "\r\n");
    }
    std::string fast(rfc::base64Room(text.size()), '\0');
    std::string plain = fast;
    const rfc::Base64Step step = rfc::decodeBase64Groups(text, fast.data());
    std::string taken = text.substr(0, step.taken);
    if (const std::size_t lineEnd = taken.find("\r\n"); lineEnd != std::string::npos) {
      taken.erase(lineEnd, 2);
    } else {
      ASSERT_EQ(rfc::decodeBase64GroupsPlain(text, plain.data()).taken, step.taken) << text;
    }
    const rfc::Base64Step expected = rfc::decodeBase64GroupsPlain(taken, plain.data());
    ASSERT_EQ(expected.taken, taken.size()) << text;
    ASSERT_EQ(fast.substr(0, step.put), plain.substr(0, expected.put)) << text;
  }
}

// The text up to the end of the last line, or piece of a long one, that begins before the limit.
std::string untilLineThatCrosses(const std::string& text, std::size_t limit) {
  std::size_t at = 0;
  while (at < std::min(limit, text.size())) {
    const std::size_t end = std::min(text.find_first_of("\r\n", at), text.size());
    if (end - at > 1023) {
      at += 1023;
      continue;
    }
    const bool isPair = end + 1 < text.size() && dac::isLineEndPair(text[end], text[end + 1]);
    at = std::min(end + (isPair ? 2 : 1), text.size());
  }
  return text.substr(0, at);
}

TEST(Base64, AnyRangeEndsWithTheLineThatCrossesItsEnd) {
  Dice dice(11);
  const std::string line = repeated("TWFu", 19) + "\r\n";
  const std::string lines = repeated(line, 60);
  for (int round = 0; round < 1000; ++round) {
    const std::string text =
        dice.text({lines, line, "TWFu", "T", "=", "\r", "\n", "\r\n", repeated("+", 1500)}, 20);
    const std::size_t limit = dice.below(text.size() + 1);
    EXPECT_EQ(childOf<RFCB64Da>(*inBlocks(text, dice.below(5)), 0, static_cast<int>(limit)),
              slowBase64(untilLineThatCrosses(text, limit)))
        << text << '|' << limit;
  }
}

TEST(Base64, TheLineThatCrossesTheRangesEndIsReadWhole) {
  EXPECT_EQ(childOf<RFCB64Da>(*inMemory("TWFu\r\nTWFu\r\nTWFu"), 6, 1), "Man");
  EXPECT_EQ(childOf<RFCB64Da>(*inMemory("TWFu"), 9), "");
}

TEST(Base64, ASuppressedBodyIsNotDecoded) {
  EXPECT_EQ(base64("(Message body suppressed.)\r\n\r\n"), "");
  EXPECT_EQ(base64(std::string(600, '-') + "Message body suppressed\r\n\r\n"), "");
  EXPECT_EQ(childOf<RFCB64Da>(*inMemory("x\nMessage body suppressed\n\n"), 2), "");
  EXPECT_NE(base64("Message body suppressed\r\n"), "");
  EXPECT_NE(base64("Message body suppressed\r\n\r\nTWFu"), "");
  EXPECT_NE(base64("Message body suppressed\r\nTWFu\r\n"), "");
}

TEST(Decoders, AFailingStreamMakesNoChildAndNoDestinationIsRefused) {
  const std::string text = "TWFu\r\nTWFu\r\n";
  EXPECT_EQ(childOf<RFCB64Da>(*inBlocks(text, 0, 6)), "status 10021");
  EXPECT_EQ(childOf<RFCQprDa>(*inBlocks(text, 0, 6)), "status 10021");
  unsigned int status = 0;
  EXPECT_EQ(failureOf([&] { rfc_b64_decode(*inMemory(""), nullptr, 0, 0, status); }),
            "Null pointer in rfcb64");
}

}  // namespace
