// Tests of a profile in memory: what its lines mean, walking, finding, changing.
#include "gen/GENCATCH.h"
#include "pfa/ProfileTest.h"
#include "scl/FailingMemory.h"

namespace {

class ProfileLines : public ProfileTest {
 protected:
  std::string read(const std::string& text, bool writable = false) {
    PFA_Profile profile;
    const unsigned int status = open(profile, text, writable);
    return status == 0 ? contents(profile) : std::to_string(status);
  }
};

TEST_F(ProfileLines, SectionsAreFoundWhateverTheirCaseAndBlanks) {
  PFA_Profile profile;
  ASSERT_EQ(open(profile, "[  Main Post ] \r\nA=1\r\n[b]x]\n[Empty]\n", false), 0U);
  EXPECT_EQ(profile.selectSection("main post"), 0U);
  EXPECT_EQ(value(profile, 1), "1");
  EXPECT_EQ(profile.selectSection(" B]X "), 0U);
  EXPECT_EQ(profile.nextEntry(true), 1824U);
  EXPECT_EQ(profile.selectSection("mainpost"), 1830U);
  EXPECT_EQ(profile.nextEntry(true), 1829U);
  EXPECT_THAT(profile.sectionNames(), testing::ElementsAre("Main Post", "b]x", "Empty"));
}

TEST_F(ProfileLines, NamesLoseTheirBlanksValuesKeepThem) {
  PFA_Profile profile;
  ASSERT_EQ(open(profile, "[S]\n Source  Dir : 3 = a b , ,c = d \nbare\nx,1", false), 0U);
  ASSERT_EQ(profile.selectSection("S"), 0U);
  EXPECT_EQ(contents(profile), "[S] bare|x,1|SourceDir:3= a b , ,c = d |1823");
  profile.selectSection("S");
  EXPECT_EQ(profile.findEntry("Source Dir", 3), 0U);
  EXPECT_EQ(profile.findEntry("sourcedir", 3) + profile.findEntry("SourceDir", 0), 2 * 1831U);
  EXPECT_EQ(value(profile, 1) + "," + value(profile, 2) + "," + value(profile, 3), "a b,,c = d");
  EXPECT_EQ(value(profile, 0) + value(profile, 4), "SourceDir(1841)");
  char name[20];
  EXPECT_EQ(profile.entryName(name, sizeof name), 1834U);
  EXPECT_EQ(value(profile, 1, "bare") + value(profile, 1, "x"), "(1841)1");
}

TEST_F(ProfileLines, EntriesStandInTheOrderOfTheirIndexes) {
  EXPECT_EQ(read("g:70000=7\nb:2=1\na=2\n;of a\nc:10=3\n;of c\nd:2=4\ne:x=5\nf:123456=6\n", true),
            "[] a=2|;of a|e:x=5|b:2=1|d:2=4|c:10=3|;of c|f:123456=6|g:70000=7|1823");
}

TEST_F(ProfileLines, OverlongLinesAreReadAsSeveral) {
  const std::string name(254, 'n');
  EXPECT_EQ(read(name + "=  [x]\nb=1\n"), "[] " + name + "=|[x] b=1|1823");
}

TEST_F(ProfileLines, AHeaderWithoutItsBracketIsRefused) {
  EXPECT_EQ(read("[S]\nA=1\n[T\n"), "1827");
  EXPECT_EQ(clock.monotonicMilliseconds(), 0) << "it does not mend itself";
  EXPECT_EQ(read("["), "1827");
}

TEST_F(ProfileLines, CommentsAreKeptOnlyOnDemandAndWalked) {
  const std::string text = "[S]\n; one\nA=1\n";
  EXPECT_EQ(read(text), "[S] A=1|1823");
  PFA_Profile profile;
  profile.setFlags(PFA_Profile::KEEP_COMMENTS, true);
  ASSERT_EQ(open(profile, text, false), 0U);
  profile.selectSection("S");
  char name[4];
  EXPECT_EQ(value(profile, 1), "(1842)");
  EXPECT_EQ(profile.entryName(name, sizeof name), 1842U);
  EXPECT_EQ(profile.entryCount(), 1U);
  EXPECT_EQ(profile.nextEntry(false), 0U);
  EXPECT_EQ(profile.entryPosition(), 0U);
  EXPECT_EQ(profile.entryLine(), 3U);
}

TEST_F(ProfileLines, FieldsAboveFifteenStayInTheText) {
  PFA_Profile profile;
  const std::string line = "A=1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,17";
  ASSERT_EQ(open(profile, line, true), 0U);
  profile.selectSection("");
  EXPECT_EQ(value(profile, 15) + value(profile, 16), "15(1841)");
  EXPECT_EQ(profile.setValue("x", false, 15), 0U);
  EXPECT_EQ(contents(profile), "[] A=1,2,3,4,5,6,7,8,9,10,11,12,13,14,x,16,17|1823");
}

TEST_F(ProfileLines, TheWalkOverAllSectionsPassesEmptyOnesAndEnds) {
  EXPECT_EQ(read("[a]\n[b]\nx=1\n[c]\n[d]\ny=2\n[e]\n"), "[b] x=1|[d] y=2|1823");
  EXPECT_EQ(read("[a]\n[b]\n"), "1823");
  EXPECT_EQ(read(""), "1823");
}

TEST_F(ProfileLines, ShortBuffersAreCutWithTheirStatus) {
  PFA_Profile profile;
  ASSERT_EQ(open(profile, "[Section]\nName=Value\n", false), 0U);
  profile.selectSection("Section");
  char text[4];
  EXPECT_EQ(profile.getValue(text, sizeof text, true, 1), 1820U);
  EXPECT_STREQ(text, "laV");
  EXPECT_EQ(profile.entryName(text, sizeof text), 1820U);
  EXPECT_STREQ(text, "Nam");
  EXPECT_EQ(profile.sectionName(text, 0), 1820U);
}

class ProfileValues : public ProfileTest {
 protected:
  // The three typed reads of a value: "signed unsigned boolean", statuses in brackets.
  std::string typed(const std::string& text) {
    PFA_Profile profile;
    open(profile, "A=" + text, false);
    profile.selectSection("");
    std::int32_t number = 9;
    std::uint32_t natural = 9;
    bool yes = false;
    const auto shown = [](unsigned int status, long result) {
      return status == 0 ? std::to_string(result) : "(" + std::to_string(status) + ")";
    };
    const unsigned int first = profile.getSigned(number, false, 1);
    const unsigned int second = profile.getUnsigned(natural, false, 1);
    const unsigned int third = profile.getBoolean(yes, false, 1);
    EXPECT_TRUE(second == 0 || natural == 9) << text << ": the default is gone";
    return shown(first, number) + " " + shown(second, natural) + " " + shown(third, yes ? 1 : 0);
  }
};

TEST_F(ProfileValues, TypedReadsDecodeOrSayWhyNot) {
  EXPECT_EQ(typed(" 42 "), "42 42 (1838)");
  EXPECT_EQ(typed("-5"), "-5 (1837) (1838)");
  EXPECT_EQ(typed(""), "0 0 0");
  EXPECT_EQ(typed("2147483648"), "(1833) (1833) (1838)");
  EXPECT_EQ(typed("7x"), "(1833) (1833) (1838)");
  EXPECT_EQ(typed("tru"), "(1833) (1833) 1");
  EXPECT_EQ(typed("Off"), "(1833) (1833) 0");
  EXPECT_EQ(typed(std::string(32, '1')), "(1820) (1820) (1820)");
}

TEST_F(ProfileValues, TheNameItselfMayBeANumber) {
  PFA_Profile profile;
  ASSERT_EQ(open(profile, "4000000000=a\n-12=b\n", false), 0U);
  profile.selectSection("");
  EXPECT_EQ(profile.findEntry(4000000000U), 0U);
  std::int32_t number = 0;
  EXPECT_EQ(profile.getNameNumber(number), 1833U);
  EXPECT_EQ(profile.nextEntry(false) + profile.getNameNumber(number), 0U);
  EXPECT_EQ(number, -12);
}

class ProfileChanges : public ProfileTest {
 protected:
  void SetUp() override {
    ASSERT_EQ(open(profile, "[S]\nA=1,2\nB:1=x\n", true), 0U);
    ASSERT_EQ(profile.selectSection("S"), 0U);
  }
  std::string now() { return contents(profile); }

