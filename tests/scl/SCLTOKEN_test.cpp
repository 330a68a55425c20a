// Tests of what stands on the platform: the unique token with its day numbers, run-time loading.
#include "scl/SCLTOKEN.h"

#include "gmock/gmock.h"
#include "plat/PlatClock.h"
#include "scl/SCLDAYNO.h"
#include "scl/SCLDYLIB.h"

namespace {

TEST(DayNumber, EveryDayComesBackFromItsNumber) {
  int expected = 0;
  for (int year = 1900; year <= 2078; ++year) {
    for (int month = 1; month <= 12; ++month) {
      for (int day = 1; SCL_isValidDate(year, month, day); ++day, ++expected) {
        const SCL_CalendarDate date = SCL_dateOfDayNumber(expected);
        ASSERT_EQ(SCL_dayNumber(year, month, day), expected);
        ASSERT_TRUE(date.year == year && date.month == month && date.day == day) << expected;
      }
    }
  }
  EXPECT_EQ(expected, 65379);
}

// Stands still at 15 January 1998, 13:30:05, local time.
class StoppedClock : public plat::ManualClock {
 public:
  StoppedClock() : ManualClock({}), m_before(plat::setClock(this)) {}
  ~StoppedClock() override { plat::setClock(m_before); }
  bool toLocal(const plat::Moment&, plat::LocalTime& local) override {
    local = {1998, 1, 15, 13, 30, 5, 250};
    return true;
  }

 private:
  plat::Clock* m_before;
};

TEST(UniqueToken, IsDaySecondAndACounterThatNeverStandsStill) {
  const StoppedClock clock;
  SCL_String first;
  SCL_String second;
  SCL_uniqueToken(first);
  SCL_uniqueToken(second);
  const std::string prefix = "35808.48605.";
  ASSERT_EQ(first.view().substr(0, prefix.size()), prefix);
  const int counter = std::stoi(std::string(first.view().substr(prefix.size())));
  EXPECT_GE(counter, 1);
  EXPECT_EQ(second.view(), prefix + std::to_string(counter + 1));
}

TEST(DynamicLibrary, HoldsOneLibraryAtATime) {
  SCL_DynamicLibrary library;
  EXPECT_EQ(library.load("no-such-library.so"), 0);
  ASSERT_EQ(library.load("libc.so.6"), 1);
  EXPECT_NE(library.symbol("memcpy"), nullptr);
  EXPECT_EQ(library.load("libc.so.6"), 0);
  EXPECT_NE(library.free(), 0);
  EXPECT_FALSE(library.isLoaded());
}

}  // namespace
