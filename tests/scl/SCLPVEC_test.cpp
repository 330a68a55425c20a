// Tests of the pointer vector and of the string table, its nearest user.
#include "scl/SCLPVEC.h"

#include <sstream>
#include <string>
#include <vector>

#include "gmock/gmock.h"
#include "scl/Failure.h"
#include "scl/SCLDUMP.h"
#include "scl/SCLSTRTB.h"

namespace {

// An element that tells when it goes, and what it then sees of its vector.
struct Element {
  int number;
  std::string* journal = nullptr;
  const SCL_PtrVector<Element>* owner = nullptr;
  ~Element() {
    if (journal != nullptr) {
      *journal += std::to_string(number);
      *journal += owner != nullptr && (*owner)[0] != nullptr ? "!" : " ";
    }
  }
};

std::string numbers(const SCL_PtrVector<Element>& vector) {
  std::string text;
  for (unsigned int i = 0; i < vector.count(); ++i) {
    text += vector[i] != nullptr ? std::to_string(vector[i]->number) : "-";
  }
  return text + "/" + std::to_string(vector.capacity());
}

TEST(PtrVector, TheEleventhElementMakesTwelveSlots) {
  SCL_PtrVector<Element> vector;
  for (int i = 0; i < 10; ++i) {
    vector.append(new Element{i});
  }
  EXPECT_EQ(numbers(vector), "0123456789/10");
  vector.append(new Element{9});
  EXPECT_EQ(numbers(vector), "01234567899/12");
}

TEST(PtrVector, SlotsBeyondTheCapacityReadAsNullAndGrowWhenTouched) {
  SCL_PtrVector<Element> vector(0);
  EXPECT_EQ(vector.capacity(), 0U);
  EXPECT_EQ(vector[70000], nullptr);
  vector.slot(3) = new Element{3};
  EXPECT_EQ(vector.capacity(), 5U);
  vector.setCount(4);
  EXPECT_EQ(numbers(vector), "---3/5");
}

TEST(PtrVector, InsertAndTakeKeepTheOrder) {
  SCL_PtrVector<Element> vector(2);
  for (int i : {1, 2, 3}) {
    vector.insert(0, std::make_unique<Element>(Element{i}));
  }
  vector.insert(3, std::make_unique<Element>(Element{9}));
  EXPECT_EQ(numbers(vector), "3219/4");
  EXPECT_EQ(vector.take(1)->number, 2);
  EXPECT_EQ(numbers(vector), "319/4");
}

TEST(PtrVector, ElementsGoInOrderAndDoNotFindThemselves) {
  std::string journal;
  SCL_PtrVector<Element> vector;
  vector.append(new Element{1, &journal, &vector});
  vector.append(new Element{2, &journal, &vector});
  vector.clear();
  EXPECT_EQ(journal + numbers(vector), "1 2 /10");
}

TEST(PtrVector, TheElementAfterTheLastThatCanBeCountedIsRefused) {
  SCL_PtrVector<Element> vector;
  for (int i = 0; i < 65535; ++i) {
    vector.append(new Element{i});
  }
  std::string journal;
  EXPECT_EQ(failureOf([&] {
              vector.append(new Element{0, &journal});
            }),
            "Index out of range in sclpvec");
  EXPECT_EQ(journal, "0 ");  // not leaked
  EXPECT_EQ(vector.count(), 65535);
}

TEST(StringTable, IndexesStopAtTheCount) {
  SCL_StringTable table;
  table.add("a");
  table.add("b");
  table.add(table.get(0));
  table.set(1, table.get(2));
  SCL_StringTable copy(table);
  table.clear();
  EXPECT_EQ(copy.get(1).view(), "a");
  const std::string refused = "String table index out of range. in SCLSTRTB";
  EXPECT_EQ(failureOf([&] { copy.get(3); }), refused);
  EXPECT_EQ(failureOf([&] { table.set(0, "x"); }), refused);
}

TEST(StringTable, DumpFollowsTheConvention) {
  SCL_StringTable table;
  table.add("a\"b");
  table.add("");
  std::ostringstream out;
  SCL_DumpIndent indent(2);
  indent.enter();
  table.dump("names", out, indent);
  EXPECT_EQ(out.str(), "  Dump \"names\" which is a \"SCL_StringTable\" at " +
                           testing::PrintToString(static_cast<const void*>(&table)) +
                           " {\n    m_num_str = 2;\n    m_strings[0] = \"a\"b\"\n"
                           "    m_strings[1] = \"\"\n  };\n");
}

}  // namespace
