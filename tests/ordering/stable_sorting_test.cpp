#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <random>

#include "tests/ordering/sorting_support.h"

namespace {

using qx::QXSortOrdering;
using sorting::Places;

Places sortedPlaces(const std::vector<qx::PropertyValue>& elements,
                    const qx::Ref<qx::Array>& orderings) {
  const auto array = sorting::arrayOf(elements);
  qx::sortStablyUsingOrderings(array, orderings);
  EXPECT_EQ(qx::PropertyValue(qx::arraySortedStablyUsingOrderings(
                qx::Array::from(elements.data(), elements.size()), orderings)),
            qx::PropertyValue(array));
  return sorting::placesIn(*array, elements);
}

qx::Ref<QXSortOrdering> by(const char* key, const char* selector = "compareAscending:") {
  return QXSortOrdering::initWithKey(key, qx::Selector::named(selector));
}

TEST(StableSorting, LaterOrderingsBreakTiesOfEarlierOnes) {
  const std::vector<qx::PropertyValue> elements = {qx::dict({{"a", 2}, {"b", 1}}),
                                                   qx::dict({{"a", 1}, {"b", 2}}),
                                                   qx::dict({{"a", 2}, {"b", 0}})};
  EXPECT_EQ(sortedPlaces(elements, qx::array(by("a"), by("b"))), (Places{1, 2, 0}));
  EXPECT_EQ(sortedPlaces(elements, qx::array(by("a"), by("b", "compareDescending:"))),
            (Places{1, 0, 2}));
  EXPECT_EQ(sortedPlaces(elements, qx::array(by("a", "compareDescending:"), by("b"))),
            (Places{2, 0, 1}));
}

TEST(StableSorting, WhatIsTheSameStaysInOrder) {
  const auto elements = sorting::dictionariesWith({1, 0, 0, 0, 0});
  EXPECT_EQ(sortedPlaces(elements, qx::array(by("k"))), (Places{1, 2, 3, 4, 0}));
  EXPECT_EQ(sortedPlaces(elements, qx::array(by("k", "compareDescending:"))),
            (Places{0, 1, 2, 3, 4}));
  EXPECT_EQ(sortedPlaces(elements, qx::Array::init()), (Places{0, 1, 2, 3, 4}));
}

TEST(StableSorting, MissingAndNullComeFirstAndDescendingLast) {
  const auto elements = sorting::dictionariesWith({2, nullptr, 1, qx::null});
  EXPECT_EQ(sortedPlaces(elements, qx::array(by("k"))), (Places{1, 3, 2, 0}));
  EXPECT_EQ(sortedPlaces(elements, qx::array(by("k", "compareDescending:"))), (Places{0, 2, 1, 3}));
  const auto texts = sorting::dictionariesWith({"b", nullptr, "A"});
  EXPECT_EQ(sortedPlaces(texts, qx::array(by("k", "compareCaseInsensitiveAscending:"))),
            (Places{1, 2, 0}));
}

TEST(StableSorting, AgreesWithAStableSortByPairs) {
  std::mt19937 random(6);
  std::vector<qx::PropertyValue> elements;
  std::vector<std::pair<int, std::string>> pairs;
  for (int i = 0; i < 3000; ++i) {
    pairs.emplace_back(static_cast<int>(random() % 20),
                       std::string(random() % 4, static_cast<char>('a' + random() % 3)));
    elements.push_back(
        qx::dict({{"id", i}, {"n", pairs.back().first}, {"t", pairs.back().second}}));
  }
  Places expected(pairs.size());
  std::iota(expected.begin(), expected.end(), std::size_t{0});
  std::stable_sort(expected.begin(), expected.end(), [&](std::size_t a, std::size_t b) {
    return std::pair(-pairs[a].first, pairs[a].second) <
           std::pair(-pairs[b].first, pairs[b].second);
  });
  EXPECT_EQ(sortedPlaces(elements, qx::array(by("n", "compareDescending:"), by("t"))), expected);
}

TEST(StableSorting, ValuesWithoutACommonOrderRaiseAndChangeNothing) {
  const auto elements = sorting::dictionariesWith({2, "a", 1});
  const auto array = sorting::arrayOf(elements);
  EXPECT_THROW(qx::sortStablyUsingOrderings(array, qx::array(by("k"))),
               qx::InvalidArgumentException);
  EXPECT_EQ(sorting::placesIn(*array, elements), (Places{0, 1, 2}));
}

TEST(StableSorting, LaterOrderingsAreNotAskedWhereEarlierOnesDecide) {
  const std::vector<qx::PropertyValue> elements = {qx::dict({{"a", 2}, {"b", 1}}),
                                                   qx::dict({{"a", 1}, {"b", "x"}})};
  EXPECT_EQ(sortedPlaces(elements, qx::array(by("a"), by("b"))), (Places{1, 0}));
}

TEST(StableSorting, NilDoesNothing) {
  qx::sortStablyUsingOrderings(nullptr, qx::array(by("k")));
  qx::sortStablyUsingOrderings(qx::MutableArray::init(), nullptr);
  EXPECT_TRUE(qx::arraySortedStablyUsingOrderings(nullptr, nullptr) == nullptr);
  EXPECT_THROW(qx::sortStablyUsingOrderings(qx::MutableArray::init(), qx::array("no ordering")),
               qx::InvalidArgumentException);
}

TEST(StableSorting, IsPerformedBySelector) {
  const auto elements = sorting::dictionariesWith({2, 1});
  const auto array = sorting::arrayOf(elements);
  EXPECT_EQ(qx::performSelector(array, "arraySortedStablyUsingOrderings:", qx::array(by("k"))),
            qx::array(elements[1], elements[0]));
  qx::performSelector(array, "sortStablyUsingOrderings:", qx::array(by("k")));
  EXPECT_EQ(sorting::placesIn(*array, elements), (Places{1, 0}));
}

// Answers at random, and may change the array it is sorted in.
class Erratic : public qx::Object {
 public:
  int compare(const qx::PropertyValue&) const {
    if (target != nullptr) target->addObject(1);
    return static_cast<int>(random() % 3) - 1;
  }
  static inline std::mt19937 random;
  static inline qx::MutableArray* target = nullptr;
};
void describe(qx::ClassBuilder<Erratic>& c) {
  c.name("StableErratic").operation("compare:", &Erratic::compare);
}

TEST(StableSorting, AComparisonThatContradictsItselfLosesNothing) {
  std::vector<qx::PropertyValue> keys;
  for (int i = 0; i < 500; ++i) keys.push_back(qx::make<Erratic>());
  const auto elements = sorting::dictionariesWith(keys);
  const auto array = sorting::arrayOf(elements);
  qx::sortStablyUsingOrderings(array, qx::array(by("k")));
  sorting::expectSameElements(*array, elements);
}

TEST(StableSorting, AnArrayThatChangesMeanwhileRaises) {
  const auto array =
      sorting::arrayOf(sorting::dictionariesWith({qx::make<Erratic>(), qx::make<Erratic>()}));
  Erratic::target = array.get();
  EXPECT_THROW(qx::sortStablyUsingOrderings(array, qx::array(by("k"))),
               qx::InternalInconsistencyException);
  Erratic::target = nullptr;
}

}  // namespace
