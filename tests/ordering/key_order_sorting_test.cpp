#include <gtest/gtest.h>

#include <random>

#include "tests/ordering/sorting_support.h"

namespace {

using sorting::Keys;
using sorting::Places;

// Every type of field that is read in place, and a getter.
class Fields : public qx::Object {
 public:
  explicit Fields(int n)
      : boolean(n % 2 == 0),
        i8(static_cast<std::int8_t>(n)),
        i16(static_cast<std::int16_t>(n)),
        i32(n),
        i64(n),
        u8(static_cast<std::uint8_t>(n)),
        u16(static_cast<std::uint16_t>(n)),
        u32(static_cast<std::uint32_t>(n)),
        u64(static_cast<std::uint64_t>(n)),
        single(static_cast<float>(n) / 2),
        real(n / 4.0),
        text("nächste " + std::to_string(n)),
        plain("text " + std::to_string(n)),
        value(n) {}
  int computed() const { return i32; }
  std::string computedText() const { return plain; }

  bool boolean;
  std::int8_t i8;
  std::int16_t i16;
  int i32;
  std::int64_t i64;
  std::uint8_t u8;
  std::uint16_t u16;
  std::uint32_t u32;
  std::uint64_t u64;
  float single;
  double real;
  std::string text;
  std::string plain;
  qx::PropertyValue value;
};

void describe(qx::ClassBuilder<Fields>& c) {
  c.name("SortedFields").property("boolean", &Fields::boolean).property("i8", &Fields::i8);
  c.property("i16", &Fields::i16).property("i32", &Fields::i32).property("i64", &Fields::i64);
  c.property("u8", &Fields::u8).property("u16", &Fields::u16).property("u32", &Fields::u32);
  c.property("u64", &Fields::u64)
      .property("single", &Fields::single)
      .property("real", &Fields::real);
  c.property("text", &Fields::text)
      .property("plain", &Fields::plain)
      .property("value", &Fields::value);
  c.property("computed", &Fields::computed).property("computedText", &Fields::computedText);
}

qx::Ref<qx::Array> orderings(qx::StringArg key, qx::Selector selector) {
  return qx::array(qx::QXSortOrdering::sortOrderingWithKey(key, selector));
}

Places sortedPlaces(const Keys& keys, const char* selector) {
  const auto elements = sorting::dictionariesWith(keys);
  const auto array = sorting::arrayOf(elements);
  qx::sortUsingKeyOrderArray(array, orderings("k", qx::Selector::named(selector)));
  return sorting::placesIn(*array, elements);
}

TEST(KeyOrderSorting, SortsNumbersInBothDirections) {
  EXPECT_EQ(sortedPlaces({3, 1, 2}, "compareAscending:"), (Places{1, 2, 0}));
  EXPECT_EQ(sortedPlaces({3, 1, 2}, "compareDescending:"), (Places{0, 2, 1}));
}

TEST(KeyOrderSorting, SortsTextsWithAndWithoutCase) {
  EXPECT_EQ(sortedPlaces({"b", "a", "B"}, "compareAscending:"), (Places{2, 1, 0}));
  EXPECT_EQ(sortedPlaces({"b", "A", "C"}, "compareCaseInsensitiveAscending:"), (Places{1, 0, 2}));
  EXPECT_EQ(sortedPlaces({"b", "A", "C"}, "compareCaseInsensitiveDescending:"), (Places{2, 0, 1}));
}

TEST(KeyOrderSorting, AnUnknownSelectorSortsAscending) {
  EXPECT_EQ(sortedPlaces({3, 1, 2}, "noSuchComparison:"), (Places{1, 2, 0}));
  EXPECT_EQ(sortedPlaces({3, 1, 2}, "compareAscending"), (Places{1, 2, 0}));
  EXPECT_EQ(sortedPlaces({3, 1, 2}, ""), (Places{1, 2, 0}));
}

TEST(KeyOrderSorting, EqualKeysChangePlacesAsTheStepsHaveIt) {
  EXPECT_EQ(sortedPlaces({0, 1, 0, 1, 0, 1}, "compareAscending:"), (Places{0, 2, 4, 1, 3, 5}));
  EXPECT_EQ(sortedPlaces({2, 3, 3, 3, 1}, "compareAscending:"), (Places{4, 0, 1, 2, 3}));
  // The gap of four carries the last element over its equals.
  EXPECT_EQ(sortedPlaces({1, 0, 0, 0, 0}, "compareAscending:"), (Places{4, 1, 2, 3, 0}));
}

TEST(KeyOrderSorting, UsesTheFirstOrderingAlone) {
  const std::vector<qx::PropertyValue> elements = {qx::dict({{"a", 2}, {"b", 1}}),
                                                   qx::dict({{"a", 1}, {"b", 2}}),
                                                   qx::dict({{"a", 2}, {"b", 0}})};
  const auto array = sorting::arrayOf(elements);
  qx::sortUsingKeyOrderArray(array,
                             qx::array(qx::QXSortOrdering::initWithKey("a", "compareAscending:"),
                                       qx::QXSortOrdering::initWithKey("b", "compareAscending:")));
  EXPECT_EQ(sorting::placesIn(*array, elements), (Places{1, 0, 2}));
}

TEST(KeyOrderSorting, TheKeyIsNoPath) {
  const std::vector<qx::PropertyValue> elements = {
      qx::dict({{"a.b", 2}, {"a", qx::dict({{"b", 1}})}}),
      qx::dict({{"a.b", 1}, {"a", qx::dict({{"b", 2}})}})};
  const auto array = sorting::arrayOf(elements);
  qx::sortUsingKeyOrderArray(array, orderings("a.b", "compareAscending:"));
  EXPECT_EQ(sorting::placesIn(*array, elements), (Places{1, 0}));
}

TEST(KeyOrderSorting, NoOrderingsAndNilChangeNothing) {
  const auto elements = sorting::dictionariesWith({2, 1});
  const auto array = sorting::arrayOf(elements);
  qx::sortUsingKeyOrderArray(array, qx::Array::init());
  qx::sortUsingKeyOrderArray(array, nullptr);
  qx::_sortUsingKeyOrder(array, nullptr, 0, 2);
  qx::_sortUsingKeyOrder(array, qx::QXSortOrdering::initWithKey(nullptr, "compareAscending:"), 0,
                         2);
  EXPECT_EQ(sorting::placesIn(*array, elements), (Places{0, 1}));
  qx::sortUsingKeyOrderArray(nullptr, orderings("k", "compareAscending:"));
  qx::_sortUsingKeyOrder(nullptr, nullptr, 0, 2);
}

TEST(KeyOrderSorting, AnythingButAnOrderingRaises) {
  const auto array = sorting::arrayOf(sorting::dictionariesWith({2, 1}));
  EXPECT_THROW(qx::sortUsingKeyOrderArray(array, qx::array("k")), qx::InvalidArgumentException);
}

TEST(KeyOrderSorting, TheSortedArrayIsAlwaysEmpty) {
  const auto array = qx::array(qx::dict({{"k", 2}}), qx::dict({{"k", 1}}));
  EXPECT_EQ(qx::sortedArrayUsingKeyOrderArray(array, orderings("k", "compareAscending:"))->count(),
            0U);
  EXPECT_EQ(qx::sortedArrayUsingKeyOrderArray(array, qx::Array::init())->count(), 0U);
  EXPECT_EQ(
      qx::sortedArrayUsingKeyOrderArray(array, orderings("k", "compareAscending:"))->cls().name(),
      std::string("NSArray"));
  EXPECT_TRUE(qx::sortedArrayUsingKeyOrderArray(nullptr, nullptr) == nullptr);
}

TEST(KeyOrderSorting, ARangeBeyondTheArrayRaisesWhenItIsReached) {
  for (const auto& [first, count] : {std::pair<std::size_t, std::size_t>{0, 4},
                                     {2, 2},
                                     {3, 2},
                                     {9, 5},
                                     {0, ~std::size_t{0}},
                                     {~std::size_t{0}, 2},
                                     {~std::size_t{0} - 1, 5},
                                     {1, ~std::size_t{0}}}) {
    const auto elements = sorting::dictionariesWith({3, 1, 2});
    const auto array = sorting::arrayOf(elements);
    const auto ordering = qx::QXSortOrdering::initWithKey("k", "compareAscending:");
    EXPECT_THROW(qx::_sortUsingKeyOrder(array, ordering, first, count), qx::RangeException)
        << first << ", " << count;
    sorting::expectSameElements(*array, elements);
  }
}

TEST(KeyOrderSorting, RangesOfNoneAndOneAreNeverReached) {
  const auto array = sorting::arrayOf(sorting::dictionariesWith({1}));
  const auto ordering = qx::QXSortOrdering::initWithKey("k", "compareAscending:");
  EXPECT_NO_THROW(qx::_sortUsingKeyOrder(array, ordering, 7, 0));
  EXPECT_NO_THROW(qx::_sortUsingKeyOrder(array, ordering, 7, 1));
}

TEST(KeyOrderSorting, MissingAndNullBesideAComparableValueRaise) {
  EXPECT_THROW(sortedPlaces({1, nullptr}, "compareAscending:"), qx::InvalidArgumentException);
  EXPECT_THROW(sortedPlaces({nullptr, 1}, "compareAscending:"), qx::InvalidArgumentException);
  EXPECT_THROW(sortedPlaces({1, qx::null}, "compareAscending:"), qx::InvalidArgumentException);
  // Here null is the argument, which does not support the comparison.
  EXPECT_EQ(sortedPlaces({qx::null, 1}, "compareAscending:"), (Places{0, 1}));
}

TEST(KeyOrderSorting, ValuesOfDifferentKindsRaise) {
  EXPECT_THROW(sortedPlaces({1, "a"}, "compareAscending:"), qx::InvalidArgumentException);
  EXPECT_THROW(sortedPlaces({"a", 1}, "compareCaseInsensitiveAscending:"),
               qx::InvalidArgumentException);
  // Here the number is the argument, which does not support the comparison.
  EXPECT_EQ(sortedPlaces({1, "a"}, "compareCaseInsensitiveAscending:"), (Places{0, 1}));
}

TEST(KeyOrderSorting, ElementsThatAreNoObjectsHaveNoKeys) {
  const auto array = qx::MutableArray::init();
  for (const qx::PropertyValue& v :
       {qx::PropertyValue(3), qx::PropertyValue("x"), qx::PropertyValue(qx::null)})
    array->addObject(v);
  qx::sortUsingKeyOrderArray(array, orderings("k", "compareAscending:"));
  EXPECT_EQ(array->objectAtIndex(0), 3);
  EXPECT_EQ(array->objectAtIndex(1), "x");
}

TEST(KeyOrderSorting, EveryFieldOfAnApplicationsClassSorts) {
  std::mt19937 random(3);
  for (const char* key : {"boolean", "i8", "i16", "i32", "i64", "u8", "u16", "u32", "u64", "single",
                          "real", "text", "plain", "value", "computed", "computedText"}) {
    SCOPED_TRACE(key);
    for (const reference::Mode& mode : reference::kModes) {
      std::vector<qx::PropertyValue> elements;
      Keys keys;
      for (int i = 0; i < 500; ++i) {
        elements.push_back(qx::make<Fields>(static_cast<int>(random() % 100)));
        keys.push_back(elements.back().valueForKey(key));
      }
      const auto expected = reference::sorted(keys, mode, 0, keys.size());
      ASSERT_TRUE(expected.has_value());
      const auto array = sorting::arrayOf(elements);
      qx::sortUsingKeyOrderArray(array, orderings(key, qx::Selector::named(mode.selector)));
      EXPECT_EQ(sorting::placesIn(*array, elements), *expected) << mode.selector;
    }
  }
}

TEST(KeyOrderSorting, ElementsOfManyFormsSortTogether) {
  std::mt19937 random(4);
  std::vector<qx::PropertyValue> elements;
  Keys keys;
  for (int i = 0; i < 400; ++i) {
    const auto n = static_cast<int>(random() % 50);
    const auto large = qx::MutableDictionary::init();
    for (int k = 0; k < 40; ++k) large->setObject(k, "other" + std::to_string(k));
    large->setObject(n, "i32");
    switch (random() % 7) {
      case 0:
        elements.push_back(qx::make<Fields>(n));
        break;
      case 1:
        elements.push_back(qx::dict({{"i32", n}, {"id", i}}));
        break;
      case 2:
        elements.push_back(qx::dict({{"id", i}, {"i32", n}}));
        break;
      case 3:
        elements.push_back(qx::dict({{"a", i}, {"b", 1}, {"i32", n}}));
        break;
      case 4:
        elements.push_back(qx::dict({{"c", i}, {"i32", n}}));
        break;
      case 5:
        elements.push_back(qx::dict({{"d", i}, {"i32", n}}));
        break;
      default:
        elements.push_back(large);
    }
    keys.push_back(n);
  }
  const auto array = sorting::arrayOf(elements);
  qx::sortUsingKeyOrderArray(array, orderings("i32", "compareAscending:"));
  EXPECT_EQ(sorting::placesIn(*array, elements),
            *reference::sorted(keys, reference::kModes[0], 0, keys.size()));
}

TEST(KeyOrderSorting, ElementsThatAreArraysGiveArraysAsKeys) {
  // An array has no comparison, so that everything stays where it is.
  const std::vector<qx::PropertyValue> elements = {qx::array(qx::dict({{"k", 2}})),
                                                   qx::array(qx::dict({{"k", 1}}))};
  const auto array = sorting::arrayOf(elements);
  qx::sortUsingKeyOrderArray(array, orderings("k", "compareAscending:"));
  EXPECT_EQ(sorting::placesIn(*array, elements), (Places{0, 1}));
}

TEST(KeyOrderSorting, OneObjectMayStandInTheArrayTwice) {
  const qx::PropertyValue twice = qx::dict({{"k", 1}});
  const qx::PropertyValue last = qx::dict({{"k", 0}});
  const auto array = sorting::arrayOf({twice, last, twice});
  qx::sortUsingKeyOrderArray(array, orderings("k", "compareAscending:"));
  EXPECT_TRUE(isSame(array->objectAtIndex(0), last));
  EXPECT_TRUE(isSame(array->objectAtIndex(2), twice));
}

TEST(KeyOrderSorting, IsPerformedBySelector) {
  const auto elements = sorting::dictionariesWith({3, 1, 2});
  const auto array = sorting::arrayOf(elements);
  const auto byK = orderings("k", "compareAscending:");
  EXPECT_EQ(qx::performSelector(array, "sortedArrayUsingKeyOrderArray:", byK), qx::Array::init());
  qx::performSelector(array, "sortUsingKeyOrderArray:", byK);
  EXPECT_EQ(sorting::placesIn(*array, elements), (Places{1, 2, 0}));
  EXPECT_FALSE(qx::PropertyValue(qx::Array::init()).respondsToSelector("sortUsingKeyOrderArray:"));
}

}  // namespace
