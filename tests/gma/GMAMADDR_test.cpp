// Addresses, and their table with its index.
#include "gma/Support.h"

namespace {

std::string parsed(const char* text) {
  GMA_Maddr address(gma::TOADDR, "old", "place");
  unsigned int status = 0;
  address.parse(text, status);
  return (status == 0 ? "" : std::to_string(status) + " ") + std::string(address.getUser()) + "|" +
         std::string(address.getLocation());
}

std::uint32_t readType(const std::string& text) {
  return gmatest::typeIn(text, gma::readAddressType);
}

// Equal to every other address of its location: wider than the index could follow.
class Domain : public GMA_Maddr {
 public:
  using GMA_Maddr::GMA_Maddr;
  GMA_Maddr* clone() const override { return new Domain(*this); }
  bool equals(const GMA_Maddr& other) const override {
    return getLocation() == other.getLocation();
  }
};

class AddressTable : public testing::Test {
 protected:
  // Long enough to be indexed.
  void fill(unsigned int count = 100) {
    for (unsigned int i = 0; i < count; ++i) {
      table.add(user(i));
    }
  }
  static GMA_Maddr user(unsigned int i) {
    return GMA_Maddr(gma::BCCADDR, std::to_string(i).c_str(), "example");
  }
  static GMA_Maddr to(const char* name, const char* location = "example") {
    return GMA_Maddr(gma::TOADDR, name, location);
  }

  GMA_MaddrTable table;
};

}  // namespace

TEST(Address, ParsesUserAndLocation) {
  EXPECT_EQ(parsed("  joe@example\t"), "joe|example");
  EXPECT_EQ(parsed("@host"), "|host");
  EXPECT_EQ(parsed("a@b@c"), "a|b@c");
  EXPECT_EQ(parsed("a@"), "a|");
  EXPECT_EQ(parsed("\"x@y\"@c"), "x@y|c");
  EXPECT_EQ(parsed("a@\"b c\""), "a|b c");
}

TEST(Address, ATextOfAnotherFormLeavesItAsItWas) {
  for (const char* text :
       {"joe", "", "   ", "\"joe\"", "\"joe\"x@c", "\"joe@c", "a@\"b\"c", "a@\"b"}) {
    EXPECT_EQ(parsed(text), "10132 old|place") << text;
  }
}

TEST(Address, PartsWithAtOrBlankAreComposedInQuotes) {
  SCL_String text;
  GMA_Maddr(gma::TOADDR, "x@y", "b c").composeText(text);
  EXPECT_EQ(std::string(text), "\"x@y\"@\"b c\"");
  GMA_Maddr address(gma::TOADDR, "", "host");
  EXPECT_EQ(gmatest::textOf(address), "@host");
  address.setOriginal("Host <@host>");
  EXPECT_EQ(gmatest::textOf(address), "Host <@host>");
  address.composeText(text);
  EXPECT_EQ(std::string(text), "@host");
}

TEST(AddressTypes, OnlyNamedTypesAreReadAndWritten) {
  for (const std::uint32_t type : {0U, 1U, 2U, 4U, 8U, 18U, 20U, 24U, 34U, 36U, 40U, 66U, 128U}) {
    EXPECT_EQ(readType(gma::addressTypeName(type)), type);
  }
  EXPECT_EQ(readType("toaddr"), 255U);
  EXPECT_EQ(failureOf([] { gma::addressTypeName(gma::RESENTFROMADDR); }),
            "Bad value in switch in GMAMADDR");
  const std::string refused = "Inappropriate address type supplied. in GMAMADDR";
  EXPECT_EQ(failureOf([] { GMA_Maddr(255, "a", "b"); }), refused);
  EXPECT_EQ(failureOf([] { GMA_Maddr().setType(255); }), refused);
}

TEST_F(AddressTable, AnEqualAddressIsNotAddedTwice) {
  for (unsigned int length : {0U, 100U}) {
    fill(length);
    table.add(to("joe"));
    table.add(to("JOE", "Example"));
    table.add(GMA_Maddr(gma::CCADDR, "joe", "example"));
    table.add(*table.get(0));
    EXPECT_EQ(table.count(), length + 2);
    EXPECT_EQ(table.find(to("Joe")), table.get(static_cast<std::uint16_t>(length)));
    table.clear();
  }
  EXPECT_EQ(failureOf([&] { table.get(0); }), "Address table index out of range. in GMAMADRT");
}

TEST_F(AddressTable, ChangesThroughAPointerAreNoticed) {
  fill();
  GMA_Maddr* const kept = table.get(50);
  EXPECT_TRUE(table.contains(user(50)));
  kept->setUser("new");
  EXPECT_FALSE(table.contains(user(50)));
  kept->setType(gma::TOADDR);
  EXPECT_EQ(table.find(to("new")), kept);
  *kept = to("newer");
  EXPECT_EQ(table.find(to("newer")), kept);
  unsigned int status = 0;
  kept->parse("newest@home", status);
  EXPECT_EQ(table.find(to("newest", "home")), kept);
  EXPECT_EQ(table.find(user(99)), table.get(99));
}

TEST_F(AddressTable, OfEqualEntriesTheFirstIsFound) {
  fill();
  *table.get(70) = user(30);
  *table.get(10) = user(30);
  EXPECT_EQ(table.find(user(30)), table.get(10));  // compared one by one after the change
  EXPECT_EQ(table.find(user(30)), table.get(10));  // and by the index
}

TEST_F(AddressTable, ACopyKeepsEqualEntriesAndAnAssignmentDoesNot) {
  fill();
  *table.get(1) = user(0);
  const GMA_MaddrTable copy(table);
  GMA_MaddrTable assigned;
  assigned = table;
  EXPECT_EQ(copy.count(), 100);
  EXPECT_EQ(assigned.count(), 99);
  table.get(0)->setUser("changed");
  EXPECT_TRUE(copy.contains(user(0)));
}

TEST_F(AddressTable, ACopyThatCannotBeMadeIsAnAssertion) {
  struct Uncopied : GMA_Maddr {
    GMA_Maddr* clone() const override { return nullptr; }
  };
  EXPECT_EQ(failureOf([&] { table.add(Uncopied()); }), "Null pointer in GMAMADRT");
  EXPECT_EQ(table.count(), 0);
}

TEST_F(AddressTable, AnEqualityOfItsOwnIsRespectedInLongTables) {
  fill();
  EXPECT_TRUE(table.contains(Domain(gma::AMUADDR, "any", "example")));
  table.add(Domain(gma::TOADDR, "any", "elsewhere"));
  EXPECT_TRUE(table.contains(to("joe", "elsewhere")));
}

TEST_F(AddressTable, HoldsAsManyAddressesAsCanBeCounted) {
  for (unsigned int i = 0; i < 65535; ++i) {
    table.add(user(i));
    table.get(static_cast<std::uint16_t>(i / 2));  // looking at entries costs no index
  }
  table.add(user(17));
  EXPECT_EQ(failureOf([&] { table.add(to("one more")); }), "Index out of range in sclpvec");
  EXPECT_EQ(table.count(), 65535);
}
