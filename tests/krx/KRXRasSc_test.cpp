#include "krx/KRXRasSc.h"

#include <ctime>

#include <gmock/gmock.h>

#include "krx/Support.h"
#include "plat/PlatClock.h"

namespace krxtest {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// A schedule under a clock that stands still; summer time is that of Central Europe.
class Schedule : public testing::Test {
 protected:
  Schedule() : m_clock({}) {
    setenv("TZ", "CET-1CEST,M3.5.0,M10.5.0/3", 1);
    tzset();
    plat::setClock(&m_clock);
    takeLog();
  }
  ~Schedule() override {
    plat::setClock(nullptr);
    unsetenv("TZ");
    tzset();
  }

  // Sets the clock to a local time, "1998-01-05 12:00:00".
  void at(const char* text) { m_clock.set({seconds(text), 0}); }
  unsigned int add(const std::string& value) {
    unsigned int status = 0;
    m_schedule.add(value.c_str(), status);
    return status;
  }
  // Polls every `step` seconds until `end`; when an event was due, as local times.
  std::vector<std::string> polled(const char* end, int step) {
    std::vector<std::string> fired;
    for (; m_clock.now().seconds < seconds(end); m_clock.advance(step * 1000)) {
      if (m_schedule.isDue()) {
        fired.push_back(now());
      }
    }
    return fired;
  }
  unsigned int dueNow() {
    unsigned int count = 0;
    while (m_schedule.isDue()) {
      ++count;
    }
    return count;
  }

  plat::ManualClock m_clock;
  KRX_RasSchedule m_schedule;

