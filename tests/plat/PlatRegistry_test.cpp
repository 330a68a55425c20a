// The registry on its database, alone and from several processes.
#include "plat/PlatRegistry.h"

#include <sys/stat.h>

#include "plat/Scene.h"

namespace {

using plat::RegistryValue;
using plat::ValueType;

constexpr int MACHINE = 2;
constexpr int USERS = 3;

class PlatRegistry : public scene::Directory {
 protected:
  PlatRegistry() : m_store("KRX_REGISTRY", at("registry.db")), m_commit("KRX_COMMIT", "0") {}

  static int write(const std::string& key, const std::string& name, const std::string& text) {
    return plat::registryWriteValue(MACHINE, key, {name, ValueType::string, text});
  }
  static std::string read(int root, const std::string& key, const std::string& name) {
    RegistryValue value;
    const int error = plat::registryReadValue(root, key, name, value);
    return error == 0 ? value.name + "=" + value.data : ::strerrorname_np(error);
  }
  // "\key" for each subkey and "name=data" for each value, in order.
  static std::string dump(const std::string& key) {
    std::vector<std::string> names;
    std::vector<RegistryValue> values;
    if (const int error = plat::registrySubkeys(MACHINE, key, names); error != 0) {
      return ::strerrorname_np(error);
    }
    EXPECT_EQ(plat::registryValues(MACHINE, key, values), 0);
    std::string text;
    for (const std::string& name : names) {
      text += "\\" + name + " ";
    }
    for (const RegistryValue& value : values) {
      text += value.name + "=" + value.data + " ";
    }
    return text;
  }

