#include <gtest/gtest.h>
#include <stdlib.h>

#include <algorithm>

#include <QXFoundation/array_shuffle.h>

#include "tests/collections/sample_objects.h"
#include "tests/support/scripted_random.h"

namespace {

using qx::array;
using qx::PropertyValue;
using samples::mutableArrayOf;
using samples::Values;

TEST(ArrayShuffle, FewerThanTwoElementsAskForNoNumber) {
  const ScriptedRandom random({});
  const auto one = mutableArrayOf({"a"});
  kwRandomize(one);
  EXPECT_EQ(PropertyValue(one), array("a"));
  kwRandomize(qx::MutableArray::init());
  EXPECT_EQ(kwRandomize(array("a"))->count(), 1U);
}

TEST(ArrayShuffle, TwoElementsAreSwappedByOddNumbers) {
  for (const long number : {0L, 1L, 6L, 7L, 2147483647L}) {
    const ScriptedRandom random({number});
    const auto a = mutableArrayOf({"a", "b"});
    kwRandomize(a);
    EXPECT_EQ(PropertyValue(a), number % 2 == 1 ? array("b", "a") : array("a", "b"));
    EXPECT_EQ(random.calls(), 1U);
  }
}

TEST(ArrayShuffle, ACopyIsShuffledOfAnArrayThatIsNotMutable) {
  const ScriptedRandom random({1});
  const qx::Ref<qx::Array> a = array("a", "b");
  const auto shuffled = kwRandomize(a);
  EXPECT_EQ(PropertyValue(shuffled), array("b", "a"));
  EXPECT_EQ(PropertyValue(a), array("a", "b"));
}

TEST(ArrayShuffle, TheTypeOfTheArgumentDecides) {
  const auto a = mutableArrayOf({"a", "b"});
  {
    const ScriptedRandom random({1});
    const qx::Ref<qx::Array> seenAsArray = a;
    EXPECT_EQ(PropertyValue(kwRandomize(seenAsArray)), array("b", "a"));
    EXPECT_EQ(PropertyValue(a), array("a", "b"));
  }
  {
    const ScriptedRandom random({1, 1});
    qx::MutableArray& seenAsReference = *a;
    kwRandomize(seenAsReference);
    EXPECT_EQ(PropertyValue(a), array("b", "a"));
    kwRandomize(a.get());
    EXPECT_EQ(PropertyValue(a), array("a", "b"));
  }
}

TEST(ArrayShuffle, BySelectorTheClassDecides) {
  const ScriptedRandom random({1, 1});
  const PropertyValue fixed = array("a", "b");
  EXPECT_EQ(performSelector(fixed, "kwRandomize"), PropertyValue(array("b", "a")));
  EXPECT_EQ(fixed, PropertyValue(array("a", "b")));
  const PropertyValue changing = mutableArrayOf({"a", "b"});
  EXPECT_EQ(performSelector(changing, "kwRandomize"), nullptr);
  EXPECT_EQ(changing, PropertyValue(array("b", "a")));
}

TEST(ArrayShuffle, FollowsTheNumbersOfTheSystem) {
  for (const std::size_t count : {2U, 3U, 10U, 511U, 512U, 513U, 514U, 545U, 1025U, 5000U}) {
    Values values;
    for (std::size_t i = 0; i < count; ++i) values.push_back(std::to_string(i));
    const auto a = mutableArrayOf(values);
    ::srandom(77);
    kwRandomize(a);
    ::srandom(77);
    for (std::size_t i = 0; i + 1 < count; ++i)
      std::swap(values[i], values[i + static_cast<std::size_t>(::random()) % (count - i)]);
    EXPECT_TRUE(samples::sameObjects(*a, values));
  }
}

// Counts what it is told of its changes.
class CountingArray : public qx::MutableArray {
 public:
  void replaceObjectAtIndex(std::size_t index, const PropertyValue& value) override {
    ++replaced;
    MutableArray::replaceObjectAtIndex(index, value);
  }
  int replaced = 0;
};
void describe(qx::ClassBuilder<CountingArray>& c) {
  c.name("ShuffleCountingArray").inherits<qx::MutableArray>();
}

TEST(ArrayShuffle, ClassesOfArraysSeeTheExchanges) {
  const ScriptedRandom random({2, 1});
  const auto a = qx::make<CountingArray>();
  for (const char* text : {"a", "b", "c"}) a->addObject(text);
  kwRandomize(a);
  EXPECT_EQ(PropertyValue(a), array("c", "a", "b"));
  EXPECT_EQ(a->replaced, 4);
}

}  // namespace
