// The data access object: slots, cursor, attributes, children, copies.
#include "dac/DACBASDA.h"

#include <sstream>

#include "dac/Content.h"
#include "dac/DACPTRDA.h"
#include "gen/GENCODES.h"
#include "scl/Failure.h"
#include "scl/SCLDUMP.h"

namespace {

using DAC = DAC_BaseDataAccess;

// The places of virtual operations in the table of their class.
template <class... Operations>
std::vector<std::size_t> placesOf(Operations... operations) {
  const auto placeOf = [](auto operation) {
    std::size_t place = 0;
    std::memcpy(&place, &operation, sizeof place);
    return place / sizeof(void*);
  };
  return {placeOf(operations)...};
}

// 0, 1, ... without the two places of the destructor at `destructor`.
std::vector<std::size_t> inOrder(std::size_t destructor, std::size_t count) {
  std::vector<std::size_t> places(count);
  for (std::size_t i = 0; i < count; ++i) {
    places[i] = i < destructor ? i : i + 2;
  }
  return places;
}

TEST(Slots, StandInTheInterfacesOrder) {
  using S = DAC_Stream;
  EXPECT_EQ(placesOf(&S::size, &S::setSize, &S::read, &S::readLine, &S::write, &S::writeLine,
                     &S::fill, &S::getChar, &S::putChar, &S::flush),
            inOrder(0, 10));
  EXPECT_EQ(placesOf(&DAC::getIntegerAttribute, &DAC::getStringAttribute, &DAC::size, &DAC::setSize,
                     &DAC::setPosition, &DAC::seek, &DAC::readAt, &DAC::read, &DAC::readLineAt,
                     &DAC::readLine, &DAC::writeAt, &DAC::write, &DAC::writeLineAt, &DAC::writeLine,
                     &DAC::getPosition, &DAC::fill, &DAC::getCharAt, &DAC::getChar, &DAC::peekChar,
                     &DAC::putCharAt, &DAC::putChar, &DAC::flush, &DAC::reservedHook,
                     &DAC::hasChildren, &DAC::childCount, &DAC::getChild, &DAC::addChild,
                     &DAC::setChild, &DAC::insertChild, &DAC::detachChild, &DAC::getFileName,
                     &DAC::setIntegerAttribute, &DAC::setStringAttribute, &DAC::findAttribute,
                     &DAC::lookupIntegerAttribute, &DAC::lookupStringAttribute,
                     &DAC::getInheritedIntegerAttribute, &DAC::getInheritedStringAttribute,
                     &DAC::firstAttribute, &DAC::nextAttribute, &DAC::dump),
            inOrder(2, 41));
}

class AccessTest : public testing::Test {
 protected:
  // The status of an operation that begins without one.
  template <class Operation>
  unsigned int statusOf(Operation&& operation) {
    unsigned int status = 0;
    operation(status);
    return status;
  }
  static DAC* named(const char* name) {
    auto* object = new MemoryAccess;
    object->setStringAttribute("name", name);
    return object;
  }
  // "a,-,b": the names of the children, each asked of its own attributes; "!" for a wrong parent.
  std::string childrenOf(DAC& object) {
    std::string names;
    for (std::uint32_t i = 0; i < object.childCount(m_status); ++i) {
      DAC* child = object.getChild(i, m_status);
      names += i > 0 ? "," : "";
      names += child == nullptr             ? "-"
               : child->parent() != &object ? "!"
                                            : child->findAttribute("name")->string().c_str();
    }
    return names;
  }
  std::string attributesOf(DAC& object) {
    std::string names;
    for (auto* a = object.firstAttribute(); a != nullptr; a = object.nextAttribute()) {
      names += std::string(a->name()) + "=" + a->string().c_str() + " ";
    }
    return names;
  }

