#include <gtest/gtest.h>
#include <time.h>

#include <cmath>
#include <limits>
#include <random>

#include <QXFoundation/QXFoundation.h>
#include <QXFoundation/iso_date.h>

#include "tests/support/scoped_zone.h"
#include "values/iso_reader.h"

namespace qx {
namespace {

using test_support::ScopedZone;

Ref<Date> dateAt(double seconds) { return Date::dateWithTimeIntervalSince1970(seconds); }

std::string read(const PropertyValue& text) {
  const auto date = qxDateFromISO8601String(text);
  return date == nullptr ? "nil" : date->description();
}

struct Reading {
  const char* text;
  const char* moment;  // "nil", or as Date describes it
};

TEST(IsoDateReader, ReadsTextsOfTheUsualFormInUtc) {
  const ScopedZone zone("UTC");
  const Reading cases[] = {
      {"2021-03-04T05:06:07Z", "2021-03-04 05:06:07 +0000"},
      {"2021-03-04T05:06:07", "2021-03-04 05:06:07 +0000"},
      {"2021-03-04T05:06:07+02:00", "2021-03-04 03:06:07 +0000"},
      {"2021-03-04T05:06:07-02:30", "2021-03-04 07:36:07 +0000"},
      {"2021-03-04T05:06:07+:", "2021-03-04 05:06:07 +0000"},
      {"2021-03-04T05:06:07+1:", "2021-03-04 04:06:07 +0000"},
      {"2021-03-04T05:06:07-:30", "2021-03-04 05:36:07 +0000"},
      {"2021-03-04T05:06:07+23:59", "2021-03-03 05:07:07 +0000"},
      {"2020-02-29T23:59:59Z", "2020-02-29 23:59:59 +0000"},
      {"1970-01-01T00:00:00Z", "1970-01-01 00:00:00 +0000"},
      {"20000-12-31T23:59:59Z", "20000-12-31 23:59:59 +0000"},
      {"-0044-03-15T00:00:00", "-0044-03-15 00:00:00 +0000"},
      {"-44-3-15T1:2:3", "-0044-03-15 01:02:03 +0000"},
      {"0000-01-01T00:00:00", "0000-01-01 00:00:00 +0000"},
      {"0000000002021-003-004T0005:0006:0007", "2021-03-04 05:06:07 +0000"},
  };
  for (const Reading& c : cases) EXPECT_EQ(read(c.text), c.moment) << c.text;
}

TEST(IsoDateReader, TakesTheNearestInRange) {
  const ScopedZone zone("UTC");
  const Reading cases[] = {
      {"2021-13-40T00:00:00", "2021-12-31 00:00:00 +0000"},
      {"2021-00-00T00:00:00", "2021-01-01 00:00:00 +0000"},
      {"0000-00-01T00:00:00", "0000-01-01 00:00:00 +0000"},
      {"0000-13-00T00:00:00", "0000-12-01 00:00:00 +0000"},
      {"2021-03-04T24:60:60", "2021-03-04 23:59:59 +0000"},
      {"2021-03-04T2147483647:2147483647:2147483647", "2021-03-04 23:59:59 +0000"},
      {"2021-02-31T00:00:00", "2021-03-03 00:00:00 +0000"},
      {"2020-02-30T00:00:00", "2020-03-01 00:00:00 +0000"},
      {"2021-04-31T12:00:00", "2021-05-01 12:00:00 +0000"},
      {"2021-03-04T05:06:071", "2021-03-04 05:06:59 +0000"},
      {"2021-03-04T05:06:007", "2021-03-04 05:06:07 +0000"},
  };
  for (const Reading& c : cases) EXPECT_EQ(read(c.text), c.moment) << c.text;
}

TEST(IsoDateReader, RefusesEverythingElse) {
  const ScopedZone zone("UTC");
  const char* const texts[] = {
      "",
      "2021",
      "2021-03",
      "2021-03-04",
      "2021-03-",
      "2021-03-04T",
      "2021-03-04T05",
      "2021-03-04T05:0x",
      "2021-03-04 05:06:07",
      "2021-03-04t05:06:07",
      "2021-03-04T05:06:07z",
      "2021-03-04T05:06:07+0100",
      "2021-03-04T05:06:07+01",
      "2021-03-04T05:06:07+24:00",
      "2021-03-04T05:06:07+01:60",
      "2021-03-04T05:06:07+01:00Z",
      "2021-03-04T05:06:07+01:00 ",
      "2021-03-04T05:06:07+-1:00",
      "2021-03-04T05:06:07Z ",
      "2021-03-04T05:06:07ZZ",
      "2021-03-04T05:06:07 Z",
      "2021-03-04T05:06:07.",
      "2021-03-04T05:06:07.Z",
      "2021-03-04T05:06:07,5",
      "2021-03-04T05:06:07.5.5",
      "2021-03-04T05:06:07.2147483648",
      " 2021-03-04T05:06:07",
      "+2021-03-04T05:06:07",
      "--1-03-04T05:06:07",
      "2021/03/04T05:06:07",
      "20210304T050607",
      "2021-W09-4T05:06:07",
      "2021-063T05:06:07",
      "2147483648-01-01T00:00:00",
      "2021-03-04T2147483648:00:00",
      "2021-03-04T05:06:07+2147483648:00",
      "-",
      "-:",
      "T",
      "T1",
      "TT1:2:3",
      "x:00:00",
      "xx:00:00",
      "1",
      "12",
      "Z",
      "T12.5:00",
      "2021-03-04T12:30.5",
      "1:2:3:4",
      "2021-03-04T05:06:07:08",
      "2021--04T00:00:00",
      "2021-03-T00:00:00",
      "2021-03-04T05:06+0100",
      "2021-03-04T05:06ZZ",
      "-1:00:00",
      "2021-2147483648-01T00:00:00",
      "2021-01-2147483648T00:00:00",
      "2021-03-04T05:2147483648:00",
      "2021-03-04T05:06:2147483648",
      "2021-03-04T05:06:07+01:2147483648",
      "2021-03-04T05:06:0\xC3\xA9",
      "\xC3\xA9:00:00",
  };
  for (const char* text : texts) EXPECT_EQ(read(text), "nil") << text;
  EXPECT_EQ(read(std::string("2021-03-04T05:06:07\0", 20)), "nil");
  EXPECT_EQ(read(std::string("2021-03-04T05:06\0:07", 20)), "nil");
}

TEST(IsoDateReader, ReadsTimesAlone) {
  const ScopedZone zone("UTC");
  const Reading cases[] = {
      {"T10:20:30", "0001-01-01 10:20:30 +0000"},
      {"10:20:30", "0001-01-01 10:20:30 +0000"},
      {"1:05:00", "0001-01-01 01:05:00 +0000"},
      {"12:05:00+01:00", "0001-01-01 11:05:00 +0000"},
      {"::", "0001-01-01 00:00:00 +0000"},
      {":5:07", "0001-01-01 00:05:07 +0000"},
      {"T::9", "0001-01-01 00:00:09 +0000"},
      {"0000-00-00T10:20:30", "0001-01-01 10:20:30 +0000"},
      {"-0-0-0T10:20:30", "0001-01-01 10:20:30 +0000"},
  };
  for (const Reading& c : cases) EXPECT_EQ(read(c.text), c.moment) << c.text;
}

TEST(IsoDateReader, WithoutSecondsTheTimeIsMidnight) {
  const ScopedZone zone("UTC");
  EXPECT_EQ(read("2021-03-04T05:06Z"), "2021-03-04 00:00:00 +0000");
  EXPECT_EQ(read("2021-03-04T05:06"), "2021-03-04 00:00:00 +0000");
  EXPECT_EQ(read("2021-03-04T:"), "2021-03-04 00:00:00 +0000");
  EXPECT_EQ(read("2021-03-04T05:06+01:00"), "2021-03-03 23:00:00 +0000");
  EXPECT_EQ(read("12:05"), "0001-01-01 00:00:00 +0000");
}

TEST(IsoDateReader, CutsFractionsToNanoseconds) {
  const std::pair<const char*, int> cases[] = {
      {".5", 500000000},
      {".123456789", 123456789},
      {".1234567891", 123456789},
      {".000000001", 1},
      {".0000000009", 0},
      {".00000000000000000000000000000000000000000000001", 0},
      {".2147483647", 214748364},
      {".999999999", 999999999},
      {".0", 0},
  };
  for (const auto& [fraction, nanoseconds] : cases) {
    detail::DateComponents c;
    ASSERT_TRUE(detail::readIso8601(std::string("2021-03-04T05:06:07") + fraction + "+00:00", c))
        << fraction;
    EXPECT_EQ(c.nanosecond, nanoseconds) << fraction;
  }
  EXPECT_EQ(qxDateFromISO8601String("1970-01-01T00:00:00.25+00:00")->timeIntervalSince1970(), 0.25);
}

// The way for texts of the usual form must not differ from the way for all the others.
TEST(IsoDateReader, LeadingZerosMakeNoDifference) {
  const char* const tails[] = {"", "Z", "+02:00", ".5", ".5-11:00", "x", "Zx", ".", "1", "1.25Z"};
  const char* const heads[] = {"2021-03-04T05:06:07", "0000-00-00T00:00:00", "0000-00-00T99:99:99",
                               "9999-99-99T99:99:99", "2021-02-00T00:60:00", "0000-01-00T23:59:59"};
  for (const char* head : heads) {
    for (const char* tail : tails) {
      const std::string text = std::string(head) + tail;
      detail::DateComponents usual;
      detail::DateComponents other;
      const bool accepted = detail::readIso8601(text, usual);
      ASSERT_EQ(detail::readIso8601("0" + text, other), accepted) << text;
      if (accepted) {
        EXPECT_EQ(usual, other) << text;
      }
    }
  }
}

TEST(IsoDateReader, TakesTextWithoutOffsetAndWithZAsLocalTime) {
  const ScopedZone zone("America/New_York");
  EXPECT_EQ(read("2021-03-04T05:06:07"), "2021-03-04 10:06:07 +0000");
  EXPECT_EQ(read("2021-03-04T05:06:07Z"), "2021-03-04 10:06:07 +0000");
  EXPECT_EQ(read("2021-07-04T05:06:07Z"), "2021-07-04 09:06:07 +0000");
  EXPECT_EQ(read("2021-03-04T05:06:07+00:00"), "2021-03-04 05:06:07 +0000");
  EXPECT_EQ(read("2021-03-14T02:30:00"), "2021-03-14 07:30:00 +0000");  // skipped: 03:30
  EXPECT_EQ(read("2021-11-07T01:30:00"), "2021-11-07 05:30:00 +0000");  // twice: the earlier
}

TEST(IsoDateReader, FollowsTheZone) {
  const std::pair<const char*, const char*> cases[] = {
      {"UTC", "2021-12-31 23:59:59 +0000"},
      {"America/New_York", "2022-01-01 04:59:59 +0000"},
      {"Australia/Sydney", "2021-12-31 12:59:59 +0000"},
      {"Asia/Kathmandu", "2021-12-31 18:14:59 +0000"},
      {"Pacific/Pago_Pago", "2022-01-01 10:59:59 +0000"},
  };
  for (const auto& [name, moment] : cases) {
    const ScopedZone zone(name);
    EXPECT_EQ(read("2021-12-31T23:59:59"), moment) << name;
    EXPECT_EQ(read("2021-12-31T23:59:59+00:00"), "2021-12-31 23:59:59 +0000") << name;
  }
}

// Noon as the C library has it, which knows the years from 1 on: the same day 400 years later for
// those before, in zones whose towns kept their own time then.
double noonBySystem(std::int64_t year, int month, int day) {
  constexpr double kPeriod = 146097 * 86400.0;
  tm parts{};
  parts.tm_year = static_cast<int>(year < 1 ? year + 400 : year) - 1900;
  parts.tm_mon = month - 1;
  parts.tm_mday = day;
  parts.tm_hour = 12;
  parts.tm_isdst = -1;
  return static_cast<double>(mktime(&parts)) - (year < 1 ? kPeriod : 0);
}

TEST(IsoDateReader, KnowsLeapDaysAndMonthEndsInEveryZone) {
  struct Day {
    int month;
    int day;
  };
  const Day days[] = {{1, 1},  {1, 31}, {2, 28}, {2, 29}, {3, 1},
                      {4, 30}, {4, 31}, {7, 15}, {9, 30}, {12, 31}};
  for (const char* name : test_support::kZones) {
    const ScopedZone zone(name);
    tzset();
    for (const int year : {-44, -4, -1, 0, 1, 4, 1582, 1900, 1970, 2000, 2020, 2021, 9999, 20000}) {
      for (const Day& d : days) {
        const std::string text = std::to_string(year) + '-' + std::to_string(d.month) + '-' +
                                 std::to_string(d.day) + "T12:00:00";
        EXPECT_EQ(qxDateFromISO8601String(text)->timeIntervalSince1970(),
                  noonBySystem(year, d.month, d.day))
            << name << ' ' << text;
      }
    }
  }
}

TEST(IsoDateReader, TakesNumbersAsSecondsAndNothingElse) {
  EXPECT_EQ(read(0), "1970-01-01 00:00:00 +0000");
  EXPECT_EQ(qxDateFromISO8601String(-1.5)->timeIntervalSince1970(), -1.5);
  EXPECT_EQ(qxDateFromISO8601String(true)->timeIntervalSince1970(), 1);
  EXPECT_EQ(
      qxDateFromISO8601String(QXFractionNumber::initWithNumerator(1, 2))->timeIntervalSince1970(),
      0.5);
  EXPECT_EQ(qxDateFromISO8601String(DecimalNumber::initWithString("2.5"))->timeIntervalSince1970(),
            2.5);
  for (const PropertyValue& v : {PropertyValue(), PropertyValue(qx::null), PropertyValue(""),
                                 PropertyValue(dict()), PropertyValue(Array::init()),
                                 PropertyValue(dateAt(0)), PropertyValue(Data::from("T1:2:3"))}) {
    EXPECT_EQ(read(v), "nil") << v.description();
  }
}

TEST(IsoDateReader, TakesTextInEveryForm) {
  const ScopedZone zone("UTC");
  const char kText[] = "2021-03-04T05:06:07+00:00";
  EXPECT_EQ(qxDateFromISO8601String(kText)->timeIntervalSince1970(), 1614834367);
  EXPECT_EQ(qxDateFromISO8601String(std::string(kText))->timeIntervalSince1970(), 1614834367);
  EXPECT_EQ(qxDateFromISO8601String(String::from(kText))->timeIntervalSince1970(), 1614834367);
  EXPECT_EQ(qxDateFromISO8601String(static_cast<const char*>(nullptr)), nullptr);
  EXPECT_EQ(qxDateFromISO8601String(nullptr), nullptr);
  // A mutable string may keep wide units when none needs it any more.
  const auto wide = MutableString::from("\u4E00");
  EXPECT_EQ(qxDateFromISO8601String(wide), nullptr);
  wide->setString(kText);
  wide->appendString("\u4E00");
  wide->deleteCharactersInRange({sizeof kText - 1, 1});
  EXPECT_EQ(qxDateFromISO8601String(wide)->timeIntervalSince1970(), 1614834367);
}

TEST(IsoDateWriter, WritesUtcToTheSecond) {
  const std::pair<double, const char*> cases[] = {
      {0, "1970-01-01T00:00:00Z"},
      {0.9, "1970-01-01T00:00:00Z"},
      {-0.9, "1970-01-01T00:00:00Z"},
      {-1.5, "1969-12-31T23:59:59Z"},
      {951782400, "2000-02-29T00:00:00Z"},
      {1614834367, "2021-03-04T05:06:07Z"},
      {253402300799, "9999-12-31T23:59:59Z"},
      {253402300800, "10000-01-01T00:00:00Z"},
      {-62135596800, "0001-01-01T00:00:00Z"},
      {-62167219200, "0000-01-01T00:00:00Z"},
      {-62167219201, "-0001-12-31T23:59:59Z"},
      {-30610224000, "1000-01-01T00:00:00Z"},
      {-30610224001, "0999-12-31T23:59:59Z"},
  };
  const ScopedZone zone("Asia/Kathmandu");
  for (const auto& [seconds, text] : cases) {
    EXPECT_EQ(qxISO8601String(dateAt(seconds))->utf8(), text);
  }
  EXPECT_EQ(qxISO8601String(nullptr), nullptr);
}

TEST(IsoDateWriter, WritesWhatStrftimeWrites) {
  std::mt19937_64 random(61);
  // From the year 1000 on, where the C library writes four digits as well.
  const std::int64_t first = -30610224000;
  for (int i = 0; i < 100000; ++i) {
    const auto t =
        static_cast<time_t>(first + static_cast<std::int64_t>(random() >> (14 + i % 30)));
    tm parts{};
    gmtime_r(&t, &parts);
    char text[80];
    const std::size_t length = strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", &parts);
    ASSERT_EQ(qxISO8601String(dateAt(static_cast<double>(t)))->utf8(), std::string(text, length));
  }
}

TEST(IsoDateWriter, WritesWhatDoesNotFit64BitsAsTheLeast) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  for (const double t : {9.3e18, -9.3e18, kInfinity, -kInfinity, std::nan("")}) {
    EXPECT_EQ(qxISO8601String(dateAt(t))->utf8(), "-292277022657-01-27T08:29:52Z") << t;
  }
  EXPECT_EQ(qxISO8601String(dateAt(9.2e18))->utf8(), "291536396232-08-31T11:33:20Z");
}

TEST(DateOperations, CanBePerformedBySelector) {
  const ScopedZone zone("UTC");
  const PropertyValue dates = &const_cast<Class&>(classOf<Date>());
  EXPECT_EQ(performSelector(dates, "qxDateFromISO8601String:", "2021-03-04T05:06:07Z"),
            PropertyValue(dateAt(1614834367)));
  EXPECT_EQ(performSelector(dates, "qxDateFromISO8601String:", 7), PropertyValue(dateAt(7)));
  EXPECT_TRUE(performSelector(dates, "qxDateFromISO8601String:", "x").isNil());
  EXPECT_EQ(performSelector(dateAt(7), "qxISO8601String"), "1970-01-01T00:00:07Z");
  EXPECT_EQ(performSelector(dateAt(7.5), "qxRFC3339String"), "1970-01-01T00:00:07.5Z");
  EXPECT_EQ(performSelector(dateAt(7), "qxLocalRFC3339String"), "1970-01-01T00:00:07Z");
  EXPECT_EQ(performSelector(dates, "qxDateFromRFC3339String:", "1970-01-01T00:00:07Z"),
            PropertyValue(dateAt(7)));
  EXPECT_EQ(performSelector(dates, "daysBetweenDate:andDate:", dateAt(0), dateAt(200000)), 2);
  EXPECT_THROW(performSelector(dates, "daysBetweenDate:andDate:", dateAt(0), 5),
               InvalidArgumentException);
}

}  // namespace
}  // namespace qx
