#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>
#include <random>

#include <QXFoundation/rfc3339.h>

#include "tests/support/scoped_zone.h"

namespace qx {
namespace {

using test_support::kZones;
using test_support::ScopedZone;

Ref<Date> dateAt(double seconds) { return Date::dateWithTimeIntervalSince1970(seconds); }
std::string written(const Ref<String>& text) { return text == nullptr ? "nil" : text->utf8(); }

TEST(Rfc3339Reader, ReadsMoments) {
  const std::pair<const char*, double> cases[] = {
      {"1970-01-01T00:00:00Z", 0},
      {"1970-01-01t00:00:00z", 0},
      {"1970-01-01T00:00:00+00:00", 0},
      {"1970-01-01T00:00:00-00:00", 0},
      {"2021-03-04T05:06:07Z", 1614834367},
      {"2021-03-04T05:06:07+02:00", 1614834367 - 7200},
      {"2021-03-04T05:06:07-02:30", 1614834367 + 9000},
      {"2021-03-04T05:06:07.25Z", 1614834367.25},
      {"2021-03-04T05:06:07.2500000000000000000000000000000Z", 1614834367.25},
      {"2021-03-04T05:06:07.0Z", 1614834367},
      {"1969-12-31T23:59:59.75Z", -0.25},
      {"1969-12-31T23:59:58.5Z", -1.5},
      {"0000-01-01T00:00:00Z", -62167219200},
      {"9999-12-31T23:59:59Z", 253402300799},
      {"0000-01-01T00:00:00+23:59", -62167219200 - 86340},
      {"2020-02-29T12:00:00Z", 1582977600},
  };
  for (const auto& [text, seconds] : cases) {
    const auto date = qxDateFromRFC3339String(text);
    ASSERT_NE(date, nullptr) << text;
    EXPECT_EQ(date->timeIntervalSince1970(), seconds) << text;
  }
}

TEST(Rfc3339Reader, ReadsLeapSecondsAtTheEndOfAMonthInUtc) {
  const std::pair<const char*, double> cases[] = {
      {"1990-12-31T23:59:60Z", 662688000},
      {"1990-12-31T15:59:60-08:00", 662688000},
      {"1990-12-31T23:59:60.5Z", 662688000.5},
      {"2015-07-01T00:59:60+01:00", 1435708800},
  };
  for (const auto& [text, seconds] : cases) {
    const auto date = qxDateFromRFC3339String(text);
    ASSERT_NE(date, nullptr) << text;
    EXPECT_EQ(date->timeIntervalSince1970(), seconds) << text;
  }
  for (const char* text :
       {"1990-12-30T23:59:60Z", "1990-12-31T23:58:60Z", "1990-12-31T23:59:60+01:00",
        "1990-12-31T22:59:60Z", "1990-12-31T23:59:61Z"}) {
    EXPECT_EQ(qxDateFromRFC3339String(text), nullptr) << text;
  }
}

TEST(Rfc3339Reader, RefusesEverythingElse) {
  const char* const texts[] = {
      "",
      "2021-03-04",
      "2021-03-04T05:06:07",
      "2021-03-04T05:06Z",
      "2021-03-04T05Z",
      "2021-03-04 05:06:07Z",
      "2021-03-04T05:06:07+0200",
      "2021-03-04T05:06:07+02",
      "2021-03-04T05:06:07+2:00",
      "2021-03-04T05:06:07+24:00",
      "2021-03-04T05:06:07+02:60",
      "2021-03-04T05:06:07 Z",
      "2021-03-04T05:06:07ZZ",
      "2021-03-04T05:06:07Z ",
      " 2021-03-04T05:06:07Z",
      "2021-03-04T05:06:07.Z",
      "2021-03-04T05:06:07,5Z",
      "2021-03-04T05:06:07.5",
      "2021-3-04T05:06:07Z",
      "21-03-04T05:06:07Z",
      "12021-03-04T05:06:07Z",
      "-2021-03-04T05:06:07Z",
      "+2021-03-04T05:06:07Z",
      "2021-00-04T05:06:07Z",
      "2021-13-04T05:06:07Z",
      "2021-03-00T05:06:07Z",
      "2021-03-32T05:06:07Z",
      "2021-04-31T05:06:07Z",
      "2021-02-29T05:06:07Z",
      "1900-02-29T05:06:07Z",
      "2021-03-04T24:00:00Z",
      "2021-03-04T05:60:00Z",
      "2021-03-04T05:06:60Z",
      "2021-03-04T5:06:07Z",
      "2021-03-04T05:06:7Z",
      "2021-03-04T05:06:07\u221202:00",
  };
  for (const char* text : texts) EXPECT_EQ(qxDateFromRFC3339String(text), nullptr) << text;
  EXPECT_EQ(qxDateFromRFC3339String(nullptr), nullptr);
  EXPECT_EQ(qxDateFromRFC3339String(std::string_view("2021-03-04T05:06:07Z\0", 21)), nullptr);
}

TEST(Rfc3339Reader, TellsTheOffset) {
  struct Case {
    const char* text;
    int minutes;
    bool isKnown;
  };
  const Case cases[] = {
      {"2021-03-04T05:06:07Z", 0, true},         {"2021-03-04T05:06:07+00:00", 0, true},
      {"2021-03-04T05:06:07-00:00", 0, false},   {"2021-03-04T05:06:07+05:45", 345, true},
      {"2021-03-04T05:06:07-11:00", -660, true}, {"2021-03-04T05:06:07-00:01", -1, true},
  };
  for (const Case& c : cases) {
    const auto read = qxOffsetDateFromRFC3339String(c.text);
    ASSERT_TRUE(read) << c.text;
    EXPECT_EQ(read->offsetMinutes, c.minutes) << c.text;
    EXPECT_EQ(read->offsetIsKnown, c.isKnown) << c.text;
  }
  EXPECT_FALSE(qxOffsetDateFromRFC3339String("2021-03-04"));
}

TEST(Rfc3339Writer, WritesMoments) {
  struct Case {
    double seconds;
    int offset;
    const char* text;
  };
  const Case cases[] = {
      {0, 0, "1970-01-01T00:00:00Z"},
      {-0.0, 0, "1970-01-01T00:00:00Z"},
      {1614834367.25, 120, "2021-03-04T07:06:07.25+02:00"},
      {1614834367, -150, "2021-03-04T02:36:07-02:30"},
      {1614834367.1, 0, "2021-03-04T05:06:07.1Z"},
      {-0.25, 0, "1969-12-31T23:59:59.75Z"},
      {-0.1, 0, "1969-12-31T23:59:59.9Z"},
      {-1, 0, "1969-12-31T23:59:59Z"},
      {-86340.5, 1439, "1969-12-31T23:59:59.5+23:59"},
      {-62167219200, 0, "0000-01-01T00:00:00Z"},
      {253402300799, 0, "9999-12-31T23:59:59Z"},
      {253402300800, -1, "9999-12-31T23:59:00-00:01"},
      {-62167219201, 0, "nil"},
      {-62167219201, 1, "0000-01-01T00:00:59+00:01"},
      {253402300800, 0, "nil"},
      {253402300799, 1, "nil"},
      {0, 1440, "nil"},
      {0, -1440, "nil"},
      {std::numeric_limits<double>::infinity(), 0, "nil"},
      {-std::numeric_limits<double>::infinity(), 0, "nil"},
      {std::nan(""), 0, "nil"},
      {1e300, 0, "nil"},
  };
  for (const Case& c : cases)
    EXPECT_EQ(written(qxRFC3339String(dateAt(c.seconds), c.offset)), c.text);
  EXPECT_EQ(qxRFC3339String(nullptr), nullptr);
  EXPECT_EQ(qxRFC3339String(nullptr, 60), nullptr);
  EXPECT_EQ(qxLocalRFC3339String(nullptr), nullptr);
}

TEST(Rfc3339Writer, GivesBackTheTextWithItsOffset) {
  for (const char* text :
       {"2021-03-04T05:06:07Z", "2021-03-04T05:06:07.125+05:45", "2021-03-04T05:06:07-11:00",
        "2021-03-04T05:06:07-00:00", "0000-01-01T00:00:00+23:59", "9999-12-31T23:59:59-23:59"}) {
    EXPECT_EQ(written(qxRFC3339String(*qxOffsetDateFromRFC3339String(text))), text);
  }
}

TEST(Rfc3339Writer, WritesLocalTimeWithItsOffset) {
  const std::pair<const char*, const char*> cases[] = {
      {"UTC", "2021-07-04T12:00:00.5Z"},
      {"America/New_York", "2021-07-04T08:00:00.5-04:00"},
      {"Australia/Sydney", "2021-07-04T22:00:00.5+10:00"},
      {"Asia/Kathmandu", "2021-07-04T17:45:00.5+05:45"},
      {"Pacific/Pago_Pago", "2021-07-04T01:00:00.5-11:00"},
  };
  for (const auto& [name, text] : cases) {
    const ScopedZone zone(name);
    EXPECT_EQ(written(qxLocalRFC3339String(dateAt(1625400000.5))), text) << name;
  }
  // Until 1883 New York was 4:56:02 behind: there 13:43:58 is shown as the minute's full offset has
  // it.
  const ScopedZone zone("America/New_York");
  EXPECT_EQ(written(qxLocalRFC3339String(dateAt(-3000000000))), "1874-12-07T13:44:00-04:56");
  EXPECT_EQ(written(qxLocalRFC3339String(dateAt(std::nan("")))), "nil");
  EXPECT_EQ(written(qxLocalRFC3339String(dateAt(1e300))), "nil");
  EXPECT_EQ(written(qxLocalRFC3339String(dateAt(1e12))), "nil");
}

void expectRoundTrip(double seconds, int offset) {
  const auto text = qxRFC3339String(dateAt(seconds), offset);
  ASSERT_NE(text, nullptr) << seconds;
  const auto read = qxOffsetDateFromRFC3339String(text);
  ASSERT_TRUE(read) << text->utf8();
  ASSERT_EQ(read->date->timeIntervalSince1970(), seconds) << text->utf8();
  ASSERT_EQ(read->offsetMinutes, offset) << text->utf8();
  ASSERT_EQ(qxRFC3339String(*read)->utf8(), text->utf8());
}

TEST(Rfc3339RoundTrip, KeepsEveryDateToTheBit) {
  std::mt19937_64 random(23);
  std::uniform_real_distribution<double> all(-62167132800.0, 253402214399.0);
  std::uniform_real_distribution<double> near(-2, 2);
  for (int i = 0; i < 100000; ++i) {
    const int offset = static_cast<int>(random() % 2879) - 1439;
    expectRoundTrip(all(random), offset);
    expectRoundTrip(near(random), offset);
    expectRoundTrip(static_cast<double>(static_cast<std::int64_t>(all(random))), offset);
  }
}

TEST(Rfc3339RoundTrip, KeepsTheSmallestFractions) {
  std::mt19937_64 random(29);
  for (int i = 0; i < 2000; ++i) {
    // Every exponent below 2^0, denormals included.
    const std::uint64_t bits = (random() % 1023 << 52) | (random() >> 12);
    const auto small = std::bit_cast<double>(bits);
    expectRoundTrip(small, 0);
    expectRoundTrip(-small, 0);
  }
  expectRoundTrip(std::numeric_limits<double>::denorm_min(), 0);
  expectRoundTrip(-std::numeric_limits<double>::denorm_min(), 0);
  EXPECT_EQ(qxDateFromRFC3339String("1970-01-01T00:00:00." + std::string(400, '0') + "1Z")
                ->timeIntervalSince1970(),
            0);
}

TEST(Rfc3339RoundTrip, HoldsInEveryLocalZone) {
  std::mt19937_64 random(31);
  for (const char* name : kZones) {
    const ScopedZone zone(name);
    for (int i = 0; i < 500; ++i) {
      const double seconds = -60000000000.0 + static_cast<double>(random() % 300000000000);
      EXPECT_EQ(
          qxDateFromRFC3339String(qxLocalRFC3339String(dateAt(seconds)))->timeIntervalSince1970(),
          seconds);
    }
  }
}

}  // namespace
}  // namespace qx
