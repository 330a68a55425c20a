// Directory locks and named mutexes, between real processes and threads.
#include "plat/PlatLock.h"

#include <string>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>

#include "plat/PlatCommand.h"
#include "plat/Scene.h"

namespace {

class PlatLock : public scene::Directory {
 protected:
  // 0 when the directory could be locked (and is unlocked again), -1 when somebody holds it, else
  // the error number.
  static int tryLock(const std::string& directory) {
    long handle = -1;
    if (plat::LockDir(directory.c_str(), 100, &handle) == 0) {
      const int failure = plat::lockDirFailure();
      return failure == 0 ? -1 : failure;
    }
    plat::UnlockDir("", handle);
    return 0;
  }
};

TEST_F(PlatLock, OneHolderAtATimeInAllProcessesAndScripts) {
  int error = 0;
  const std::string script = "flock -n " + path() + " true";
  EXPECT_EQ(plat::runCommand(script, error), 0);
  long handle = -1;
  ASSERT_NE(plat::LockDir(path().c_str(), 100, &handle), 0);
  EXPECT_EQ(tryLock(path()), -1) << "the same process is no exception";
  scene::elsewhere([&] { EXPECT_EQ(tryLock(path()), -1); });
  EXPECT_EQ(plat::runCommand(script, error), 1);
  EXPECT_NE(plat::UnlockDir("", handle), 0);
  scene::elsewhere([&] { EXPECT_EQ(tryLock(path()), 0); });
  EXPECT_TRUE(std::filesystem::is_empty(path())) << "no file of ours in the spool";
}

TEST_F(PlatLock, KilledHolderReleasesTheDirectory) {
  std::optional<scene::Process> holder;
  holder.emplace([&] {
    long handle = -1;
    plat::LockDir(path().c_str(), 100, &handle);
  });
  EXPECT_EQ(tryLock(path()), -1);
  holder.reset();
  EXPECT_EQ(tryLock(path()), 0);
}

TEST_F(PlatLock, ForkedChildDoesNotKeepAReleasedLock) {
  long handle = -1;
  ASSERT_NE(plat::LockDir(path().c_str(), 100, &handle), 0);
  const scene::Process child([] {});
  plat::UnlockDir("", handle);
  EXPECT_EQ(tryLock(path()), 0);
}

TEST_F(PlatLock, FailureIsToldApartFromALockHeldElsewhere) {
  EXPECT_EQ(tryLock(at("none")), ENOENT);
  EXPECT_EQ(plat::lockDirFailure(), 0) << "reading has cleared it";
  EXPECT_EQ(tryLock(make("file")), ENOTDIR);
  EXPECT_EQ(plat::UnlockDir("", -1), 0);
}

// As a network file system answers: no lock on what is not open for writing.
TEST_F(PlatLock, DirectoryThatCannotBeLockedIsLockedThroughAFileInIt) {
  scene::elsewhere([&] {
    const int next = ::dup(0);
    ::close(next);
    scene::refuse(SYS_flock, EBADF, 0, static_cast<unsigned int>(next));
    long first = -1;
    EXPECT_NE(plat::LockDir(path().c_str(), 100, &first), 0);
    EXPECT_TRUE(std::filesystem::exists(at(".krxlock")));
    EXPECT_EQ(tryLock(path()), -1);
  });
}

class PlatMutex : public scene::Directory {
 protected:
  PlatMutex() : m_runDirectory("KRX_RUN_DIR", path()) {}

 private:
  scene::Environment m_runDirectory;
};

TEST_F(PlatMutex, ThreadsAndProcessesExcludeEachOther) {
  const std::string file = make("count", "0");
  const auto increment = [&] {
    for (int i = 0; i < 50; ++i) {
      plat::NamedMutex mutex;
      ASSERT_EQ(mutex.lock("a name/with: everything"), 0);
      const int count = std::stoi(content("count"));
      std::this_thread::yield();
      make("count", std::to_string(count + 1));
    }
  };
  scene::Work other(increment);
  std::vector<std::thread> threads;
  for (int i = 0; i < 2; ++i) {
    threads.emplace_back(increment);
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(other.end(), 0);
  EXPECT_EQ(content("count"), "150");
}

TEST_F(PlatMutex, WaiterDoesNotTakeALockFileThatWasCleanedAway) {
  plat::NamedMutex first;
  ASSERT_EQ(first.lock("m"), 0);
  plat::NamedMutex waiter;
  std::thread waiting([&] { EXPECT_EQ(waiter.lock("m"), 0); });
  std::this_thread::sleep_for(std::chrono::milliseconds(50));
  std::filesystem::remove(at("m.mutex"));
  first.unlock();
  waiting.join();
  EXPECT_TRUE(std::filesystem::exists(at("m.mutex")));
}

// A directory below /tmp that somebody else prepared would let him hold our locks.
TEST_F(PlatMutex, DirectoryOfLastResortMustBeOursAlone) {
  const auto user = static_cast<unsigned int>(100'000 + ::getpid());
  const std::string directory = "/tmp/krx-" + std::to_string(user);
  const auto expectLock = [user](int expected) {
    scene::elsewhere([user, expected] {
      ::unsetenv("KRX_RUN_DIR");
      ::unsetenv("XDG_RUNTIME_DIR");
      scene::require(::geteuid() == 0);
      scene::becomeUser(user);
      EXPECT_EQ(plat::NamedMutex().lock("m"), expected);
    });
  };
  ASSERT_EQ(::mkdir(directory.c_str(), 0700), 0);
  expectLock(EACCES);
  std::filesystem::remove(directory);
  ASSERT_EQ(::symlink(path().c_str(), directory.c_str()), 0);
  expectLock(EACCES);
  std::filesystem::remove(directory);
  expectLock(0);
  EXPECT_EQ(std::filesystem::status(directory).permissions(), std::filesystem::perms(0700));
  ASSERT_EQ(::chmod(directory.c_str(), 0777), 0);
  expectLock(EACCES);
  std::filesystem::remove_all(directory);
}

}  // namespace
