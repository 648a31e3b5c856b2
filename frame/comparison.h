#pragma once

// The nine comparison operations as an enumeration, and their application to any value.

#include <cstdint>

#include <QXFoundation/property_value.h>
#include <QXFoundation/selector.h>

namespace qx::detail {

enum class Comparison : std::uint8_t {
  isEqualTo,
  isNotEqualTo,
  isLessThan,
  isLessThanOrEqualTo,
  isGreaterThan,
  isGreaterThanOrEqualTo,
  doesContain,
  isLike,
  isCaseInsensitiveLike,
  none,  // any other selector
};

// The operation that the selector names, by its text.
Comparison comparisonOf(Selector selector);
// The selector of an operation; null for `none`.
Selector selectorOf(Comparison comparison);

// What asking `left` to perform an operation gave. A receiver without it did not respond, and its
// result is false.
struct Applied {
  bool responds = false;
  bool result = false;
};

// Applies one of the nine to a receiver that is not nil: the class's own operation where it
// declares one, else the value model's. An own operation whose parameter does not take the argument
// is not called: the two differ, and the rest is false. `none` does not respond.
Applied apply(Comparison comparison, const PropertyValue& left, const PropertyValue& right);

// The same by selector, for any operation of one argument that answers a bool.
Applied apply(Selector selector, const PropertyValue& left, const PropertyValue& right);

}  // namespace qx::detail
