// Opening with others excluded, against real processes that hold the file.
#include <ctime>

#include <fcntl.h>
#include <linux/magic.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/statfs.h>

#include "plat/PlatFile.h"
#include "plat/PlatSpool.h"
#include "plat/Scene.h"

static bool onNfs = false;

// The kernel's answer, but for the kind of the file system.
int fstatfs(int descriptor, struct statfs* system) noexcept {
  const long result = ::syscall(SYS_fstatfs, descriptor, system);
  system->f_type = onNfs ? NFS_SUPER_MAGIC : system->f_type;
  return static_cast<int>(result);
}

namespace {

struct PlatShare : scene::Directory {
  static plat::OpenMode modeOf(plat::Share share, bool write = false) {
    plat::OpenMode mode;
    mode.read = true;
    mode.write = mode.truncate = write;
    mode.share = share;
    return mode;
  }
  static int tryOpen(const std::string& file, plat::Share share, bool write = false) {
    return plat::File().open(file, modeOf(share, write));
  }
  static int denyAll(const std::string& file) { return tryOpen(file, plat::Share::denyAll); }
  static int denyWrite(const std::string& file) { return tryOpen(file, plat::Share::denyWrite); }
  std::string makeAged(const std::string& name, int seconds) const {
    const struct timespec then { ::time(nullptr) - seconds, 0 };
    const struct timespec times[] = {then, then};
    EXPECT_EQ(::utimensat(AT_FDCWD, make(name).c_str(), times, 0), 0);
    return at(name);
  }
};

TEST_F(PlatShare, DenyAllIsRefusedWhileAnybodyHoldsTheFile) {
  const std::string file = make("x.MSG");
  EXPECT_EQ(denyAll(file), 0);
  {
    const scene::Process reader([&] { ::open(file.c_str(), O_RDONLY); });
    EXPECT_EQ(denyAll(file), EBUSY);
    EXPECT_EQ(denyWrite(file), 0);
    EXPECT_EQ(tryOpen(file, plat::Share::denyAll, true), EBUSY);
    EXPECT_EQ(content("x.MSG"), "text") << "not emptied before it was known to be free";
  }
  {
    const scene::Process writer([&] { ::open(file.c_str(), O_WRONLY); });
    EXPECT_EQ(denyAll(file), EBUSY);
    EXPECT_EQ(denyWrite(file), EBUSY);
    EXPECT_EQ(tryOpen(file, plat::Share::all), 0);
  }
  EXPECT_EQ(denyAll(file), 0) << "free again when the holders have gone";
  EXPECT_EQ(tryOpen(file, plat::Share::denyWrite, true), 0) << "a writer does not exclude itself";
  plat::File kept;
  EXPECT_EQ(kept.open(file, modeOf(plat::Share::denyAll)), 0);
  EXPECT_EQ(tryOpen(file, plat::Share::all), 0) << "the test was over when the open was";
}

// The lease lasts a moment, in which another process may open the file. That must neither raise a
// signal that ends us nor fail the other's open.
TEST_F(PlatShare, TestAndOpenAtTheSameMomentHarmNobody) {
  const std::string file = make("x");
  scene::Work other([&] {
    for (int i = 0; i < 2000; ++i) {
      EXPECT_EQ(tryOpen(file, plat::Share::all), 0);
    }
  });
  for (int i = 0; i < 2000; ++i) {
    const int error = denyAll(file);
    ASSERT_TRUE(error == 0 || error == EBUSY) << plat::errorText(error);
  }
  EXPECT_EQ(other.end(), 0);
}

TEST_F(PlatShare, TheTestForLeasesLeavesNothingBehind) {
  EXPECT_EQ(plat::testLeases(path()), 0);
  EXPECT_EQ(plat::testLeases(at("missing")), ENOENT);
  EXPECT_TRUE(std::filesystem::is_empty(path()));
}

TEST_F(PlatShare, WithoutLeasesALockOrAFreshChangeMeansInUse) {
  const std::string fresh = make("fresh");
  const std::string old = makeAged("old", 3);
  const std::string locked = makeAged("locked", 3);
  const scene::Process producer([&] { ::flock(::open(locked.c_str(), O_RDWR), LOCK_EX); });
  const auto expectFallback = [&] {
    EXPECT_EQ(denyAll(fresh), EBUSY);
    EXPECT_EQ(denyWrite(fresh), 0);
    plat::File kept;
    EXPECT_EQ(kept.open(old, modeOf(plat::Share::denyAll)), 0);
    EXPECT_EQ(denyAll(old), 0) << "the lock was of the moment";
    EXPECT_EQ(denyAll(locked), EBUSY);
    EXPECT_EQ(denyWrite(locked), EBUSY);
    EXPECT_EQ(denyAll(makeAged("ahead", -60)), EBUSY) << "a server's clock may be ahead";
    EXPECT_EQ(denyAll(makeAged("wrong", -86400)), 0) << "but a wrong stamp must not hold a mail";
  };
  // A foreign file; a file system that knows no leases; one that says "held" when it means "no".
  for (const int answer : {EACCES, EINVAL, EAGAIN}) {
    scene::elsewhere([&] {
      scene::refuse(SYS_fcntl, answer, 1, F_SETLEASE);
      EXPECT_EQ(plat::testLeases(path()), answer);
      EXPECT_EQ(denyAll(old), answer == EAGAIN ? EBUSY : 0);
      onNfs = true;
      expectFallback();
    });
  }
}

}  // namespace
