// Headers, their types, their table, and the header map.
#include "gma/GMAHDRMP.h"
#include "gma/GMAMHDRT.h"
#include "gma/Support.h"

namespace {

std::uint32_t readType(const std::string& text) {
  return gmatest::typeIn(text, gma::readHeaderType);
}

std::string valueOf(std::initializer_list<const char*> lines) {
  GMA_Mhdr header(gma::SUBJECT, SCL_StringTable());
  for (const char* line : lines) {
    header.value().add(line);
  }
  SCL_String text("old");
  header.getValueText(text);
  return std::string(text);
}

std::string typesOf(const GMA_MhdrTable& table) {
  std::string text;
  for (std::uint16_t i = 0; i < table.count(); ++i) {
    text += std::to_string(table.get(i)->type()) + " ";
  }
  return text;
}

}  // namespace

TEST(HeaderTypes, EveryNameReadsBackAsItsOwnCode) {
  for (std::uint32_t type = 0; type <= 122; ++type) {
    EXPECT_EQ(readType(gma::headerTypeName(type)), type);
  }
}

TEST(HeaderTypes, NamesStandAtTheirCodes) {
  std::string names;
  for (const std::uint32_t type : {3U, 15U, 26U, 32U, 45U, 59U, 69U, 78U, 89U, 99U, 102U, 122U}) {
    names += std::string(gma::headerTypeName(type)) + " ";
  }
  EXPECT_EQ(names,
            "RESENTDATE PRIORITY CUSTOM RECIPIENT COMMAND DSUSER RESENT_TO Content-Type "
            "RCPMESSAGEID Conversion-With-Loss Discarded-X400-MTS-Extensions FTBP-Read-Date ");
}

TEST(HeaderTypes, OtherWordsAreNoTypeAndOtherCodesHaveNoName) {
  EXPECT_EQ(readType("  Content-Type rest"), 78U);
  EXPECT_EQ(readType("content-type"), 163U);
  EXPECT_EQ(readType(""), 163U);
  for (const std::uint32_t type : {123U, 130U, 163U, 4294967295U}) {
    EXPECT_EQ(failureOf([&] { gma::headerTypeName(type); }), "Bad value in switch in GMAMHDR");
  }
}

TEST(Header, LinesAreJoinedWithOneBlankUnlessTheyBeginWithOne) {
  EXPECT_EQ(valueOf({"Hello", " world"}), "Hello world");
  EXPECT_EQ(valueOf({"Hello", "world"}), "Hello world");
  EXPECT_EQ(valueOf({"", "a", "", "\tb"}), "a \tb");
  EXPECT_EQ(valueOf({}), "");
}

TEST(HeaderTable, CopiesAreIndependent) {
  GMA_MhdrTable table;
  table.add(GMA_Mhdr(gma::SUBJECT, "a"));
  GMA_MhdrTable copy(table);
  copy.get(0)->value().set(0, "b");
  copy = copy;
  EXPECT_EQ(std::string(table.get(0)->firstLine()) + std::string(copy.get(0)->firstLine()), "ab");
}

TEST(HeaderTable, RemovingClosesTheGap) {
  GMA_MhdrTable table;
  for (const std::uint32_t type : {15U, 0U, 15U, 1U, 2U}) {
    table.add(GMA_Mhdr(type, "x"));
  }
  EXPECT_EQ(table.findByType(gma::PRIORITY), table.get(0));
  EXPECT_EQ(table.findByType(99), nullptr);
  table.remove(0);
  const GMA_Mhdr stranger(gma::SUBJECT, "x");
  table.remove(&stranger);
  table.remove(table.get(1));
  EXPECT_EQ(typesOf(table), "0 1 2 ");
  table.truncate(1);
  EXPECT_EQ(typesOf(table), "0 ");
  for (const int index : {1, -1, 65536}) {
    EXPECT_EQ(failureOf([&] { table.remove(index); }),
              "Header table index out of range. in GMAMHDRT");
  }
  EXPECT_EQ(failureOf([&] { table.get(1); }), "Header table index out of range. in GMAMHDRT");
}

TEST(HeaderMap, TheFirstMappingThatFitsCounts) {
  GMA_HdrMap map;
  map.addMapping("Subject", gma::SUBJECT);
  map.addMapping("To", gma::TO);
  map.addMapping("Apparently-To", gma::TO);
  map.addMapping("to", gma::CC);
  EXPECT_EQ(map.typeForName("SUBJECT"), 0U);
  EXPECT_EQ(map.typeForName("TO"), 28U);
  EXPECT_EQ(map.typeForName("Subj"), 46U);
  EXPECT_EQ(std::string(map.nameForType(gma::TO)), "To");
  EXPECT_EQ(std::string(map.nameForType(gma::BCC)), "");
}
