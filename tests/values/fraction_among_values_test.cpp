// Fractions where other values are: compared, kept, sorted, qualified, performed by selector,
// stored.

#include <gtest/gtest.h>

#include <QXFoundation/QXFoundation.h>

#include "tests/values/fractions.h"

namespace qx {
namespace {

using fractions::fraction;
using fractions::kLeast;
using fractions::kMost;
using fractions::pairOf;
using fractions::unreduced;

TEST(FractionAmongValues, IsANumberAmongNumbers) {
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

TEST(FractionAmongValues, IsFoundInSetsAndKeptInArrays) {
  const auto set = MutableSet::init();
  set->addObject(fraction(1, 2));
  EXPECT_TRUE(set->containsObject(0.5));
  set->addObject(0.5);
  EXPECT_EQ(set->count(), 1U);
  const auto list = array(fraction(3, 2), 1);
  EXPECT_EQ(list->indexOfObject(1.5), 0U);
  EXPECT_EQ(pairOf(list->objectAtIndex(0).as<QXFractionNumber>()), (FractionPair{3, 2}));
}

TEST(FractionAmongValues, IsSortedAmongOtherNumbers) {
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

TEST(FractionAmongValues, IsQualifiedByItsValueAndItsParts) {
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

TEST(FractionAmongValues, AnswersSelectors) {
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

TEST(FractionAmongValues, ClassAnswersItsConstructors) {
  const PropertyValue cls = classNamed("QXFractionNumber");
  EXPECT_EQ(performSelector(cls, "qxFractionNumberWithNumerator:denominator:", 6, -4), -1.5);
  EXPECT_EQ(performSelector(cls, "qxFractionNumberWithInt:", 7), 7);
  EXPECT_EQ(performSelector(cls, "qxFractionNumberWithFloat:", 0.5), 0.5);
  EXPECT_EQ(performSelector(cls, "qxFractionNumberWithDouble:", 3.14159)["denominator"], 113);
}

TEST(FractionAmongValues, CopiesAreFractionsOfTheirOwn) {
  const auto f = unreduced(2, 4);
  const auto copy = PropertyValue(f->copy()).as<QXFractionNumber>();
  f->normalize();
  EXPECT_EQ(pairOf(f), (FractionPair{1, 2}));
  EXPECT_EQ(pairOf(copy), (FractionPair{2, 4}));
}

TEST(FractionAmongValues, IsArchivedAsItsPair) {
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

TEST(FractionAmongValues, IsWrittenToPropertyListsAsADouble) {
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

TEST(FractionAmongValues, IsFoundByName) {
  EXPECT_EQ(classNamed("QXFractionNumber"), &classOf<QXFractionNumber>());
  EXPECT_EQ(classOf<QXFractionNumber>().superclass(), &classOf<Number>());
}

}  // namespace
}  // namespace qx
