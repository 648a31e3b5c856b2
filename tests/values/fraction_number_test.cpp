#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>

#include <QXFoundation/QXFoundation.h>
#include <QXFoundation/fraction_number.h>

#include "tests/values/fractions.h"

namespace qx {

namespace {

using fractions::fraction;
using fractions::kLeast;
using fractions::kMost;
using fractions::pairOf;
using fractions::unreduced;

TEST(FractionNumber, IsReducedWithAPositiveDenominator) {
  const std::pair<FractionPair, FractionPair> cases[] = {
      {{6, -4}, {-3, 2}},
      {{-6, -4}, {3, 2}},
      {{1, -5}, {-1, 5}},
      {{5, 1}, {5, 1}},
      {{5, 0}, {0, 0}},
      {{0, 7}, {0, 1}},
      {{0, -7}, {0, 1}},
      {{0, 0}, {0, 0}},
      {{2, 30}, {1, 15}},
      {{-1, 5}, {-1, 5}},
      {{-1, -1}, {1, 1}},
      {{4, 4}, {1, 1}},
      {{kLeast, kLeast}, {1, 1}},
      {{kLeast, 2}, {kLeast / 2, 1}},
      {{kLeast, -1}, {kLeast, 1}},  // wraps
      {{3, kLeast}, {-3, kLeast}},  // has no positive counterpart
      {{-3, kLeast}, {-3, kLeast}},
      {{1, kLeast}, {-1, kLeast}},
      {{6, kLeast}, {-3, -(kLeast / 2)}},
      {{kMost, kLeast}, {kMost, kLeast}},
  };
  for (const auto& [given, reduced] : cases) {
    EXPECT_EQ(pairOf(fraction(given.numerator, given.denominator)), reduced)
        << given.numerator << '/' << given.denominator;
    EXPECT_EQ(pairOf(QXFractionNumber::initWithNumerator(given.numerator, given.denominator)),
              reduced);
  }
}

TEST(FractionNumber, ComesFromIntegers) {
  EXPECT_EQ(pairOf(QXFractionNumber::qxFractionNumberWithInt(-7)), (FractionPair{-7, 1}));
  EXPECT_EQ(pairOf(QXFractionNumber::qxFractionNumberWithInt(-2147483647 - 1)),
            (FractionPair{-2147483648LL, 1}));
  EXPECT_EQ(pairOf(QXFractionNumber::qxFractionNumberWithInt(0)), (FractionPair{0, 1}));
}

TEST(FractionNumber, ComesFromDoublesByAShortExpansion) {
  const std::pair<double, FractionPair> cases[] = {
      {0.5, {1, 2}},
      {0.25, {1, 4}},
      {0.1, {1, 10}},
      {1.0 / 3, {1, 3}},
      {3.14159, {355, 113}},
      {2.5, {4, 1}},
      {-2.5, {-4, 1}},
      {1.5, {3, 1}},
      {2.0 / 3, {3, 1}},
      {0.4, {4, 1}},
      {0.3, {10, 3}},
      {0.375, {5, 2}},
      {0.6, {4, 3}},
      {0.75, {1125899906842628, 1125899906842627}},
      {3.75, {4503599627370511, 1125899906842628}},
      {1.0 / 49, {140737488355377, 1}},  // 1/(1/49) is less than 49 in doubles
      {4.0, {4, 1}},
      {-7.0, {-7, 1}},
      {0.0, {0, 1}},
      {-0.0, {0, 1}},
      {-0.5, {-1, 2}},
      {-9223372036854775808.0, {kLeast, 1}},
      {9223372036854775808.0, {kLeast, 1}},
      {1e300, {kLeast, 1}},
      {-1e300, {kLeast, 1}},
      {std::numeric_limits<double>::infinity(), {kLeast, 1}},
      {std::numeric_limits<double>::quiet_NaN(), {kLeast, 1}},
      {1e-300, {1, kLeast}},
  };
  for (const auto& [x, pair] : cases) {
    EXPECT_EQ(pairOf(QXFractionNumber::qxFractionNumberWithDouble(x)), pair) << x;
    EXPECT_EQ(pairOf(QXFractionNumber::initWithDouble(x)), pair) << x;
  }
  EXPECT_EQ(pairOf(QXFractionNumber::qxFractionNumberWithFloat(0.25F)), (FractionPair{1, 4}));
  // The float is a little more than a tenth: quotients 0, 9, 1 and a great one.
  EXPECT_EQ(pairOf(QXFractionNumber::initWithFloat(0.1F)), (FractionPair{60397975, 6710886}));
  EXPECT_EQ(pairOf(QXFractionNumber::qxFractionNumberWithFloat(0.1F)),
            (FractionPair{60397975, 6710886}));
}

TEST(FractionNumber, DescribesItself) {
  const std::pair<FractionPair, const char*> cases[] = {
      {{0, 0}, "0"},
      {{0, 5}, "0"},
      {{0, -5}, "0"},
      {{3, 0}, "Infinite"},
      {{-3, 0}, "Infinite"},
      {{4, 4}, "1"},
      {{-6, 1}, "-6"},
      {{3, -3}, "-1"},
      {{6, -1}, "-6"},
      {{7, 2}, "3.5"},
      {{-7, 2}, "-3.5"},
      {{6, 3}, "2.0"},
      {{1, 2}, "1/2"},
      {{1, 3}, "1/3"},
      {{1, 1000}, "1/1000"},
      {{2, 3}, "0.7"},
      {{-2, 3}, "-0.7"},
      {{2, 30}, "2/30"},
      {{2, 20}, "0.1"},
      {{3, 20}, "0.1"},
      {{3, 31}, "3/31"},
      {{-3, 31}, "-3/31"},
      {{3, -31}, "3/-31"},
      {{1, -2}, "1/-2"},
      {{-1, 2}, "-1/2"},
      {{kLeast, 1}, "-9223372036854775808"},
      {{kLeast, -1}, "-9223372036854775808"},
      {{kLeast, kLeast}, "1"},
      {{kMost, 2}, "4611686018427387904.0"},
      {{1, kLeast}, "1/-9223372036854775808"},
      {{5, 2}, "2.5"},
      {{1, 20}, "1/20"},
      // Halves are printed by their exact binary value.
      {{25, 100}, "0.2"},
      {{35, 100}, "0.3"},
      {{75, 100}, "0.8"},
  };
  for (const auto& [pair, text] : cases) {
    const auto f = unreduced(pair.numerator, pair.denominator);
    EXPECT_EQ(f->description(), text);
    EXPECT_EQ(f->descriptionWithLocale(nullptr), text);
    EXPECT_EQ(f->descriptionWithLocale("de_DE"), text);
    EXPECT_EQ(f->stringValue(), text);
    EXPECT_EQ(PropertyValue(f).description(), text);
  }
  EXPECT_EQ(fraction(2, 30)->description(), "1/15");
  EXPECT_EQ(fraction(5, 0)->description(), "0");
}

TEST(FractionNumber, GivesIntegersCutTowardZeroAndWrapped) {
  struct Case {
    FractionPair pair;
    std::int64_t whole;
  };
  const Case cases[] = {
      {{7, 2}, 3},
      {{-7, 2}, -3},
      {{7, -2}, -3},
      {{0, 0}, 0},
      {{5, 0}, 0},
      {{1, 3}, 0},
      {{-1, 3}, 0},
      {{100000, 1}, 100000},
      {{kLeast, -1}, kLeast},
      {{kMost, 1}, kMost},
      {{kMost, 2}, kMost / 2},
      {{5000000000, 1}, 5000000000},
  };
  for (const Case& c : cases) {
    const auto f = unreduced(c.pair.numerator, c.pair.denominator);
    EXPECT_EQ(f->truncate(), c.whole);
    EXPECT_EQ(f->longValue(), c.whole);
    EXPECT_EQ(f->longLongValue(), c.whole);
    EXPECT_EQ(f->shortValue(), static_cast<std::int16_t>(c.whole));
    EXPECT_EQ(f->intValue(), static_cast<std::int32_t>(c.whole));
    EXPECT_EQ(f->unsignedIntValue(), static_cast<std::uint32_t>(c.whole));
    EXPECT_EQ(f->unsignedLongLongValue(), static_cast<std::uint64_t>(c.whole));
    EXPECT_EQ(PropertyValue(f).integerValue(), c.whole);
    EXPECT_EQ(PropertyValue(f).intValue(), static_cast<std::int32_t>(c.whole));
  }
}

TEST(FractionNumber, GivesFloatingValues) {
  EXPECT_EQ(fraction(7, 2)->doubleValue(), 3.5);
  EXPECT_EQ(fraction(1, 3)->doubleValue(), 1.0 / 3.0);
  EXPECT_EQ(fraction(1, 3)->floatValue(), 1.0F / 3.0F);
  EXPECT_EQ(unreduced(5, 0)->doubleValue(), 0);
  EXPECT_EQ(unreduced(5, 0)->floatValue(), 0);
  // Each part is rounded to single precision before they are divided.
  EXPECT_EQ(unreduced(16777217, 16777219)->floatValue(), 16777216.0F / 16777220.0F);
  EXPECT_TRUE(std::signbit(unreduced(0, -7)->doubleValue()));
}

TEST(FractionNumber, TellsWhetherItIsWhole) {
  const std::pair<FractionPair, bool> cases[] = {
      {{0, 0}, true},  {{1, 0}, false}, {{5, 1}, true},   {{6, 3}, true},
      {{7, 3}, false}, {{0, 3}, true},  {{-6, -3}, true}, {{kLeast, -1}, true},
  };
  for (const auto& [pair, isWhole] : cases) {
    EXPECT_EQ(unreduced(pair.numerator, pair.denominator)->isInteger(), isWhole);
  }
}

TEST(FractionNumber, GivesAPlainNumberWithoutItsFraction) {
  const auto kindOf = [](const PropertyValue& v) { return v.as<Number>()->kind(); };
  const PropertyValue half = fraction(7, 2)->getNSNumber();
  EXPECT_EQ(half, 3.0);
  EXPECT_EQ(kindOf(half), NumberKind::real);
  const PropertyValue zero = fraction(0, 0)->getNSNumber();
  EXPECT_EQ(zero, 0);
  EXPECT_EQ(kindOf(zero), NumberKind::signedInteger);
  EXPECT_EQ(kindOf(unreduced(0, 5)->getNSNumber()), NumberKind::signedInteger);
  const PropertyValue infinite = unreduced(-5, 0)->getNSNumber();
  EXPECT_EQ(infinite, std::numeric_limits<double>::infinity());
  EXPECT_EQ(kindOf(infinite), NumberKind::single);
}

TEST(FractionNumber, CopiesItsBytes) {
  const auto f = fraction(7, 2);
  EXPECT_STREQ(f->objCType(), "{?=qq}");
  std::int64_t parts[2] = {};
  f->getValue(parts);
  EXPECT_EQ(parts[0], 7);
  EXPECT_EQ(parts[1], 2);
  std::int64_t some[3] = {-1, -1, -1};
  f->getValue(some, 8);
  EXPECT_EQ(some[0], 7);
  EXPECT_EQ(some[1], -1);
  f->getValue(some, 1000);
  EXPECT_EQ(some[1], 2);
  EXPECT_EQ(some[2], -1);
  f->getValue(nullptr, 0);
}

TEST(FractionNumber, FindsDivisorsWithTheirSign) {
  struct Case {
    std::int64_t a;
    std::int64_t b;
    std::int64_t divisor;
  };
  const Case cases[] = {
      {6, 4, 2},   {6, 0, 6},           {-6, 0, -6},      {0, 7, 7},
      {0, -7, -7}, {-6, 4, -2},         {6, -4, 2},       {-6, -4, -2},
      {-1, 9, -1}, {kLeast, -1, -1},    {-1, kLeast, -1}, {kLeast, kLeast, kLeast},
      {0, 0, 0},   {kLeast, 0, kLeast},
  };
  for (const Case& c : cases)
    EXPECT_EQ(QXFractionNumber::gcd(c.a, c.b), c.divisor) << c.a << ' ' << c.b;
}

TEST(FractionNumber, CanBeReducedLater) {
  const std::pair<FractionPair, FractionPair> cases[] = {
      {{2, 30}, {1, 15}}, {{3, -3}, {-1, 1}}, {{0, -7}, {0, 1}}, {{5, 0}, {1, 0}},
      {{-5, 0}, {1, 0}},  {{1, 0}, {1, 0}},   {{0, 0}, {0, 0}},
  };
  for (const auto& [given, reduced] : cases) {
    const auto f = unreduced(given.numerator, given.denominator);
    f->normalize();
    EXPECT_EQ(pairOf(f), reduced) << given.numerator << '/' << given.denominator;
  }
}

}  // namespace
}  // namespace qx
