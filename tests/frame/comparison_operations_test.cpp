// The nine comparison operations: which receivers have them, and what doesContain: and isLike:
// answer.

#include <gtest/gtest.h>

#include <QXFoundation/QXFoundation.h>

#include "frame/comparison.h"
#include "tests/frame/print_values.h"
#include "tests/frame/raises.h"
#include "tests/frame/sample_values.h"

namespace qx {
namespace {

using detail::Comparison;
using frame_test::Sample;
using frame_test::sampleValues;

constexpr const char* kNames[] = {
    "isEqualTo:",           "isNotEqualTo:",  "isLessThan:",
    "isLessThanOrEqualTo:", "isGreaterThan:", "isGreaterThanOrEqualTo:",
    "doesContain:",         "isLike:",        "isCaseInsensitiveLike:"};

TEST(ComparisonNames, AreFoundByText) {
  for (std::size_t i = 0; i < std::size(kNames); ++i) {
    const auto c = static_cast<Comparison>(i);
    EXPECT_EQ(detail::comparisonOf(Selector::named(kNames[i])), c);
    EXPECT_EQ(detail::selectorOf(c).text(), kNames[i]);
  }
  EXPECT_EQ(detail::comparisonOf("isEqual:"), Comparison::none);
  EXPECT_EQ(detail::comparisonOf(Selector()), Comparison::none);
  EXPECT_TRUE(detail::selectorOf(Comparison::none).isNull());
}

bool hasOperation(const PropertyValue& v, std::size_t comparison) {
  if (comparison < 6) return true;
  if (comparison == 6) return v.isString() || v.isArray() || v.isSet() || v.isDictionary();
  return v.isString();
}

// Member function, selector and the form that the qualifiers use: one meaning, over all pairs.
TEST(ComparisonOperations, AgreeInAllForms) {
  using Member = bool (PropertyValue::*)(const PropertyValue&) const;
  constexpr Member kMembers[] = {&PropertyValue::isEqualTo,
                                 &PropertyValue::isNotEqualTo,
                                 &PropertyValue::isLessThan,
                                 &PropertyValue::isLessThanOrEqualTo,
                                 &PropertyValue::isGreaterThan,
                                 &PropertyValue::isGreaterThanOrEqualTo,
                                 &PropertyValue::doesContain,
                                 &PropertyValue::isLike,
                                 &PropertyValue::isCaseInsensitiveLike};
  const std::vector<Sample> samples = sampleValues();
  for (std::size_t i = 0; i < std::size(kMembers); ++i) {
    const Selector selector = Selector::named(kNames[i]);
    for (const Sample& a : samples) {
      const bool expected = hasOperation(a.value, i);
      ASSERT_EQ(a.value.respondsToSelector(selector), expected) << a.group << ' ' << kNames[i];
      for (const Sample& b : samples) {
        SCOPED_TRACE(a.group + ' ' + kNames[i] + ' ' + b.group);
        const auto applied = detail::apply(static_cast<Comparison>(i), a.value, b.value);
        ASSERT_EQ(applied.responds, expected);
        const auto bySelector = detail::apply(selector, a.value, b.value);
        ASSERT_EQ(bySelector.responds, expected);
        ASSERT_EQ(bySelector.result, applied.result);
        if (!expected) {
          ASSERT_FALSE(applied.result);
          if (b.group != samples.front().group) continue;
          ASSERT_THROW((void)(a.value.*kMembers[i])(b.value), InvalidArgumentException);
          ASSERT_THROW(performSelector(a.value, selector, b.value), InvalidArgumentException);
          continue;
        }
        ASSERT_EQ((a.value.*kMembers[i])(b.value), applied.result);
        ASSERT_EQ(performSelector(a.value, selector, b.value).to<bool>(), applied.result);
      }
    }
  }
}

TEST(ComparisonOperations, OfNilAnswerNo) {
  for (const PropertyValue& v : {PropertyValue(), PropertyValue(1), PropertyValue("a")}) {
    const PropertyValue nil;
    EXPECT_FALSE(nil.isEqualTo(v));
    EXPECT_FALSE(nil.isNotEqualTo(v));
    EXPECT_FALSE(nil.isLessThan(v));
    EXPECT_FALSE(nil.isLessThanOrEqualTo(v));
    EXPECT_FALSE(nil.isGreaterThan(v));
    EXPECT_FALSE(nil.isGreaterThanOrEqualTo(v));
    EXPECT_FALSE(nil.doesContain(v));
    EXPECT_FALSE(nil.isLike(v));
    EXPECT_FALSE(nil.isCaseInsensitiveLike(v));
  }
}

TEST(ComparisonOperations, RaiseWithAReasonWhereTheyAreLacking) {
  EXPECT_EQ(reasonOf<InvalidArgumentException>([] { (void)PropertyValue(5).doesContain(5); }),
            "-[NSNumber doesContain:]: the receiver has no such operation");
  EXPECT_EQ(reasonOf<InvalidArgumentException>([] { (void)PropertyValue(null).isLike("*"); }),
            "-[NSNull isLike:]: the receiver has no such operation");
  EXPECT_EQ(reasonOf<InvalidArgumentException>(
                [] { (void)PropertyValue(array()).isCaseInsensitiveLike("*"); }),
            "-[NSArray isCaseInsensitiveLike:]: the receiver has no such operation");
}

TEST(DoesContain, AsksForAnEqualElement) {
  const auto mutableTwo = MutableArray::init();
  mutableTwo->addObject(2);
  const struct {
    PropertyValue receiver;
    PropertyValue argument;
    bool expected;
  } cases[] = {
      {array(1, "two", null), 1, true},
      {array(1, "two", null), 1.0, true},
      {array(1, "two", null), true, true},
      {array(1, "two", null), "two", true},
      {array(1, "two", null), null, true},
      {array(1, "two", null), "Two", false},
      {array(1, "two", null), nullptr, false},
      {array(), 1, false},
      {array(array(1)), array(1.0), true},
      {array(array(1)), 1, false},
      {mutableTwo, 2, true},
      {Set::from(array(1, "two")), 1U, true},
      {Set::from(array(1, "two")), "two", true},
      {Set::from(array(1, "two")), 2, false},
      {Set::from(array(1)), nullptr, false},
      {MutableSet::from(array(array(2))), mutableTwo, true},
      {dict({{"a", 1}, {"b", "x"}}), 1.0, true},
      {dict({{"a", 1}, {"b", "x"}}), "x", true},
      {dict({{"a", 1}, {"b", "x"}}), "a", false},
      {dict({{"a", 1}, {"b", "x"}}), nullptr, false},
      {dict(), 1, false},
      {"Hello", "ell", true},
      {"Hello", "", true},
      {"", "", true},
      {"", "a", false},
      {"Hello", "Hello", true},
      {"Hello", "Hello!", false},
      {"Hello", "ELL", false},
      {"Hello", nullptr, false},
      {"Hello", 1, false},
      {"101", 1, false},
      {"Hello", array("H"), false},
      {"a\xE6\xBC\xA2", "\xE6\xBC\xA2", true},
      {"a\xE6\xBC\xA2", "a", true},
      {"abc", "\xE6\xBC\xA2", false},
      {"e\xCC\x81", "e", true},  // by code unit
      {"\xC3\xA9", "e\xCC\x81", false},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(c.receiver.doesContain(c.argument), c.expected)
        << testing::PrintToString(c.receiver) << " / " << testing::PrintToString(c.argument);
  }
}

TEST(IsLike, MatchesPatternsOfTextAlone) {
  const struct {
    PropertyValue text;
    PropertyValue pattern;
    bool exact;
    bool ignoringCase;
  } cases[] = {
      {"Jim", "J*", true, true},
      {"Jim", "j*", false, true},
      {"Jim", "?im", true, true},
      {"Jim", "?IM", false, true},
      {"Jim", "Jim", true, true},
      {"Jim", "im", false, false},
      {"Jim", "", false, false},
      {"", "*", true, true},
      {"a*b", "a\\*b", true, true},
      {"axb", "a\\*b", false, false},
      {"\xF0\x9F\x98\x80", "?", true, true},
      {"stra\xC3\x9F"
       "e",
       "STRASSE", false, true},
      {MutableString::from("Jim"), MutableString::from("J?m"), true, true},
      {"1", 1, false, false},
      {"Jim", nullptr, false, false},
      {"Jim", null, false, false},
      {"Jim", array("J*"), false, false},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(c.text.isLike(c.pattern), c.exact) << testing::PrintToString(c.pattern);
    EXPECT_EQ(c.text.isCaseInsensitiveLike(c.pattern), c.ignoringCase)
        << testing::PrintToString(c.pattern);
  }
}

// apply() takes any operation of one argument that answers a bool.
TEST(ApplyBySelector, TakesOtherOperationsToo) {
  EXPECT_TRUE(detail::apply("isEqual:", 1, 1.0).result);
  EXPECT_TRUE(detail::apply("hasPrefix:", "Jim", "J").result);
  EXPECT_FALSE(detail::apply("hasPrefix:", 1, "J").responds);
  EXPECT_FALSE(detail::apply(Selector(), 1, 1).responds);
  EXPECT_FALSE(detail::apply("noSuchThing:", 1, 1).responds);
  EXPECT_FALSE(detail::apply(Comparison::none, 1, 1).responds);
}

}  // namespace
}  // namespace qx
