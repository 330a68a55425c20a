// The registry on its database, alone and from several processes.
#include "plat/PlatRegistry.h"

#include <algorithm>

#include "plat/Scene.h"

namespace {

using plat::RegistryValue;
using plat::ValueType;

constexpr int MACHINE = 2;
constexpr int USERS = 3;

struct PlatRegistry : scene::Directory {
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
    EXPECT_EQ(plat::registrySubkeys(MACHINE, key, names), 0);
    EXPECT_EQ(plat::registryValues(MACHINE, key, values), 0);
    std::string text;
    std::for_each(names.begin(), names.end(), [&](auto& name) { text += "\\" + name + " "; });
    std::for_each(values.begin(), values.end(),
                  [&](auto& value) { text += value.name + "=" + value.data + " "; });
    return text;
  }

  const scene::Environment store{"KRX_REGISTRY", at("registry.db")};
  const scene::Environment commit{"KRX_COMMIT", "0"};
};

TEST_F(PlatRegistry, NewStoreKnowsTheTemporaryDirectory) {
  EXPECT_EQ(read(USERS, ".default\\environment", "tmp"), "TMP=/tmp");
  plat::registryDeleteValue(USERS, ".DEFAULT\\Environment", "TMP");
  EXPECT_EQ(read(USERS, ".DEFAULT\\Environment", "TMP"), "ENOENT") << "it is sown once only";
}

TEST_F(PlatRegistry, NamesHaveNoCaseAndKeepTheirOrderAndValuesEveryByte) {
  EXPECT_EQ(write("SOFTWARE\\Krx", "Zebra", "1"), 0);
  EXPECT_EQ(write("software\\KRX", "apple", "2"), 0);
  EXPECT_EQ(write("SOFTWARE\\krx", "ZEBRA", "3"), 0);
  EXPECT_EQ(plat::registryCreateKey(MACHINE, "SOFTWARE\\Krx\\Sub\\"), 0);
  EXPECT_EQ(plat::registryCreateKey(MACHINE, "\\SOFTWARE\\\\Krx\\Alpha"), 0);
  EXPECT_EQ(dump("SOFTWARE\\Krx"), "\\Sub \\Alpha Zebra=3 apple=2 ");
  const std::string bytes("a\0\xFF%s'", 6);
  ASSERT_EQ(plat::registryWriteValue(MACHINE, "", {"'; \xC4", ValueType::binary, bytes}), 0);
  EXPECT_EQ(read(MACHINE, "", "'; \xC4"), "'; \xC4=" + bytes);
  EXPECT_EQ(read(MACHINE, "", "'; \xE4"), "ENOENT") << "only ASCII letters have two cases";
}

TEST_F(PlatRegistry, DeletingTakesTheTreeAndNothingBesideIt) {
  write("a\\b\\c", "v", "1");
  write("a\\b", "w", "2");
  write("a\\bb", "x", "3");
  EXPECT_EQ(plat::registryDeleteTree(MACHINE, "A\\B"), 0);
  EXPECT_EQ(plat::registryDeleteTree(MACHINE, "a\\b"), ENOENT);
  EXPECT_EQ(dump("a"), "\\bb ");
  EXPECT_EQ(plat::registryCreateKey(MACHINE, "a\\b\\c"), 0);
  EXPECT_EQ(dump("a\\b\\c"), "") << "the values went with the key";
  EXPECT_EQ(plat::registryDeleteTree(MACHINE, ""), EINVAL) << "a root key stays";
}

TEST_F(PlatRegistry, ProcessesThatMeetANewStoreLoseNothing) {
  const auto writeAll = [](const std::string& prefix) {
    for (int n = 0; n < 20; ++n) {
      EXPECT_EQ(write("k", prefix + std::to_string(n), ""), 0);
    }
  };
  scene::Work other([&] { writeAll("a"); });
  scene::Work another([&] { writeAll("b"); });
  EXPECT_EQ(other.end() + another.end(), 0);
  const std::string all = dump("k");
  EXPECT_EQ(std::count(all.begin(), all.end(), '='), 40);
}

TEST_F(PlatRegistry, StoreIsWhereTheEnvironmentSaysAtTheMoment) {
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
    const scene::Environment unusable("KRX_REGISTRY", place);
    EXPECT_EQ(write("k", "v", "1"), EIO) << place;
    EXPECT_EQ(plat::lastFailure().path, place);
  }
}

TEST(PlatEnvironment, ExpandsNamesAndKeepsEverythingElse) {
  const scene::Environment name("KRX_TEST_NAME", "value");
  EXPECT_EQ(plat::expandEnvironment("a%KRX_TEST_NAME%b%KRX_TEST_NONE%c", 100), "avaluebc");
  EXPECT_EQ(plat::expandEnvironment("a %% b %", 100), "a %% b %");
  EXPECT_EQ(plat::expandEnvironment("%KRX_TEST_NAME%%KRX_TEST_NAME%", 7), "valueva");
}

}  // namespace
