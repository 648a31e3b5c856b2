#pragma once

#include <QXFoundation/property_value.h>

namespace qx::detail {

// The value with everything in it immutable: arrays, dictionaries, strings and data at every depth
// are copied where they are mutable or hold what is, and shared where not. Sets and other objects
// stand in the copy as they are. What lies deeper than a property list may be nested, and a
// container within itself, is left as it is too: such a value can not be written anyway.
PropertyValue immutableDeepCopy(const PropertyValue& value);

}  // namespace qx::detail
