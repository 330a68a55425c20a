// Paths of the system's form as the file system knows them.
#include "plat/PlatPath.h"

#include "plat/Scene.h"

namespace {

using plat::toNative;

TEST(PlatPath, BothSeparatorsAndTheCurrentDriveNeedNoMapping) {
  EXPECT_EQ(toNative("C:\\spool\\in\\x.RCP"), "/spool/in/x.RCP");
  EXPECT_EQ(toNative("c:/spool\\in/"), "/spool/in/");
  EXPECT_EQ(toNative("C:"), "/");
  EXPECT_EQ(toNative("C:rel\\x"), "rel/x");
  EXPECT_EQ(toNative(plat::currentDirectory()), std::filesystem::current_path().string() + "/");
}

TEST(PlatPath, OtherDrivesAndServersStandWhereTheSiteSays) {
  const scene::Environment drives("KRX_DRIVES", "D:=/mnt/d;e:=/data/;bad;F:=");
  EXPECT_EQ(toNative("d:\\a\\b"), "/mnt/d/a/b");
  EXPECT_EQ(toNative("E:a"), "/data/a");
  EXPECT_EQ(toNative("F:\\a"), "") << "a drive mapped to nothing is unknown";
  EXPECT_EQ(toNative("G:\\a"), "");
  EXPECT_EQ(toNative("\\\\server\\share\\a"), "/mnt/unc/server/share/a");
  const scene::Environment network("KRX_UNC_ROOT", "/net/");
  EXPECT_EQ(toNative("//server/share/a"), "/net/server/share/a");
}

TEST(PlatPath, NoNameLeadsElsewhereUnnoticed) {
  EXPECT_EQ(toNative("\\\\..\\share\\a"), "");
  EXPECT_EQ(toNative("\\\\server\\..\\a"), "");
  EXPECT_EQ(toNative("\\\\\\\\..\\..\\etc\\x"), "") << "nor does a server without a name";
  EXPECT_EQ(toNative("\\\\server\\share\\a\\.\\..\\..\\x"), "");
  EXPECT_EQ(toNative("\\\\server\\share\\a\\..\\x"), "/mnt/unc/server/share/a/../x");
  EXPECT_EQ(toNative(std::string_view("C:\\a\0.txt", 9)), "");
  scene::elsewhere([] {
    const std::string removed = testing::TempDir() + "/gone" + std::to_string(::getpid());
    std::filesystem::create_directory(removed);
    std::filesystem::current_path(removed);
    std::filesystem::remove(removed);
    EXPECT_EQ(plat::currentDirectory(), "") << "what is below no directory is not below the root";
  });
}

}  // namespace
