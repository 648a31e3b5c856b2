#pragma once

// How arrays keep their elements: an immutable one right behind its object, a mutable one in a
// buffer of its own.

#include <cstddef>
#include <cstdint>
#include <new>

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

  // What the array holds now, for walks that run code which may change it: the array itself where
  // nothing can.
  static Ref<Array> steady(const Array& a) {
    return isMutable(a) ? Array::from(a.begin(), a.count()) : Ref<Array>(const_cast<Array*>(&a));
  }

  // An immutable array whose elements are nil until the caller has filled every one of them, before
  // anyone else sees it.
  static Ref<Array> allocate(std::size_t count);
  // An immutable array without elements that has room for so many, before anyone else sees it.
  // Whoever puts values there says how many, once.
  static Ref<Array> allocateRoom(std::size_t capacity);
  static void setCount(Array& a, std::size_t count) { a.count_ = count; }

  // Adds values[picks[0]], values[picks[1]] ... to an array of exactly the class MutableArray,
  // whose primitives nobody overrides.
  template <class Index>
  static void addPicked(MutableArray& a, const PropertyValue* values, const Index* picks,
                        std::size_t count) {
    if (a.capacity_ - a.count_ < count) a.grow(a.count_ + count);
    PropertyValue* to = a.values_ + a.count_;
    for (std::size_t i = 0; i < count; ++i)
      ::new (static_cast<void*>(to + i)) PropertyValue(values[picks[i]]);
    a.count_ += count;
  }
};

}  // namespace qx::detail
