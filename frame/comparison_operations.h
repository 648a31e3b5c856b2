#pragma once

// The value model's own comparisons, which the classes enter as operations.

#include <QXFoundation/property_value.h>

#include "frame/comparison.h"

namespace qx::detail {

// Three-way order of two strings, two numbers or two dates. False where the two do not compare.
bool builtInOrder(const PropertyValue& left, const PropertyValue& right, int& order);
// The same, but by the receiver's own `compare:` where its class declares one, which is not asked
// about nil and about what its parameter does not take.
bool orderOf(const PropertyValue& left, const PropertyValue& right, int& order);

// The built-in form of one of the nine, without asking the class; `responds` is false on receivers
// that lack it.
Applied applyBuiltIn(Comparison comparison, const PropertyValue& left, const PropertyValue& right);

// As operations of a class, by selector.
template <Comparison C>
bool comparisonOperation(const PropertyValue& receiver, const PropertyValue& other) {
  return applyBuiltIn(C, receiver, other).result;
}
bool isEqualOperation(const PropertyValue& receiver, const PropertyValue& other);
// These two raise InvalidArgumentException where the two do not compare. They are the built-in
// order also of receivers whose class declares its own, which may build upon it.
int compareOperation(const PropertyValue& receiver, const PropertyValue& other);
int caseInsensitiveCompareOperation(const PropertyValue& receiver, const PropertyValue& other);

}  // namespace qx::detail
