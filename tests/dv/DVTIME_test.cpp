// Times of day, dates with times, and time offsets.
#include "dv/DVTIME.h"

#include <cstring>

#include <gtest/gtest.h>

#include "dv/DVDATTIM.h"
#include "dv/DVDECODE.h"
#include "dv/DVTIMOFF.h"
#include "dv/Values.h"

namespace {

std::string plus(DV_Time time, int hours, int minutes, int seconds, int hundredths) {
  const int days = time.add(hours, minutes, seconds, hundredths);
  return std::to_string(days) + " " + shown(time);
}

std::string minus(const DV_Time& a, const DV_Time& b) {
  DV_Time result = DV_Time::ZERO;
  const int days = a.difference(b, result);
  return std::to_string(days) + " " + shown(result);
}

template <class T>
std::string parsed(T value, const char* text) {
  return value.parse(text) ? shown(value) : "no match";
}

const DV_DateTime MONDAY(DV_Date(1998, 1, 5), DV_Time(9, 4, 3, 7));

TEST(Time, FieldsAreCheckedOneByOne) {
  DV_Time time(23, 59, 59, 99);
  EXPECT_EQ(assertionOf([&] { time.set(24, 0, 0, 0); }), "Value out of range in DVTIME at 214");
  EXPECT_EQ(assertionOf([&] { time.set(0, 60, 0, 0); }), "Value out of range in DVTIME at 215");
  EXPECT_EQ(assertionOf([&] { time.set(0, 0, 60, 0); }), "Value out of range in DVTIME at 216");
  EXPECT_EQ(assertionOf([&] { time.set(0, 0, 0, 100); }), "Value out of range in DVTIME at 217");
  EXPECT_EQ(assertionOf([&] { time.setSeconds(86400, 0); }),
            "Inconsistent value encountered in DVTIME at 549");
  EXPECT_EQ(shown(time), "23595999");
  time.setSeconds(86399, 5);
  EXPECT_EQ(shown(time), "23595905");
  EXPECT_EQ(time.seconds(), 86399);
}

TEST(Time, DigitsFromElsewhereMayBeInvalid) {
  DV_Time time = DV_Time::NOON;
  EXPECT_TRUE(time.isValid());
  for (const char* digits : {"1x000000", "24000000", "00600000", "00006000"}) {
    std::memcpy(const_cast<char*>(time.digits()), digits, 8);
    EXPECT_FALSE(time.isValid()) << digits;
  }
}

TEST(Time, AddsSpansOfAnySize) {
  EXPECT_EQ(plus(DV_Time(23, 59, 59, 99), 0, 0, 0, 1), "1 00000000");
  EXPECT_EQ(plus(DV_Time::ZERO, 0, 0, 0, -1), "-1 23595999");
  EXPECT_EQ(plus(DV_Time(1, 2, 3, 4), -49, 0, 0, 0), "-2 00020304");
  EXPECT_EQ(plus(DV_Time::ZERO, 2147483647, 0, 0, 0), "89478485 07000000");
}

TEST(Time, DifferencesBorrowFromTheLargerField) {
  EXPECT_EQ(minus(DV_Time(10, 0, 0, 0), DV_Time(9, 59, 59, 99)), "0 00000001");
  EXPECT_EQ(minus(DV_Time::ZERO, DV_Time(0, 0, 1, 0)), "-1 23595900");
  EXPECT_EQ(minus(DV_Time(0, 0, 0, 1), DV_Time(0, 0, 0, 2)), "-1 23595999");
}

TEST(Time, ParsesHoursAndMinutesAtLeast) {
  EXPECT_EQ(parsed(DV_Time::NOON, "12:30:15.5"), "12301505");
  EXPECT_EQ(parsed(DV_Time::NOON, " 1:2 "), "01020000");
  EXPECT_EQ(parsed(DV_Time::NOON, "12"), "no match");
  EXPECT_EQ(assertionOf([] { parsed(DV_Time::NOON, "25:00"); }),
            "Value out of range in DVTIME at 214");
  DV_Time time = DV_Time::NOON;
  int result = 0;
  EXPECT_TRUE(time.parse("7:99999999999", result));
  EXPECT_EQ(result, dv::OUT_OF_RANGE);
}

TEST(Time, FormatsByTheSizeOfTheBuffer) {
  const DV_Time time(9, 4, 3, 7);
  EXPECT_EQ(formatted(time, 13), "09:04:03.007");
  EXPECT_EQ(formatted(time, 12), "09:04:03.07");
  EXPECT_EQ(formatted(time, 9), "09:04:03");
  EXPECT_EQ(formatted(time, 6), "09:04");
  EXPECT_EQ(assertionOf([&] { formatted(time, 5); }), "Index out of range in DVTIME at 379");
}

TEST(DateTime, NowIsOneReadingOfTheClock) {
  HeldClock clock;
  DV_DateTime now;
  EXPECT_EQ(shown(now), "19981231 23595999");  // a leap second is the one before it
  EXPECT_EQ(clock.readings, 1);
  clock.fails = true;
  now.setNow();
  EXPECT_TRUE(now.isNull());
  EXPECT_TRUE(now.hadError());
  EXPECT_FALSE(now.hadError());
  EXPECT_TRUE(DV_Time().hadError());
}

TEST(DateTime, DaysAreCarriedIntoTheDate) {
  DV_DateTime value(DV_Date(1998, 12, 31), DV_Time(23, 0, 0, 0));
  EXPECT_EQ(value.addTime(1, 0, 0, 0), 0);
  EXPECT_EQ(shown(value), "19990101 00000000");
  EXPECT_EQ(value.addOffset(DV_TimeOffset(-1, 23, 59, 59, 0)), 0);
  EXPECT_EQ(shown(value), "19981231 23595900");
  DV_DateTime null = DV_DateTime::NULL_VALUE;
  EXPECT_EQ(null.addTime(1, 0, 0, 0), -1);
  EXPECT_EQ(shown(null), "00000000 01000000") << "the time is set all the same";
  EXPECT_EQ(null.addOffset(DV_TimeOffset(0, 1, 0, 0, 0)), -1);
  EXPECT_EQ(shown(null), "00000000 01000000");
  DV_DateTime first = DV_DateTime::FIRST;
  EXPECT_EQ(assertionOf([&] { first.addOffset(DV_TimeOffset(-1, 1, 0, 0, 0)); }),
            "Value out of range in DVDATE at 875");
  EXPECT_EQ(shown(first), "19000101 00000000");
}

TEST(DateTime, DifferencesUndoOffsets) {
  DV_TimeOffset offset;
  MONDAY.difference(DV_DateTime(DV_Date(1998, 1, 5), DV_Time(9, 4, 4, 7)), offset);
  EXPECT_EQ(shown(offset), "-1 23595900");
  DV_DateTime value = DV_DateTime::FIRST;
  MONDAY.difference(value, offset);
  EXPECT_EQ(value.addOffset(offset), 0);
  EXPECT_EQ(value.compare(MONDAY), 0);
  MONDAY.difference(DV_DateTime::NULL_VALUE, offset);
  EXPECT_EQ(shown(offset), "0 09040307");
}

TEST(DateTime, ParsesADateATimeOrBoth) {
  HeldClock clock;
  EXPECT_EQ(parsed(MONDAY, "10:30"), "19981231 10300000");
  EXPECT_EQ(parsed(MONDAY, "6-Feb-1999"), "19990206 00000000");
  EXPECT_EQ(parsed(MONDAY, " 6-feb-1999 10:30:15.5 "), "19990206 10301505");
  EXPECT_EQ(parsed(MONDAY, ""), "no match");
  EXPECT_EQ(parsed(MONDAY, "  "), "no match");
  EXPECT_EQ(parsed(MONDAY, "99999999999"), "19980105 09040307");
  EXPECT_EQ(parsed(MONDAY, "6-Feb-1999 99999999999:00"), "19990206 00000000");
}

TEST(DateTime, AnAssertionWhileParsingLeavesTheValue) {
  DV_DateTime value = MONDAY;
  EXPECT_EQ(assertionOf([&] { value.parse("6-Feb-1999 25:00"); }),
            "Value out of range in DVTIME at 214");
  EXPECT_EQ(shown(value), shown(MONDAY));
}

TEST(DateTime, FormatsByTheSizeOfTheBuffer) {
  EXPECT_EQ(formatted(MONDAY, 24), " 5-Jan-1998 09:04:03.07");
  EXPECT_EQ(formatted(MONDAY, 21), " 5-Jan-1998 09:04:03");
  EXPECT_EQ(formatted(MONDAY, 12), " 5-Jan-1998");
  EXPECT_EQ(formatted(MONDAY, 11), "09:04:03");
  EXPECT_EQ(formatted(MONDAY, 8), "09:04");
  EXPECT_EQ(formatted(DV_DateTime::NULL_VALUE, 6), "Never");
  const DV_DateTime noMonth(DV_Date::NULL_DATE, DV_Time::NOON);
  EXPECT_EQ(formatted(noMonth, 9), "12:00:00");
  EXPECT_EQ(assertionOf([] { formatted(DV_DateTime::NULL_VALUE, 5); }),
            "Index out of range in DVDATTIM at 362");
  EXPECT_EQ(assertionOf([&] { formatted(noMonth, 12); }), "Value out of range in DVDATTIM at 371");
  EXPECT_EQ(assertionOf([&] { formatted(noMonth, 21); }), "Value out of range in DVDATTIM at 392");
  EXPECT_EQ(assertionOf([] { formatted(MONDAY, 5); }), "Index out of range in DVDATTIM at 362");
}

TEST(TimeOffset, ParsesSignedDaysBeforeTheTime) {
  EXPECT_EQ(parsed(DV_TimeOffset(), "01:00"), "0 01000000");
  EXPECT_EQ(parsed(DV_TimeOffset(), "+1:02:03"), "1 02030000");
  EXPECT_EQ(parsed(DV_TimeOffset(), "-1:06:00"), "-1 06000000");
  EXPECT_EQ(parsed(DV_TimeOffset(), "1:02:03.4"), "0 01020304");
  EXPECT_EQ(shown(DV_TimeOffset("nonsense")), "0 00000000");
}

TEST(TimeOffset, TotalsFitThirtyOneBits) {
  EXPECT_EQ(DV_TimeOffset(24854, 23, 59, 59, 99).totalSeconds(), 2147471999);
  EXPECT_EQ(DV_TimeOffset(247, 23, 59, 59, 99).totalHundredths(), 2142719999);
  EXPECT_EQ(assertionOf([] { (void)DV_TimeOffset(24855, 0, 0, 0, 0).totalSeconds(); }),
            "Value out of range in DVTIMOFF at 298");
  EXPECT_EQ(assertionOf([] { (void)DV_TimeOffset(-1, 0, 0, 0, 0).totalHundredths(); }),
            "Value out of range in DVTIMOFF at 334");
}

TEST(TimeOffset, OrdersByDaysFirst) {
  EXPECT_EQ(DV_TimeOffset(-1, 23, 0, 0, 0).compare(DV_TimeOffset::ZERO), -1);
  EXPECT_EQ(DV_TimeOffset(0, 0, 0, 0, 1).compare(DV_TimeOffset::ZERO), 1);
  EXPECT_EQ(DV_TimeOffset(3, 1, 0, 0, 0).compare(DV_TimeOffset(3, 1, 0, 0, 0)), 0);
}

TEST(TimeOffset, FormatsByTheSizeOfTheBuffer) {
  const DV_TimeOffset offset(3, 9, 4, 3, 7);
  EXPECT_EQ(formatted(offset, 18), "00003:09:04:03.07");
  EXPECT_EQ(formatted(offset, 15), "00003:09:04:03");
  EXPECT_EQ(formatted(DV_TimeOffset(-3, 9, 4, 3, 7), 12), "-0003:09:04");
  EXPECT_EQ(formatted(DV_TimeOffset(0, 9, 4, 3, 7), 11), "09:04");
  EXPECT_EQ(formatted(DV_TimeOffset(-99999, 0, 0, 0, 0), 19), "-99999:00:00:00.00");
  EXPECT_EQ(assertionOf([&] { formatted(offset, 11); }), "Value out of range in DVTIMOFF at 257");
  EXPECT_EQ(assertionOf([&] { formatted(offset, 5); }), "Index out of range in DVTIMOFF at 262");
  EXPECT_EQ(assertionOf([] { formatted(DV_TimeOffset(-99999, 0, 0, 0, 0), 18); }),
            "Index out of range in DVTIMOFF at 262");
  EXPECT_NE(assertionOf([] { formatted(DV_TimeOffset(100000, 0, 0, 0, 0), 24); }), "none");
}

}  // namespace
