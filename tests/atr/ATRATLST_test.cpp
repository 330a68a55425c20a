// Tests of attributes and their list.
#include "atr/ATRATLST.h"

#include <sstream>

#include "gmock/gmock.h"
#include "scl/FailingMemory.h"
#include "scl/Failure.h"
#include "scl/SCLDUMP.h"

namespace {

std::string shown(const ATR_Attribute* attribute) {
  if (attribute == nullptr) {
    return "none";
  }
  const std::string name(attribute->name().view());
  return attribute->getType() == STRING ? name + "=\"" + attribute->string().c_str() + "\""
                                        : name + "=" + std::to_string(attribute->getInteger());
}

std::string shown(const ATR_AttributeList& list) {
  std::string text;
  for (std::uint16_t i = 0; i < list.count(); ++i) {
    text += (i == 0 ? "" : " ") + shown(list.get(i));
  }
  return text;
}

struct AttributeList : testing::Test, ATR_AttributeList {
  void fill(unsigned int number) {
    for (unsigned int i = 0; i < number; ++i) {
      setInteger(SCL_indexedName("Name", i), i);
    }
  }
  std::string found(const char* name) const { return shown(find(name)); }
};

TEST_F(AttributeList, ValuesChangeTheirTypeInTheirPlace) {
  setInteger("contenttitle", 4294967295U);
  setInteger("Size", 2);
  setString("ContentTitle", "a string that lies outside of its object");
  get(0)->setString(get(0)->string().c_str() + 30);
  add(ATR_Attribute("SIZE", "big"));
  add(*get(0));
  setString("Third", get(1)->string());
  EXPECT_EQ(shown(*this), "contenttitle=\"its object\" Size=\"big\" Third=\"big\"");
  add(ATR_Attribute("Contenttitle", 4294967295U));
  *get(1) = *get(2);
  EXPECT_EQ(shown(*this), "contenttitle=4294967295 Third=\"big\" Third=\"big\"");
  EXPECT_EQ(failureOf([&] { (void)get(0)->getString(); }),
            "Attribute does not have a string value. in ATRATTR");
  EXPECT_EQ(failureOf([&] { (void)get(1)->getInteger(); }),
            "Attribute does not have a integer value. in ATRATTR");
}

TEST_F(AttributeList, MissingMemoryLeavesItAsItWas) {
  fill(17);
  failingAllocation = 1;
  EXPECT_EQ(found("name[16]"), "Name[16]=16");  // there is no memory for an index
  EXPECT_EQ(failingAllocation, 0);
  EXPECT_EQ(found("Name[1]"), "Name[1]=1");
  failingAllocation = 1;
  EXPECT_EQ(failureOf([&] { setString("x", "y"); }), "Null pointer in ATRATLST");
  EXPECT_EQ(count(), 17);
}

TEST_F(AttributeList, RemovesByIndexAndByIdentity) {
  fill(4);
  const ATR_Attribute twin(*get(1));
  remove(&twin);
  remove(nullptr);
  remove(0);
  remove(get(1));
  EXPECT_EQ(shown(*this), "Name[1]=1 Name[3]=3");
  const std::string refused = "Attribute list index out of range. in ATRATLST";
  EXPECT_EQ(failureOf([&] { get(count()); }), refused);
  EXPECT_EQ(failureOf([&] { remove(65536); }), refused);
}

TEST_F(AttributeList, LongListsFindWhatShortOnesFindAfterEveryChange) {
  for (unsigned int number : {16U, 500U, 501U}) {
    clear();
    fill(number);
    setString("New", "y");
    remove(9);
    EXPECT_EQ(found("new") + found("Name[9]"), "New=\"y\"none");
    get(7)->setName("Other");
    EXPECT_EQ(found("Name[7]") + found("OTHER"), "noneOther=7");
    *get(4) = ATR_Attribute("Other", 44U);  // of two of one name the first counts
    EXPECT_EQ(found("other"), "Other=44");
    remove(4);
    EXPECT_EQ(found("other"), "Other=7");
    const ATR_AttributeList copy(*this);
    get(6)->setName("Last");
    remove(6);
    EXPECT_EQ(found("other") + found("last"), "nonenone");
    EXPECT_EQ(shown(copy.find("other")), "Other=7");
  }
}

TEST_F(AttributeList, DumpFollowsTheConvention) {
  setString("a", "text");
  setInteger("b", 7);
  std::ostringstream out;
  SCL_DumpIndent indent(1);
  dump("attrs", out, indent);
  std::string text = out.str();
  for (std::size_t at; (at = text.find(" at 0x")) != std::string::npos;) {
    text.erase(at, text.find(" {", at) - at);
  }
  EXPECT_EQ(text,
            "Dump \"attrs\" which is a \"ATR_AttributeList\" {\n m_num_attr = \"2\"\n"
            " Dump \"m_attrs[0]\" which is a \"ATR_Attribute\" {\n"
            "  m_name = \"a\";\n  m_type = STRING;\n  *m_string = \"text\";\n };\n"
            " Dump \"m_attrs[1]\" which is a \"ATR_Attribute\" {\n"
            "  m_name = \"b\";\n  m_type = INTEGER;\n  m_integer = 7;\n };\n};\n");
}

}  // namespace
