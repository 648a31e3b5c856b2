// Sorting while code of the application runs: comparisons and getters that raise, that change the
// array, and arrays that watch their changes.

#include <gtest/gtest.h>

#include <functional>
#include <random>
#include <stdexcept>

#include "tests/ordering/sorting_support.h"

namespace hazards {

// A value that compares itself, counts how often, and calls what the test gives it.
class Own : public qx::Object {
 public:
  explicit Own(int n) : number(n) {}
  int compare(const qx::PropertyValue& other) const {
    if (before) before();
    const auto their = other.as<Own>();
    return number < their->number ? -1 : number > their->number ? 1 : 0;
  }
  int number;
  static inline std::function<void()> before;
};
void describe(qx::ClassBuilder<Own>& c) {
  c.name("HazardOwn").operation("compare:", &Own::compare);
}

// Answers the sort's own operation in its way: everything the other way round.
class Contrary : public Own {
 public:
  using Own::Own;
  int compareAscending(const qx::PropertyValue& other) const { return -compare(other); }
};
void describe(qx::ClassBuilder<Contrary>& c) {
  c.name("HazardContrary")
      .inherits<Own>()
      .operation("compareAscending:", &Contrary::compareAscending);
}

// An element whose getter calls what the test gives it.
class Asked : public qx::Object {
 public:
  explicit Asked(qx::PropertyValue v) : value(std::move(v)) {}
  qx::PropertyValue k() const {
    ++asked;
    if (before) before(*this);
    return value;
  }
  qx::PropertyValue value;
  mutable int asked = 0;
  static inline std::function<void(const Asked&)> before;
};
void describe(qx::ClassBuilder<Asked>& c) { c.name("HazardAsked").property("k", &Asked::k); }

// Without a property: key access asks the object.
class Undeclared : public qx::Object {
 public:
  explicit Undeclared(int n) : number(n) {}
  qx::PropertyValue valueForUndefinedKey(qx::StringArg) const override { return number; }
  int number;
};
void describe(qx::ClassBuilder<Undeclared>& c) { c.name("HazardUndeclared"); }

class Watching : public qx::MutableArray {
 public:
  void replaceObjectAtIndex(std::size_t index, const qx::PropertyValue& withObject) override {
    replaced.push_back(index);
    qx::MutableArray::replaceObjectAtIndex(index, withObject);
  }
  std::vector<std::size_t> replaced;
};
void describe(qx::ClassBuilder<Watching>& c) {
  c.name("HazardWatching").inherits<qx::MutableArray>();
}

}  // namespace hazards

