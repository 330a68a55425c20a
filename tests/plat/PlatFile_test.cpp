// Open files and the operations on names.
#include "plat/PlatFile.h"

#include <algorithm>
#include <cstdint>

#include <fcntl.h>
#include <sys/stat.h>

#include "plat/Scene.h"

static std::size_t mostAtOnce = SIZE_MAX;

// The kernel's transfers, cut short as a network may do it.
ssize_t pread(int descriptor, void* buffer, std::size_t count, off_t position) {
  return ::syscall(SYS_pread64, descriptor, buffer, std::min(count, mostAtOnce), position);
}
ssize_t pwrite(int descriptor, const void* data, std::size_t count, off_t position) {
  return ::syscall(SYS_pwrite64, descriptor, data, std::min(count, mostAtOnce), position);
}

namespace {

using plat::File;
using plat::OpenMode;

struct PlatFile : scene::Directory {
  PlatFile() { reading.read = creating.read = creating.write = creating.create = true; }

  static std::string outcome(const std::string& path, const OpenMode& mode) {
    File file;
    const int error = file.open(path, mode);
    return error == 0 ? "open " + file.nativePath().substr(file.nativePath().rfind('/') + 1)
                      : ::strerrorname_np(error);
  }

  OpenMode reading;
  OpenMode creating;
};

TEST_F(PlatFile, TransfersLandAtTheirPosition) {
  File file;
  ASSERT_EQ(file.open(at("x"), creating), 0);
  EXPECT_EQ(file.writeAt(3, "def", 3), 0);
  EXPECT_EQ(file.writeAt(0, "abc", 3), 0);
  char buffer[16];
  std::size_t done = 0;
  EXPECT_EQ(file.readAt(1, buffer, sizeof buffer, done), 0);
  EXPECT_EQ(std::string(buffer, done), "bcdef");
  EXPECT_TRUE(file.setSize(4) == 0 && file.close() == 0 && file.close() == 0);
  creating.append = true;
  ASSERT_EQ(file.open(at("x"), creating), 0);
  EXPECT_EQ(file.writeAt(0, "e", 1), 0);
  EXPECT_EQ(content("x"), "abcde") << "at the end, whatever the position";
}

TEST_F(PlatFile, ShortTransfersAreContinued) {
  File file;
  ASSERT_EQ(file.open(at("x"), creating), 0);
  EXPECT_EQ(::fcntl(file.descriptor(), F_GETFD), FD_CLOEXEC);
  mostAtOnce = 2;
  char buffer[5];
  std::size_t done = 0;
  EXPECT_EQ(file.writeAt(0, "abcde", 5) | file.readAt(0, buffer, sizeof buffer, done), 0);
  mostAtOnce = SIZE_MAX;
  EXPECT_EQ(std::string(buffer, done) + content("x"), "abcdeabcde");
}

TEST_F(PlatFile, LateNameIsThereWithTheWholeFileOrNever) {
  creating.exclusive = creating.lateName = true;
  const auto writes = [&] {
    const int nameless = ::open(path().c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600);
    ::close(nameless);
    EXPECT_EQ(outcome(at("x"), creating), "open x");
    EXPECT_TRUE(std::filesystem::is_empty(path())) << "closed before it was committed";
    File file;
    EXPECT_EQ(file.open(at("x"), creating), 0);
    EXPECT_EQ(std::filesystem::is_empty(path()), nameless >= 0);
    EXPECT_TRUE(file.writeAt(0, "text", 4) == 0 && file.commit() == 0 && content("x") == "text");
    EXPECT_EQ(outcome(at("x"), creating), "EEXIST");
    std::filesystem::remove(at("x"));
  };
  scene::elsewhere([&] {
    scene::refuse(SYS_openat, EOPNOTSUPP, 2, O_TMPFILE | O_RDWR | O_CLOEXEC);
    writes();
  });
  writes();
  EXPECT_EQ(outcome("Q:\\x", creating), "ENOENT");
}

// Whatever stands in a spool under a mail's name, opening it comes back at once.
TEST_F(PlatFile, OnlyRegularFilesAreOpened) {
  make("target.MSG");
  ASSERT_EQ(::symlink("target.MSG", at("link.MSG").c_str()), 0);
  ASSERT_EQ(::mkfifo(at("fifo.MSG").c_str(), 0600), 0);
  EXPECT_EQ(outcome(at("link.MSG"), reading), "open link.MSG");
  reading.noFollow = true;
  EXPECT_EQ(outcome(at("link.MSG"), reading), "ELOOP");
  EXPECT_EQ(outcome(at("fifo.MSG"), reading), "EINVAL");
  EXPECT_EQ(outcome(path(), reading), "EISDIR");
}

TEST_F(PlatFile, ExclusiveCreationTakesNoNameThatExistsInAnyForm) {
  make("file");
  ASSERT_EQ(::symlink(at("elsewhere").c_str(), at("dangling").c_str()), 0);
  creating.exclusive = true;
  EXPECT_EQ(outcome(at("file"), creating), "EEXIST");
  EXPECT_EQ(outcome(at("dangling"), creating), "EEXIST");
  EXPECT_FALSE(std::filesystem::exists(at("elsewhere")));
  EXPECT_EQ(outcome(at("new"), creating), "open new");
}

TEST_F(PlatFile, MissingFileIsTriedWithItsExtensionInTheOtherCase) {
  make("a.rcp");
  make("B.MSG");
  EXPECT_EQ(outcome(at("a.RCP"), reading), "ENOENT");
  reading.otherCase = creating.otherCase = true;
  EXPECT_EQ(outcome(at("a.RCP"), reading), "open a.rcp");
  EXPECT_EQ(outcome(at("B.Msg"), reading), "open B.MSG");
  EXPECT_EQ(outcome(at("A.RCP"), reading), "ENOENT") << "the extension only, not the name";
  EXPECT_EQ(plat::lastFailure().path, at("A.RCP"));
  EXPECT_EQ(outcome(at("a.RCP"), creating), "open a.RCP") << "creating makes the name as given";
  EXPECT_EQ(plat::remove(at("B.msg")), ENOENT) << "deleting never guesses";
}

TEST_F(PlatFile, FailureIsToldWithOperationPathAndError) {
  EXPECT_EQ(plat::remove("C:" + at("none")), ENOENT);
  const plat::Failure& last = plat::lastFailure();
  EXPECT_EQ(std::string(last.operation) + " " + last.path, "unlink " + at("none"));
  EXPECT_EQ(plat::errorText(last.error), "No such file or directory");
  EXPECT_EQ(File().open("Q:\\x", reading), ENOENT);
  EXPECT_EQ(last.path, "Q:\\x") << "an unknown drive is named as it was given";
}

TEST_F(PlatFile, FullDiskAndFailedCommitAreToldUnlessTheSiteForgoesTheCommit) {
  scene::elsewhere([&] {
    scene::refuse(SYS_pwrite64, ENOSPC);
    scene::refuse(SYS_fsync, EIO);
    File file;
    ASSERT_EQ(file.open(at("x"), creating), 0);
    EXPECT_EQ(file.writeAt(0, "text", 4), ENOSPC);
    ::unsetenv("KRX_COMMIT");
    EXPECT_EQ(file.commit(), EIO);
    EXPECT_EQ(plat::commitDirectory(path()), EIO);
    const scene::Environment commit("KRX_COMMIT", "0");
    EXPECT_EQ(file.commit() | plat::commitDirectory(path()), 0);
  });
}

TEST_F(PlatFile, RenamingWithoutReplacingKeepsTheTarget) {
  const auto renames = [&] {
    make("from", "new");
    make("to", "old");
    EXPECT_EQ(plat::renameNoReplace(at("from"), at("to")), EEXIST);
    EXPECT_EQ(content("to"), "old");
    EXPECT_EQ(plat::renameNoReplace(at("from"), at("free")), 0);
    EXPECT_EQ(plat::remove(at("from")), ENOENT);
    EXPECT_EQ(plat::rename(at("free"), at("to")), 0);
    EXPECT_EQ(content("to"), "new");
  };
  renames();
  scene::elsewhere([&] {
    scene::refuse(SYS_renameat2, EINVAL);  // a file system that cannot do it in one step
    renames();
  });
}

TEST_F(PlatFile, OwnershipIsCopiedBeforeTheModeOpensTheFile) {
  File from;
  File to;
  ASSERT_EQ(from.open(at("from"), creating) | to.open(at("to"), creating), 0);
  ASSERT_EQ(::chmod(at("from").c_str(), 0640), 0);
  const bool root = ::geteuid() == 0 && ::chown(at("from").c_str(), 65534, 65534) == 0;
  EXPECT_EQ(plat::copyOwnership(to, from), 0);
  plat::FileStatus status;
  ASSERT_EQ(plat::status(at("to"), status), 0);
  EXPECT_EQ(status.permissions, 0640U);
  EXPECT_EQ(status.owner, root ? 65534U : ::geteuid());
  ASSERT_EQ(::chmod(at("to").c_str(), 0444), 0);
  EXPECT_EQ(plat::checkReadWrite(at("to"), true, false), 0);
  EXPECT_EQ(plat::checkReadWrite(at("to"), false, true), EACCES) << "even for root";
}

}  // namespace
