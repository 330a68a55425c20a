// Dates and numbers.
#include "dv/DVDATE.h"

#include <cstring>
#include <limits>

#include <gtest/gtest.h>

#include "dv/DVNUMBER.h"
#include "dv/Values.h"

namespace {

std::string plus(DV_Date date, int years, int months, int days) {
  const int result = date.add(years, months, days);
  return std::to_string(result) + " " + shown(date);
}

// What parsing leaves, "no match" when it does not.
std::string parsed(const char* text) {
  DV_Date date(1, 2, 3);
  return date.parse(text) ? shown(date) : "no match";
}

TEST(Date, IsValidFrom1900To2078) {
  EXPECT_TRUE(DV_Date(1996, 2, 29).isValid());
  EXPECT_TRUE(DV_Date(2000, 2, 29).isValid());
  EXPECT_FALSE(DV_Date(1900, 2, 29).isValid());
  EXPECT_FALSE(DV_Date(2079, 1, 1).isValid());
  EXPECT_FALSE(DV_Date(1899, 12, 31).isValid());
  EXPECT_FALSE(DV_Date(1998, 4, 31).isValid());
  EXPECT_FALSE(DV_Date(1998, 13, 1).isValid());
  EXPECT_FALSE(DV_Date(1998, 1, 0).isValid());
  EXPECT_FALSE(DV_Date::NULL_DATE.isValid());
}

TEST(Date, DigitsThatDoNotFitNeverMakeAValidDate) {
  EXPECT_EQ(shown(DV_Date(4294967295U, 150, 100)), "99999999");
  DV_Date date(1998, 1, 5);
  for (const char* digits : {"1998 1/5", "1998010;"}) {
    std::memcpy(const_cast<char*>(date.digits()), digits, 8);
    EXPECT_FALSE(date.isValid()) << digits;
  }
}

TEST(Date, DayNumbersGoOnToTheYear9999) {
  EXPECT_EQ(DV_Date(1900, 3, 1).dayNumber(), 59);
  EXPECT_EQ(DV_Date(2000, 1, 1).dayNumber(), 36524);
  EXPECT_EQ(DV_Date(1900, 2, 29).dayNumber(), -1);
  DV_Date date(1998, 1, 5);
  EXPECT_EQ(date.setDayNumber(-1), -1);
  EXPECT_EQ(date.setDayNumber(2958524), -1);
  EXPECT_EQ(shown(date), "19980105");
  EXPECT_EQ(date.setDayNumber(2958523), 0);
  EXPECT_EQ(shown(date), "99991231");
}

TEST(Date, AddsYearsAndMonthsThenDays) {
  EXPECT_EQ(plus(DV_Date(1998, 12, 31), 0, 0, 1), "0 19990101");
  EXPECT_EQ(plus(DV_Date(1998, 1, 31), 0, 1, 0), "-1 19980131");
  EXPECT_EQ(plus(DV_Date(1998, 12, 5), 1, 25, 30), "0 20020204");
  EXPECT_EQ(plus(DV_Date(1998, 1, 5), 0, 0, -5), "0 19971231");
  EXPECT_EQ(plus(DV_Date(1900, 1, 1), 0, 0, -1), "-1 19000101");
  EXPECT_EQ(plus(DV_Date(1998, 1, 5), 0, 2147483647, 2147483647), "-1 19980105");
  EXPECT_EQ(plus(DV_Date::LAST, 0, 0, 1), "0 20790101");
  EXPECT_EQ(plus(DV_Date::NULL_DATE, 0, 0, 1), "-1 00000000");
}

TEST(Date, DifferencesAreDays) {
  DV_Number span;
  DV_Date(1998, 1, 5).difference(DV_Date(1998, 3, 1), span);
  EXPECT_EQ(span.get(), -55);
  DV_Date(1998, 1, 5).difference(DV_Date::NULL_DATE, span);
  EXPECT_EQ(span.get(), 0);
  DV_Date date(1998, 1, 5);
  EXPECT_EQ(date.addNumber(DV_Number(55), 1), 0);
  EXPECT_EQ(shown(date), "19980302");
  EXPECT_EQ(date.addNumber(DV_Number(2958524), 0), -1);
  EXPECT_EQ(assertionOf([&] { date.addNumber(DV_Number(-99999), 0); }),
            "Value out of range in DVDATE at 875");
  EXPECT_EQ(DV_Date(DV_Date::NULL_DATE).addNumber(DV_Number(-99999), 0), -1);
}

TEST(Date, ParsesDayMonthYear) {
  EXPECT_EQ(parsed("5-JAN-1998"), "19980105");
  EXPECT_EQ(parsed(" 05-dec-98 "), "00981205");
  EXPECT_EQ(parsed("150-Jan-2147483647"), "99990199");
  EXPECT_EQ(parsed("5-Jan-99999999999"), "00000105");
  EXPECT_TRUE(DV_Date("nonsense").isNull());
}

TEST(Date, FormatsInTwelveCharacters) {
  EXPECT_EQ(formatted(DV_Date(1998, 1, 5), 12), " 5-Jan-1998");
  EXPECT_EQ(formatted(DV_Date(9999, 12, 99), 12), "99-Dec-9999");
  EXPECT_EQ(formatted(DV_Date::NULL_DATE, 12), "Never");
  EXPECT_EQ(assertionOf([] { formatted(DV_Date::FIRST, 11); }),
            "Index out of range in DVDATE at 581");
  EXPECT_EQ(assertionOf([] { formatted(DV_Date(1998, 0, 5), 20); }),
            "Value out of range in DVDATE at 591");
}

TEST(Date, TodayIsNullWhenTheClockFails) {
  HeldClock clock;
  DV_Date date;
  EXPECT_EQ(shown(date), "19981231");
  EXPECT_FALSE(date.hadError());
  clock.fails = true;
  date.setToday();
  EXPECT_TRUE(date.isNull());
  EXPECT_TRUE(date.hadError());
  EXPECT_FALSE(date.hadError());
}

TEST(Number, IsSignAndMagnitudeInHexadecimal) {
  for (const auto& [value, digits] : {std::pair{-16, "80000010"},
                                      {255, "000000FF"},
                                      {0, "00000000"},
                                      {2147483647, "7FFFFFFF"},
                                      {-2147483647, "FFFFFFFF"}}) {
    const DV_Number number(value);
    EXPECT_EQ(std::string(number.digits(), 8), digits);
    EXPECT_EQ(number.get(), value);
  }
  DV_Number read;
  std::memcpy(read.digits(), "80000000", 8);
  EXPECT_EQ(read.get(), 0);
  read.digits()[7] = 'a';
  EXPECT_EQ(assertionOf([&] { read.get(); }), "Unexpected value encountered in DVNUMBER at 180");
  EXPECT_EQ(assertionOf([&] { read.set(std::numeric_limits<std::int32_t>::min()); }),
            "Value out of range in DVNUMBER at 106");
}

}  // namespace
