// The clock that stands still, and the replacing of the process's clock.
#include "plat/PlatClock.h"

#include <ctime>

#include "plat/Scene.h"

namespace {

TEST(PlatClock, ManualClockMovesOnlyWhenItIsMovedOrSleptOn) {
  plat::ManualClock manual({100, 900});
  plat::Clock* before = plat::setClock(&manual);
  plat::sleepMilliseconds(250);
  EXPECT_EQ(plat::now().seconds * 1000 + plat::now().milliseconds, 101'150);
  manual.advance(-1200);
  EXPECT_EQ(plat::now().seconds * 1000 + plat::now().milliseconds, 99'950);
  EXPECT_EQ(plat::setClock(before), &manual);
  EXPECT_GT(plat::now().seconds, 1'000'000'000) << "the system's clock is back";
}

TEST(PlatClock, LocalTimeIsInTheZoneOfTheProcess) {
  scene::elsewhere([] {
    ::setenv("TZ", "XYZ-2", 1);
    ::tzset();
    plat::ManualClock manual({883'954'800, 7});  // 1998-01-04 23:00 UTC
    plat::setClock(&manual);
    plat::LocalTime t;
    const std::time_t other = 0;
    const std::tm* const ofTheProcess = std::localtime(&other);
    EXPECT_TRUE(plat::localNow(t));
    EXPECT_EQ(ofTheProcess->tm_year, 70) << "the broken-down time that all threads share";
    EXPECT_EQ(t.year * 10000 + t.month * 100 + t.day, 19980105);
    EXPECT_EQ(((t.hour * 100 + t.minute) * 100 + t.second) * 1000 + t.millisecond, 10000007);
    EXPECT_FALSE(plat::clock().toLocal({INT64_MAX, 0}, t)) << "a year that no calendar holds";
  });
}

// A global object that is older than the first look at the clock may want to log when it dies.
TEST(PlatClockDeathTest, TimeIsToldToTheEndOfTheProcess) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");  // a process that has not asked for it yet
  EXPECT_EXIT(std::atexit([] { ::_exit(plat::now().seconds > 0 ? 0 : 1); });
              std::exit(plat::now().seconds > 0 ? 2 : 3), testing::ExitedWithCode(0), "");
}

}  // namespace
