#include <gtest/gtest.h>

#include <algorithm>

#include <QXFoundation/array_operations.h>

#include "tests/collections/sample_objects.h"

namespace {

using qx::array;
using qx::PropertyValue;
using samples::arrayOf;
using samples::containsPlainly;
using samples::randomValues;
using samples::sameObjects;
using samples::Values;

Values keptPlainly(const Values& array, const Values& other, bool wanted) {
  Values kept;
  for (const auto& e : array) {
    if (containsPlainly(other, e) == wanted) kept.push_back(e);
  }
  return kept;
}

// Performs "answer" with a value of its own.
class Answerer : public qx::Object {
 public:
  explicit Answerer(PropertyValue a) : answer_(std::move(a)) {}
  PropertyValue answer() {
    ++asked;
    return answer_;
  }
  int asked = 0;

 private:
  PropertyValue answer_;
};
void describe(qx::ClassBuilder<Answerer>& c) {
  c.name("ArrayTestAnswerer").operation("answer", &Answerer::answer);
}

TEST(ArrayOperations, WithoutObjectDropsEveryEqualElement) {
  EXPECT_EQ(PropertyValue(subarrayWithoutObject(array("a", "b", "a"), "a")), array("b"));
  EXPECT_EQ(PropertyValue(subarrayWithoutObject(array(1, 2), 3)), array(1, 2));
  EXPECT_EQ(PropertyValue(subarrayWithoutObject(array(1, 1.0, true, "1"), 1)), array("1"));
  EXPECT_EQ(PropertyValue(subarrayWithoutObject(array(1, qx::null), nullptr)), array(1, qx::null));
}

TEST(ArrayOperations, IntersectionAndDifferenceKeepOrderAndDuplicates) {
  const auto a = array("a", "a", "b");
  EXPECT_EQ(PropertyValue(subarrayByIntersectingWithArray(a, array("a"))), array("a", "a"));
  EXPECT_EQ(PropertyValue(subarrayByDifferenceWithArray(a, array("a"))), array("b"));
  EXPECT_EQ(PropertyValue(subarrayByIntersectingWithArray(a, a)), a);
  EXPECT_EQ(subarrayByDifferenceWithArray(a, a)->count(), 0U);
}

TEST(ArrayOperations, NilArraysHoldNothing) {
  const qx::Ref<qx::Array> nil;
  const auto a = array("a");
  EXPECT_EQ(subarrayByIntersectingWithArray(a, nil)->count(), 0U);
  EXPECT_EQ(PropertyValue(subarrayByDifferenceWithArray(a, nil)), a);
  EXPECT_TRUE(kwContainsArray(a, nil));
  EXPECT_EQ(subarrayByIntersectingWithArray(nil, a), nullptr);
  EXPECT_EQ(subarrayWithoutObject(nil, "a"), nullptr);
  EXPECT_EQ(subarrayByPerformingSelector(nil, "answer", 1), nullptr);
  EXPECT_EQ(firstObjectByPerformingSelector(nil, "answer", 1), nullptr);
  EXPECT_EQ(arrayByPerformingSelector(nil, "answer"), nullptr);
  EXPECT_FALSE(kwContainsArray(nil, nil));
}

TEST(ArrayOperations, AddedOperationsArePerformedOnElements) {
  EXPECT_EQ(PropertyValue(arrayByPerformingSelector(array("/Users/a", "~/b", "c"), "localPath")),
            array("Users/a", "/b", "c"));
  EXPECT_EQ(subarrayByPerformingSelector(array("/a", "//a", "a"), "localPath", "a")->count(), 2U);
  EXPECT_EQ(PropertyValue(firstObjectByPerformingSelector(array("b", "/a"), "localPath", "a")),
            PropertyValue("/a"));
}

TEST(ArrayOperations, ResultsAreNewMutableArrays) {
  const auto a = array("a", "b");
  const auto all = subarrayByDifferenceWithArray(a, qx::Array::init());
  EXPECT_EQ(all->cls().name(), std::string("NSMutableArray"));
  all->removeAllObjects();
  EXPECT_EQ(a->count(), 2U);
}

TEST(ArrayOperations, ContainsArrayDoesNotCountDuplicates) {
  const auto a = array("a", "b");
  EXPECT_TRUE(kwContainsArray(a, qx::Array::init()));
  EXPECT_TRUE(kwContainsArray(a, array("b", "a", "a", "b")));
  EXPECT_FALSE(kwContainsArray(a, array("b", "c")));
  EXPECT_FALSE(kwContainsArray(qx::Array::init(), array("b")));
}

TEST(ArrayOperations, PerformingKeepsEqualResultsOnce) {
  const auto a =
      array(qx::make<Answerer>("x"), qx::make<Answerer>(nullptr),
            qx::make<Answerer>(qx::MutableString::from("x")), qx::make<Answerer>(qx::null));
  EXPECT_EQ(PropertyValue(arrayByPerformingSelector(a, "answer")), array("x", qx::null));
}

TEST(ArrayOperations, PerformingReachesAddedOperations) {
  EXPECT_EQ(
      PropertyValue(arrayByPerformingSelector(array("/Users/a", "~/b", "Users/a"), "localPath")),
      array("Users/a", "/b"));
  EXPECT_EQ(PropertyValue(arrayByPerformingSelector(array("yes", "no"), "qxBoolValue")),
            array(true, false));
  EXPECT_EQ(PropertyValue(arrayByPerformingSelector(array(7, "7", 7.5), "intValue")), array(7));
}

TEST(ArrayOperations, PerformingComparesResultsAndSkipsNil) {
  const auto yes = qx::make<Answerer>("x");
  const auto nil = qx::make<Answerer>(nullptr);
  const auto later = qx::make<Answerer>("x");
  const auto a = array(nil, yes, later);
  EXPECT_TRUE(sameObjects(*subarrayByPerformingSelector(a, "answer", "x"), {yes, later}));
  EXPECT_EQ(subarrayByPerformingSelector(a, "answer", nullptr)->count(), 0U);
  EXPECT_EQ(firstObjectByPerformingSelector(a, "answer", nullptr), nullptr);
  later->asked = 0;
  EXPECT_TRUE(isSame(firstObjectByPerformingSelector(a, "answer", "x"), yes));
  EXPECT_EQ(later->asked, 0);
  EXPECT_EQ(firstObjectByPerformingSelector(a, "answer", "y"), nullptr);
}

TEST(ArrayOperations, PerformingWhatAnElementLacksRaises) {
  EXPECT_THROW((void)arrayByPerformingSelector(array("a", 1), "localPath"),
               qx::InvalidArgumentException);
  EXPECT_THROW((void)arrayByPerformingSelector(array("a"), qx::Selector()),
               qx::InvalidArgumentException);
  EXPECT_THROW((void)arrayByPerformingSelector(array("a"), qx::Selector::named("containsString:")),
               qx::InvalidArgumentException);
}

// A class may answer equality and change the array that is being looked through.
class Meddler : public qx::Object {
 public:
  explicit Meddler(qx::MutableArray* a) : array_(a) {}
  bool isEqual(const PropertyValue&) const override {
    array_->removeAllObjects();
    return true;
  }

