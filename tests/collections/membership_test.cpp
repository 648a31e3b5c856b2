// Large arrays, and elements whose hash says nothing about their equality.

#include <gtest/gtest.h>

#include <functional>

#include <QXFoundation/array_operations.h>
#include <QXFoundation/mutable_array_operations.h>

#include "collections/equality_hash.h"
#include "tests/collections/sample_objects.h"
#include "tests/support/processor_time.h"

namespace {

using qx::array;
using qx::PropertyValue;
using samples::arrayOf;
using samples::Label;
using samples::mutableArrayOf;
using samples::Pattern;
using samples::Tag;
using samples::Thing;
using samples::Values;

constexpr std::size_t kMany = 100'000;

TEST(EqualityHash, IsThereWhereEqualityAndHashAreOfOneClass) {
  using qx::detail::equalityHash;
  for (const PropertyValue& v :
       {PropertyValue(1), PropertyValue(qx::null), PropertyValue("a"),
        PropertyValue(qx::make<Label>("a")), PropertyValue(qx::make<Thing>()),
        PropertyValue(array(1, "a")), PropertyValue(qx::dict({{"k", "v"}})),
        PropertyValue(qx::Set::from(array(1))), PropertyValue(array(qx::make<Label>("a"))),
        PropertyValue(array(qx::Set::from(array(qx::make<Tag>("a")))))}) {
    EXPECT_TRUE(equalityHash(v)) << v.description();
  }
  for (const PropertyValue& v :
       {PropertyValue(qx::make<Tag>("a")), PropertyValue(qx::QXTree::init()),
        PropertyValue(qx::make<samples::Initial>("a")), PropertyValue(qx::make<samples::Crowded>()),
        PropertyValue(samples::sizedArray(2)), PropertyValue(array(1, samples::sizedArray(2))),
        PropertyValue(array(1, qx::make<Tag>("a"))),
        PropertyValue(array(array(qx::make<Tag>("a")))),
        PropertyValue(qx::dict({{"k", qx::make<Tag>("a")}})),
        PropertyValue(qx::dict({{"k", qx::dict({{"k", qx::make<Tag>("a")}})}})),
        PropertyValue(qx::Set::from(array(qx::make<Tag>("a"))))}) {
    EXPECT_FALSE(equalityHash(v)) << v.description();
  }
}

TEST(EqualityHash, IsTheSameForEqualValues) {
  using qx::detail::equalityHash;
  const auto mutableOf = [](const Values& values) { return PropertyValue(mutableArrayOf(values)); };
  const std::pair<PropertyValue, PropertyValue> pairs[] = {
      {1, 1.0},
      {"a", qx::MutableString::from("a")},
      {array(1, array("x", 2)), mutableOf({1.0, mutableOf({qx::MutableString::from("x"), 2U})})},
      {qx::dict({{"a", array(1)}, {"b", array(2)}}), qx::dict({{"b", array(2)}, {"a", array(1)}})},
      {array(qx::dict({{"a", array(1)}, {"b", qx::dict({{"c", 3}})}})),
       array(qx::dict({{"b", qx::dict({{"c", 3}})}, {"a", array(1)}}))},
      {array(qx::Set::from(array(1, 2))), array(qx::Set::from(array(2, 1)))},
  };
  for (const auto& [a, b] : pairs) {
    ASSERT_TRUE(a == b) << a.description();
    EXPECT_EQ(equalityHash(a), equalityHash(b)) << a.description();
  }
}

TEST(EqualityHash, EndsOnWhatIsDeepWideOrCircular) {
  using qx::detail::equalityHash;
  qx::Ref<qx::Array> deep = array("leaf");
  for (int i = 0; i < 1'000'000; ++i) deep = array(deep);
  EXPECT_TRUE(equalityHash(deep));
  PropertyValue shared = array(1);
  for (int i = 0; i < 200; ++i) shared = array(shared, shared);
  EXPECT_TRUE(equalityHash(shared));
  const auto circle = qx::MutableArray::init();
  circle->addObject(circle);
  EXPECT_TRUE(equalityHash(circle));
  circle->removeAllObjects();
}

TEST(Membership, TheElementIsAskedNotTheValue) {
  const auto pattern = qx::make<Pattern>("a");
  Values many(50, PropertyValue("z"));
  many.push_back(pattern);
  EXPECT_EQ(subarrayByIntersectingWithArray(array("a", "b"), arrayOf(many))->count(), 1U);
  Values texts(50, PropertyValue("z"));
  texts.push_back("a");
  EXPECT_EQ(subarrayByIntersectingWithArray(array(pattern), arrayOf(texts))->count(), 0U);
}

TEST(Membership, NodesAreEqualToWhatTheyCarry) {
  const auto payload = qx::String::from("carried");
  const auto node = qx::QXTree::initWithObject(payload);
  Values nodes(20, PropertyValue("z"));
  nodes.push_back(node);
  EXPECT_EQ(subarrayByIntersectingWithArray(array(payload), arrayOf(nodes))->count(), 1U);
  EXPECT_EQ(subarrayByIntersectingWithArray(array("carried"), arrayOf(nodes))->count(), 0U);
  Values payloads(20, PropertyValue("z"));
  payloads.push_back(payload);
  EXPECT_EQ(subarrayByIntersectingWithArray(array(node), arrayOf(payloads))->count(), 0U);
}

TEST(Membership, EqualNumbersOfAllKindsAreOne) {
  Values many;
  for (int i = 0; i < 50; ++i) many.push_back(static_cast<double>(i));
  EXPECT_EQ(
      subarrayByIntersectingWithArray(
          array(1, 2U, 3.0F, true, qx::DecimalNumber::initWithString("4"), 0.5), arrayOf(many))
          ->count(),
      5U);
}

// Runs the work, which is to end in well under a second on an idle machine; sanitizers and busy
// machines get room, far below what a product of the lengths would take.
void expectQuick(const std::function<void()>& work) { EXPECT_LT(qx::processorTimeOf(work), 10.0); }

struct Many {
  const char* name;
  PropertyValue (*make)(std::size_t);
};
const Many kKinds[] = {
    {"numbers", [](std::size_t i) { return PropertyValue(i); }},
    {"texts", [](std::size_t i) { return PropertyValue("name " + std::to_string(i)); }},
    {"labels", [](std::size_t i) { return PropertyValue(qx::make<Label>(std::to_string(i))); }},
    {"arrays", [](std::size_t i) { return PropertyValue(array(i, "x")); }},
    {"dictionaries", [](std::size_t i) { return PropertyValue(qx::dict({{"id", i}})); }},
    {"nested arrays", [](std::size_t i) { return PropertyValue(array(array(array(i)))); }},
    {"nested dictionaries",
     [](std::size_t i) {
       return PropertyValue(qx::dict({{"at", qx::dict({{"x", i}, {"y", array(0, i)}})}}));
     }},
    {"few", [](std::size_t i) { return PropertyValue("name " + std::to_string(i % 7)); }},
};

TEST(Membership, LargeArraysTakeNoProductOfTheirLengths) {
  for (const Many& kind : kKinds) {
    SCOPED_TRACE(kind.name);
    Values left;
    Values right;
    for (std::size_t i = 0; i < kMany; ++i) {
      left.push_back(kind.make(i));
      right.push_back(kind.make(i + kMany / 2));
    }
    const auto a = arrayOf(left);
    const auto b = arrayOf(right);
    const bool few = std::string(kind.name) == "few";
    expectQuick([&] {
      EXPECT_EQ(subarrayByIntersectingWithArray(a, b)->count(), few ? kMany : kMany / 2);
    });
    expectQuick(
        [&] { EXPECT_EQ(subarrayByDifferenceWithArray(a, b)->count(), few ? 0 : kMany / 2); });
    expectQuick([&] {
      const auto all = mutableArrayOf(left);
      addObjectsFromArrayIfAbsent(all, b);
      EXPECT_EQ(all->count(), few ? kMany : kMany + kMany / 2);
    });
    expectQuick([&] {
      const auto all = mutableArrayOf(left);
      removeObjectsNotInArray(all, b);
      EXPECT_EQ(all->count(), few ? kMany : kMany / 2);
    });
    expectQuick([&] {
      const auto all = mutableArrayOf(left);
      removeObjectsInArrayUsingIsEqual(all, b);
      EXPECT_EQ(all->count(), few ? 1 : kMany / 2);  // one of the seven is more frequent
    });
    expectQuick([&] { EXPECT_EQ(kwContainsArray(a, b), few); });
  }
}

TEST(Membership, EqualElementsByTheThousandAreTakenInOrder) {
  Values same;
  for (std::size_t i = 0; i < kMany; ++i) same.push_back(qx::make<Label>("same"));
  const auto all = mutableArrayOf(same);
  const Values half(kMany / 2, PropertyValue(qx::make<Label>("same")));
  expectQuick([&] { removeObjectsInArrayUsingIsEqual(all, arrayOf(half)); });
  EXPECT_TRUE(samples::sameObjects(*all, {same.begin() + kMany / 2, same.end()}));
}

// Tags have to be asked: a tag that stands in the array itself is found at once all the same.
TEST(Membership, AnArrayOfTagsMayBeItsOwnArgument) {
  Values tags;
  for (std::size_t i = 0; i < kMany; ++i) tags.push_back(qx::make<Tag>(std::to_string(i)));
  const auto a = mutableArrayOf(tags);
  expectQuick([&] { EXPECT_EQ(subarrayByIntersectingWithArray(a, a)->count(), kMany); });
  expectQuick([&] { EXPECT_EQ(subarrayByDifferenceWithArray(a, a)->count(), 0U); });
  expectQuick([&] { EXPECT_TRUE(kwContainsArray(a, a)); });
  expectQuick([&] { addObjectsFromArrayIfAbsent(a, a); });
  expectQuick([&] { removeObjectsNotInArray(a, a); });
  EXPECT_TRUE(samples::sameObjects(*a, tags));
  expectQuick([&] { removeObjectsInArrayUsingIsEqual(a, a); });
  EXPECT_EQ(a->count(), 0U);
}

// Texts, numbers and objects that are only themselves need not be asked about tags.
TEST(Membership, TagsAreQuicklyFoundNotToBeAmongOtherThings) {
  Values tags;
  Values others;
  for (std::size_t i = 0; i < kMany; ++i) {
    tags.push_back(qx::make<Tag>(std::to_string(i)));
    others.push_back(i % 3 == 0   ? PropertyValue(std::to_string(i))
                     : i % 3 == 1 ? PropertyValue(i)
                                  : PropertyValue(qx::make<Thing>()));
  }
  const auto a = arrayOf(tags);
  const auto b = mutableArrayOf(others);
  expectQuick([&] { EXPECT_EQ(subarrayByIntersectingWithArray(a, b)->count(), 0U); });
  expectQuick([&] { EXPECT_EQ(subarrayByDifferenceWithArray(a, b)->count(), kMany); });
  expectQuick([&] { removeObjectsInArrayUsingIsEqual(b, a); });
  EXPECT_TRUE(samples::sameObjects(*b, others));
}

// A few questions are not worth a preparation.
TEST(Membership, FewLookupsAreAnsweredLikeMany) {
  const Values others(50, PropertyValue("z"));
  for (std::size_t count = 1; count < 20; ++count) {
    Values values;
    for (std::size_t i = 0; i < count; ++i) values.push_back(qx::make<Label>(std::to_string(i)));
    Values all = others;
    all.insert(all.end(), values.begin(), values.end());
    const auto wanted = arrayOf(values);
    EXPECT_EQ(subarrayByIntersectingWithArray(wanted, arrayOf(all))->count(), count);
    EXPECT_TRUE(kwContainsArray(arrayOf(all), wanted));
    const auto a = mutableArrayOf(others);
    addObjectsFromArrayIfAbsent(a, wanted);
    addObjectsFromArrayIfAbsent(a, wanted);
    EXPECT_EQ(a->count(), others.size() + count);
    removeObjectsInArrayUsingIsEqual(a, wanted);
    EXPECT_EQ(a->count(), others.size());
  }
}

}  // namespace
