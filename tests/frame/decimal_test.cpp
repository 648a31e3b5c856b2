#include "frame/decimal.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <utility>

#include <QXFoundation/exception.h>
#include <QXFoundation/number.h>

#include "tests/frame/decimal_reference.h"
#include "tests/frame/storage_forms.h"

namespace qx::detail {
namespace {

TEST(DecimalText, ReadsAndWritesPlainNotation) {
  const struct {
    std::string text;
    std::string plain;
  } cases[] = {
      {"0", "0"},
      {"-0", "0"},
      {"0.000", "0"},
      {"0e500", "0"},
      {"1", "1"},
      {"-1", "-1"},
      {"+1.50", "1.5"},
      {"-0.001", "-0.001"},
      {".5", "0.5"},
      {"5.", "5"},
      {"100000", "100000"},
      {"1e5", "100000"},
      {"1E+5", "100000"},
      {"12.34e1", "123.4"},
      {"12.34e-3", "0.01234"},
      {"1200e-2", "12"},
      {" \t\n\v\f\r7", "7"},
      {"7 8", "7"},
      {"12abc", "12"},
      {"1.2.3", "1.2"},
      {"1e", "1"},
      {"1e+", "1"},
      {"1e5.5", "100000"},
      {"0x10", "0"},
      {"", "NaN"},
      {" ", "NaN"},
      {".", "NaN"},
      {"-", "NaN"},
      {"-.e5", "NaN"},
      {"abc", "NaN"},
      {"nan", "NaN"},
      {"inf", "NaN"},
      {"+-1", "NaN"},
      {"- 1", "NaN"},
      {"12345678901234567890123456789012345678", "12345678901234567890123456789012345678"},
      {nines(38), nines(38)},
      {"0." + nines(38), "0." + nines(38)},
      {"123456789012345678901234567890.12345678", "123456789012345678901234567890.12345678"},
      {"100000000000000000000000000000000000000", "1" + zeros(38)},
      {"000000000000000000000000000000000000000000001", "1"},
      {"10000000000000000000", "10000000000000000000"},
      {"10000000000000000001", "10000000000000000001"},
      // Rounded half to even beyond 38 digits.
      {nines(37) + "84", nines(37) + "80"},
      {nines(37) + "85", nines(37) + "80"},
      {nines(37) + "85.0000000000001", nines(37) + "90"},
      {nines(37) + "75", nines(37) + "80"},
      {nines(37) + "86", nines(37) + "90"},
      {nines(38) + "4", nines(38) + "0"},
      {nines(38) + "5", "1" + zeros(39)},
      {"0." + nines(39), "1"},
      {"1." + zeros(37) + "5", "1"},
      {"1." + zeros(37) + "51", "1." + zeros(36) + "1"},
      // The ends of the exponent range.
      {"1e127", "1" + zeros(127)},
      {"1e128", "1" + zeros(128)},
      {"1e164", "1" + zeros(164)},
      {"1e165", "NaN"},
      {nines(38) + "e127", nines(38) + zeros(127)},
      {nines(38) + "5e126", "NaN"},
      {nines(38) + "4e126", nines(38) + zeros(127)},
      {"12e164", "NaN"},
      {"1e-128", "0." + zeros(127) + "1"},
      {"-1.4e-128", "-0." + zeros(127) + "1"},
      {"1.5e-128", "0." + zeros(127) + "2"},
      {"2.5e-128", "0." + zeros(127) + "2"},
      {"2.51e-128", "0." + zeros(127) + "3"},
      {"0.5e-128", "0"},
      {"0.51e-128", "0." + zeros(127) + "1"},
      {"1e-129", "0"},
      {"-1e-129", "0"},
      {"1e999999999999999999999", "NaN"},
      {"-1e999999999999999999999", "NaN"},
      {"1e-999999999999999999999", "0"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(dec(c.text).text(), c.plain) << c.text;
    EXPECT_EQ(Decimal::parse(widened(c.text)), dec(c.text)) << c.text;
    EXPECT_EQ(dec(c.text).isNaN(), c.plain == "NaN") << c.text;
    EXPECT_EQ(dec(c.text).isZero(), c.plain == "0") << c.text;
    EXPECT_EQ(dec(c.text).isNegative(), c.plain[0] == '-') << c.text;
    if (c.plain != "NaN") {
      EXPECT_EQ(dec(c.plain), dec(c.text)) << c.text;
    }
  }
}

TEST(DecimalText, HostileTextTakesLinearTime) {
  constexpr int kMany = 500'000;
  EXPECT_TRUE(dec(nines(kMany)).isNaN());
  EXPECT_EQ(dec("0." + nines(kMany)).text(), "1");
  EXPECT_EQ(dec("0." + zeros(kMany) + "15e500001").text(), "1.5");
  EXPECT_EQ(dec("15" + zeros(kMany) + "e-500001").text(), "1.5");
  EXPECT_EQ(dec("1" + zeros(50) + "." + zeros(kMany) + "1e-10").text(), "1" + zeros(40));
  EXPECT_EQ(dec("1e" + nines(kMany)).text(), "NaN");
  EXPECT_EQ(dec("1e-" + nines(kMany)).text(), "0");
  EXPECT_EQ(dec(zeros(kMany) + "1e" + zeros(kMany) + "2").text(), "100");
}

TEST(DecimalText, RoundsRandomTextsHalfToEven) {
  std::mt19937_64 random(7);
  for (int round = 0; round < 5000; ++round) {
    std::string digits = "1";
    const auto count = 36 + random() % 8;
    for (unsigned i = 1; i < count; ++i) {
      digits += static_cast<char>('0' + (random() % 3 == 0 ? random() % 10 : random() % 2 * 5));
    }
    const Integer whole(digits);
    Integer expected = whole;
    if (count > 38) {
      const Integer unit = mp::pow(Integer(10), static_cast<unsigned>(count - 38));
      const Integer rest = whole % unit;
      expected -= rest;
      if (rest * 2 > unit || (rest * 2 == unit && (expected / unit) % 2 != 0)) expected += unit;
    }
    ASSERT_EQ(dec(digits).text(), expected.str()) << digits;
    const Decimal small = dec(digits + "e-50");
    ASSERT_EQ(exact(small), Rational(expected, mp::pow(Integer(10), 50))) << digits;
  }
}

TEST(Decimal, DefaultIsZero) {
  EXPECT_EQ(Decimal(), dec("0"));
  EXPECT_TRUE(Decimal().isZero());
  EXPECT_TRUE(Decimal().isInteger());
  EXPECT_EQ(sizeof(Decimal), 24u);
}

TEST(Decimal, IntegersConvertExactly) {
  for (const std::int64_t value : {std::int64_t{0}, std::int64_t{1}, std::int64_t{-1},
                                   std::int64_t{1000}, std::int64_t{-120}, kMost64, kLeast64}) {
    const Decimal decimal = Decimal::fromInt64(value);
    EXPECT_EQ(decimal.text(), std::to_string(value));
    EXPECT_EQ(decimal.toInt64(), value);
    EXPECT_EQ(decimal.exactInt64(), value);
    EXPECT_TRUE(decimal.isInteger());
    EXPECT_EQ(decimal.compare(value), 0);
  }
  for (const std::uint64_t value : {std::uint64_t{0}, std::uint64_t{10}, kMostU64}) {
    const Decimal decimal = Decimal::fromUInt64(value);
    EXPECT_EQ(decimal.text(), std::to_string(value));
    EXPECT_EQ(decimal.toUInt64(), value);
    EXPECT_EQ(decimal.exactUInt64(), value);
    EXPECT_EQ(decimal.compare(value), 0);
  }
}

TEST(Decimal, ToIntegersTruncatesAndSaturates) {
  const struct {
    std::string text;
    std::int64_t int64;
    std::uint64_t uint64;
  } cases[] = {
      {"NaN", 0, 0},
      {"1.9", 1, 1},
      {"-1.9", -1, 0},
      {"-0.9", 0, 0},
      {"0.5", 0, 0},
      {"1e-128", 0, 0},
      {"1e3", 1000, 1000},
      {"9223372036854775807", kMost64, 9223372036854775807u},
      {"9223372036854775807.9", kMost64, 9223372036854775807u},
      {"9223372036854775808", kMost64, 9223372036854775808u},
      {"-9223372036854775808", kLeast64, 0},
      {"-9223372036854775808.5", kLeast64, 0},
      {"-9223372036854775809", kLeast64, 0},
      {"18446744073709551615", kMost64, kMostU64},
      {"18446744073709551615.99", kMost64, kMostU64},
      {"18446744073709551616", kMost64, kMostU64},
      {"1e19", kMost64, 10000000000000000000u},
      {"1e20", kMost64, kMostU64},
      {"-1e160", kLeast64, 0},
      {"1e160", kMost64, kMostU64},
      {"12345678901234567890123456789012345678", kMost64, kMostU64},
      {"1.2345678901234567890123456789012345678", 1, 1},
      {"0.12345678901234567890123456789012345678", 0, 0},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(dec(c.text).toInt64(), c.int64) << c.text;
    EXPECT_EQ(dec(c.text).toUInt64(), c.uint64) << c.text;
  }
}

TEST(Decimal, ExactViewsExistOnlyForEqualNumbers) {
  EXPECT_FALSE(dec("NaN").exactInt64());
  EXPECT_FALSE(dec("NaN").exactUInt64());
  EXPECT_FALSE(dec("1.5").exactInt64());
  EXPECT_FALSE(dec("-1").exactUInt64());
  EXPECT_FALSE(dec("9223372036854775808").exactInt64());
  EXPECT_FALSE(dec("-9223372036854775809").exactInt64());
  EXPECT_FALSE(dec("18446744073709551616").exactUInt64());
  EXPECT_FALSE(dec("1e100").exactInt64());
  EXPECT_EQ(dec("1e18").exactInt64(), 1000000000000000000);
  EXPECT_EQ(dec("18446744073709551615").exactUInt64(), kMostU64);

  EXPECT_EQ(dec("0").exactDouble(), 0.0);
  EXPECT_EQ(dec("-1.5").exactDouble(), -1.5);
  EXPECT_EQ(dec("1e22").exactDouble(), 1e22);
  EXPECT_FALSE(dec("1e23").exactDouble());
  EXPECT_FALSE(dec("0.1").exactDouble());
  EXPECT_EQ(dec("9007199254740992").exactDouble(), 9007199254740992.0);
  EXPECT_FALSE(dec("9007199254740993").exactDouble());
  EXPECT_EQ(dec("9007199254740994").exactDouble(), 9007199254740994.0);
  EXPECT_EQ(dec("0.00000000023283064365386962890625").exactDouble(), std::ldexp(1.0, -32));
  EXPECT_EQ(dec("170141183460469231731687303715884105728e0").exactDouble(), std::nullopt);
  EXPECT_EQ(dec("85070591730234615865843651857942052864").exactDouble(), std::ldexp(1.0, 126));
  EXPECT_FALSE(dec("1e-128").exactDouble());
  EXPECT_FALSE(dec("1e164").exactDouble());
  EXPECT_TRUE(std::isnan(dec("NaN").exactDouble().value()));
}

TEST(Decimal, KnowsIntegers) {
  for (const char* text : {"0", "1", "-100", "1e164", "12.50e1"})
    EXPECT_TRUE(dec(text).isInteger());
  for (const char* text : {"0.5", "-1.25", "1e-128", "NaN"}) EXPECT_FALSE(dec(text).isInteger());
}

TEST(Decimal, DoublesBecomeTheirShortestText) {
  EXPECT_EQ(Decimal::fromDouble(0.1).text(), "0.1");
  EXPECT_EQ(Decimal::fromFloat(0.1f).text(), "0.1");
  EXPECT_EQ(Decimal::fromDouble(-0.0).text(), "0");
  EXPECT_EQ(Decimal::fromDouble(-1.5e22).text(), "-15000000000000000000000");
  EXPECT_EQ(Decimal::fromDouble(1e164).text(), "1" + zeros(164));
  EXPECT_EQ(Decimal::fromDouble(1e-320), Decimal());
  for (const double value : {1e165, -1e308, kInfinity, -kInfinity, kNaN, -kNaN}) {
    EXPECT_TRUE(Decimal::fromDouble(value).isNaN());
  }
}

TEST(Decimal, DoublesRoundTrip) {
  std::mt19937_64 random(8);
  for (int round = 0; round < 20000; ++round) {
    // Down to where all 17 digits stay above the smallest exponent.
    const double value = randomDouble(random, -360, 540);
    ASSERT_EQ(Decimal::fromDouble(value).toDouble(), value);
  }
  for (int round = 0; round < 20000; ++round) {
    const double value =
        static_cast<double>(static_cast<std::int64_t>(random() % 2000000) - 1000000) / 1000;
    ASSERT_EQ(Decimal::fromDouble(value).toDouble(), value);
  }
}

TEST(Decimal, RandomNumbersRoundTripThroughText) {
  std::mt19937_64 random(9);
  for (int round = 0; round < 20000; ++round) {
    const Decimal decimal = randomDecimal(random);
    ASSERT_EQ(dec(decimal.text()), decimal) << decimal.text();
    ASSERT_EQ(dec(decimal.text() + (decimal.isInteger() ? ".000" : "00")), decimal);
  }
}

TEST(Decimal, ToDoubleRoundsCorrectly) {
  std::mt19937_64 random(10);
  for (int round = 0; round < 5000; ++round) {
    const Decimal decimal = randomDecimal(random);
    const double value = decimal.toDouble();
    const Rational error = mp::abs(Rational(exact(decimal) - exact(value)));
    for (const double other :
         {std::nextafter(value, kInfinity), std::nextafter(value, -kInfinity)}) {
      ASSERT_LE(error, mp::abs(Rational(exact(decimal) - exact(other)))) << decimal.text();
    }
  }
  EXPECT_EQ(dec("9007199254740993").toDouble(), 9007199254740992.0);
  EXPECT_EQ(dec("9007199254740993.000000000000000001").toDouble(), 9007199254740994.0);
  EXPECT_TRUE(std::isnan(dec("NaN").toDouble()));
}

TEST(DecimalNumber, ComesFromNumbersOfEveryKind) {
  const std::pair<PropertyValue, const char*> cases[] = {
      {-5, "-5"},  {~std::uint64_t{0}, "18446744073709551615"},       {0.1, "0.1"}, {0.1F, "0.1"},
      {true, "1"}, {DecimalNumber::initWithString("12.25"), "12.25"},
  };
  for (const auto& [number, text] : cases) {
    EXPECT_EQ(DecimalNumber::fromNumber(number)->stringValue(), text);
  }
  EXPECT_TRUE(DecimalNumber::fromNumber(std::numeric_limits<double>::quiet_NaN())->isNaN());
  EXPECT_THROW(DecimalNumber::fromNumber("5"), InvalidArgumentException);
  EXPECT_THROW(DecimalNumber::fromNumber(nullptr), InvalidArgumentException);
}

}  // namespace
}  // namespace qx::detail
