#include <gtest/gtest.h>

#include <random>

#include "tests/ordering/sorting_support.h"

namespace {

using qx::PropertyValue;
using qx::QXSortOrdering;

int threeWay(const PropertyValue& a, const PropertyValue& b, int) {
  return static_cast<int>(a.compare(b));
}

std::vector<int> inserted(std::initializer_list<int> sorted, int object) {
  const auto array = qx::MutableArray::init();
  for (const int n : sorted) array->addObject(n);
  qx::insertObjectInSortedArray(array, object, &threeWay, 0);
  std::vector<int> numbers;
  for (const PropertyValue& v : *array) numbers.push_back(v.intValue());
  return numbers;
}

TEST(SortedInsertion, KeepsNumbersSorted) {
  EXPECT_EQ(inserted({}, 2), (std::vector{2}));
  EXPECT_EQ(inserted({1, 3}, 2), (std::vector{1, 2, 3}));
  EXPECT_EQ(inserted({1, 3}, 0), (std::vector{0, 1, 3}));
  EXPECT_EQ(inserted({1, 3}, 4), (std::vector{1, 3, 4}));
}

// Inserts by the results given for each element; the place, and the elements that were asked.
struct Search {
  std::size_t place;
  std::vector<int> asked;
  friend bool operator==(const Search&, const Search&) = default;
};

Search searchWith(const std::vector<int>& results) {
  const auto array = qx::MutableArray::init();
  for (std::size_t i = 0; i < results.size(); ++i) array->addObject(i);
  Search search{};
  qx::insertObjectInSortedArray(
      array, "o",
      [&](const PropertyValue& object, const PropertyValue& element, std::vector<int>& asked) {
        EXPECT_EQ(object, "o");
        asked.push_back(element.intValue());
        return results[static_cast<std::size_t>(element.intValue())];
      },
      search.asked);
  EXPECT_EQ(array->count(), results.size() + 1);
  search.place = array->indexOfObject("o");
  return search;
}

TEST(SortedInsertion, SearchesFromTheMiddle) {
  EXPECT_EQ(searchWith({}), (Search{0, {}}));
  EXPECT_EQ(searchWith({-1, -1, -1, -1, -1, -1, -1}), (Search{0, {3, 1, 0}}));
  EXPECT_EQ(searchWith({1, 1, 1, 1, 1, 1, 1}), (Search{7, {3, 5, 6}}));
  EXPECT_EQ(searchWith({1, 1, 1, -1, -1, -1, -1, -1, -1, -1}), (Search{3, {4, 1, 2, 3}}));
  EXPECT_EQ(searchWith({1, 1}), (Search{2, {0, 1}}));
  EXPECT_EQ(searchWith({-1, -1}), (Search{0, {0}}));
}

TEST(SortedInsertion, WhatIsTheSameIsInsertedBeforeTheFirstOneMet) {
  EXPECT_EQ(searchWith({0, 0, 0}), (Search{1, {1}}));
  EXPECT_EQ(searchWith({0, 0, 0, 0}), (Search{1, {1}}));
}

TEST(SortedInsertion, OtherResultsCountAsTheSame) {
  EXPECT_EQ(searchWith({2, 2, 2, 2, 2}), (Search{2, {2}}));
  EXPECT_EQ(searchWith({-2, -2, -2}), (Search{1, {1}}));
}

TEST(SortedInsertion, TakesComparisonResultsAndAnyContext) {
  const auto array = qx::MutableArray::from(qx::array(1, 3)->begin(), 2);
  qx::insertObjectInSortedArray(
      array, 2, [](const PropertyValue& a, const PropertyValue& b, void*) { return a.compare(b); },
      nullptr);
  EXPECT_EQ(PropertyValue(array), qx::array(1, 2, 3));
}

qx::Ref<qx::MutableArray> dictionariesWith(const sorting::Keys& keys) {
  return sorting::arrayOf(sorting::dictionariesWith(keys));
}

std::size_t placeByKey(const sorting::Keys& keys, const PropertyValue& key,
                       const char* selector = "compareAscending:") {
  const auto array = dictionariesWith(keys);
  const PropertyValue object = sorting::dictionariesWith({key})[0];
  qx::insertObjectInSortedArray(array, object,
                                QXSortOrdering::initWithKey("k", qx::Selector::named(selector)));
  EXPECT_EQ(array->count(), keys.size() + 1);
  return array->indexOfObjectIdenticalTo(object);
}

TEST(SortedInsertion, ByKeyOrderInEveryMode) {
  EXPECT_EQ(placeByKey({}, 1), 0U);
  EXPECT_EQ(placeByKey({1, 3}, 2), 1U);
  EXPECT_EQ(placeByKey({3, 1}, 2, "compareDescending:"), 1U);
  EXPECT_EQ(placeByKey({3, 1}, 4, "compareDescending:"), 0U);
  EXPECT_EQ(placeByKey({"A", "b", "C"}, "B", "compareCaseInsensitiveAscending:"), 1U);
  EXPECT_EQ(placeByKey({"C", "b", "A"}, "a", "compareCaseInsensitiveDescending:"), 2U);
  EXPECT_EQ(placeByKey({1, 3}, 2, "isLike:"), 1U);
  EXPECT_EQ(placeByKey({2, 2, 2}, 2), 1U);
}

TEST(SortedInsertion, AnObjectWithoutTheKeyGoesToTheMiddle) {
  EXPECT_EQ(placeByKey({1, 2, 3, 4, 5}, nullptr), 2U);
  EXPECT_EQ(placeByKey({1, 2, 3, 4}, nullptr), 1U);
  EXPECT_EQ(placeByKey({nullptr, qx::null, 3}, nullptr), 1U);
}

TEST(SortedInsertion, ElementsWithoutTheKeyAreTheSame) {
  EXPECT_EQ(placeByKey({1, nullptr, 3}, 9), 1U);
  EXPECT_EQ(placeByKey({1, qx::null, 3}, 9), 1U);
  EXPECT_EQ(placeByKey({1, qx::array(), 3}, 9), 1U);
}

TEST(SortedInsertion, NullAsTheObjectsValueRaises) {
  EXPECT_THROW(placeByKey({1, 2, 3}, qx::null), qx::InvalidArgumentException);
  EXPECT_EQ(placeByKey({1, nullptr, 3}, qx::null), 1U);
}

TEST(SortedInsertion, AFailureLeavesTheArrayAsItWas) {
  const auto array = dictionariesWith({1, "a", 3});
  const auto before = qx::Array::from(array->begin(), array->count());
  EXPECT_THROW(qx::insertObjectInSortedArray(array, qx::dict({{"k", 2}}),
                                             QXSortOrdering::initWithKey("k", "compareAscending:")),
               qx::InvalidArgumentException);
  EXPECT_THROW(qx::insertObjectInSortedArray(array, nullptr,
                                             QXSortOrdering::initWithKey("k", "compareAscending:")),
               qx::InvalidArgumentException);
  EXPECT_EQ(PropertyValue(array), PropertyValue(before));
}

TEST(SortedInsertion, NilArrayDoesNothing) {
  qx::insertObjectInSortedArray(nullptr, 1, &threeWay, 0);
  qx::insertObjectInSortedArray(nullptr, 1, qx::Ref<QXSortOrdering>());
  qx::insertObjectInSortedArray(nullptr, 1, qx::Ref<qx::Array>());
}

TEST(SortedInsertion, ANilOrderingFindsNoKeys) {
  const auto array = dictionariesWith({1, 2, 3});
  const PropertyValue object = qx::dict({{"k", 9}});
  qx::insertObjectInSortedArray(array, object, qx::Ref<QXSortOrdering>());
  EXPECT_TRUE(isSame(array->objectAtIndex(1), object));
}

TEST(SortedInsertion, ManyByKeyOrderStaySorted) {
  std::mt19937 random(7);
  for (const char* selector : {"compareAscending:", "compareDescending:"}) {
    const auto ordering = QXSortOrdering::initWithKey("k", qx::Selector::named(selector));
    const auto array = qx::MutableArray::init();
    for (int i = 0; i < 1000; ++i) {
      qx::insertObjectInSortedArray(array, qx::dict({{"k", static_cast<int>(random() % 300)}}),
                                    ordering);
    }
    for (std::size_t i = 1; i < array->count(); ++i) {
      const PropertyValue left = array->objectAtIndex(i - 1)["k"];
      const PropertyValue right = array->objectAtIndex(i)["k"];
      EXPECT_LE(qx::performSelector(left, qx::Selector::named(selector), right).intValue(), 0);
    }
  }
}

// Answers from a table, by element.
class Table : public qx::SortDescriptor {
 public:
  explicit Table(std::vector<int> r) : results(std::move(r)) {}
  int compareObject(const PropertyValue&, const PropertyValue& toObject) const override {
    return results[static_cast<std::size_t>(toObject.intValue())];
  }
  std::vector<int> results;
};
void describe(qx::ClassBuilder<Table>& c) {
  c.name("InsertionTable").inherits<qx::SortDescriptor>();
}

// No descriptor, but it performs the operation.
class Performs : public qx::Object {
 public:
  int compare(const PropertyValue&, const PropertyValue&) const { return -2; }
};
void describe(qx::ClassBuilder<Performs>& c) {
  c.name("InsertionPerforms").operation("compareObject:toObject:", &Performs::compare);
}

TEST(SortedInsertion, TheFirstDescriptorThatDecidesCounts) {
  const auto same = qx::make<Table>(std::vector{0});
  const auto before = qx::make<Table>(std::vector{-1});
  const auto far = qx::make<Table>(std::vector{2});
  EXPECT_EQ(qx::compareWithSortDescriptors(0, 0, qx::Array::init()), 0);
  EXPECT_EQ(qx::compareWithSortDescriptors(0, 0, nullptr), 0);
  EXPECT_EQ(qx::compareWithSortDescriptors(0, 0, qx::array(same, same)), 0);
  EXPECT_EQ(qx::compareWithSortDescriptors(0, 0, qx::array(same, far, before)), 2);
  EXPECT_EQ(qx::compareWithSortDescriptors(0, 0, qx::array(before, far)), -1);
  EXPECT_EQ(qx::compareWithSortDescriptors(0, 0, qx::array(same, qx::make<Performs>())), -2);
  EXPECT_THROW(qx::compareWithSortDescriptors(0, 0, qx::array("no descriptor")),
               qx::InvalidArgumentException);
}

TEST(SortedInsertion, BySortDescriptors) {
  const auto array = qx::MutableArray::from(qx::array(0, 1, 2, 3)->begin(), 4);
  qx::insertObjectInSortedArray(array, "o",
                                qx::array(qx::make<Table>(std::vector{1, 0, 0, 0}),
                                          qx::make<Table>(std::vector{0, 1, -1, -1})));
  EXPECT_EQ(array->indexOfObject("o"), 2U);
  const auto people = sorting::arrayOf({qx::dict({{"n", "A"}}), qx::dict({{"n", "C"}})});
  qx::insertObjectInSortedArray(people, qx::dict({{"n", "B"}}),
                                qx::array(qx::SortDescriptor::sortDescriptorWithKey("n", true)));
  EXPECT_EQ(people->objectAtIndex(1)["n"], "B");
}

TEST(SortedInsertion, IsPerformedBySelector) {
  const auto array = dictionariesWith({1, 3});
  qx::performSelector(array, "insertObjectInSortedArray:usingKeyOrder:", qx::dict({{"k", 2}}),
                      QXSortOrdering::initWithKey("k", "compareAscending:"));
  qx::performSelector(array,
                      "insertObjectInSortedArray:usingSortDescriptors:", qx::dict({{"k", 0}}),
                      qx::array(qx::SortDescriptor::sortDescriptorWithKey("k", true)));
  EXPECT_EQ(array->objectAtIndex(0)["k"], 0);
  EXPECT_EQ(array->objectAtIndex(2)["k"], 2);
}

class Seen : public qx::MutableArray {
 public:
  void addObject(const PropertyValue& v) override {
    ++additions;
    qx::MutableArray::addObject(v);
  }
  void insertObject(const PropertyValue& v, std::size_t at) override {
    ++insertions;
    qx::MutableArray::insertObject(v, at);
  }
  int additions = 0;
  int insertions = 0;
};
void describe(qx::ClassBuilder<Seen>& c) { c.name("InsertionSeen").inherits<qx::MutableArray>(); }

TEST(SortedInsertion, ASubclassSeesTheInsertion) {
  const auto array = qx::make<Seen>();
  for (const int n : {2, 1, 3}) qx::insertObjectInSortedArray(array, n, &threeWay, 0);
  EXPECT_EQ(PropertyValue(array), qx::array(1, 2, 3));
  EXPECT_EQ(array->additions, 1);
  EXPECT_EQ(array->insertions, 2);
}

}  // namespace
