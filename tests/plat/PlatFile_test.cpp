// Open files and the operations on names.
#include "plat/PlatFile.h"

#include <fcntl.h>
#include <sys/stat.h>

#include "plat/Scene.h"

namespace {

using plat::File;
using plat::OpenMode;

class PlatFile : public scene::Directory {
 protected:
  static OpenMode reading() {
    OpenMode mode;
    mode.read = true;
    return mode;
  }
  static OpenMode creating() {
    OpenMode mode;
    mode.read = mode.write = mode.create = true;
    mode.permissions = 0600;
    return mode;
  }
  static std::string outcome(const std::string& path, const OpenMode& mode) {
    File file;
    const int error = file.open(path, mode);
    return error == 0 ? "open " + file.nativePath().substr(file.nativePath().rfind('/') + 1)
                      : ::strerrorname_np(error);
  }
};

TEST_F(PlatFile, TransfersLandAtTheirPosition) {
  File file;
  ASSERT_EQ(file.open(at("x"), creating()), 0);
  EXPECT_EQ(file.writeAt(3, "def", 3), 0);
  EXPECT_EQ(file.writeAt(0, "abc", 3), 0);
  char buffer[16];
  std::size_t done = 0;
  EXPECT_EQ(file.readAt(1, buffer, sizeof buffer, done), 0);
  EXPECT_EQ(std::string(buffer, done), "bcdef");
  EXPECT_EQ(file.readAt(100, buffer, sizeof buffer, done), 0);
  EXPECT_EQ(done, 0U) << "beyond the end there is nothing, and that is no failure";
  EXPECT_EQ(file.setSize(4), 0);
  EXPECT_EQ(file.commit(), 0);
  EXPECT_EQ(file.close(), 0);
  EXPECT_EQ(file.close(), 0) << "a second close does nothing";
  EXPECT_EQ(content("x"), "abcd");
  EXPECT_EQ(file.readAt(0, buffer, 1, done), EBADF);
  OpenMode appending;
  appending.append = true;
  ASSERT_EQ(file.open(at("x"), appending), 0);
  EXPECT_EQ(file.writeAt(0, "e", 1), 0);
  EXPECT_EQ(content("x"), "abcde") << "at the end, whatever the position";
}

// Whatever stands in a spool under a mail's name, opening it comes back at once.
TEST_F(PlatFile, OnlyRegularFilesAreOpened) {
  make("target.MSG");
  ASSERT_EQ(::symlink("target.MSG", at("link.MSG").c_str()), 0);
  ASSERT_EQ(::mkfifo(at("fifo.MSG").c_str(), 0600), 0);
  ASSERT_EQ(::mkdir(at("directory.MSG").c_str(), 0700), 0);
  OpenMode spool = reading();
  EXPECT_EQ(outcome(at("link.MSG"), spool), "open link.MSG");
  spool.noFollow = true;
  EXPECT_EQ(outcome(at("link.MSG"), spool), "ELOOP");
  EXPECT_EQ(outcome(at("fifo.MSG"), spool), "EINVAL");
  EXPECT_EQ(outcome(at("directory.MSG"), spool), "EISDIR");
  OpenMode writing;
  writing.write = true;
  EXPECT_EQ(outcome(at("fifo.MSG"), writing), "EINVAL");
  writing.regularOnly = false;
  EXPECT_EQ(outcome("/dev/null", writing), "open null");
}

TEST_F(PlatFile, ExclusiveCreationTakesNoNameThatExistsInAnyForm) {
  make("file");
  ASSERT_EQ(::symlink(at("elsewhere").c_str(), at("dangling").c_str()), 0);
  OpenMode mode = creating();
  mode.exclusive = true;
  EXPECT_EQ(outcome(at("file"), mode), "EEXIST");
  EXPECT_EQ(outcome(at("dangling"), mode), "EEXIST");
  EXPECT_FALSE(std::filesystem::exists(at("elsewhere")));
  EXPECT_EQ(outcome(at("new"), mode), "open new");
}

TEST_F(PlatFile, MissingFileIsTriedWithItsExtensionInTheOtherCase) {
  make("a.rcp");
  make("B.MSG");
  make("a.b.rcp");
  OpenMode mode = reading();
  EXPECT_EQ(outcome(at("a.RCP"), mode), "ENOENT");
  mode.otherCase = true;
  EXPECT_EQ(outcome(at("a.RCP"), mode), "open a.rcp");
  EXPECT_EQ(outcome(at("B.Msg"), mode), "open B.MSG");
  EXPECT_EQ(outcome(at("a.B.RCP"), mode), "ENOENT") << "the extension only, not the name";
  EXPECT_EQ(plat::lastFailure().path, at("a.B.RCP"));
  EXPECT_EQ(outcome(at("none"), mode), "ENOENT");
  mode.create = mode.write = true;
  EXPECT_EQ(outcome(at("a.RCP"), mode), "open a.RCP") << "creating makes the name as given";
  plat::FileStatus status;
  EXPECT_EQ(plat::status(at("b.MSG"), status, true, true), 0);
  EXPECT_EQ(status.kind, plat::Kind::missing);
  EXPECT_EQ(plat::status(at("B.msg"), status, true, true), 0);
  EXPECT_EQ(status.kind, plat::Kind::regular);
  EXPECT_EQ(plat::remove(at("B.msg")), ENOENT) << "deleting never guesses";
}

TEST_F(PlatFile, FailureIsToldWithOperationPathAndError) {
  EXPECT_EQ(plat::remove("C:" + at("none")), ENOENT);
  EXPECT_EQ(std::string(plat::lastFailure().operation) + " " + plat::lastFailure().path,
            "unlink " + at("none"));
  EXPECT_EQ(plat::lastFailure().error, ENOENT);
  EXPECT_EQ(File().open("Q:\\x", reading()), ENOENT);
  EXPECT_EQ(plat::lastFailure().path, "Q:\\x") << "an unknown drive is named as it was given";
  EXPECT_EQ(plat::errorText(ENOENT), "No such file or directory");
  EXPECT_EQ(plat::errorText(9999), "Unknown error 9999");
  plat::clearFailure();
  EXPECT_EQ(plat::lastFailure().error, 0);
}

TEST_F(PlatFile, FullOrReadOnlyFileSystemFailsTheCall) {
  scene::elsewhere([&] {
    scene::mountSmall(path());
    File file;
    const std::string block(100'000, 'x');
    ASSERT_EQ(file.open(at("x"), creating()), 0);
    EXPECT_EQ(file.writeAt(0, block.data(), block.size()), ENOSPC);
    std::int64_t size = 0;
    EXPECT_EQ(file.size(size), 0);
    EXPECT_EQ(size, 64 * 1024);
  });
  scene::elsewhere([&] {
    scene::mountSmall(path(), MS_RDONLY);
    EXPECT_EQ(File().open(at("x"), creating()), EROFS);
    EXPECT_EQ(plat::checkReadWrite(path(), false, true), EACCES);
  });
}

TEST_F(PlatFile, CommitReachesTheDiskUnlessTheSiteForgoesIt) {
  scene::elsewhere([&] {
    scene::refuse(SYS_fsync, EIO);
    File file;
    ASSERT_EQ(file.open(at("x"), creating()), 0);
    ::unsetenv("KRX_COMMIT");
    EXPECT_EQ(file.commit(), EIO);
    EXPECT_EQ(plat::commitDirectory(path()), EIO);
    const scene::Environment commit("KRX_COMMIT", "0");
    EXPECT_EQ(file.commit(), 0);
    EXPECT_EQ(plat::commitDirectory(path()), 0);
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
    EXPECT_EQ(content("free"), "new");
    EXPECT_EQ(plat::rename(at("free"), at("to")), 0);
    EXPECT_EQ(content("to"), "new");
  };
  renames();
  scene::elsewhere([&] {
    scene::refuse(SYS_renameat2, EINVAL);  // a file system that cannot do it in one step
    renames();
  });
  EXPECT_EQ(plat::renameNoReplace(at("to"), "/proc/krx"), EXDEV);
}

TEST_F(PlatFile, FileWithoutWriteBitIsReadOnlyEvenForRoot) {
  const std::string file = make("x");
  EXPECT_EQ(plat::checkReadWrite(file, true, true), 0);
  ASSERT_EQ(::chmod(file.c_str(), 0444), 0);
  EXPECT_EQ(plat::checkReadWrite(file, true, false), 0);
  EXPECT_EQ(plat::checkReadWrite(file, false, true), EACCES);
  EXPECT_EQ(plat::checkReadWrite(at("none"), true, false), ENOENT);
}

TEST_F(PlatFile, OwnershipIsCopiedBeforeTheModeOpensTheFile) {
  File from;
  File to;
  ASSERT_EQ(from.open(at("from"), creating()), 0);
  ASSERT_EQ(to.open(at("to"), creating()), 0);
  ASSERT_EQ(::chmod(at("from").c_str(), 0640), 0);
  const bool root = ::geteuid() == 0 && ::chown(at("from").c_str(), 65534, 65534) == 0;
  EXPECT_EQ(plat::copyOwnership(to, from), 0);
  plat::FileStatus status;
  ASSERT_EQ(plat::status(at("to"), status), 0);
  EXPECT_EQ(status.permissions, 0640U);
  EXPECT_EQ(status.owner, root ? 65534U : ::geteuid());
}

}  // namespace
