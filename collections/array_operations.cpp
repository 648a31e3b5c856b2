#include <algorithm>
#include <cstring>

#include <QXFoundation/array_operations.h>
#include <QXFoundation/array_shuffle.h>

#include "collections/added_operations.h"
#include "collections/membership.h"
#include "collections/selector_call.h"
#include "frame/array_storage.h"
#include "frame/raise.h"
#include "platform/random_numbers.h"

namespace qx {

using detail::ArrayStorage;
using detail::Membership;
using detail::SelectorCall;

namespace {

bool answers(const PropertyValue& element, SelectorCall& ask, const PropertyValue& wanted) {
  const PropertyValue result = ask(element);
  return !result.isNil() && result == wanted;
}

// The elements for which the test gives `wanted`. Nil for nil.
template <class Test>
Ref<MutableArray> elementsWhere(In<Array> array, bool wanted, Test&& test) {
  if (!array) return nullptr;
  const Ref<Array> held = ArrayStorage::steady(*array);
  auto found = MutableArray::init();
  for (const PropertyValue& element : *held) {
    if (test(element) == wanted) found->addObject(element);
  }
  return found;
}

Ref<MutableArray> elementsInArray(In<Array> array, In<Array> other, bool wanted) {
  if (!array) return nullptr;
  const Membership members(other, array->count());
  return elementsWhere(array, wanted,
                       [&](const PropertyValue& element) { return members.contains(element); });
}

}  // namespace

Ref<MutableArray> subarrayWithoutObject(In<Array> array, const PropertyValue& object) {
  const PropertyValue held = object;
  return elementsWhere(array, false, [&](const PropertyValue& element) { return element == held; });
}

Ref<MutableArray> subarrayByIntersectingWithArray(In<Array> array, In<Array> other) {
  return elementsInArray(array, other, true);
}

Ref<MutableArray> subarrayByDifferenceWithArray(In<Array> array, In<Array> other) {
  return elementsInArray(array, other, false);
}

Ref<MutableArray> subarrayByPerformingSelector(In<Array> array, SelectorFor<0> selector,
                                               const PropertyValue& equalTo) {
  const PropertyValue wanted = equalTo;
  SelectorCall ask(selector);
  return elementsWhere(array, true,
                       [&](const PropertyValue& element) { return answers(element, ask, wanted); });
}

PropertyValue firstObjectByPerformingSelector(In<Array> array, SelectorFor<0> selector,
                                              const PropertyValue& equalTo) {
  if (!array) return {};
  const PropertyValue wanted = equalTo;
  const Ref<Array> held = ArrayStorage::steady(*array);
  SelectorCall ask(selector);
  for (const PropertyValue& element : *held) {
    if (answers(element, ask, wanted)) return element;
  }
  return {};
}

Ref<MutableArray> arrayByPerformingSelector(In<Array> array, SelectorFor<0> selector) {
  if (!array) return nullptr;
  const Ref<Array> held = ArrayStorage::steady(*array);
  auto results = MutableArray::init();
  Membership known(nullptr);
  SelectorCall ask(selector);
  for (const PropertyValue& element : *held) {
    const PropertyValue result = ask(element);
    if (result.isNil() || known.contains(result)) continue;
    results->addObject(result);
    known.add(result);
  }
  return results;
}

bool kwContainsArray(In<Array> array, In<Array> other) {
  if (!array) return false;
  if (!other) return true;
  const Ref<Array> asked = Ref<Array>(other.get());
  const Ref<Array> before = ArrayStorage::steady(*asked);
  const Membership members(array, before->count());
  const bool all = std::all_of(before->begin(), before->end(), [&](const PropertyValue& element) {
    return members.contains(element);
  });
  if (!detail::holdsStill(*asked, *before))
    throw GenericException("-[NSArray kwContainsArray:]: the argument was changed meanwhile");
  return all;
}

Ref<MutableArray> kwRandomize(In<Array> array) {
  if (!array) return nullptr;
  auto shuffled = MutableArray::from(array->begin(), array->count());
  detail::shuffle(*shuffled);
  return shuffled;
}

namespace detail {

namespace {

// Moves the bytes: the counts stay what they are.
void exchange(PropertyValue& a, PropertyValue& b) {
  unsigned char kept[sizeof a];
  std::memcpy(kept, &a, sizeof a);
  std::memcpy(static_cast<void*>(&a), &b, sizeof a);
  std::memcpy(static_cast<void*>(&b), kept, sizeof a);
}

// Draws many numbers, then exchanges: the system's generator locks itself for each number, which
// would wait for every exchange to reach the memory.
void exchangeAll(PropertyValue* values, std::size_t count, RandomNumbers& random) {
  constexpr std::size_t kAtOnce = 512;
  constexpr std::size_t kAhead = 32;
  std::size_t other[kAtOnce + kAhead] = {};
  for (std::size_t first = 0; first + 1 < count; first += kAtOnce) {
    const std::size_t some = std::min(kAtOnce, count - 1 - first);
    for (std::size_t k = 0; k < some; ++k) {
      const std::size_t i = first + k;
      other[k] = i + static_cast<std::size_t>(random.next()) % (count - i);
    }
    for (std::size_t k = 0; k < some; ++k) {
      __builtin_prefetch(values + other[k + kAhead], 1);
      exchange(values[first + k], values[other[k]]);
    }
  }
}

}  // namespace

// An array whose class sees its changes is told of each exchange.
void shuffle(MutableArray& array) {
  const std::size_t count = array.count();
  if (count < 2) return;
  RandomNumbers& random = randomNumbers();
  if (&array.cls() == &classOf<MutableArray>()) {
    exchangeAll(ArrayStorage::values(array), count, random);
    return;
  }
  for (std::size_t i = 0; i + 1 < count; ++i) {
    const std::size_t j = i + static_cast<std::size_t>(random.next()) % (count - i);
    array.exchangeObjectAtIndex(j, i);
  }
}

void addArrayOperations(ClassBuilderBase& c) {
  using Value = const PropertyValue&;
  using Other = const Ref<Array>&;
  using Name = const Ref<String>&;
  c.addFunction(
      "subarrayWithoutObject:",
      +[](Value r, Value x) { return subarrayWithoutObject(r.as<Array>(), x); });
  c.addFunction(
      "subarrayByIntersectingWithArray:",
      +[](Value r, Other other) { return subarrayByIntersectingWithArray(r.as<Array>(), other); });
  c.addFunction(
      "subarrayByDifferenceWithArray:",
      +[](Value r, Other other) { return subarrayByDifferenceWithArray(r.as<Array>(), other); });
  c.addFunction(
      "subarrayByPerformingSelector:equalTo:", +[](Value r, Name selector, Value x) {
        return subarrayByPerformingSelector(r.as<Array>(), Selector::named(selector), x);
      });
  c.addFunction(
      "firstObjectByPerformingSelector:equalTo:", +[](Value r, Name selector, Value x) {
        return firstObjectByPerformingSelector(r.as<Array>(), Selector::named(selector), x);
      });
  c.addFunction(
      "arrayByPerformingSelector:", +[](Value r, Name selector) {
        return arrayByPerformingSelector(r.as<Array>(), Selector::named(selector));
      });
  c.addFunction(
      "kwContainsArray:",
      +[](Value r, Other other) { return kwContainsArray(r.as<Array>(), other); });
  c.addFunction("kwRandomize", +[](Value r) { return kwRandomize(r.as<Array>()); });
}

}  // namespace detail
}  // namespace qx
