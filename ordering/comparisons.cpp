// The four comparisons of every object.

#include <algorithm>
#include <cstdint>
#include <limits>

#include <QXFoundation/class_builder.h>
#include <QXFoundation/sort_ordering.h>

#include "frame/class_record.h"
#include "frame/comparison_operations.h"
#include "ordering/added_operations.h"
#include "ordering/mode.h"

namespace qx {
namespace detail {
namespace {

constexpr Selector kAscending("compareAscending:");
constexpr Selector kDescending("compareDescending:");
constexpr Selector kCaseInsensitiveAscending("compareCaseInsensitiveAscending:");
constexpr Selector kCaseInsensitiveDescending("compareCaseInsensitiveDescending:");

Selector selectorOf(Mode mode) {
  if (mode.ignoringCase) {
    return mode.descending ? kCaseInsensitiveDescending : kCaseInsensitiveAscending;
  }
  return mode.descending ? kDescending : kAscending;
}

// Values without an object are numbers, null and nil; the value model's classes are known.
bool isCore(const PropertyValue& v) {
  const Object* o = v.object();
  return o == nullptr || o->cls().record().core;
}

bool supports(const PropertyValue& v, bool ignoringCase) {
  if (!isCore(v)) {
    return v.respondsToSelector(ignoringCase ? Selector("caseInsensitiveCompare:")
                                             : Selector("compare:"));
  }
  return v.isString() || (!ignoringCase && (v.isNumber() || v.isDate()));
}

// What a class of the application answers may be any number.
int answer(const PropertyValue& receiver, SelectorFor<1> comparison, const PropertyValue& other) {
  constexpr std::int64_t kMin = std::numeric_limits<int>::min();
  constexpr std::int64_t kMax = std::numeric_limits<int>::max();
  const std::int64_t order = performSelector(receiver, comparison, other).integerValue();
  return static_cast<int>(std::clamp(order, kMin, kMax));
}

int order(const PropertyValue& receiver, bool ignoringCase, const PropertyValue& other) {
  if (ignoringCase) {
    return isCore(receiver) ? caseInsensitiveCompareOperation(receiver, other)
                            : answer(receiver, "caseInsensitiveCompare:", other);
  }
  return isCore(receiver) ? compareOperation(receiver, other) : answer(receiver, "compare:", other);
}

// As every object performs it unless its class declares its own.
int compareAsObject(Mode mode, const PropertyValue& receiver, const PropertyValue& other) {
  if (receiver.isNil() || !supports(other, mode.ignoringCase)) return 0;
  const int result = order(receiver, mode.ignoringCase, other);
  return mode.descending && (result == 1 || result == -1) ? -result : result;
}

template <bool Descending, bool IgnoringCase>
int operation(const PropertyValue& receiver, const PropertyValue& other) {
  return compareAsObject({Descending, IgnoringCase}, receiver, other);
}

}  // namespace

Mode modeOf(Selector selector) {
  if (selector == kDescending) return {true, false};
  if (selector == kCaseInsensitiveAscending) return {false, true};
  if (selector == kCaseInsensitiveDescending) return {true, true};
  return {};
}

int compareInMode(Mode mode, const PropertyValue& receiver, const PropertyValue& other) {
  if (isCore(receiver)) return compareAsObject(mode, receiver, other);
  return answer(receiver, selectorOf(mode), other);
}

void addComparisonOperations(ClassBuilderBase& builder) {
  builder.addFunction(kAscending, &operation<false, false>);
  builder.addFunction(kDescending, &operation<true, false>);
  builder.addFunction(kCaseInsensitiveAscending, &operation<false, true>);
  builder.addFunction(kCaseInsensitiveDescending, &operation<true, true>);
}

}  // namespace detail

int compareAscending(const PropertyValue& receiver, const PropertyValue& other) {
  return detail::compareInMode({false, false}, receiver, other);
}
int compareDescending(const PropertyValue& receiver, const PropertyValue& other) {
  return detail::compareInMode({true, false}, receiver, other);
}
int compareCaseInsensitiveAscending(const PropertyValue& receiver, const PropertyValue& other) {
  return detail::compareInMode({false, true}, receiver, other);
}
int compareCaseInsensitiveDescending(const PropertyValue& receiver, const PropertyValue& other) {
  return detail::compareInMode({true, true}, receiver, other);
}

}  // namespace qx