namespace {

using hazards::Asked;
using hazards::Own;
using sorting::Keys;
using sorting::Places;

class SortingHazards : public testing::Test {
 protected:
  ~SortingHazards() override {
    Own::before = nullptr;
    Asked::before = nullptr;
  }
};

const qx::Ref<qx::QXSortOrdering>& byK() {
  static const auto* ordering = new auto(qx::QXSortOrdering::initWithKey("k", "compareAscending:"));
  return *ordering;
}

std::vector<qx::PropertyValue> elementsWithOwn(const std::vector<int>& numbers) {
  Keys keys;
  for (const int n : numbers) keys.push_back(qx::make<Own>(n));
  return sorting::dictionariesWith(keys);
}

std::vector<int> randomNumbers(std::size_t count, unsigned distinct) {
  std::mt19937 random(5);
  std::vector<int> numbers(count);
  for (int& n : numbers) n = static_cast<int>(random() % distinct);
  return numbers;
}

Keys numberKeys(const std::vector<int>& numbers) { return Keys(numbers.begin(), numbers.end()); }

TEST_F(SortingHazards, ValuesOfAnApplicationsClassSortByItsComparison) {
  const std::vector<int> numbers = randomNumbers(700, 60);
  const auto elements = elementsWithOwn(numbers);
  const auto array = sorting::arrayOf(elements);
  qx::_sortUsingKeyOrder(array, byK(), 0, array->count());
  EXPECT_EQ(sorting::placesIn(*array, elements),
            *reference::sorted(numberKeys(numbers), reference::kModes[0], 0, numbers.size()));
}

TEST_F(SortingHazards, AClassMayDeclareTheSortsOperationItself) {
  const std::vector<int> numbers = randomNumbers(300, 30);
  Keys keys;
  for (const int n : numbers) keys.push_back(qx::make<hazards::Contrary>(n));
  const auto elements = sorting::dictionariesWith(keys);
  const auto array = sorting::arrayOf(elements);
  qx::_sortUsingKeyOrder(array, byK(), 0, array->count());
  EXPECT_EQ(sorting::placesIn(*array, elements),
            *reference::sorted(numberKeys(numbers), reference::kModes[1], 0, numbers.size()));
}

TEST_F(SortingHazards, AComparisonThatRaisesLosesAndDoublesNothing) {
  const auto elements = elementsWithOwn(randomNumbers(40, 10));
  for (int allowed = 0; allowed < 200; ++allowed) {
    int left = allowed;
    Own::before = [&] {
      if (left-- == 0) throw std::runtime_error("enough");
    };
    const auto array = sorting::arrayOf(elements);
    bool raised = false;
    try {
      qx::_sortUsingKeyOrder(array, byK(), 0, array->count());
    } catch (const std::runtime_error&) {
      raised = true;
    }
    EXPECT_EQ(raised, left < 0);
    sorting::expectSameElements(*array, elements);
  }
}

TEST_F(SortingHazards, AComparisonMayTakeElementsOutOfTheArray) {
  const auto elements = elementsWithOwn(randomNumbers(40, 10));
  const auto array = sorting::arrayOf(elements);
  int calls = 0;
  Own::before = [&] {
    if (++calls == 20) array->removeAllObjects();
  };
  EXPECT_THROW(qx::_sortUsingKeyOrder(array, byK(), 0, 40), qx::RangeException);
  EXPECT_EQ(array->count(), 0U);
}

TEST_F(SortingHazards, EachGetterIsAskedOnce) {
  const std::vector<int> numbers = randomNumbers(300, 40);
  std::vector<qx::PropertyValue> elements;
  for (const int n : numbers) elements.push_back(qx::make<Asked>(n));
  const auto array = sorting::arrayOf(elements);
  qx::_sortUsingKeyOrder(array, byK(), 0, array->count());
  EXPECT_EQ(sorting::placesIn(*array, elements),
            *reference::sorted(numberKeys(numbers), reference::kModes[0], 0, numbers.size()));
  for (const qx::PropertyValue& e : elements) EXPECT_EQ(e.as<Asked>()->asked, 1);
}

TEST_F(SortingHazards, ObjectsWithoutThePropertyAreAsked) {
  const std::vector<int> numbers = randomNumbers(100, 20);
  std::vector<qx::PropertyValue> elements;
  for (const int n : numbers) elements.push_back(qx::make<hazards::Undeclared>(n));
  const auto array = sorting::arrayOf(elements);
  qx::_sortUsingKeyOrder(array, byK(), 0, array->count());
  EXPECT_EQ(sorting::placesIn(*array, elements),
            *reference::sorted(numberKeys(numbers), reference::kModes[0], 0, numbers.size()));
}

TEST_F(SortingHazards, AGetterThatRaisesLeavesTheArrayAsItWas) {
  std::vector<qx::PropertyValue> elements;
  for (int i = 0; i < 20; ++i) elements.push_back(qx::make<Asked>(20 - i));
  const auto array = sorting::arrayOf(elements);
  Asked::before = [](const Asked& a) {
    if (a.value == 5) throw std::runtime_error("no");
  };
  EXPECT_THROW(qx::_sortUsingKeyOrder(array, byK(), 0, 20), std::runtime_error);
  for (std::size_t i = 0; i < 20; ++i) EXPECT_TRUE(isSame(array->objectAtIndex(i), elements[i]));
}

TEST_F(SortingHazards, AGetterMayTakeElementsOutOfTheArray) {
  const auto array = qx::MutableArray::init();
  for (int i = 0; i < 20; ++i) array->addObject(qx::make<Asked>(20 - i));
  Asked::before = [&](const Asked&) {
    if (array->count() > 3) array->removeLastObject();
  };
  EXPECT_THROW(qx::_sortUsingKeyOrder(array, byK(), 0, 20), qx::RangeException);
  EXPECT_EQ(array->count(), 3U);
}

TEST_F(SortingHazards, AGetterMayExchangeTheElements) {
  std::vector<qx::PropertyValue> others;
  for (int i = 0; i < 5; ++i) others.push_back(qx::make<Asked>(5 - i));
  const auto array = qx::MutableArray::init();
  for (int i = 0; i < 5; ++i) array->addObject(qx::make<Asked>(i));
  bool done = false;
  Asked::before = [&](const Asked&) {
    if (done) return;
    done = true;
    for (std::size_t i = 0; i < 5; ++i) array->replaceObjectAtIndex(i, others[i]);
  };
  qx::_sortUsingKeyOrder(array, byK(), 0, 5);
  EXPECT_EQ(sorting::placesIn(*array, others), (Places{4, 3, 2, 1, 0}));
}

TEST_F(SortingHazards, AGetterMayChangeKeysThatWereReadBefore) {
  std::vector<qx::Ref<qx::MutableDictionary>> plain;
  const auto array = qx::MutableArray::init();
  for (int i = 0; i < 50; ++i) {
    plain.push_back(qx::MutableDictionary::init());
    plain.back()->setObject("a long text of its own, number " + std::to_string(i), "k");
    array->addObject(plain.back());
  }
  array->addObject(qx::make<Asked>("m"));
  Asked::before = [&](const Asked&) {
    for (const auto& d : plain) d->removeAllObjects();
  };
  EXPECT_NO_THROW(qx::_sortUsingKeyOrder(array, byK(), 0, array->count()));
  EXPECT_EQ(array->count(), 51U);
}

TEST_F(SortingHazards, ASubclassSeesEachReplacement) {
  const std::vector<int> numbers = randomNumbers(60, 12);
  const auto elements = sorting::dictionariesWith(numberKeys(numbers));
  const auto array = qx::make<hazards::Watching>();
  for (const qx::PropertyValue& e : elements) array->addObject(e);
  qx::_sortUsingKeyOrder(array, byK(), 0, elements.size());
  EXPECT_EQ(sorting::placesIn(*array, elements),
            *reference::sorted(numberKeys(numbers), reference::kModes[0], 0, numbers.size()));
  EXPECT_FALSE(array->replaced.empty());
  EXPECT_EQ(array->replaced.size() % 2, 0U);
}

TEST_F(SortingHazards, TheArrayAndTheOrderingAreHeld) {
  auto array = sorting::arrayOf(elementsWithOwn(randomNumbers(30, 30)));
  auto ordering = qx::QXSortOrdering::initWithKey("k", "compareAscending:");
  const qx::In<qx::MutableArray> borrowed = array;
  const qx::In<qx::QXSortOrdering> borrowedOrdering = ordering;
  Own::before = [&] {
    array = nullptr;
    ordering = nullptr;
  };
  qx::_sortUsingKeyOrder(borrowed, borrowedOrdering, 0, 30);
  EXPECT_TRUE(array == nullptr);
}

}  // namespace