 private:
  scene::Environment m_store;
  scene::Environment m_commit;
};

TEST_F(PlatRegistry, NewStoreKnowsTheTemporaryDirectory) {
  RegistryValue value;
  ASSERT_EQ(plat::registryReadValue(USERS, ".default\\environment", "tmp", value), 0);
  EXPECT_EQ(value.data, "/tmp");
  EXPECT_EQ(value.type, ValueType::string);
  EXPECT_EQ(plat::registryDeleteValue(USERS, ".DEFAULT\\Environment", "TMP"), 0);
  EXPECT_EQ(read(USERS, ".DEFAULT\\Environment", "TMP"), "ENOENT") << "it is sown once only";
}

TEST_F(PlatRegistry, NamesHaveNoCaseAndKeepTheirOrder) {
  EXPECT_EQ(write("SOFTWARE\\Krx", "Zebra", "1"), 0);
  EXPECT_EQ(write("software\\KRX", "apple", "2"), 0);
  EXPECT_EQ(write("SOFTWARE\\krx", "ZEBRA", "3"), 0);
  EXPECT_EQ(plat::registryCreateKey(MACHINE, "SOFTWARE\\Krx\\Sub\\"), 0);
  EXPECT_EQ(plat::registryCreateKey(MACHINE, "\\SOFTWARE\\\\Krx\\Alpha"), 0);
  EXPECT_EQ(dump("SOFTWARE\\Krx"), "\\Sub \\Alpha Zebra=3 apple=2 ");
  EXPECT_EQ(dump(""), "\\SOFTWARE ");
  EXPECT_EQ(write("", "\xC4", "root value"), 0);
  EXPECT_EQ(read(MACHINE, "", "\xC4"), "\xC4=root value");
  EXPECT_EQ(read(MACHINE, "", "\xE4"), "ENOENT") << "only ASCII letters have two cases";
}

TEST_F(PlatRegistry, ValuesComeBackWithTypeAndEveryByte) {
  const std::string bytes("a\0\xFF%s'", 6);
  ASSERT_EQ(plat::registryWriteValue(MACHINE, "k", {"'; DROP", ValueType::binary, bytes}), 0);
  ASSERT_EQ(plat::registryWriteValue(MACHINE, "k", {"", ValueType::number, ""}), 0);
  EXPECT_EQ(dump("k"), "'; DROP=" + bytes + " = ");
  RegistryValue value;
  EXPECT_EQ(plat::registryReadValue(MACHINE, "k", "", value), 0);
  EXPECT_EQ(value.type, ValueType::number);
}

TEST_F(PlatRegistry, DeletingTakesTheTreeAndNothingBesideIt) {
  write("a\\b\\c", "v", "1");
  write("a\\b", "w", "2");
  write("a\\bb", "x", "3");
  EXPECT_EQ(plat::registryDeleteTree(MACHINE, "A\\B"), 0);
  EXPECT_EQ(plat::registryDeleteTree(MACHINE, "a\\b"), ENOENT);
  EXPECT_EQ(dump("a"), "\\bb ");
  EXPECT_EQ(dump("a\\b\\c"), "ENOENT");
  EXPECT_EQ(plat::registryCreateKey(MACHINE, "a\\b\\c"), 0);
  EXPECT_EQ(dump("a\\b\\c"), "") << "the values went with the key";
  EXPECT_EQ(dump("a"), "\\bb \\b ");
  EXPECT_EQ(plat::registryDeleteTree(MACHINE, ""), EINVAL) << "a root key stays";
  EXPECT_EQ(plat::registryDeleteValue(MACHINE, "a\\bb", "none"), ENOENT);
  EXPECT_EQ(plat::registryCreateKey(4, "a"), EINVAL);
}

TEST_F(PlatRegistry, ProcessesThatMeetANewStoreLoseNothing) {
  std::vector<scene::Work> writers;
  for (int i = 0; i < 3; ++i) {
    writers.emplace_back([i] {
      for (int n = 0; n < 20; ++n) {
        EXPECT_EQ(write("k", std::to_string(i) + "-" + std::to_string(n), ""), 0);
      }
    });
  }
  for (scene::Work& writer : writers) {
    EXPECT_EQ(writer.end(), 0);
  }
  std::vector<RegistryValue> values;
  EXPECT_EQ(plat::registryValues(MACHINE, "k", values), 0);
  EXPECT_EQ(values.size(), 60U);
  EXPECT_EQ(read(USERS, ".DEFAULT\\Environment", "TMP"), "TMP=/tmp");
}

TEST_F(PlatRegistry, StoreIsWhereTheEnvironmentSaysAtTheMoment) {
  write("k", "v", "first");
  {
    const scene::Environment other("KRX_REGISTRY", at("other.db"));
    EXPECT_EQ(read(MACHINE, "k", "v"), "ENOENT");
  }
  EXPECT_EQ(read(MACHINE, "k", "v"), "v=first");
  EXPECT_EQ(read(0, "k", "v"), "ENOENT") << "another root";
  scene::elsewhere([&] {
    scene::require(::access("/var/lib/krx", F_OK) != 0);  // else the system's own store is used
    ::unsetenv("KRX_REGISTRY");
    const scene::Environment state("XDG_STATE_HOME", at("state/home"));
    EXPECT_EQ(write("k", "v", "state"), 0);
    EXPECT_TRUE(std::filesystem::exists(at("state/home/krx/registry.db")));
  });
}

TEST_F(PlatRegistry, UnusableStoreIsAnInputOutputError) {
  const std::string notADatabase = make("text", std::string(5000, 'x'));
  for (const std::string& place : {notADatabase, notADatabase + "/below", at("none/registry.db")}) {
    const scene::Environment store("KRX_REGISTRY", place);
    EXPECT_EQ(write("k", "v", "1"), EIO) << place;
    EXPECT_EQ(read(MACHINE, "k", "v"), "EIO") << place;
  }
}

TEST(PlatEnvironment, ExpandsNamesAndKeepsEverythingElse) {
  const scene::Environment name("KRX_TEST_NAME", "value");
  EXPECT_EQ(plat::expandEnvironment("a%KRX_TEST_NAME%b%KRX_TEST_NONE%c", 100), "avaluebc");
  EXPECT_EQ(plat::expandEnvironment("a %% b %", 100), "a %% b %");
  EXPECT_EQ(plat::expandEnvironment("%KRX_TEST_NAME%%KRX_TEST_NAME%", 7), "valueva");
  std::string value;
  EXPECT_FALSE(plat::environment("KRX_TEST_NONE", value));
}

}  // namespace
