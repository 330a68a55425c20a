// Tests of the access test and of the queries on paths and drives.
#include "fl/FLSTATUS.h"

#include <ctime>

#include <fcntl.h>
#include <sys/stat.h>

#include "dv/DVDATTIM.h"
#include "fl/Folder.h"
#include "gmock/gmock.h"

namespace {

unsigned int access(const std::string& path, int mode) {
  return fl::checkAccess(path.c_str(), mode);
}

TEST(AccessTest, TellsWhatStandsUnderThePath) {
  const Folder folder;
  const std::string file = folder.write("a.txt", "x");
  EXPECT_EQ(access(file, 3), 0U);
  EXPECT_EQ(access(folder.path("b.txt"), 1), 452U);
  EXPECT_EQ(access(folder.path("none/b.txt"), 1), 452U);
  EXPECT_EQ(access(folder.path(), 1), 458U);
  EXPECT_EQ(access(folder.path("*.txt"), 1), 457U);
  EXPECT_EQ(access(folder.path("a<b.txt"), 1), 451U);
  EXPECT_EQ(access("", 1), 451U);
}

TEST(AccessTest, AbsenceAndCreationTurnTheAnswerRound) {
  const Folder folder;
  const std::string file = folder.write("a.txt", "x");
  EXPECT_EQ(access(file, 4), 454U);
  EXPECT_EQ(access(folder.path("b.txt"), 4), 0U);
  EXPECT_EQ(access(folder.path("?.txt"), 4), 457U);
  EXPECT_EQ(access(file, 8), 0U);
  EXPECT_EQ(access(folder.path("b.txt"), 8), 0U);
}

TEST(AccessTest, FilesWithoutAWriteBitAreNotWritableByAnyone) {
  const Folder folder;
  const std::string file = folder.write("a.txt", "x");
  folder.setMode("a.txt", 0444);
  EXPECT_EQ(access(file, 1), 0U);
  EXPECT_EQ(access(file, 2), 460U);
  EXPECT_EQ(access(file, 8), 460U);
}

TEST(AccessTest, OnlyTheExtensionMayStandInTheOtherCase) {
  const Folder folder;
  folder.write("x.rcp", "x");
  EXPECT_EQ(access(folder.path("x.RCP"), 1), 0U);
  EXPECT_EQ(access(folder.path("x.Rcp"), 1), 452U);
  EXPECT_EQ(access(folder.path("X.RCP"), 1), 452U);
  EXPECT_EQ(access(folder.path("x.RCP"), 4), 0U);
  EXPECT_EQ(fl::checkAccessExact(folder.path("x.RCP").c_str(), 1), 452U);
}

TEST(FileQueries, TellLocalTimeAndSize) {
  const Folder folder;
  const std::string file = folder.write("a.txt", "12345");
  const struct timespec times[2] = {{883'627'506, 0}, {883'627'506, 780'000'000}};
  ASSERT_EQ(utimensat(AT_FDCWD, file.c_str(), times, 0), 0);
  DV_DateTime time;
  ASSERT_EQ(fl::fileTime(file.c_str(), time), 0U);
  char expected[20];
  std::strftime(expected, sizeof expected, "%Y%m%d%H%M%S78", std::localtime(&times[1].tv_sec));
  EXPECT_EQ(std::string(time.date().digits(), 8) + std::string(time.time().digits(), 8), expected);

  std::uint32_t size = 7;
  EXPECT_EQ(fl::fileSize(folder.path("b.txt").c_str(), size), 452U);
  EXPECT_EQ(fl::fileSize("a|b", size), 451U);
  EXPECT_EQ(size, 7U);
  EXPECT_EQ(fl::fileSize(file.c_str(), size), 0U);
  EXPECT_EQ(size, 5U);
  std::filesystem::resize_file(file, std::uintmax_t{5} << 30);
  EXPECT_EQ(fl::fileSize(file.c_str(), size), 0U);
  EXPECT_EQ(size, 0xFFFFFFFFU);
}

TEST(Drives, APathThatDoesNotExistYetBelongsToItsParentsDrive) {
  const Folder folder;
  std::uint64_t bytes = 0;
  EXPECT_EQ(fl::freeSpace64(folder.path("new/er/file.txt").c_str(), bytes), 0U);
  EXPECT_GT(bytes, 0U);
  unsigned int kind = 0;
  unsigned int parentsKind = 0;
  EXPECT_EQ(fl::driveType(folder.path("new/er/file.txt").c_str(), kind),
            fl::driveType(folder.path().c_str(), parentsKind));
  EXPECT_EQ(kind, parentsKind);
}

TEST(Drives, UnknownOnesHaveTheirStatus) {
  std::uint32_t bytes = 7;
  unsigned int kind = 7;
  EXPECT_EQ(fl::driveType("Q:\\x\\y.txt", kind), 441U);
  EXPECT_EQ(fl::freeSpace("Q:\\x\\y.txt", bytes), 442U);
  EXPECT_EQ(fl::driveType("a|b", kind), 451U);
  EXPECT_EQ(fl::freeSpace("", bytes), 451U);
  EXPECT_EQ(bytes + kind, 14U);
}

}  // namespace