 private:
  static std::int64_t seconds(const char* text) {
    std::tm fields{};
    strptime(text, "%Y-%m-%d %H:%M:%S", &fields);
    fields.tm_isdst = -1;
    return std::mktime(&fields);
  }
  std::string now() {
    plat::LocalTime local;
    m_clock.toLocal(m_clock.now(), local);
    char text[32];
    std::snprintf(text, sizeof text, "%02d-%02d %02d:%02d:%02d", local.month, local.day, local.hour,
                  local.minute, local.second);
    return text;
  }
};

TEST_F(Schedule, ATimeOfDayThatHasPassedIsMeantTomorrow) {
  at("1998-01-05 09:00:00");
  EXPECT_EQ(add("08:30"), 0U);
  EXPECT_EQ(add("-2:09:00:01.50"), 0U);  // days and hundredths do not count
  EXPECT_THAT(takeLog(), ElementsAre("11:2 RAS Event initialised to  6-Jan-1998 08:30:00.00, "
                                     "Control 00000:08:30:00.00, Type 1",
                                     "11:2 RAS Event initialised to  5-Jan-1998 09:00:01.00, "
                                     "Control 00000:09:00:01.50, Type 1"));
  EXPECT_THAT(polled("1998-01-07 00:00:00", 60),
              ElementsAre("01-05 09:01:00", "01-06 08:31:00", "01-06 09:01:00"));
}

TEST_F(Schedule, AnIntervalFiresFirstAfterAQuarterOfIt) {
  at("1998-01-05 12:00:00");
  EXPECT_EQ(add("+01:00"), 0U);
  EXPECT_THAT(polled("1998-01-05 15:00:00", 1),
              ElementsAre("01-05 12:15:01", "01-05 13:15:01", "01-05 14:15:01"));
}

TEST_F(Schedule, AnEventThatIsDueAtOnceIsPushedForward) {
  at("1998-01-05 12:00:00");
  EXPECT_EQ(add("+00:00:02"), 0U);
  EXPECT_EQ(add("12:00"), 0U);
  EXPECT_THAT(takeLog(),
              ElementsAre("11:1 Had to push an event forward.",
                          "11:2 RAS Event due at  5-Jan-1998 12:00:00.00 rescheduled to  "
                          "5-Jan-1998 12:00:02.00",
                          "11:2 RAS Event initialised to  5-Jan-1998 12:00:02.00, Control "
                          "00000:00:00:02.00, Type 2",
                          "11:1 Had to push an event forward.",
                          "11:2 RAS Event due at  5-Jan-1998 12:00:00.00 rescheduled to  "
                          "6-Jan-1998 12:00:00.00",
                          "11:2 RAS Event initialised to  6-Jan-1998 12:00:00.00, Control "
                          "00000:12:00:00.00, Type 1"));
}

TEST_F(Schedule, EveryPollConsumesOneEventAndOnePeriod) {
  at("1998-01-05 08:00:00");
  for (const char* value : {"08:30", "08:30", "+00:40"}) {
    EXPECT_EQ(add(value), 0U);
  }
  EXPECT_EQ(dueNow(), 0U);
  at("1998-01-05 09:00:00");
  takeLog();
  EXPECT_EQ(dueNow(), 4U);  // 08:10, 08:30 twice, 08:50
  EXPECT_THAT(takeLog().front(), testing::HasSubstr("08:10:00.00 rescheduled"));
  at("1998-01-05 11:00:00");
  EXPECT_EQ(dueNow(), 3U);
}

TEST_F(Schedule, WhatIsNoTimeOrIntervalIsRefused) {
  at("1998-01-05 12:00:00");
  for (const char* value :
       {"", "x", "08", "24:00", "08:60", "08:30:60", "08:30:00.100", "08:30 x", "99999999999:00",
        "+", "+24:00", "+00:00", "+00:00:00.50", "+-1:06:00", "++24855:00:00"}) {
    EXPECT_EQ(add(value), 11917U) << value;
  }
  EXPECT_THAT(takeLog(), IsEmpty());
  EXPECT_EQ(add("++24854:23:59:59.99"), 0U);
  at("2078-01-05 12:00:00");
  EXPECT_EQ(dueNow(), 1U);
}

TEST_F(Schedule, AWeekWithALeapDayHasEveryDayOnce) {
  at("2000-02-26 12:00:00");
  EXPECT_EQ(add("23:59:59"), 0U);
  EXPECT_EQ(add("++1:12:00"), 0U);
  EXPECT_THAT(polled("2000-03-03 12:00:00", 600),
              ElementsAre("02-26 21:10:00", "02-27 00:00:00", "02-28 00:00:00", "02-28 09:10:00",
                          "02-29 00:00:00", "02-29 21:10:00", "03-01 00:00:00", "03-02 00:00:00",
                          "03-02 09:10:00", "03-03 00:00:00"));
}

TEST_F(Schedule, SummerTimeNeitherSkipsNorRepeatsALocalTime) {
  at("1998-03-29 00:00:00");
  EXPECT_EQ(add("02:30"), 0U);
  EXPECT_EQ(add("++1:01:00"), 0U);  // the first time at 06:15
  EXPECT_THAT(polled("1998-03-30 08:00:00", 600),
              ElementsAre("03-29 03:00:00", "03-29 06:20:00", "03-30 02:40:00", "03-30 07:20:00"));
  at("1998-10-25 01:00:00");
  dueNow();
  EXPECT_THAT(polled("1998-10-26 02:40:00", 600), ElementsAre("10-25 02:40:00", "10-25 16:20:00"));
}

TEST_F(Schedule, AClockSetBackFiresNothingTwice) {
  at("1998-01-05 08:00:00");
  EXPECT_EQ(add("08:30"), 0U);
  EXPECT_EQ(add("+02:00"), 0U);
  at("1998-01-05 09:00:00");
  EXPECT_EQ(dueNow(), 2U);
  at("1998-01-05 08:00:00");
  EXPECT_THAT(polled("1998-01-05 12:00:00", 600), ElementsAre("01-05 10:40:00"));
  at("1998-01-06 08:30:01");
  EXPECT_EQ(dueNow(), 12U);  // every two hours from 12:30 on, and the time of day
}

TEST_F(Schedule, AnEventAtTheEndOfTheCalendarStopsAloneAndSaysSo) {
  at("2078-12-31 23:00:00");
  EXPECT_EQ(add("++1:00:00"), 0U);
  at("2079-01-02 00:00:00");
  takeLog();
  EXPECT_EQ(dueNow(), 1U);
  EXPECT_THAT(takeLog(),
              ElementsAre("11:1 RAS Event  1-Jan-2079 05:00:00.00 cannot be rescheduled."));
  at("1998-01-05 12:00:00");
  EXPECT_EQ(add("+00:01"), 0U);
  at("1998-01-05 12:01:00");
  EXPECT_EQ(dueNow(), 1U);
}

}  // namespace
}  // namespace krxtest