  PFA_Profile profile;
};

TEST_F(ProfileChanges, AStoreReplacesAddsOrMakesTheEntry) {
  EXPECT_EQ(profile.setValue("one", false, 1, "A"), 0U);
  EXPECT_EQ(profile.setValue("four", false, 4, "A"), 0U);
  EXPECT_EQ(profile.setSigned(-7, false, 2, "N e w", 1), 0U);
  EXPECT_EQ(profile.setUnsigned(4294967295U, false, 1, "Big"), 0U);
  EXPECT_EQ(profile.setBoolean(true, true, 1, "Yes"), 0U);
  EXPECT_EQ(now(), "[S] A=one,2,,four|Big,4294967295|Yes,EURT|B:1=x|New:1,,-7|1823");
  EXPECT_TRUE(profile.isModified());
}

TEST_F(ProfileChanges, NothingIsStoredThatWouldReadBackAsSomethingElse) {
  EXPECT_EQ(profile.setValue("v\n[Other]", false, 1, "A"), 0U);
  EXPECT_EQ(profile.setValue(std::string(252, 'x').c_str(), false, 1, "A"), 1820U);
  EXPECT_EQ(profile.addEntry("C", 0, "w\n[Other]", 1), 0U);
  EXPECT_EQ(profile.addEntry("C", 0, std::string(254, 'x').c_str(), 1), 1820U);
  EXPECT_EQ(profile.addEntry("[C", 0, "x", 1), 1831U);
  EXPECT_EQ(profile.addEntry("C", 100000, "x", 1), 1831U);
  EXPECT_EQ(profile.setValue("x", false, 16, "A") + profile.addEntry("C", 0, "x", 16), 2 * 1841U);
  EXPECT_EQ(profile.renameSection("T\nU=1"), 0U);
  EXPECT_EQ(profile.renameSection(std::string(254, 'x').c_str()), 1820U);
  EXPECT_EQ(now(), "[T] A=v,2|C,w|B:1=x|1823");
}

TEST_F(ProfileChanges, LookingUpLeavesAPlaceholderThatNobodySees) {
  for (int i = 0; i < 1000; ++i) {
    EXPECT_EQ(profile.findEntry(static_cast<std::uint32_t>(i)), 1831U);
  }
  EXPECT_EQ(profile.deleteField(1), 1831U);
  EXPECT_EQ(profile.entryCount(), 2U);
  EXPECT_EQ(profile.setValue("filled", false, 1), 0U);
  EXPECT_EQ(now(), "[S] A=1,2|999,filled|B:1=x|1823");
  EXPECT_EQ(profile.selectSection("New"), 1830U);
  EXPECT_EQ(profile.selectSection("New"), 1830U);
  EXPECT_THAT(profile.sectionNames(), testing::ElementsAre("S"));
  EXPECT_EQ(profile.addBoolean("Y", 0, false, 2), 0U);
  EXPECT_EQ(profile.selectSection("NEW"), 0U);
  EXPECT_EQ(value(profile, 2), "FALSE");
}

TEST_F(ProfileChanges, ALookupWithoutMemoryKeepsTheCurrentEntry) {
  EXPECT_EQ(profile.findEntry("None"), 1831U);
  failing::eachAllocation([&](int at, const auto& during) {
    during([&] { GENSwallow([&] { profile.findEntry("Other"); }); });
    EXPECT_TRUE(value(profile, 0) == "None" || value(profile, 0) == "Other") << at;
  });
  EXPECT_EQ(now(), "[S] A=1,2|B:1=x|1823");
}

TEST_F(ProfileChanges, DeletingMakesTheNextEntryCurrent) {
  EXPECT_EQ(profile.deleteEntry(), 0U);
  EXPECT_EQ(value(profile, 0), "B");
  EXPECT_EQ(profile.deleteEntry("B", 1), 0U);
  EXPECT_EQ(profile.deleteEntry(), 1828U);
  EXPECT_EQ(profile.deleteEntry("A"), 1831U);
  EXPECT_EQ(profile.setValue("new", false, 1, "A"), 0U);
  EXPECT_EQ(now(), "[S] A,new|1823");
}

TEST_F(ProfileChanges, DeletedFieldsCloseUp) {
  EXPECT_EQ(profile.setValue("3", false, 3, "A"), 0U);
  EXPECT_EQ(profile.deleteField(3) + profile.deleteField(1), 0U);
  EXPECT_EQ(now(), "[S] A=2|B:1=x|1823");
  EXPECT_EQ(profile.deleteField(1, "B", 1), 0U);
  EXPECT_EQ(profile.deleteField(1, "B", 1), 1841U);
  EXPECT_EQ(now(), "[S] A=2|B:1|1823");
}

TEST_F(ProfileChanges, RenumberingClosesTheGaps) {
  for (const unsigned int index : {3U, 70U, 7U, 70U}) {
    EXPECT_EQ(profile.addSigned("C", index, 5, 1), 0U);
  }
  EXPECT_EQ(profile.highestIndex(), 70U);
  EXPECT_EQ(profile.deleteEntriesWithIndex(3), 0U);
  EXPECT_EQ(profile.renumber(), 0U);
  EXPECT_EQ(now(), "[S] A=1,2|B:1=x|C:2,5|C:3,5|C:3,5|1823");
  EXPECT_EQ(profile.highestIndex(), 3U);
}

TEST_F(ProfileChanges, ACommentStaysBehindItsEntry) {
  PFA_Profile other;
  folder.write("b.ini", "[S]\nA:30=1\n;of A\nB:70=2\n");
  ASSERT_EQ(other.open(folder.path("b.ini").c_str(), true, "S"), 0U);
  EXPECT_EQ(other.addEntry("C", 7, "3", 1), 0U);
  EXPECT_EQ(contents(other), "[S] C:7,3|A:30=1|;of A|B:70=2|1823");
  EXPECT_EQ(other.selectSection("S"), 0U);
  EXPECT_EQ(other.renumber(), 0U);
  EXPECT_EQ(other.addEntry("D", 2, "4", 1), 0U);
  EXPECT_EQ(other.addEntry("E", 3, "5", 1), 0U);
  EXPECT_EQ(contents(other), "[S] C:1,3|A:2=1|;of A|D:2,4|B:3=2|E:3,5|1823");
}

TEST_F(ProfileChanges, APositionLastsAsLongAsItsEntry) {
  ASSERT_EQ(profile.findEntry("B", 1), 0U);
  const PFA_Profile::Position position = profile.savePosition();
  profile.nextEntryAnywhere(true);
  EXPECT_EQ(profile.restorePosition(position), 0U);
  EXPECT_EQ(value(profile, 1), "x");
  EXPECT_EQ(profile.entryPosition(), 1U);
  profile.deleteEntry();
  profile.renumber();
  EXPECT_EQ(profile.restorePosition(position), 1844U);
  EXPECT_EQ(profile.dropSection("s"), 0U);
  EXPECT_EQ(profile.dropSection("s"), 1830U);
  EXPECT_EQ(profile.restorePosition({}), 0U);
  EXPECT_EQ(profile.nextEntry(true), 1829U);
}

TEST_F(ProfileChanges, AReadOnlyProfileRefusesThem) {
  PFA_Profile other;
  folder.write("b.ini", "[S]\nA=1\n");
  ASSERT_EQ(other.open(folder.path("b.ini").c_str(), false, "S"), 0U);
  EXPECT_EQ(other.setValue("x", false, 1), 1835U);
  EXPECT_EQ(other.addEntry("x", 0), 1835U);
  EXPECT_EQ(other.deleteEntry(), 1835U);
  EXPECT_EQ(other.renumber(), 1835U);
  EXPECT_EQ(other.findEntry("None"), 1831U);
  EXPECT_EQ(contents(other), "[S] A=1|1823");
}

}  // namespace
