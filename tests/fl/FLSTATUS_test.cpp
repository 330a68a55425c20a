// Tests of the access test and of the queries on paths and drives.
#include "fl/FLSTATUS.h"

#include <ctime>

#include <fcntl.h>
#include <sys/stat.h>

#include "dv/DVDATTIM.h"
#include "fl/BrokenDevice.h"
#include "fl/Folder.h"
#include "gmock/gmock.h"

namespace {

// The answers for reading, writing, being absent and being creatable.
std::string access(const std::string& path) {
  std::string answers;
  for (const int mode : {1, 2, 4, 8}) {
    answers += std::to_string(fl::checkAccess(path.c_str(), mode)) + " ";
  }
  return answers;
}

TEST(AccessTest, TellsWhatStandsUnderThePath) {
  const Folder folder;
  folder.write("a.txt", "x");
  EXPECT_EQ(access(folder.path("a.txt")), "0 0 454 0 ");
  EXPECT_EQ(access(folder.path("b.txt")), "452 452 0 0 ");
  EXPECT_EQ(access(folder.path()), "458 458 458 458 ");
  EXPECT_EQ(access(folder.path("?.txt")), "457 457 457 457 ");
  EXPECT_EQ(access("a<b.txt") + access(""), "451 451 451 451 451 451 451 451 ");
  folder.setMode("a.txt", 0444);  // not writable by anyone, root included
  EXPECT_EQ(access(folder.path("a.txt")), "0 460 454 460 ");
}

TEST(AccessTest, OnlyTheExtensionMayStandInTheOtherCase) {
  const Folder folder;
  folder.write("x.rcp", "x");
  EXPECT_EQ(access(folder.path("x.RCP")), "0 0 0 0 ");
  EXPECT_EQ(access(folder.path("x.Rcp")), "452 452 0 0 ");
  EXPECT_EQ(access(folder.path("X.RCP")), "452 452 0 0 ");
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

  std::uint32_t size = 0;
  EXPECT_EQ(fl::fileSize(folder.path("b.txt").c_str(), size), 452U);
  std::filesystem::resize_file(file, std::uintmax_t{5} << 30);
  EXPECT_EQ(fl::fileSize(file.c_str(), size), 0U);
  EXPECT_EQ(size, 0xFFFFFFFFU);
}

TEST(Drives, APathThatDoesNotExistYetBelongsToItsParentsDrive) {
  const Folder folder;
  std::uint64_t bytes = 0;
  unsigned int kind = 0;
  EXPECT_EQ(fl::freeSpace64(folder.path("new/er/file.txt").c_str(), bytes), 0U);
  EXPECT_EQ(fl::driveType("Q:\\x\\y.txt", kind), 441U);
}

TEST(Drives, WhatCannotBeAskedIsTold) {
  const Folder folder;
  std::filesystem::create_symlink("loop", folder.path("loop"));
  const std::string loop = folder.path("loop/x");
  std::uint64_t bytes = 77;
  unsigned int kind = 77;
  EXPECT_EQ(fl::driveType(loop.c_str(), kind), 440U);
  EXPECT_EQ(fl::driveType("/proc/self", kind), 440U);
  EXPECT_EQ(fl::freeSpace64(loop.c_str(), bytes), 442U);
  for (const auto& [error, status] : {std::pair(EIO, 442U), {ENOMEDIUM, 499U}, {ENODEV, 499U}}) {
    const BrokenDevice broken("statvfs", error);
    EXPECT_EQ(fl::freeSpace64(folder.path().c_str(), bytes), status);
  }
  EXPECT_EQ(bytes + kind, 154U);
}

}  // namespace
