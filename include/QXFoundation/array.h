// Array and MutableArray: ordered sequences of values, index from 0.
//
//     auto a = qx::array("x", 1, true);
//     for (const qx::PropertyValue& v : *a) use(v);
#pragma once

#include <concepts>
#include <cstddef>
#include <utility>

#include <QXFoundation/object.h>
#include <QXFoundation/property_value.h>
#include <QXFoundation/string.h>

namespace qx {

namespace detail {
struct ArrayStorage;
}

// An immutable array; elements are never nil. The class is "NSArray". As thread-safe as its
// elements. Equality and description have limits, see PropertyValue.
class QX_EXPORT Array : public Object {
 public:
  // Copies the values; nil among them raises InvalidArgumentException.
  static Ref<Array> from(const PropertyValue* first, std::size_t count);
  static Ref<Array> init();

  // The number of elements.
  std::size_t count() const { return count_; }
  // Raises RangeException at or beyond the count.
  const PropertyValue& objectAtIndex(std::size_t index) const;
  // Nil when empty.
  PropertyValue firstObject() const;
  PropertyValue lastObject() const;
  bool containsObject(const PropertyValue& value) const;
  // The first equal element; kNotFound when there is none.
  std::size_t indexOfObject(const PropertyValue& value) const;
  std::size_t indexOfObjectIdenticalTo(const PropertyValue& value) const;
  bool isEqualToArray(In<Array> other) const;
  // Nil raises InvalidArgumentException.
  Ref<Array> arrayByAddingObject(const PropertyValue& value) const;
  // A range that leaves the array raises RangeException.
  Ref<Array> subarrayWithRange(Range range) const;

  // Borrowed; a mutable array's ends with its next change.
  const PropertyValue* begin() const;
  const PropertyValue* end() const { return begin() + count_; }

  bool isEqual(const PropertyValue& other) const override;
  std::size_t hash() const override;
  std::string description() const override;
  Ref<Object> copy() const override;
  Ref<Object> mutableCopy() const override;

  // Inside the library.
  explicit Array(detail::Passkey, unsigned bits = 0);

 protected:
  ~Array() override;

 private:
  friend struct detail::ArrayStorage;
  friend class MutableArray;
  std::size_t count_ = 0;
};

// An array that changes in place. The class is "NSMutableArray". Belongs to one thread at a time. A
// subclass that wants to see every change overrides the six primitives, through which all others
// go.
class QX_EXPORT MutableArray : public Array {
 public:
  MutableArray();
  // An empty array, a copy of these values, an empty array with room for so many. Raises as
  // Array::from does.
  static Ref<MutableArray> init();
  static Ref<MutableArray> from(const PropertyValue* first, std::size_t count);
  static Ref<MutableArray> arrayWithCapacity(std::size_t capacity);

  // The primitives. A nil value raises InvalidArgumentException, an index out of range
  // RangeException, and nothing changes.
  virtual void addObject(const PropertyValue& value);
  virtual void insertObject(const PropertyValue& value, std::size_t atIndex);
  virtual void replaceObjectAtIndex(std::size_t index, const PropertyValue& withObject);
  virtual void removeObjectAtIndex(std::size_t index);
  virtual void removeLastObject();
  virtual void removeAllObjects();

  // A nil array counts as empty.
  virtual void addObjectsFromArray(In<Array> other);
  void setArray(In<Array> other);
  // An index out of range raises RangeException, and nothing changes.
  void exchangeObjectAtIndex(std::size_t index, std::size_t withObjectAtIndex);
  // Removes every equal element; nil does nothing.
  void removeObject(const PropertyValue& value);
  void reserve(std::size_t capacity);

  Ref<Object> copy() const override;

 protected:
  ~MutableArray() override;

 private:
  friend struct detail::ArrayStorage;
  void grow(std::size_t needed);
  PropertyValue* values_ = nullptr;
  std::size_t capacity_ = 0;
};

QX_EXPORT const Class& classObject(detail::Type<Array>);
QX_EXPORT const Class& classObject(detail::Type<MutableArray>);

// An array of the values given.
template <class... T>
  requires(std::convertible_to<T, PropertyValue> && ...)
[[nodiscard]] Ref<Array> array(T&&... values) {
  const PropertyValue list[sizeof...(T) + 1] = {PropertyValue(std::forward<T>(values))...};
  return Array::from(list, sizeof...(T));
}

}  // namespace qx
