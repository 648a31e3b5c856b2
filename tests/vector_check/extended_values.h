#pragma once

// Values of the families about collections: the plain form, with nil as {"$nil": true} and dates as
// {"$date": seconds}.

#include "tests/vector_check/values.h"

namespace vector_check {

inline json nilJson() { return {{"$nil", true}}; }

qx::PropertyValue extendedValue(const json& j);
json extendedJson(const qx::PropertyValue& v);
// The elements, which are not nil, as a new array.
qx::Ref<qx::Array> extendedArray(const json& list);

}  // namespace vector_check