 private:
  qx::MutableArray* array_;
};
void describe(qx::ClassBuilder<Meddler>& c) { c.name("ArrayTestMeddler"); }

TEST(ArrayOperations, ContainsArrayRaisesWhenItsArgumentChanges) {
  const auto other = qx::MutableArray::init();
  other->addObject("a");
  other->addObject("b");
  const auto a = array(qx::make<Meddler>(other.get()));
  EXPECT_THROW(kwContainsArray(a, other), qx::GenericException);
}

// Its comparison replaces the first element of an array.
class Replacer : public qx::Object {
 public:
  Replacer(qx::MutableArray* a, bool answer) : array_(a), answer_(answer) {}
  bool isEqual(const PropertyValue&) const override {
    array_->replaceObjectAtIndex(0, "z");
    return answer_;
  }

 private:
  qx::MutableArray* array_;
  bool answer_;
};
void describe(qx::ClassBuilder<Replacer>& c) { c.name("ArrayTestReplacer"); }

TEST(ArrayOperations, ContainsArrayRaisesWhenElementsOfItsArgumentAreReplaced) {
  for (const bool answer : {true, false}) {
    const auto other = qx::MutableArray::init();
    other->addObject("a");
    other->addObject("b");
    const auto a = array("a", qx::make<Replacer>(other.get(), answer));
    EXPECT_THROW(kwContainsArray(a, other), qx::GenericException) << answer;
  }
}

TEST(ArrayOperations, OtherWalksGoOnInWhatTheArrayHeld) {
  const auto a = qx::MutableArray::init();
  a->addObject("a");
  a->addObject("b");
  const auto all = subarrayByIntersectingWithArray(a, array(qx::make<Meddler>(a.get())));
  EXPECT_EQ(PropertyValue(all), array("a", "b"));
  EXPECT_EQ(a->count(), 0U);
}

TEST(ArrayOperations, AgreeWithTheirDefinitionOnRandomArrays) {
  std::mt19937 random(9);
  for (int i = 0; i < 3000; ++i) {
    const Values left = randomValues(random, 40);
    const Values right = randomValues(random, 40);
    const auto a = arrayOf(left);
    const auto b = arrayOf(right);
    ASSERT_TRUE(
        sameObjects(*subarrayByIntersectingWithArray(a, b), keptPlainly(left, right, true)));
    ASSERT_TRUE(sameObjects(*subarrayByDifferenceWithArray(a, b), keptPlainly(left, right, false)));
    const bool all = std::all_of(right.begin(), right.end(),
                                 [&](const auto& v) { return containsPlainly(left, v); });
    ASSERT_EQ(kwContainsArray(a, b), all);
    const PropertyValue one = samples::randomValue(random);
    Values others;
    std::copy_if(left.begin(), left.end(), std::back_inserter(others),
                 [&](const auto& e) { return !(e == one); });
    ASSERT_TRUE(sameObjects(*subarrayWithoutObject(a, one), others));
  }
}

TEST(ArrayOperations, PerformingAgreesWithItsDefinitionOnRandomArrays) {
  std::mt19937 random(10);
  for (int i = 0; i < 1000; ++i) {
    Values results = randomValues(random, 40);
    for (PropertyValue& r : results) {
      if (random() % 8 == 0) r = nullptr;
    }
    Values answerers;
    for (const PropertyValue& r : results) answerers.push_back(qx::make<Answerer>(r));
    Values once;
    for (const PropertyValue& r : results) {
      if (!r.isNil() && !containsPlainly(once, r)) once.push_back(r);
    }
    ASSERT_TRUE(sameObjects(*arrayByPerformingSelector(arrayOf(answerers), "answer"), once));
    const PropertyValue wanted = samples::randomValue(random);
    Values equal;
    for (std::size_t k = 0; k < results.size(); ++k) {
      if (!results[k].isNil() && results[k] == wanted) equal.push_back(answerers[k]);
    }
    ASSERT_TRUE(
        sameObjects(*subarrayByPerformingSelector(arrayOf(answerers), "answer", wanted), equal));
    ASSERT_TRUE(isSame(firstObjectByPerformingSelector(arrayOf(answerers), "answer", wanted),
                       equal.empty() ? PropertyValue() : equal.front()));
  }
}

}  // namespace
