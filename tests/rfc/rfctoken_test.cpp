// Tests of the tokenizer and of the lists that it fills.
#include "rfc/rfctoken.h"

#include <gtest/gtest.h>

#include "gen/GENCODES.h"
#include "rfc/Support.h"
#include "rfc/rfcpart.h"
#include "scl/Failure.h"

using namespace rfctest;

namespace {

// "status: tokens"
std::string tokens(std::string_view text, int mode, bool keepComments = true) {
  RFC_SymbolList symbols;
  const unsigned int status = rfc_tokenise(SCL_String(text), mode, keepComments, symbols);
  return std::to_string(status) + ": " + print(symbols);
}

// The same, token by token from an object.
std::string tokens(DAC_BaseDataAccess& object, int mode) {
  RFC_SymbolList symbols;
  RFC_Symbol symbol;
  unsigned int status = 0;
  while ((status = rfc_next_token(object, mode, symbol)) == 0) {
    symbols.add(symbol.kind, symbol.text);
  }
  return std::to_string(status == DAC_END ? 0 : status) + ": " + print(symbols);
}

TEST(Tokenizer, TokensKeepTheirDelimiters) {
  EXPECT_EQ(tokens("a(b (c))\"d\\\"e\"[1.2]", RFC_MODE_822),
            R"(0: 4 a|3 (b (c))|1 "d\"e"|2 [1.2]|)");
  EXPECT_EQ(tokens("a\r\n\t(b)\x01 c\x7F ", RFC_MODE_822, false), "0: 4 a|4 c|");
}

TEST(Tokenizer, EachModeHasItsOwnSpecials) {
  EXPECT_EQ(tokens(")<>@,;:\\.]/=?\xE9'*{~", RFC_MODE_822),
            "0: 0 )|0 <|0 >|0 @|0 ,|0 ;|0 :|0 \\|0 .|0 ]|4 /=?\xE9'*{~|");
  EXPECT_EQ(tokens(")<>@,;:\\/]?=.\xE9'*{~", RFC_MODE_MIME),
            "0: 0 )|0 <|0 >|0 @|0 ,|0 ;|0 :|0 \\|0 /|0 ]|0 ?|0 =|4 .\xE9'*{~|");
}

TEST(Tokenizer, AnOpenTokenFailsAndKeepsThoseBefore) {
  EXPECT_EQ(tokens("a (b\\)", RFC_MODE_822, false), "12003: 4 a|");
  EXPECT_EQ(tokens("a \"b\\\"", RFC_MODE_822), "12005: 4 a|");
  EXPECT_EQ(tokens("a [b", RFC_MODE_822), "12007: 4 a|");
}

TEST(Tokenizer, DeepCommentsNeedNoStack) {
  const std::string open(2000000, '(');
  EXPECT_EQ(tokens(open, RFC_MODE_822, false), "12003: ");
  EXPECT_EQ(tokens(open + std::string(2000000, ')') + "a", RFC_MODE_822, false), "0: 4 a|");
}

TEST(Tokenizer, StopsWhenTheListIsFull) {
  const std::string text = repeated("a ", 65535);
  RFC_SymbolList symbols;
  takeLog();
  EXPECT_EQ(rfc_tokenise(text.c_str(), RFC_MODE_MIME, true, symbols), 0U);
  EXPECT_EQ(takeLog(), "");
  EXPECT_EQ(rfc_tokenise((text + "b").c_str(), RFC_MODE_MIME, true, symbols), 3U);
  EXPECT_EQ(symbols.count(), 65535U);
  EXPECT_EQ(takeLog(), "11:1 Too many tokens, the rest is left out.\n");
}

TEST(Tokenizer, AnObjectGivesTheTokensOfItsText) {
  Dice dice(1);
  for (int round = 0; round < 2000; ++round) {
    const std::string text = dice.text(
        {"a", "bc", " ", "\r\n ", "(", ")", "\"", "\"x y\"", "[", "]", "\\", ".", "/", "\xE9"}, 12);
    const int mode = round % 2;
    const std::string expected = tokens(text, mode);
    EXPECT_EQ(tokens(*inMemory(text), mode), expected) << text;
    EXPECT_EQ(tokens(*inBlocks(text, dice.below(4)), mode), expected) << text;
  }
  EXPECT_EQ(tokens(*inBlocks("ab \"cd", 0, 4), RFC_MODE_822), "10021: 4 ab|");
}

TEST(SymbolList, FindsSymbolsAndRefusesAnIndexAtTheCount) {
  RFC_SymbolList symbols;
  rfc_tokenise("Ab;ab", RFC_MODE_822, true, symbols);
  EXPECT_EQ(symbols.find(RFC_Symbol::atom, "aB", 0), 0U);
  EXPECT_EQ(symbols.find(RFC_Symbol::atom, "ab", 1), 2U);
  EXPECT_EQ(symbols.find(RFC_Symbol::quotedString, "ab", 0), 3U);
  const std::string refused = "Symbol list index out of range. in rfcsym";
  EXPECT_EQ(failureOf([&] { symbols.get(3); }), refused);
  EXPECT_EQ(failureOf([&] { symbols.find(RFC_Symbol::special, ";", 3); }), refused);
  EXPECT_EQ(failureOf([] { RFC_PartList().get(0); }), "Part list index out of range. in rfcpart");
}

}  // namespace
