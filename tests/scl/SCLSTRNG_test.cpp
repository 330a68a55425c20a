// Tests of the string: growth, sources that are the string itself, moved-from strings, searches,
// comparisons, ranges.
#include "scl/SCLSTRNG.h"

#include "gmock/gmock.h"
#include "scl/Failure.h"
#include "scl/SCLREGEX.h"

namespace {

std::string state(const SCL_String& s) {
  return std::string(s.view()) + "|" + std::to_string(s.length()) + "/" +
         std::to_string(s.capacity());
}

// Every test of growth wants texts of an exact length, short ones in the object, long ones outside.
SCL_String textOf(unsigned int length) {
  SCL_String text;
  for (unsigned int i = 0; i < length; ++i) {
    text += static_cast<char>('a' + i % 26);
  }
  return text;
}

// "<result>@<position>" of a search that begins at p.
template <class Search>
std::string searched(unsigned int p, Search search) {
  const int result = search(p);
  return std::to_string(result) + "@" + std::to_string(p);
}

TEST(StringCapacity, FollowsTheRuleWhateverTheMemoryBehindIt) {
  SCL_String reserved;
  std::string capacities;
  for (unsigned int n : {0U, 62U, 63U, 127U}) {
    reserved.reserve(n);
    capacities += std::to_string(reserved.capacity()) + " ";
  }
  EXPECT_EQ(capacities, "64 64 128 192 ");
  SCL_String assigned;
  assigned = textOf(63);
  EXPECT_EQ(assigned.capacity(), 64U);
  EXPECT_EQ(SCL_String(assigned).capacity(), 128U);  // a copy reserves
  EXPECT_EQ(SCL_String(64U).capacity(), 64U);
  EXPECT_EQ((SCL_String("a") + textOf(64)).capacity(), 128U);
  SCL_String shifted("abc");
  shifted.reserve(10, 2);  // large enough already
  shifted.reserve(70, 2);
  EXPECT_EQ(state(shifted), "  abc|5/128");
}

TEST(StringCapacity, TextsBeyond32BitsAreRefused) {
  SCL_String text("abc");
  const std::string_view huge("x", 0xFFFFFF80U);
  EXPECT_EQ(failureOf([&] { text.append(huge); }), "Null pointer in SCLSTRNG");
  EXPECT_EQ(failureOf([&] { text.reserve(0xFFFFFFFFU); }), "Null pointer in SCLSTRNG");
  EXPECT_EQ(state(text), "abc|3/64");
}

TEST(StringAlias, OwnTextIsAValidSourceAtEveryLength) {
  for (unsigned int length : {1U, 14U, 15U, 27U, 28U, 40U, 63U, 64U, 300U}) {
    const std::string text(textOf(length).view());
    SCL_String doubled(text.c_str());
    doubled += doubled;
    EXPECT_EQ(doubled.view(), text + text);
    SCL_String tail(text.c_str());
    tail.append(tail.view().substr(length / 2));
    EXPECT_EQ(tail.view(), text + text.substr(length / 2));
    tail = text.c_str();
    tail = SCL_StringRef(tail.c_str() + length / 3);
    EXPECT_EQ(tail.view(), text.substr(length / 3));
    SCL_String replaced(text.c_str());
    replaced.range(1, 0) = replaced;
    EXPECT_EQ(replaced.view(), text.substr(0, 1) + text + text.substr(1));
  }
  SCL_String quoted("a\"b");
  SCL_quote(quoted.c_str(), quoted.c_str() + 3, quoted);
  EXPECT_EQ(quoted.view(), "\"a\\\"b\"");
  EXPECT_EQ(SCL_unquote(quoted.c_str(), quoted.c_str() + 6, quoted), 6U);
  EXPECT_EQ(quoted.view(), "a\"b");
}

TEST(StringMove, HandsTheTextOverAndLeavesAnEmptyString) {
  for (unsigned int length : {0U, 5U, 200U}) {
    SCL_String source = textOf(length);
    const std::string before = state(source);
    SCL_String target("something that lies outside of the object");
    target = std::move(source);
    EXPECT_EQ(state(target), before);
    EXPECT_EQ(state(source), "|0/0");  // NOLINT: what the test is about
  }
}

TEST(StringMove, AMovedFromStringAcceptsEveryOperation) {
  const auto after = [](auto change) {
    SCL_String used("a text that lies outside of the object");
    SCL_String kept(std::move(used));
    change(used);
    return state(used);  // NOLINT: what the test is about
  };
  EXPECT_EQ(after([](SCL_String& s) { s.clear(), s.trim(), s.toUpper(), s.removeLast(); }), "|0/0");
  EXPECT_EQ(after([](SCL_String& s) { s += 'x'; }), "x|1/64");
  EXPECT_EQ(after([](SCL_String& s) { s.prepend('x'); }), "x|1/64");
  EXPECT_EQ(after([](SCL_String& s) { s += "xy"; }), "xy|2/64");
  EXPECT_EQ(after([](SCL_String& s) { s = s + s; }), "|0/64");
  EXPECT_EQ(after([](SCL_String& s) { s.reserve(100, 2); }), "  |2/128");
  EXPECT_EQ(after([](SCL_String& s) { s = SCL_String(s); }), "|0/64");
}

TEST(StringChange, CharactersComeAndGoAtBothEnds) {
  SCL_String text("bc");
  text.prepend('a');
  text += '\0';
  EXPECT_EQ(state(text), "abc|3/64");
  text.removeFirst();
  text.removeLast();
  EXPECT_EQ(state(text), "b|1/64");
  text.prepend('\0');
  EXPECT_EQ(state(text), "|0/64");
  for (int i = 0; i < 100; ++i) {
    text.prepend(static_cast<char>('a' + i % 2));
  }
  EXPECT_EQ(text.length() + text.capacity(), 100U + 128U);
  EXPECT_EQ(text.extract(97, 3).view(), "aba");
}

TEST(StringChange, TrimAndCaseTouchAsciiOnly) {
  SCL_String text(" \t\r\n\v\f a \xC4\xE4z \f");
  text.trim();
  text.toUpper();
  EXPECT_EQ(text.view(), "A \xC4\xE4Z");
  text = " \t ";
  text.trim();
  EXPECT_EQ(state(text), "|0/64");
}

TEST(StringChange, ANulEndsATextThatIsAssignedAndStaysInOneThatIsAppended) {
  const std::string_view withNul("ab\0cd", 5);
  SCL_String text(withNul);
  EXPECT_EQ(text.length(), 2U);
  EXPECT_EQ(text.assign(withNul.substr(3)).length(), 2U);
  EXPECT_EQ(text.append(withNul).view(), std::string_view("cdab\0cd", 7));
}

TEST(StringIndex, TheLengthIsTheLimit) {
  SCL_String text("abc");
  text[1] = 'x';
  EXPECT_EQ(SCL_StringRef(text)[1], 'x');
  const std::string refused = "String index out of range. in SCLSTRNG";
  EXPECT_EQ(failureOf([&] { text[3] = 'x'; }), refused);
  EXPECT_EQ(failureOf([] { (void)SCL_StringRef()[0]; }), refused);
}

TEST(StringFind, MovesThePositionOnSuccessOnly) {
  const SCL_StringRef text("abcabc");
  EXPECT_EQ(searched(1, [&](auto& p) { return text.find('a', p); }), "1@3");
  EXPECT_EQ(searched(7, [&](auto& p) { return text.find('a', p); }), "0@7");
  EXPECT_EQ(searched(2, [&](auto& p) { return text.find("bc", p); }), "1@4");
  EXPECT_EQ(searched(0, [&](auto& p) { return text.find("", p); }), "0@0");
  EXPECT_EQ(searched(3, [&](auto& p) { return text.findLast('b', p); }), "1@4");
  EXPECT_EQ(searched(5, [&](auto& p) { return text.findLast('b', p); }), "0@5");
  EXPECT_EQ(searched(0, [](auto& p) { return SCL_StringRef().findLast('b', p); }), "0@0");
}

TEST(StringFind, PatternsMatchFromThePositionAndKnowWhereLinesBegin) {
  const auto matched = [](unsigned int p, const char* pattern) {
    unsigned int l = 9;
    const int result = SCL_StringRef("xab1ab22").match(SCL_Regex(pattern), p, l);
    return std::to_string(result) + "@" + std::to_string(p) + "+" + std::to_string(l);
  };
  EXPECT_EQ(matched(0, "ab[0-9]*"), "1@1+3");
  EXPECT_EQ(matched(2, "ab[0-9]*"), "1@4+4");
  EXPECT_EQ(matched(1, "^a"), "0@1+0");
  EXPECT_EQ(matched(100, "x*"), "0@100+0");
  EXPECT_EQ(matched(0, "\\("), "0@0+0");  // not a valid pattern
}

TEST(StringCompare, BytesAreUnsignedAndPrefixesOrderFirst) {
  EXPECT_TRUE(SCL_StringRef("a") < SCL_StringRef("\xE9"));
  EXPECT_TRUE(SCL_StringRef("ab") < SCL_StringRef("abc"));
  EXPECT_TRUE(SCL_StringRef() == SCL_StringRef(""));
  EXPECT_TRUE(SCL_equalNoCase("sUBJECT", "Subject"));
  EXPECT_FALSE(SCL_equalNoCase("\xE9", "\xC9"));
  // Letters fold to lower case.
  EXPECT_TRUE(SCL_lessNoCase("_", "AB") && SCL_greaterNoCase("\xC9", "z"));
  EXPECT_EQ(SCL_hashNoCase("Subject"), SCL_hashNoCase("sUBJECT"));
}

// The comparison looks at up to eight bytes at once.
TEST(CaseBlindText, FoldsTheLettersOnlyWhereverTheyStand) {
  for (std::size_t length = 1; length < 18; ++length) {
    for (std::size_t i = 0; i < length; ++i) {
      for (unsigned int c = 0; c < 256; ++c) {
        std::string left(length, 'x');
        std::string right = left;
        left[i] = static_cast<char>(c);
        for (const unsigned int other : {c ^ 0x20U, c ^ 0x80U, c ^ 1U, c}) {
          right[i] = static_cast<char>(other);
          const bool same = SCL_toLower(left[i]) == SCL_toLower(right[i]);
          ASSERT_EQ(SCL_equalNoCase(std::string_view(left), right), same) << left << right;
          ASSERT_EQ(SCL_hashNoCase(left) == SCL_hashNoCase(right), same) << left << right;
        }
      }
    }
  }
}

TEST(StringInteger, IsASignAndDigitsAfterWhiteSpace) {
  EXPECT_TRUE(SCL_isInteger(" -12") && SCL_isInteger("+7"));
  for (const char* bad : {"12 ", "-", "", " ", "+-1", "1a"}) {
    EXPECT_FALSE(SCL_isInteger(bad)) << bad;
  }
}

TEST(StringRange, OutsideReadsAsEmptyAndIsNotReplaced) {
  SCL_String text("abc");
  EXPECT_EQ(text.extract(1, 2).view(), "bc");
  EXPECT_EQ(text.extract(2, 5).view(), "");
  EXPECT_EQ(text.extract(2, 0xFFFFFFFFU).view(), "");
  text.range(3, 0) = "de";
  EXPECT_EQ(state(text), "abcde|5/64");
  text.range(1, 3) = "";
  EXPECT_EQ(state(text), "ae|2/64");
  text.range(1, 1) = textOf(64);
  EXPECT_EQ(text.length() + text.capacity(), 65U + 128U);
  text = "abc";
  const std::string end = "End of substring out of string range. in SCLSTRNG";
  EXPECT_EQ(failureOf([&] { text.range(0, 0) = "x"; }), end);
  EXPECT_EQ(failureOf([&] { text.range(2, 2) = "x"; }), end);
  EXPECT_EQ(failureOf([&] { text.range(2, 0xFFFFFFFEU) = "x"; }), end);
  EXPECT_EQ(failureOf([&] { text.range(4, 0) = "x"; }),
            "Start of substring out of string range. in SCLSTRNG");
}

TEST(StringQuote, GivesTheBytesBack) {
  const std::string_view bytes("a\r\x01\"\xE9", 5);
  SCL_String quoted;
  SCL_quote(bytes.data(), bytes.data() + bytes.size(), quoted);
  EXPECT_EQ(quoted.view(), "\"a\\r\\001\\\"\xE9\"");
  SCL_String plain;
  EXPECT_EQ(SCL_unquote(quoted.c_str(), quoted.c_str() + quoted.length(), plain), 12U);
  EXPECT_EQ(plain.view(), bytes);
}

TEST(StringQuote, EscapesAreTakenAsTheyCome) {
  const auto unquoted = [](std::string_view text) {
    SCL_String plain("old");
    const unsigned int taken = SCL_unquote(text.data(), text.data() + text.size(), plain);
    return std::string(plain.view()) + "@" + std::to_string(taken);
  };
  EXPECT_EQ(unquoted("\"\\999\\101\" rest"),
            "\x91"
            "A@10");  // 657 and 65, modulo 256
  EXPECT_EQ(unquoted("\"\\12\\?\\n\\q\""), "12?\nq@11");
  EXPECT_EQ(unquoted("\"a\\000b\""), "ab@8");
  EXPECT_EQ(unquoted("\"open"), "@0");
  EXPECT_EQ(unquoted("\"open\\\""), "@0");
  EXPECT_EQ(unquoted("\"open\\"), "@0");
  EXPECT_EQ(unquoted("a\""), "@0");
  EXPECT_EQ(unquoted(""), "@0");
}

}  // namespace
