#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include <QXFoundation/iso_date.h>

#include "tests/support/scoped_zone.h"

namespace qx {
namespace {

Ref<Date> dateAt(double seconds) { return Date::dateWithTimeIntervalSince1970(seconds); }

TEST(TimeValues, GoToDatesAndBack) {
  EXPECT_EQ(qxDateWithTimeVal({1, 500000})->timeIntervalSince1970(), 1.5);
  EXPECT_EQ(qxDateWithTimeVal({-1, 500000})->timeIntervalSince1970(), -0.5);
  EXPECT_EQ(qxDateWithTimeVal({0, -1})->timeIntervalSince1970(), -1 / 1000000.0);
  const std::pair<double, TimeValue> cases[] = {
      {0, {0, 0}},
      {1.5, {1, 500000}},
      {-1.5, {-1, 500000}},
      {-1, {-1, 0}},
      {-0.25, {0, 750000}},
      {2147483647, {2147483647, 0}},
      {2147483647.5, {2147483647, 500000}},
      {2147483648, {-2147483648, 0}},
      {4102444800, {-2147483648, 0}},
      {-2147483648, {-2147483648, 0}},
      {-2147483648.5, {-2147483648, 500000}},
      {-2147483649, {-2147483648, 0}},
      {-1e300, {-2147483648, 0}},
      {std::numeric_limits<double>::infinity(), {-2147483648, -2147483647 - 1}},
      {std::nan(""), {-2147483648, -2147483647 - 1}},
  };
  for (const auto& [seconds, value] : cases) {
    EXPECT_EQ(qxTimeval(dateAt(seconds)).seconds, value.seconds) << seconds;
    EXPECT_EQ(qxTimeval(dateAt(seconds)).microseconds, value.microseconds) << seconds;
  }
  EXPECT_EQ(qxTimeval(nullptr), TimeValue{});
}

// The clocks of the local zone go forward between the two.
TEST(DaysBetween, CountsDaysOfTheSameLengthInEveryZone) {
  const test_support::ScopedZone zone("America/New_York");
  constexpr double kBefore = 1615698000;  // 2021-03-14 05:00 UTC
  const auto days = [](double from, double to) {
    return daysBetweenDate(dateAt(from), dateAt(to));
  };
  EXPECT_EQ(days(kBefore, kBefore + 23 * 3600), 0);
  EXPECT_EQ(days(kBefore, kBefore + 24 * 3600), 1);
  EXPECT_EQ(days(kBefore + 23 * 3600, kBefore), 0);
  EXPECT_EQ(days(kBefore + 24 * 3600, kBefore), -1);
}

TEST(DaysBetween, CountsWholeDaysTowardZero) {
  constexpr double kDay = 86400;
  struct Case {
    double from;
    double to;
    std::int64_t days;
  };
  const Case cases[] = {
      {0, 47 * 3600, 1},
      {47 * 3600, 0, -1},
      {0, kDay, 1},
      {0, kDay - 1e-6, 0},
      {kDay - 1e-6, 0, 0},
      {0, 0, 0},
      {-kDay, kDay, 2},
      {-0.5, 0.5, 0},
      {1e12, 1e12 + 10 * kDay, 10},
      // The difference of the doubles rounds to a day that the dates do not reach.
      {1e-20, kDay, 0},
      {-1e-20, kDay, 1},
      {-kDay, -1e-20, 0},
      {kDay, 1e-20, 0},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(daysBetweenDate(dateAt(c.from), dateAt(c.to)), c.days) << c.from << ' ' << c.to;
  }
  EXPECT_EQ(daysBetweenDate(nullptr, dateAt(1e9)), 0);
  EXPECT_EQ(daysBetweenDate(dateAt(1e9), nullptr), 0);
  EXPECT_EQ(daysBetweenDate(dateAt(0), dateAt(std::nan(""))),
            std::numeric_limits<std::int64_t>::min());
  EXPECT_EQ(daysBetweenDate(dateAt(0), dateAt(1e300)), std::numeric_limits<std::int64_t>::min());
}

}  // namespace
}  // namespace qx
