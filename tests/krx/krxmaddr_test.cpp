#include "krx/krxmaddr.h"

#include <gtest/gtest.h>

namespace {

// "user|location", with "relayed " or "status N" in front when there is something to tell.
std::string parse(const std::string& text, const char* domain = "dflt") {
  unsigned int status = 0;
  const KRX_Maddr address(gma::BCCADDR, text.c_str(), domain, status);
  const std::string parts =
      std::string(address.getUser().c_str()) + "|" + address.getLocation().c_str();
  if (status == 11925) {
    return "relayed " + parts;
  }
  if (status != 0) {
    SCL_String left;
    address.getText(left);
    return "status " + std::to_string(status) + " " + parts + " " + left.c_str();
  }
  return parts;
}

TEST(KRX_Maddr, PlainAndRouteAddressesGiveUserAndLocation) {
  EXPECT_EQ(parse("user"), "user|dflt");
  EXPECT_EQ(parse("user", ""), "user|");
  EXPECT_EQ(parse("ann@site"), "ann|site");
  EXPECT_EQ(parse("Ann Lee <ann@site>"), "ann|site");
  EXPECT_EQ(parse("<@hub1,@hub2:jane@site>"), "jane|site");
  EXPECT_EQ(parse("first . last @ some . site (comment)"), "first.last|some.site");
  EXPECT_EQ(parse("\"J Smith\"@site"), "J Smith|site");
  EXPECT_EQ(parse("a@b@c"), "a|b@c");
  EXPECT_EQ(parse("a@[192.0.2.1]"), "a|[192.0.2.1]");
}

TEST(KRX_Maddr, RelayedFormsAreUndoneAndReported) {
  EXPECT_EQ(parse("hostA!hostB!bob@gateway"), "relayed bob|gateway");
  EXPECT_EQ(parse("alice%inner@relay"), "relayed alice|inner");
  EXPECT_EQ(parse("alice%inner%more@relay"), "relayed alice|inner");
  EXPECT_EQ(parse("host!alice%inner@relay"), "relayed alice|inner");
}

TEST(KRX_Maddr, X400AttributeListsGiveANameOrAnotherAddress) {
  EXPECT_EQ(parse("/G=Ann/S=Lee@x400gw"), "Ann.Lee|x400gw");
  EXPECT_EQ(parse("/g=John/i=RQ/s=Smith/O=x@gw"), "John.R.Q.Smith|gw");
  EXPECT_EQ(parse("/S=Smith@gw"), "Smith|gw");
  EXPECT_EQ(parse("/PN=John Smith@gw"), "John Smith|gw");
  EXPECT_EQ(parse("/O=only/C=other@gw"), "/O=only/C=other|gw");
  EXPECT_EQ(parse("/@gw"), "/|gw");
  EXPECT_EQ(parse("/RFC-822=ann(a)site@x400gw"), "ann|site");
  EXPECT_EQ(parse("/RFC-822=bob(p)inner(a)relay@gw"), "relayed bob|inner");
}

TEST(KRX_Maddr, EightNestedAddressesAreTakenApartAndTheNinthIsRefused) {
  std::string nested = "ann(a)site";
  for (int level = 1; level <= 9; ++level) {
    EXPECT_EQ(parse("/RFC-822=" + nested + "@gw"), level <= 8 ? "ann|site" : "status 10132 | @");
    std::string inner;
    for (const char c : "/RFC-822=" + nested) {  // as a value: parentheses and slashes escaped
      inner += c == '(' ? "(l)" : c == ')' ? "(r)" : c == '/' ? "(047)" : std::string(1, c);
    }
    nested = inner + "(a)g";
  }
}

TEST(KRX_Maddr, WhatIsNoAddressIsRefusedAndLeavesNoText) {
  for (const char* text : {"", "  ", "(only a comment)", "<>", "<postmaster>", "<a@b", "<", "@host",
                           "\"open", "(open", "[open", "<a:>"}) {
    EXPECT_EQ(parse(text), "status 10132 | @") << text;
  }
  EXPECT_EQ(parse("\"\"@site"), "|site");
  unsigned int status = 0;
  KRX_Maddr address(gma::FROMADDR, "ann@site", status);
  address.parse("<>", status);
  SCL_String left;
  address.getText(left);
  EXPECT_EQ(left, "@");
}

TEST(KRX_Maddr, TextIsTheOriginalElseComposedWithoutQuoting) {
  unsigned int status = 0;
  KRX_Maddr address(gma::FROMADDR, "Ann <ann@site>", status);
  SCL_String text;
  address.getText(text);
  EXPECT_EQ(text, "Ann <ann@site>");
  address.setOriginal("");
  address.setUser("a b");
  address.getText(text);
  EXPECT_EQ(text, "a b@site");
}

TEST(KRX_Maddr, CopiesLeaveTheDefaultDomainBehind) {
  unsigned int status = 0;
  const KRX_Maddr address(gma::FROMADDR, "ann", "home", status);
  const std::unique_ptr<GMA_Maddr> clone(address.clone());
  clone->parse("bob", status);
  EXPECT_EQ(clone->getLocation(), "");
  KRX_Maddr other(gma::FROMADDR, "x", "kept", status);
  other = address;
  other.parse("carol", status);
  EXPECT_EQ(other.getLocation(), "kept");
}

}  // namespace
