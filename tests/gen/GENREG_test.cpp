// Tests of the registry's operations and of the temporary names, which take their directory from
// it.
#include "gen/GENREG.h"

#include "fl/Folder.h"
#include "fl/FullDisk.h"
#include "gen/GENTMP.h"
#include "gen/Variable.h"
#include "gmock/gmock.h"
#include "plat/PlatClock.h"
#include "plat/PlatRegistry.h"
#include "scl/SCLSTRTB.h"

namespace {

using plat::ValueType;

class Registry : public testing::Test {
 protected:
  // The text of a string value, or the status in round brackets.
  static std::string text(const char* base, const char* sub, const char* name) {
    SCL_String value("?");
    unsigned int status = 0;
    gen::regReadString(2, base, sub, name, value, status);
    return status == 0 ? value.c_str() : "(" + std::to_string(status) + ")";
  }
  static std::string number(const char* key, const char* name) {
    std::uint32_t value = 0;
    unsigned int status = 0;
    gen::regReadNumber(2, key, "", name, value, status);
    return status == 0 ? std::to_string(static_cast<std::int32_t>(value))
                       : "(" + std::to_string(status) + ")";
  }
  static void put(const std::string& key, const char* name, ValueType type,
                  const std::string& data) {
    ASSERT_EQ(plat::registryWriteValue(2, key, {name, type, data}), 0);
  }
  static unsigned int copy(const char* source, const char* target, bool recursive = true) {
    unsigned int status = 0;
    gen::regCopyKey(2, source, 2, target, recursive, status);
    return status;
  }
  static std::string subkeys(const char* key) {
    SCL_StringTable names;
    names.add("old");
    unsigned int status = 0;
    gen::regEnumKeys(2, key, "", names, status);
    std::string all;
    for (std::uint16_t i = 0; status == 0 && i < names.count(); ++i) {
      all += std::string(names.get(i).view()) + " ";
    }
    return all + std::to_string(status);
  }

  Folder folder;
  Variable store{"KRX_REGISTRY", folder.path("registry.db")};
};

TEST_F(Registry, AnEmptySubPathIsTheBaseItself) {
  unsigned int status = 0;
  gen::regWriteString(2, "A\\B", "", "Name", "here", status);
  EXPECT_EQ(text("A", "B", "name"), "here");
  EXPECT_EQ(text("A", "", "name"), "(2113)");
  EXPECT_EQ(text("A", "C", "name"), "(2111)");
  status = 7;
  gen::regWriteString(2, "A\\B", "", "Name", "there", status);
  EXPECT_EQ(text("A", "B", "name") + std::to_string(status), "here7");
}

TEST_F(Registry, StringsAreTakenByTypeAndSize) {
  put("K", "expand", ValueType::expandString, "%HOME%");
  put("K", "number", ValueType::number, std::string("\x2A\0\0\0", 4));
  put("K", "long", ValueType::string, std::string(511, 'x'));
  put("K", "longer", ValueType::string, std::string(512, 'x'));
  EXPECT_EQ(text("K", "", "expand"), "%HOME%");
  EXPECT_EQ(text("K", "", "number"), "(2116)");
  EXPECT_EQ(text("K", "", "long"), std::string(511, 'x'));
  EXPECT_EQ(text("K", "", "longer"), "(2113)");
}

TEST_F(Registry, NumbersMayBeWrittenAsStrings) {
  put("K", "s", ValueType::string, " -42x");
  put("K", "huge", ValueType::string, "99999999999999999999");
  put("K", "word", ValueType::string, "word");
  put("K", "long", ValueType::string, std::string(32, '1'));
  put("K", "binary", ValueType::binary, "4242");
  unsigned int status = 0;
  gen::regWriteNumber(2, "K", "", "n", 0xFFFFFFFE, status);
  EXPECT_EQ(number("K", "s") + " " + number("K", "huge"), "-42 2147483647");
  EXPECT_EQ(number("K", "word") + number("K", "n"), "0-2");
  EXPECT_EQ(number("K", "long") + number("K", "binary"), "(2113)(2117)");
}

TEST_F(Registry, KeysAreEnumeratedCopiedAndDeletedWithAllBeneath) {
  put("A\\one", "v", ValueType::string, "1");
  put("A\\two\\deep", "v", ValueType::binary, std::string(256, 'b'));
  put("A", "n", ValueType::number, "abcd");
  EXPECT_EQ(copy("A", "B", false), 0U);
  EXPECT_EQ(subkeys("B"), "0");
  EXPECT_EQ(copy("A", "B"), 0U);
  EXPECT_EQ(subkeys("B"), "one two 0");
  EXPECT_EQ(subkeys("B\\two") + number("B", "n"), "deep 01684234849");
  unsigned int status = 0;
  gen::regDeleteKey(2, "B", "", "two", status);
  EXPECT_EQ(subkeys("B") + subkeys("B\\two") + std::to_string(status), "one 021110");
  gen::regDeleteKey(2, "B", "", "two", status);
  EXPECT_EQ(status, 2112U);
  status = 0;
  gen::regDeleteKey(2, "B", "", "\\", status);
  EXPECT_EQ(subkeys("B") + std::to_string(status), "one 02112");
  put("A\\" + std::string(512, 'x'), "v", ValueType::string,
      "");  // longer than a key's name may be
  EXPECT_EQ(subkeys("A"), "2114");
}

TEST_F(Registry, ACopyIntoItselfOrOfTooLargeAValueIsRefused) {
  put("A\\b", "v", ValueType::string, "1");
  EXPECT_EQ(copy("A", "a\\B\\c"), 2110U);
  EXPECT_EQ(copy("\\A", "A\\\\x"), 2110U);
  EXPECT_EQ(copy("A", "Ab"), 0U);
  EXPECT_EQ(copy("none", "A"), 2111U);
  put("A", "v", ValueType::string, std::string(256, 'x'));
  EXPECT_EQ(copy("A", "C"), 2113U);
}

TEST_F(Registry, ShortcutsStandUnderTheirKeys) {
  unsigned int status = 0;
  gen::regWriteSoftwareString("Maker\\Product", "s", "soft", status);
  gen::regWriteServiceNumber("krx", "n", 42, status);
  EXPECT_EQ(text("SOFTWARE", "Maker\\Product", "s"), "soft");
  EXPECT_EQ(number("SYSTEM\\CurrentControlSet\\Services\\krx\\Parameters", "n"), "42");
  gen::regDeleteServiceValue("krx", "n", status);
  EXPECT_EQ(status, 0U);
  gen::regDeleteServiceValue("krx", "n", status);
  EXPECT_EQ(status, 2118U);
}

TEST_F(Registry, AStoreThatCannotBeUsedIsAKeyThatCannotBeMade) {
  const Variable broken("KRX_REGISTRY", folder.path());
  unsigned int status = 0;
  gen::regWriteNumber(2, "K", "", "n", 1, status);
  EXPECT_EQ(status, 2110U);
}

TEST_F(Registry, OnAFullDiskTheEarlierValueStays) {
  put("K", "v", ValueType::string, "1");
  unsigned int status = 0;
  {
    const FullDisk full(std::filesystem::file_size(folder.path("registry.db")));
    gen::regWriteString(2, "K", "", "v", std::string(100000, 'x').c_str(), status);
  }
  EXPECT_EQ(status, 2115U);
  EXPECT_EQ(text("K", "", "v"), "1");
}

class TemporaryNames : public Registry {
 protected:
  TemporaryNames() { plat::setClock(&clock); }
  ~TemporaryNames() override { plat::setClock(nullptr); }

