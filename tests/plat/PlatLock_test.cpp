// Directory locks, named mutexes and events, between real processes and threads.
#include "plat/PlatLock.h"

#include <thread>

#include <sys/stat.h>

#include "plat/PlatCommand.h"
#include "plat/PlatEvent.h"
#include "plat/Scene.h"

namespace {

struct PlatLock : scene::Directory {
  static bool lock(const std::string& directory, long& handle) {
    return plat::LockDir(directory.c_str(), 100, &handle) != 0;
  }
  // 0 when the directory could be locked (and is unlocked again), -1 when somebody holds it, else
  // the error number.
  static int tryLock(const std::string& directory) {
    long handle = -1;
    if (!lock(directory, handle)) {
      const int failure = plat::lockDirFailure();
      return failure == 0 ? -1 : failure;
    }
    return plat::UnlockDir("", handle) - 1;
  }
  long m_handle = -1;
};

TEST_F(PlatLock, OneHolderAtATimeInAllProcessesAndScripts) {
  int error = 0;
  ASSERT_TRUE(lock(path(), m_handle));
  EXPECT_EQ(tryLock(path()), -1) << "the same process is no exception";
  EXPECT_EQ(plat::runCommand("flock -n " + path() + " true", error), 1);
  EXPECT_NE(plat::UnlockDir("", m_handle), 0);
  scene::elsewhere([&] { EXPECT_EQ(tryLock(path()), 0); });
  EXPECT_TRUE(std::filesystem::is_empty(path())) << "no file of ours in the spool";
  EXPECT_EQ(tryLock(at("none")), ENOENT) << "told apart from a lock held elsewhere";
}

TEST_F(PlatLock, ForkedChildDoesNotKeepAReleasedLockAndAKilledHolderKeepsNone) {
  {
    ASSERT_TRUE(lock(path(), m_handle));
    const scene::Process child([] {});
    plat::UnlockDir("", m_handle);
    EXPECT_EQ(tryLock(path()), 0);
  }
  {
    const scene::Process holder([&] { lock(path(), m_handle); });
    EXPECT_EQ(tryLock(path()), -1);
  }
  EXPECT_EQ(tryLock(path()), 0);
}

// As a network file system answers: no lock on what is not open for writing.
TEST_F(PlatLock, DirectoryThatCannotBeLockedIsLockedThroughAFileInIt) {
  scene::elsewhere([&] {
    const int next = ::dup(0);
    ::close(next);
    scene::refuse(SYS_flock, EBADF, 0, static_cast<unsigned int>(next));
    EXPECT_TRUE(lock(path(), m_handle));
    EXPECT_TRUE(std::filesystem::exists(at(".krxlock")));
    EXPECT_EQ(tryLock(path()), -1);
  });
}

struct PlatMutex : scene::Directory {
  const scene::Environment runDirectory{"KRX_RUN_DIR", path()};
};

TEST_F(PlatMutex, ThreadsAndProcessesExcludeEachOther) {
  make("count", "0");
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
  std::thread thread(increment);
  increment();
  thread.join();
  EXPECT_EQ(other.end(), 0);
  EXPECT_EQ(content("count"), "150");
}

TEST_F(PlatMutex, LockFileIsTheOneOfTheNameAndNoLink) {
  plat::NamedMutex first;
  ASSERT_EQ(first.lock("m"), 0);
  plat::NamedMutex waiter;
  std::thread waiting([&] { EXPECT_EQ(waiter.lock("m"), 0); });
  std::this_thread::sleep_for(std::chrono::milliseconds(50));
  std::filesystem::remove(at("m.mutex"));  // who cleans up takes it away from those who wait
  first.unlock();
  waiting.join();
  EXPECT_TRUE(std::filesystem::exists(at("m.mutex")));
  std::filesystem::create_symlink("elsewhere", at("n.mutex"));
  EXPECT_EQ(first.lock("n"), ELOOP);
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
  std::filesystem::create_symlink(path(), directory);
  expectLock(EACCES);
  std::filesystem::remove(directory);
  expectLock(0);
  ASSERT_EQ(::chmod(directory.c_str(), 0777), 0);
  expectLock(EACCES);
  std::filesystem::remove_all(directory);
}

struct PlatEvent : PlatMutex {
  const std::string name = "maker/event";
};

TEST_F(PlatEvent, SetElsewhereEndsTheWaitOfEachOnce) {
  EXPECT_EQ(plat::setNamedEvent(name), ENOENT) << "nobody has made it";
  plat::NamedEvent event;
  plat::NamedEvent other;
  ASSERT_EQ(event.create(name), 0);
  ASSERT_EQ(other.create(name), 0);
  scene::elsewhere([&] { EXPECT_EQ(plat::setNamedEvent(name), 0); });
  EXPECT_EQ(plat::setNamedEvent(name), 0);
  EXPECT_TRUE(event.wait(0));
  EXPECT_FALSE(event.wait(0)) << "at most one signal is pending";
  EXPECT_TRUE(other.wait(0)) << "nobody takes it from another";
  plat::NamedEvent late;
  ASSERT_EQ(late.create(name), 0);
  EXPECT_FALSE(late.wait(0));
}

TEST_F(PlatEvent, ASignalWakesAllThatWait) {
  const auto waits = [&] {
    plat::NamedEvent event;
    scene::require(event.create(name) == 0);
    std::ofstream(path() + "/" + std::to_string(::getpid()));
    EXPECT_TRUE(event.wait(60'000));
  };
  scene::Work first(waits);
  scene::Work second(waits);
  while (!std::filesystem::exists(path() + "/" + std::to_string(first.id())) ||
         !std::filesystem::exists(path() + "/" + std::to_string(second.id()))) {
    ::usleep(1000);
  }
  EXPECT_EQ(plat::setNamedEvent(name), 0);
  EXPECT_EQ(first.end() + second.end(), 0);
}

TEST_F(PlatEvent, WaitEndsWithItsTimeOrWithASignalOfTheProgram) {
  plat::NamedEvent event;
  ASSERT_EQ(event.create(name), 0);
  EXPECT_FALSE(event.wait(10));
  scene::elsewhere([&] {
    struct sigaction action {};
    action.sa_handler = [](int) {};
    ::sigaction(SIGALRM, &action, nullptr);
    ::ualarm(20'000, 0);
    EXPECT_FALSE(event.wait(60'000));
  });
}

}  // namespace
