#include "platform/calendar.h"

#include <gtest/gtest.h>

#include "tests/support/scoped_zone.h"

namespace qx::detail {
namespace {

using test_support::ScopedZone;

constexpr std::int32_t kMonthLengths[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};

bool isLeapYear(std::int64_t year) { return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0); }
std::int32_t lengthOf(std::int64_t year, std::int32_t month) {
  return kMonthLengths[month - 1] + (month == 2 && isLeapYear(year) ? 1 : 0);
}

TEST(Calendar, CountsEveryDayFromYearMinus44ToYear20000) {
  std::int64_t day = daysSince1970({-44, 1, 1});
  for (std::int64_t year = -44; year <= 20000; ++year) {
    for (std::int32_t month = 1; month <= 12; ++month) {
      ASSERT_EQ(daysInMonth(year, month), lengthOf(year, month)) << year << '-' << month;
      for (std::int32_t d = 1; d <= lengthOf(year, month); ++d, ++day) {
        ASSERT_EQ(daysSince1970({year, month, d}), day) << year << '-' << month << '-' << d;
        ASSERT_EQ(civilDate(day), (CivilDate{year, month, d})) << day;
      }
    }
  }
}

TEST(Calendar, BeginsToCountIn1970) {
  EXPECT_EQ(daysSince1970({1970, 1, 1}), 0);
  EXPECT_EQ(daysSince1970({2000, 3, 1}), 11017);
  EXPECT_EQ(daysSince1970({1, 1, 1}), -719162);
  EXPECT_EQ(daysSince1970({0, 12, 31}), -719163);
}

TEST(Calendar, ReachesEveryYearOf32Bits) {
  for (const std::int64_t year :
       {-2147483648LL, -2147483647LL, -400000LL, 400000LL, 2147483647LL}) {
    EXPECT_EQ(civilDate(daysSince1970({year, 2, 28})), (CivilDate{year, 2, 28}));
    EXPECT_EQ(daysSince1970({year + 400, 2, 28}) - daysSince1970({year, 2, 28}), 146097);
  }
}

TEST(Calendar, RollsDaysBeyondTheMonthOver) {
  EXPECT_EQ(daysSince1970({2021, 2, 31}), daysSince1970({2021, 3, 3}));
  EXPECT_EQ(daysSince1970({2020, 2, 31}), daysSince1970({2020, 3, 2}));
  EXPECT_EQ(daysSince1970({2021, 12, 32}), daysSince1970({2022, 1, 1}));
}

TEST(Calendar, FillsUpWhatComponentsLeaveOut) {
  const ScopedZone zone("UTC");
  EXPECT_EQ(secondsSince1970({}), -62135596800.0);
  DateComponents c;
  c.year = 2021;
  EXPECT_EQ(secondsSince1970(c), 1609459200.0);
  c.month = 3;
  c.day = 4;
  c.hour = 5;
  c.minute = 6;
  c.second = 7;
  EXPECT_EQ(secondsSince1970(c), 1614834367.0);
  c.nanosecond = 500000000;
  EXPECT_EQ(secondsSince1970(c), 1614834367.5);
}

TEST(Calendar, PrefersTheZoneOfTheComponentsToTheLocalOne) {
  const ScopedZone zone("America/New_York");
  DateComponents c;
  c.year = 2021;
  EXPECT_EQ(secondsSince1970(c), 1609459200.0 + 5 * 3600);
  c.zone = 3600;
  EXPECT_EQ(secondsSince1970(c), 1609459200.0 - 3600);
  c.zone = 0;
  EXPECT_EQ(secondsSince1970(c), 1609459200.0);
}

TEST(Calendar, DividesDownwards) {
  for (std::int64_t n = -20; n <= 20; ++n) {
    EXPECT_EQ(floorDivide(n, 7) * 7 + floorModulo(n, 7), n);
    EXPECT_GE(floorModulo(n, 7), 0);
    EXPECT_LT(floorModulo(n, 7), 7);
  }
}

}  // namespace
}  // namespace qx::detail