  void setDirectory(ValueType type, const std::string& data) {
    ASSERT_EQ(plat::registryWriteValue(3, ".DEFAULT\\Environment", {"TMP", type, data}), 0);
  }
  std::string name(unsigned int size = 260) {
    char buffer[260] = "old";
    unsigned int status = 0;
    gen::tempFileName(buffer, size, status);
    return status == 0 ? buffer : std::string(buffer) + "(" + std::to_string(status) + ")";
  }

  Variable run{"KRX_RUN_DIR", folder.path("run")};
  plat::ManualClock clock{plat::Moment{1'000'012'345, 99}};
};

TEST_F(TemporaryNames, AreTheTimeInTheDirectoryAndNeverTaken) {
  setDirectory(ValueType::string, folder.path());
  EXPECT_EQ(name(), folder.path("12345100"));
  folder.write("12345101", "");
  EXPECT_EQ(name(), folder.path("12345102"));
  std::filesystem::create_directory(folder.path("12345103"));
  EXPECT_EQ(name(), "(124)");
}

TEST_F(TemporaryNames, TheDirectoryMayNameAVariable) {
  const Variable place("KRX_TEST_PLACE", folder.path("x"));
  setDirectory(ValueType::expandString, "%KRX_TEST_PLACE%");
  EXPECT_EQ(name(), folder.path("x\\12345100"));
  setDirectory(ValueType::string, folder.path("%KRX_TEST_PLACE%"));
  EXPECT_EQ(name(), folder.path("%KRX_TEST_PLACE%\\12345101"));
  setDirectory(ValueType::number, "abcd");
  EXPECT_EQ(name(), "C:\\12345102");
}

TEST_F(TemporaryNames, ShortBuffersAndABusyMutexGiveNoName) {
  setDirectory(ValueType::string, folder.path());
  EXPECT_EQ(name(8), "(140)");
  const auto enough = static_cast<unsigned int>(folder.path("12345100").size()) + 1;
  EXPECT_EQ(name(enough - 1), "(140)");
  EXPECT_EQ(name(enough), folder.path("12345101"));
  const Variable noRunDirectory("KRX_RUN_DIR", folder.path("registry.db"));
  EXPECT_EQ(name(), "");
}

}  // namespace
