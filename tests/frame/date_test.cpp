#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include <QXFoundation/QXFoundation.h>
#include <QXFoundation/date.h>

#include "tests/frame/raises.h"

namespace qx {
namespace {

Ref<Date> at(double seconds) { return Date::dateWithTimeIntervalSince1970(seconds); }

TEST(Dates, DescribeTheMomentInUtc) {
  const double infinity = std::numeric_limits<double>::infinity();
  const struct {
    double seconds;
    const char* text;
  } cases[] = {
      {0, "1970-01-01 00:00:00 +0000"},
      {0.999, "1970-01-01 00:00:00 +0000"},
      {-0.001, "1969-12-31 23:59:59 +0000"},
      {-1, "1969-12-31 23:59:59 +0000"},
      {-86400, "1969-12-31 00:00:00 +0000"},
      {-86401, "1969-12-30 23:59:59 +0000"},
      {86399, "1970-01-01 23:59:59 +0000"},
      {951782400, "2000-02-29 00:00:00 +0000"},
      {978307200, "2001-01-01 00:00:00 +0000"},
      {1718000000, "2024-06-10 06:13:20 +0000"},
      {253402300799, "9999-12-31 23:59:59 +0000"},
      {253402300800, "10000-01-01 00:00:00 +0000"},
      {-62135596800, "0001-01-01 00:00:00 +0000"},
      {-62135596801, "0000-12-31 23:59:59 +0000"},
      {-62167219201, "-0001-12-31 23:59:59 +0000"},
      {-99999999999, "-1199-02-15 14:13:21 +0000"},
      {899999999999, "30489-11-11 15:59:59 +0000"},
      {-899999999999, "-26550-02-19 08:00:01 +0000"},
      {9e11, "900000000000"},
      {-9e11, "-900000000000"},
      {1e300, "1e+300"},
      {infinity, "inf"},
      {-infinity, "-inf"},
      {std::nan(""), "nan"},
  };
  for (const auto& c : cases) EXPECT_EQ(at(c.seconds)->description(), c.text) << c.seconds;
}

TEST(Dates, CountFromTwoPoints) {
  EXPECT_EQ(at(978307200)->timeIntervalSinceReferenceDate(), 0.0);
  EXPECT_EQ(Date::dateWithTimeIntervalSinceReferenceDate(0)->timeIntervalSince1970(), 978307200.0);
  EXPECT_EQ(at(5)->timeIntervalSinceDate(at(2)), 3.0);
  EXPECT_EQ(reasonOf<InvalidArgumentException>([] { (void)at(5)->timeIntervalSinceDate(nullptr); }),
            "nil was used as an object in -[NSDate timeIntervalSinceDate:]");
}

TEST(Dates, GiveThePresent) {
  const double before = static_cast<double>(time(nullptr));
  const double now = Date::date()->timeIntervalSince1970();
  EXPECT_GE(now, before);
  EXPECT_LT(now, before + 60);
}

TEST(Dates, AreTheirOwnCopies) {
  const PropertyValue d = at(1);
  EXPECT_TRUE(isSame(d.copy(), d));
  EXPECT_THROW((void)d.mutableCopy(), InvalidArgumentException);
}

TEST(Dates, KnowTwoMomentsThatNobodyWaitsFor) {
  EXPECT_EQ(Date::distantFuture()->description(), "4001-01-01 00:00:00 +0000");
  EXPECT_EQ(Date::distantPast()->description(), "0001-01-01 00:00:00 +0000");
  EXPECT_EQ(Date::distantFuture().get(), Date::distantFuture().get());
}

}  // namespace
}  // namespace qx
