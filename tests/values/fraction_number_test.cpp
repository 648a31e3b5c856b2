#include <gtest/gtest.h>

#include <cstring>
#include <limits>

#include <QXFoundation/QXFoundation.h>
#include <QXFoundation/fraction_number.h>

#include "tests/frame/raises.h"

namespace qx {

static void PrintTo(const FractionPair& p, std::ostream* out) {
  *out << p.numerator << '/' << p.denominator;
}

namespace {

constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();

Ref<QXFractionNumber> fraction(std::int64_t n, std::int64_t d) {
  return QXFractionNumber::qxFractionNumberWithNumerator(n, d);
}
// The pair as it stands, which no public operation gives.
Ref<QXFractionNumber> unreduced(std::int64_t n, std::int64_t d) {
  return make<QXFractionNumber>(detail::Passkey{}, FractionPair{n, d});
}
FractionPair pairOf(const Ref<QXFractionNumber>& f) { return {f->numerator(), f->denominator()}; }

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

TEST(FractionNumber, IsANumberAmongNumbers) {
  const PropertyValue half = fraction(1, 2);
  EXPECT_TRUE(half.isNumber());
  EXPECT_TRUE(half.isKindOfClass(classOf<Number>()));
  EXPECT_STREQ(half.cls()->name(), "QXFractionNumber");
  EXPECT_EQ(half.as<Number>()->kind(), NumberKind::real);
  EXPECT_EQ(half, 0.5);
  EXPECT_EQ(PropertyValue(0.5), half);
  EXPECT_EQ(half, PropertyValue(unreduced(2, 4)));
  EXPECT_EQ(half, PropertyValue(DecimalNumber::initWithString("0.5")));
  EXPECT_NE(half, "1/2");
  EXPECT_EQ(half.hash(), PropertyValue(0.5).hash());
  EXPECT_EQ(PropertyValue(fraction(6, 3)).hash(), PropertyValue(2).hash());
  EXPECT_EQ(half.compare(0.75), ComparisonResult::ascending);
  EXPECT_EQ(PropertyValue(1).compare(half), ComparisonResult::descending);
  EXPECT_TRUE(half.isLessThan(1));
  EXPECT_TRUE(half.isGreaterThanOrEqualTo(fraction(1, 3)));
  EXPECT_FALSE(half.isLessThan("1"));
  EXPECT_EQ(half.to<double>(), 0.5);
  EXPECT_EQ(half.boolValue(), true);
  EXPECT_EQ(PropertyValue(fraction(0, 1)).boolValue(), false);
}

TEST(FractionNumber, IsFoundInSetsAndKeptInArrays) {
  const auto set = MutableSet::init();
  set->addObject(fraction(1, 2));
  EXPECT_TRUE(set->containsObject(0.5));
  set->addObject(0.5);
  EXPECT_EQ(set->count(), 1U);
  const auto list = array(fraction(3, 2), 1);
  EXPECT_EQ(list->indexOfObject(1.5), 0U);
  EXPECT_EQ(pairOf(list->objectAtIndex(0).as<QXFractionNumber>()), (FractionPair{3, 2}));
}

TEST(FractionNumber, IsSortedAmongOtherNumbers) {
  const auto list = array(dict({{"f", 2}}), dict({{"f", fraction(5, 2)}}), dict({{"f", 0.25}}),
                          dict({{"f", fraction(-1, 3)}}), dict({{"f", fraction(1, 2)}}),
                          dict({{"f", DecimalNumber::initWithString("2.25")}}));
  const auto sorted = arraySortedStablyUsingOrderings(
      list, array(QXSortOrdering::sortOrderingWithKey("f", "compareAscending:")));
  const double expected[] = {-1.0 / 3, 0.25, 0.5, 2, 2.25, 2.5};
  for (std::size_t i = 0; i < std::size(expected); ++i) {
    EXPECT_EQ(sorted->objectAtIndex(i)["f"].doubleValue(), expected[i]) << i;
  }
  const auto unstable = PropertyValue(list->mutableCopy()).as<MutableArray>();
  sortUsingKeyOrderArray(unstable,
                         array(QXSortOrdering::sortOrderingWithKey("f", "compareAscending:")));
  EXPECT_TRUE(unstable->isEqualToArray(sorted));
}

TEST(FractionNumber, IsQualifiedByItsValueAndItsParts) {
  const auto list =
      array(dict({{"f", fraction(1, 2)}}), dict({{"f", fraction(5, 2)}}), dict({{"f", 1.5}}));
  EXPECT_EQ(filteredArrayUsingQualifier(list, qualifierWithQualifierFormat("f > %d", 1))->count(),
            2U);
  EXPECT_EQ(
      filteredArrayUsingQualifier(list, qualifierWithQualifierFormat("f = %@", fraction(3, 2)))
          ->count(),
      1U);
  // In a format a point ends the key; in code the key is a path.
  EXPECT_EQ(filteredArrayUsingQualifier(
                list, QXKeyValueQualifier::initWithKey("f.numerator", "isEqualTo:", 5))
                ->count(),
            1U);
  EXPECT_EQ(PropertyValue(fraction(1, 2))["denominator"], 2);
}

TEST(FractionNumber, AnswersSelectors) {
  const PropertyValue f = fraction(7, 2);
  struct Case {
    Selector selector;
    PropertyValue result;
  };
  const Case cases[] = {
      {"numerator", 7},     {"denominator", 2},   {"truncate", 3},        {"shortValue", 3},
      {"intValue", 3},      {"longValue", 3},     {"longLongValue", 3},   {"isInteger", false},
      {"getNSNumber", 3.0}, {"doubleValue", 3.5}, {"stringValue", "3.5"},
  };
  for (const auto& [selector, result] : cases) {
    ASSERT_TRUE(f.respondsToSelector(selector)) << selector.text();
    EXPECT_EQ(performSelector(f, selector), result) << selector.text();
  }
  EXPECT_EQ(performSelector(f, "descriptionWithLocale:", nullptr), "3.5");
  EXPECT_EQ(performSelector(f, "gcd:d:", 6, -4), 2);
  const PropertyValue later = unreduced(4, 6);
  performSelector(later, "normalize");
  EXPECT_EQ(later["numerator"], 2);
  // Each part is rounded to single precision before the division.
  const PropertyValue wide = unreduced(16777217, 16777219);
  EXPECT_EQ(wide.floatValue(), 16777216.0F / 16777220.0F);
  EXPECT_EQ(performSelector(wide, "floatValue"), 16777216.0F / 16777220.0F);
}

TEST(FractionNumber, ClassAnswersItsConstructors) {
  const PropertyValue cls = classNamed("QXFractionNumber");
  EXPECT_EQ(performSelector(cls, "qxFractionNumberWithNumerator:denominator:", 6, -4), -1.5);
  EXPECT_EQ(performSelector(cls, "qxFractionNumberWithInt:", 7), 7);
  EXPECT_EQ(performSelector(cls, "qxFractionNumberWithFloat:", 0.5), 0.5);
  EXPECT_EQ(performSelector(cls, "qxFractionNumberWithDouble:", 3.14159)["denominator"], 113);
}

TEST(FractionNumber, CopiesAreFractionsOfTheirOwn) {
  const auto f = unreduced(2, 4);
  const auto copy = PropertyValue(f->copy()).as<QXFractionNumber>();
  f->normalize();
  EXPECT_EQ(pairOf(f), (FractionPair{1, 2}));
  EXPECT_EQ(pairOf(copy), (FractionPair{2, 4}));
}

TEST(FractionNumber, IsArchivedAsItsPair) {
  for (const FractionPair pair :
       {FractionPair{7, 2}, {0, 0}, {5, 0}, {2, 4}, {kLeast, kMost}, {1, kLeast}}) {
    const auto f = unreduced(pair.numerator, pair.denominator);
    const auto bytes = Archiver::archivedDataWithRootObject(array(f, f));
    const auto again = Unarchiver::unarchiveObjectWithData(bytes).as<Array>();
    const auto first = again->objectAtIndex(0).as<QXFractionNumber>();
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(pairOf(first), pair);
    EXPECT_TRUE(isSame(again->objectAtIndex(0), again->objectAtIndex(1)));
  }
}

TEST(FractionNumber, IsWrittenToPropertyListsAsADouble) {
  for (const auto format : {PropertyListFormat::xml, PropertyListFormat::binary}) {
    Ref<Error> error;
    const auto bytes = PropertyListSerialization::dataWithPropertyList(
        dict({{"half", fraction(1, 2)}, {"two", fraction(4, 2)}}), format, &error);
    ASSERT_NE(bytes, nullptr) << error->description();
    const PropertyValue list = PropertyListSerialization::propertyListWithData(
        bytes, PropertyListMutability::immutable, nullptr, &error);
    EXPECT_EQ(list["half"], 0.5);
    EXPECT_EQ(list["half"].as<Number>()->kind(), NumberKind::real);
    EXPECT_EQ(list["two"].as<Number>()->kind(), NumberKind::real);
  }
}

TEST(FractionNumber, IsFoundByName) {
  EXPECT_EQ(classNamed("QXFractionNumber"), &classOf<QXFractionNumber>());
  EXPECT_EQ(classOf<QXFractionNumber>().superclass(), &classOf<Number>());
}

}  // namespace
}  // namespace qx
