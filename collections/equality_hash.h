#pragma once

// Hashes that can rule equality out.

#include <cstddef>
#include <optional>

#include <QXFoundation/property_value.h>

namespace qx::detail {

// A hash of the value by which it can be looked up: two values that both have one are equal only if
// the hashes are. There is none where a class takes `isEqual` and `hash` from different classes (it
// overrides one of them without the other), nor for containers as far as such an object takes part
// in the hash. It looks into nested containers, to a bound that keeps large and circular ones
// harmless. May call `hash` of the application.
std::optional<std::size_t> equalityHash(const PropertyValue& value);

// Whether an element may be equal to a value that has no such hash and is no container, text or
// number: plain data is not, nor an object that has such a hash and is equal to itself alone.
bool mayEqualForeign(const PropertyValue& element);

}  // namespace qx::detail
