#pragma once

// Arrays of elements that are told apart by identity, and what sorting made of them.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <optional>
#include <vector>

#include <QXFoundation/QXFoundation.h>

#include "tests/ordering/reference_sort.h"

namespace sorting {

using Keys = std::vector<qx::PropertyValue>;
using Places = std::vector<std::size_t>;

// Dictionaries with the keys under "k"; none for a nil key.
inline std::vector<qx::PropertyValue> dictionariesWith(const Keys& keys) {
  std::vector<qx::PropertyValue> elements;
  for (std::size_t i = 0; i < keys.size(); ++i) {
    elements.push_back(keys[i].isNil() ? qx::dict({{"id", i}})
                                       : qx::dict({{"id", i}, {"k", keys[i]}}));
  }
  return elements;
}

inline qx::Ref<qx::MutableArray> arrayOf(const std::vector<qx::PropertyValue>& elements) {
  return qx::MutableArray::from(elements.data(), elements.size());
}

// Where the elements of the array come from; every element is one of those, once.
inline Places placesIn(const qx::Array& array, const std::vector<qx::PropertyValue>& elements) {
  std::vector<std::pair<const void*, std::size_t>> known;
  for (std::size_t i = 0; i < elements.size(); ++i) known.emplace_back(elements[i].object(), i);
  std::sort(known.begin(), known.end());
  Places places;
  for (const qx::PropertyValue& v : array) {
    const auto at = std::lower_bound(known.begin(), known.end(),
                                     std::pair<const void*, std::size_t>(v.object(), 0));
    if (at == known.end() || at->first != v.object()) {
      ADD_FAILURE() << "an element that was not there";
      return places;
    }
    places.push_back(at->second);
  }
  return places;
}

inline void expectSameElements(const qx::Array& array,
                               const std::vector<qx::PropertyValue>& elements) {
  Places places = placesIn(array, elements);
  std::sort(places.begin(), places.end());
  ASSERT_EQ(places.size(), elements.size());
  for (std::size_t i = 0; i < places.size(); ++i) ASSERT_EQ(places[i], i) << "lost or doubled";
}

inline qx::Ref<qx::QXSortOrdering> orderingFor(const reference::Mode& mode) {
  return qx::QXSortOrdering::sortOrderingWithKey("k", qx::Selector::named(mode.selector));
}

// Sorts and compares with the steps as they are written down; `keys` are what the elements have.
inline void expectSortsAsWritten(const std::vector<qx::PropertyValue>& elements, const Keys& keys,
                                 const reference::Mode& mode, std::size_t first,
                                 std::size_t count) {
  const std::optional<Places> expected = reference::sorted(keys, mode, first, count);
  const auto array = arrayOf(elements);
  if (!expected) {
    EXPECT_THROW(qx::_sortUsingKeyOrder(array, orderingFor(mode), first, count),
                 qx::InvalidArgumentException);
    expectSameElements(*array, elements);
    return;
  }
  ASSERT_NO_THROW(qx::_sortUsingKeyOrder(array, orderingFor(mode), first, count));
  ASSERT_EQ(placesIn(*array, elements), *expected) << mode.selector << " from " << first;
}

}  // namespace sorting