  MemoryAccess m_object{"abc"};
  unsigned int m_status = 0;
};

TEST_F(AccessTest, SeekStaysInsideWhatPositionsReach) {
  EXPECT_EQ(m_object.seek(DAC::FROM_END, -1, m_status), 2);
  EXPECT_EQ(m_object.peekChar(m_status), 'c');
  EXPECT_EQ(m_object.seek(DAC::FROM_CURSOR, 2, m_status), 4);
  EXPECT_EQ(statusOf([&](auto& s) { m_object.seek(DAC::FROM_END, -4, s); }), 10017U);
  EXPECT_EQ(statusOf([&](auto& s) { m_object.seek(DAC::FROM_CURSOR, 2147483647, s); }), 10017U);
  EXPECT_EQ(m_object.getPosition(), 4);
  EXPECT_EQ(m_object.seek(7, -5, m_status), -5);
  EXPECT_EQ(m_status, 0U);
}

TEST_F(AccessTest, WithoutAStreamContentIsAnAssertion) {
  DAC empty;
  EXPECT_EQ(failureOf([&] { empty.size(m_status); }), "Null pointer in DACBASDA");
  EXPECT_EQ(failureOf([&] { DAC object(nullptr); }), "Null pointer in DACBASDA");
  EXPECT_EQ(failureOf([&] { empty.addChild(nullptr, m_status); }), "Null pointer in DACBASDA");
  EXPECT_EQ(empty.lineCount(), 0U);
  m_status = DAC_END;
  EXPECT_EQ(empty.size(m_status), 0);
  EXPECT_EQ(m_object.stream()->size(m_status), 3) << "the memory stream answers nevertheless";
}

TEST_F(AccessTest, AttributesAreOfOneKind) {
  m_object.setIntegerAttribute("Size", 7);
  SCL_String text("old");
  EXPECT_EQ(statusOf([&](auto& s) { m_object.getStringAttribute("SIZE", text, s); }), 10040U);
  EXPECT_TRUE(text.isEmpty());
  std::uint32_t number = 1;
  m_object.getIntegerAttribute("size", number, m_status);
  EXPECT_EQ(number, 7U);
  EXPECT_EQ(statusOf([&](auto& s) { m_object.getIntegerAttribute("none", number, s); }), 10039U);
  m_status = DAC_END;
  number = 5;
  m_object.lookupIntegerAttribute("size", number, m_status);
  EXPECT_EQ(number, 5U);
  m_object.getIntegerAttribute("size", number, m_status);
  EXPECT_EQ(number, 0U);
  text = "old";
  m_object.lookupStringAttribute("size", text, m_status);
  EXPECT_EQ(text, SCL_StringRef("old"));
  m_object.getStringAttribute("size", text, m_status);
  EXPECT_TRUE(text.isEmpty());
}

TEST_F(AccessTest, InheritedAttributesComeFromTheNearestParent) {
  DAC* middle = m_object.addChild(new MemoryAccess, m_status);
  DAC* child = middle->addChild(new MemoryAccess, m_status);
  m_object.setStringAttribute("a", "top");
  m_object.setIntegerAttribute("b", 3);
  middle->setStringAttribute("a", "middle");
  SCL_String text;
  child->getInheritedStringAttribute("a", text, m_status);
  EXPECT_EQ(text, SCL_StringRef("middle"));
  EXPECT_EQ(statusOf([&](auto& s) { child->getInheritedStringAttribute("c", text, s); }), 10039U);
  EXPECT_EQ(statusOf([&](auto& s) { child->getInheritedStringAttribute("b", text, s); }), 10040U);
}

TEST_F(AccessTest, ChildrenAreInsertedInsideAndBeyond) {
  EXPECT_EQ(statusOf([&](auto& s) { m_object.getChild(0, s); }), 10010U);
  m_object.addChild(named("a"), m_status);
  m_object.addChild(named("b"), m_status);
  m_object.insertChild(1, named("x"), m_status);
  EXPECT_EQ(childrenOf(m_object), "a,x,b");
  m_object.insertChild(5, named("y"), m_status);
  EXPECT_EQ(childrenOf(m_object), "a,x,b,-,-,y");
  EXPECT_EQ(statusOf([&](auto& s) { m_object.getChild(6, s); }), 10015U);
  delete m_object.getChild(2, m_status);  // stands elsewhere than where it was added
  EXPECT_EQ(childrenOf(m_object), "a,x,-,-,-,y");
  MemoryAccess tooFar;
  EXPECT_EQ(failureOf([&] { m_object.insertChild(4000000000U, &tooFar, m_status); }),
            "Null pointer in DACBASDA");
}

TEST_F(AccessTest, LooseChildrenForgetTheirParent) {
  auto parent = std::make_unique<MemoryAccess>();
  const std::unique_ptr<DAC> detached(parent->addChild(named("a"), m_status));
  const std::unique_ptr<DAC> replaced(parent->addChild(named("b"), m_status));
  parent->detachChild(0, m_status);
  parent->setChild(1, named("c"), m_status);
  EXPECT_EQ(childrenOf(*parent), "-,c");
  parent.reset();
  EXPECT_EQ(detached->parent(), nullptr);
  EXPECT_EQ(replaced->parent(), nullptr);
}

// Makes the two kinds of successor.
class Successor : public DAC {
 public:
  explicit Successor(const DAC& source) : DAC(CopyOf(), source) {}
  explicit Successor(DAC* other) : DAC(Replace(), other) {}
};

TEST_F(AccessTest, ReplacingObjectTakesPlaceContentAndChildren) {
  m_object.addChild(named("a"), m_status);
  DAC* old = m_object.addChild(named("b"), m_status);
  old->addChild(named("c"), m_status);
  old->write(2, "xy", m_status);
  auto* next = new Successor(old);
  EXPECT_EQ(childrenOf(m_object) + "/" + childrenOf(*next), "a,b/c");
  EXPECT_EQ(m_object.getChild(1, m_status), next);
  EXPECT_EQ(contentOf(*next), "xy");
  EXPECT_EQ(next->getPosition(), 2);
  EXPECT_EQ(next->stream()->references(), 1);
}

TEST_F(AccessTest, CopyHasNoSlotAndOutlivesItsSourcesParent) {
  auto parent = std::make_unique<MemoryAccess>();
  DAC* source = parent->addChild(named("a"), m_status);
  Successor view(*source);
  source->setStringAttribute("name", "changed");
  EXPECT_EQ(view.parent(), parent.get());
  EXPECT_EQ(view.findAttribute("name")->string(), SCL_StringRef("a"));
  parent.reset();
  EXPECT_EQ(view.stream()->references(), 1);
}

TEST_F(AccessTest, UnterminatedLastLineCountsByTheKind) {
  EXPECT_EQ(MemoryAccess("a\nb").lineCount(), 1U);
  EXPECT_EQ(StreamAccess(new PartlyReadyStream(99, true), "a\nb").lineCount(), 2U);
  m_object.setPosition(2, m_status);
  m_object.lineCount();
  EXPECT_EQ(m_object.getPosition(), 2);
}

TEST_F(AccessTest, CopiesGoWhereTheCursorStands) {
  MemoryAccess destination("0123456789");
  destination.setPosition(8, m_status);
  m_object.copyTo(&destination, 1, m_status);
  EXPECT_EQ(contentOf(destination), "01234567bc");
  m_object.copyTo(&m_object, 0, m_status);
  m_object.copyAllTo(&destination, 0, m_status);
  EXPECT_EQ(contentOf(destination), "abc");
  DAC_PointerDataAccess same(m_object);
  m_object.copyAllTo(&same, 0, m_status);
  EXPECT_EQ(contentOf(m_object), "abc");
  m_object.copyTo(&destination, 5, m_status);
  m_object.copyTo(nullptr, 0, m_status);
  EXPECT_EQ(m_status, 0U);
  m_object.copyTo(&destination, -1, m_status);
  EXPECT_EQ(std::exchange(m_status, 0), DAC_NEGATIVE_POSITION);
  destination.setPosition(2147483646, m_status);
  m_object.copyTo(&destination, 0, m_status);
  EXPECT_EQ(m_status, DAC_NO_MEMORY);
}

TEST_F(AccessTest, PointerSharesContentButNotNewAttributes) {
  DAC_PointerDataAccess pointer(m_object);
  m_object.setStringAttribute("a", "referred");
  m_object.setStringAttribute("b", "referred");
  pointer.setStringAttribute("b", "own");
  pointer.setStringAttribute("c", "own");
  SCL_String value;
  pointer.getStringAttribute("a", value, m_status);
  EXPECT_EQ(value, SCL_StringRef("referred"));
  EXPECT_EQ(attributesOf(pointer), "a=referred b=referred b=own c=own ");
  EXPECT_EQ(attributesOf(m_object), "a=referred b=referred ");
  pointer.setPosition(2, m_status);
  EXPECT_EQ(m_object.getChar(m_status), 'c');
  pointer.addChild(named("x"), m_status);
  EXPECT_EQ(pointer.childCount(m_status), 1U);
  EXPECT_FALSE(pointer.hasChildren(m_status));
  const std::unique_ptr<DAC> other(named("y"));
  pointer.setChild(0, other.get(), m_status);
  EXPECT_NE(m_object.getChild(0, m_status), other.get()) << "it has no such child of its own";
}

TEST_F(AccessTest, DumpShowsAttributesAndChildren) {
  m_object.setIntegerAttribute("n", 1);
  m_object.insertChild(1, new MemoryAccess, m_status);
  std::ostringstream stream;
  SCL_DumpIndent indent(1);
  m_object.dump("x", stream, indent);
  EXPECT_THAT(stream.str(),
              testing::MatchesRegex("Dump \"x\" which is a \"DAC_BaseDataAccess\" at [^\n]* \\{\n"
                                    " m_Modified - TRUE\n m_CurPos = 0\n Attributes\n"
                                    " Dump \"attribute\\[0\\]=\" which (.|\n)*"
                                    " m_CurAttr = 1\n DACList\n"
                                    " Dump \"DACList\\[1\\]=\" which (.|\n)*\n };\n};\n"));
}

}  // namespace
