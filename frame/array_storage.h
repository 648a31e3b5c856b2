#pragma once

// How arrays keep their elements: an immutable one right behind its object, a mutable one in a
// buffer of its own.

#include <cstddef>

#include <QXFoundation/array.h>

namespace qx::detail {

struct ArrayStorage {
  static bool isMutable(const Array& a) { return ObjectAccess::has(a, kMutableVariant); }
  static const PropertyValue* values(const Array& a) {
    return isMutable(a) ? static_cast<const MutableArray&>(a).values_
                        : reinterpret_cast<const PropertyValue*>(&a + 1);
  }
  static PropertyValue* values(Array& a) {
    return const_cast<PropertyValue*>(values(static_cast<const Array&>(a)));
  }

  // An immutable array whose elements are nil until the caller has filled every one of them, before
  // anyone else sees it.
  static Ref<Array> allocate(std::size_t count);
};

}  // namespace qx::detail
