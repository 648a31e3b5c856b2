// Large arrays, and elements whose hash says nothing about their equality.

#include "collections/membership.h"

#include <gtest/gtest.h>

#include <chrono>
#include <functional>

#include <QXFoundation/array_operations.h>
#include <QXFoundation/mutable_array_operations.h>

#include "tests/collections/sample_objects.h"

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

TEST(Membership, HashesAreTrustedWhereBothOrNeitherIsOverridden) {
  using qx::detail::hashesLikeItCompares;
  for (const PropertyValue& v :
       {PropertyValue(1), PropertyValue(qx::null), PropertyValue("a"),
        PropertyValue(qx::make<Label>("a")), PropertyValue(qx::make<Thing>()),
        PropertyValue(array(1, "a")), PropertyValue(qx::dict({{"k", "v"}})),
        PropertyValue(qx::Set::from(array(1))), PropertyValue(array(qx::make<Label>("a"))),
        PropertyValue(array(array(qx::make<Tag>("a"))))}) {
    EXPECT_TRUE(hashesLikeItCompares(v)) << v.description();
  }
  for (const PropertyValue& v :
       {PropertyValue(qx::make<Tag>("a")), PropertyValue(qx::QXTree::init()),
        PropertyValue(array(1, qx::make<Tag>("a"))),
        PropertyValue(qx::dict({{"k", qx::make<Tag>("a")}})),
        PropertyValue(qx::Set::from(array(qx::make<Tag>("a"))))}) {
    EXPECT_FALSE(hashesLikeItCompares(v)) << v.description();
  }
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
void expectQuick(const std::function<void()>& work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
}

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

}  // namespace
