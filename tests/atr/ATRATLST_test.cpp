// Tests of attributes and their list.
#include "atr/ATRATLST.h"

#include <sstream>

#include "gmock/gmock.h"
#include "scl/Failure.h"
#include "scl/SCLDUMP.h"

namespace {

std::string shown(const ATR_Attribute& attribute) {
  return std::string(attribute.name().view()) + "=" +
         (attribute.getType() == STRING ? "\"" + std::string(attribute.string().view()) + "\""
                                        : std::to_string(attribute.getInteger()));
}

std::string shown(const ATR_AttributeList& list) {
  std::string text;
  for (std::uint16_t i = 0; i < list.count(); ++i) {
    text += (i == 0 ? "" : " ") + shown(*list.get(i));
  }
  return text;
}

std::string found(const ATR_AttributeList& list, const char* name) {
  const ATR_Attribute* attribute = list.find(name);
  return attribute != nullptr ? shown(*attribute) : "none";
}

// Long enough to have an index, if `count` says so.
void fill(ATR_AttributeList& list, unsigned int count) {
  for (unsigned int i = 0; i < count; ++i) {
    list.setInteger(SCL_indexedName("Name", i), i);
  }
}

TEST(Attribute, ChangesItsTypeWithItsValue) {
  ATR_Attribute attribute;
  EXPECT_EQ(shown(attribute), "=0");
  attribute.setName("Title");
  attribute.setString("a string that lies outside of its object");
  attribute.setString(attribute.string().c_str() + 2);
  const ATR_Attribute copy(attribute);
  attribute.setInteger(4294967295U);
  EXPECT_EQ(shown(attribute), "Title=4294967295");
  EXPECT_EQ(shown(copy), "Title=\"string that lies outside of its object\"");
  attribute = copy;
  EXPECT_EQ(shown(attribute), shown(copy));
}

TEST(Attribute, RefusesTheOtherType) {
  EXPECT_EQ(failureOf([] { (void)ATR_Attribute("a", 1U).getString(); }),
            "Attribute does not have a string value. in ATRATTR");
  EXPECT_EQ(failureOf([] { (void)ATR_Attribute("a", "b").getInteger(); }),
            "Attribute does not have a integer value. in ATRATTR");
}

TEST(AttributeList, AnAttributeOfTheSameNameIsOverwrittenInItsPlace) {
  ATR_AttributeList list;
  EXPECT_EQ(found(list, "contenttitle"), "none");
  list.setInteger("contenttitle", 1);
  list.setInteger("Size", 2);
  list.setString("ContentTitle", "a");
  list.add(ATR_Attribute("SIZE", "big"));
  EXPECT_EQ(shown(list), "contenttitle=\"a\" Size=\"big\"");
  list.add(*list.get(0));
  list.setString("Size", list.get(1)->string());
  list.setString("Third", list.get(1)->string());
  list.add(ATR_Attribute("SIZE", 3U));
  EXPECT_EQ(shown(list), "contenttitle=\"a\" Size=3 Third=\"big\"");
}

TEST(AttributeList, RemovesByIndexAndByIdentity) {
  ATR_AttributeList list;
  fill(list, 4);
  const ATR_Attribute twin(*list.get(1));
  list.remove(&twin);
  list.remove(nullptr);
  list.remove(0);
  list.remove(list.get(1));
  EXPECT_EQ(shown(list), "Name[1]=1 Name[3]=3");
  const std::string refused = "Attribute list index out of range. in ATRATLST";
  EXPECT_EQ(failureOf([&] { list.get(list.count()); }), refused);
  EXPECT_EQ(failureOf([&] { list.remove(list.count()); }), refused);
  EXPECT_EQ(failureOf([&] { list.remove(65536); }), refused);
}

TEST(AttributeList, ACopyIsIndependent) {
  ATR_AttributeList list;
  fill(list, 40);
  const std::string before = shown(list);
  ATR_AttributeList copy(list);
  copy.setString("name[1]", "changed");
  copy.find("NAME[2]")->setName("Renamed");
  copy.remove(0);
  EXPECT_EQ(shown(list), before);
  copy = list;
  list.clear();
  EXPECT_EQ(shown(copy), before);
  EXPECT_EQ(found(list, "Name[2]"), "none");
}

TEST(AttributeList, LongListsFindWhatShortOnesFindAfterEveryChange) {
  for (unsigned int count : {16U, 17U, 500U}) {
    ATR_AttributeList list;
    fill(list, count);
    EXPECT_EQ(found(list, "Name[7]"), "Name[7]=7");
    list.setString("New", "y");
    list.remove(9);
    EXPECT_EQ(found(list, "new") + found(list, "name[9]"), "New=\"y\"none");
    list.get(7)->setName("Other");
    EXPECT_EQ(found(list, "Name[7]"), "none");
    EXPECT_EQ(found(list, "OTHER"), "Other=7");
    *list.get(4) = ATR_Attribute("Other", 44U);  // of two of one name the first counts
    EXPECT_EQ(found(list, "other"), "Other=44");
    list.remove(4);
    EXPECT_EQ(found(list, "other"), "Other=7");
    list.get(6)->setName("Last");
    list.remove(6);
    EXPECT_EQ(found(list, "other") + found(list, "last"), "nonenone");
  }
}

TEST(AttributeList, TheAttributeAfterTheLastThatCanBeCountedIsRefused) {
  ATR_AttributeList list;
  fill(list, 65535);
  EXPECT_EQ(failureOf([&] { list.setInteger("One more", 1); }), "Index out of range in sclpvec");
  EXPECT_EQ(found(list, "One more"), "none");
  EXPECT_EQ(found(list, "Name[65534]"), "Name[65534]=65534");
}

TEST(AttributeList, DumpFollowsTheConvention) {
  const auto dumped = [](const ATR_AttributeList& list) {
    std::ostringstream out;
    SCL_DumpIndent indent(1);
    list.dump("attrs", out, indent);
    std::string text = out.str();
    for (std::size_t at; (at = text.find(" at 0x")) != std::string::npos;) {
      text.erase(at, text.find(" {", at) - at);
    }
    return text;
  };
  ATR_AttributeList list;
  const std::string header = "Dump \"attrs\" which is a \"ATR_AttributeList\" {\n";
  EXPECT_EQ(dumped(list), header + " m_num_attr = \"0\"\n};\n");
  list.setString("a", "text");
  list.setInteger("b", 7);
  EXPECT_EQ(dumped(list),
            header +
                " m_num_attr = \"2\"\n"
                " Dump \"m_attrs[0]\" which is a \"ATR_Attribute\" {\n"
                "  m_name = \"a\";\n  m_type = STRING;\n  *m_string = \"text\";\n };\n"
                " Dump \"m_attrs[1]\" which is a \"ATR_Attribute\" {\n"
                "  m_name = \"b\";\n  m_type = INTEGER;\n  m_integer = 7;\n };\n"
                "};\n");
}

}  // namespace
