// Named events between processes.
#include "plat/PlatEvent.h"

#include <string>

#include <semaphore.h>

#include "plat/PlatClock.h"
#include "plat/Scene.h"

namespace {

class PlatEvent : public testing::Test {
 protected:
  ~PlatEvent() override { ::sem_unlink(("/krx-" + m_name).c_str()); }
  const std::string m_name = "test-" + std::to_string(::getpid());
};

TEST_F(PlatEvent, SetElsewhereEndsTheWaitOnce) {
  EXPECT_EQ(plat::setNamedEvent(m_name), ENOENT) << "nobody has made it";
  plat::NamedEvent event;
  ASSERT_EQ(event.create(m_name), 0);
  scene::elsewhere([&] { EXPECT_EQ(plat::setNamedEvent(m_name), 0); });
  EXPECT_EQ(plat::setNamedEvent(m_name), 0);
  EXPECT_TRUE(event.wait(0));
  EXPECT_FALSE(event.wait(0)) << "at most one signal is pending";
}

TEST_F(PlatEvent, SettingWakesAWaitingProcessBeforeItsTimeIsOver) {
  plat::NamedEvent event;
  ASSERT_EQ(event.create(m_name), 0);
  scene::Work other([&] { EXPECT_TRUE(event.wait(60'000)); });
  plat::sleepMilliseconds(20);
  EXPECT_EQ(plat::setNamedEvent(m_name), 0);
  EXPECT_EQ(other.end(), 0);
}

TEST_F(PlatEvent, WaitEndsWithItsTimeOrWithASignalOfTheProgram) {
  plat::NamedEvent event;
  EXPECT_FALSE(event.wait(60'000)) << "an event that was never made is not waited for";
  ASSERT_EQ(event.create(m_name), 0);
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
