// Opening with others excluded, against real processes that hold the file.
#include <ctime>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include "plat/PlatFile.h"
#include "plat/Scene.h"

namespace {

class PlatShare : public scene::Directory {
 protected:
  static int tryOpen(const std::string& file, plat::Share share, bool write = false) {
    plat::OpenMode mode;
    mode.read = true;
    mode.write = mode.truncate = write;
    mode.share = share;
    return plat::File().open(file, mode);
  }
  static int denyAll(const std::string& file) { return tryOpen(file, plat::Share::denyAll); }
  static int denyWrite(const std::string& file) { return tryOpen(file, plat::Share::denyWrite); }
  std::string makeOld(const std::string& name) const {
    const struct timespec then { ::time(nullptr) - 3, 0 };
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
    EXPECT_EQ(plat::lastFailure().path, file);
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
  while (other.isRunning()) {
    const int error = denyAll(file);
    ASSERT_TRUE(error == 0 || error == EBUSY) << plat::errorText(error);
  }
  EXPECT_EQ(other.end(), 0);
}

TEST_F(PlatShare, WithoutLeasesALockOrAFreshChangeMeansInUse) {
  const std::string fresh = make("fresh");
  const std::string old = makeOld("old");
  const std::string locked = makeOld("locked");
  const scene::Process producer([&] { ::flock(::open(locked.c_str(), O_RDWR), LOCK_EX); });
  scene::elsewhere([&] {
    scene::require(::geteuid() == 0);
    scene::becomeUser(65534);  // who is refused a lease on a foreign file
    EXPECT_EQ(denyAll(fresh), EBUSY);
    EXPECT_EQ(denyWrite(fresh), 0);
    EXPECT_EQ(denyAll(old), 0);
    EXPECT_EQ(denyAll(locked), EBUSY);
    EXPECT_EQ(denyWrite(locked), EBUSY);
  });
  scene::elsewhere([&] {
    scene::refuse(SYS_fcntl, EINVAL, 1, F_SETLEASE);  // a file system that knows none
    EXPECT_EQ(denyAll(fresh), EBUSY);
    EXPECT_EQ(denyAll(old), 0);
  });
}

}  // namespace
