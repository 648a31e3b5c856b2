#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <new>

#include <QXFoundation/array.h>

#include "frame/array_storage.h"
#include "frame/comparison_operations.h"
#include "frame/deep.h"
#include "frame/library_class.h"
#include "frame/object_memory.h"
#include "frame/raise.h"

namespace qx {

using detail::ArrayStorage;

namespace {

void refuseNil(const PropertyValue* first, std::size_t count, const char* operation) {
  for (std::size_t i = 0; i < count; ++i) {
    if (first[i].isNil()) detail::raiseNilStored(operation);
  }
}

}  // namespace

Array::Array(detail::Passkey, unsigned bits) : Object(detail::ObjectKind::array, bits) {}

Array::~Array() {
  if (!ArrayStorage::isMutable(*this)) std::destroy_n(ArrayStorage::values(*this), count_);
}

Ref<Array> ArrayStorage::allocateRoom(std::size_t capacity) {
  static const std::uint16_t index = classIndexOf(classOf<Array>());
  static_assert(sizeof(Made<Array>) == sizeof(Array));
  if (capacity > (std::numeric_limits<std::size_t>::max() / 2) / sizeof(PropertyValue))
    raiseTooLong("an array");
  void* memory =
      detail::ObjectMemory::allocate(sizeof(Made<Array>) + capacity * sizeof(PropertyValue));
  auto* a = ::new (memory) Made<Array>(Passkey{});
  ObjectAccess::setClass(*a, index, 0);
  return Ref<Array>::adopt(a);
}

Ref<Array> ArrayStorage::allocate(std::size_t count) {
  Ref<Array> a = allocateRoom(count);
  std::uninitialized_default_construct_n(values(*a), count);
  setCount(*a, count);
  return a;
}

Ref<Array> Array::from(const PropertyValue* first, std::size_t count) {
  refuseNil(first, count, "+[NSArray arrayWithObjects:count:]");
  auto a = ArrayStorage::allocate(count);
  std::copy_n(first, count, ArrayStorage::values(*a));
  return a;
}

Ref<Array> Array::init() { return ArrayStorage::allocate(0); }

const PropertyValue* Array::begin() const { return ArrayStorage::values(*this); }

const PropertyValue& Array::objectAtIndex(std::size_t index) const {
  if (index >= count_) detail::raiseIndex("-[NSArray objectAtIndex:]", index, count_);
  return begin()[index];
}
PropertyValue Array::firstObject() const { return count_ == 0 ? PropertyValue() : *begin(); }
PropertyValue Array::lastObject() const {
  return count_ == 0 ? PropertyValue() : begin()[count_ - 1];
}

bool Array::containsObject(const PropertyValue& value) const {
  return indexOfObject(value) != kNotFound;
}

std::size_t Array::indexOfObject(const PropertyValue& value) const {
  for (std::size_t i = 0; i < count_; ++i) {
    if (begin()[i] == value) return i;
  }
  return kNotFound;
}

std::size_t Array::indexOfObjectIdenticalTo(const PropertyValue& value) const {
  for (std::size_t i = 0; i < count_; ++i) {
    if (isSame(begin()[i], value)) return i;
  }
  return kNotFound;
}

bool Array::isEqualToArray(In<Array> other) const { return other && isEqual(other.get()); }

Ref<Array> Array::arrayByAddingObject(const PropertyValue& value) const {
  refuseNil(&value, 1, "-[NSArray arrayByAddingObject:]");
  auto a = ArrayStorage::allocate(count_ + 1);
  PropertyValue* to = ArrayStorage::values(*a);
  std::copy_n(begin(), count_, to);
  to[count_] = value;
  return a;
}

Ref<Array> Array::subarrayWithRange(Range range) const {
  if (range.location > count_ || range.length > count_ - range.location) {
    detail::raiseRange("-[NSArray subarrayWithRange:]", range.location, range.length, count_);
  }
  return from(begin() + range.location, range.length);
}

bool Array::isEqual(const PropertyValue& other) const { return detail::deepEqual(*this, other); }
std::size_t Array::hash() const { return detail::shallowHash(*this); }
std::string Array::description() const { return detail::describeDeep(*this); }
Ref<Object> Array::copy() const { return const_cast<Array*>(this); }
Ref<Object> Array::mutableCopy() const { return MutableArray::from(begin(), count_); }

MutableArray::MutableArray() : Array(detail::Passkey{}, detail::kMutableVariant) {}
MutableArray::~MutableArray() {
  std::destroy_n(values_, count_);
  std::free(values_);
}

Ref<MutableArray> MutableArray::init() { return make<MutableArray>(); }
Ref<MutableArray> MutableArray::arrayWithCapacity(std::size_t capacity) {
  auto a = init();
  a->reserve(capacity);
  return a;
}
Ref<MutableArray> MutableArray::from(const PropertyValue* first, std::size_t count) {
  refuseNil(first, count, "+[NSMutableArray arrayWithObjects:count:]");
  auto a = arrayWithCapacity(count);
  std::uninitialized_copy_n(first, count, a->values_);
  a->count_ = count;
  return a;
}

// Values are words that may be moved as bytes.
void MutableArray::grow(std::size_t needed) {
  const std::size_t capacity = std::max({needed, capacity_ + capacity_ / 2, std::size_t{4}});
  void* grown = capacity > std::numeric_limits<std::size_t>::max() / sizeof(PropertyValue)
                    ? nullptr
                    : std::realloc(static_cast<void*>(values_), capacity * sizeof(PropertyValue));
  if (grown == nullptr) throw std::bad_alloc();
  values_ = static_cast<PropertyValue*>(grown);
  capacity_ = capacity;
}

void MutableArray::reserve(std::size_t capacity) {
  if (capacity > capacity_) grow(capacity);
}

void MutableArray::addObject(const PropertyValue& value) {
  if (value.isNil()) detail::raiseNilStored("-[NSMutableArray addObject:]");
  PropertyValue held = value;  // it may stand in this array
  if (count_ == capacity_) grow(count_ + 1);
  ::new (static_cast<void*>(values_ + count_)) PropertyValue(std::move(held));
  ++count_;
}

void MutableArray::insertObject(const PropertyValue& value, std::size_t atIndex) {
  if (value.isNil()) detail::raiseNilStored("-[NSMutableArray insertObject:atIndex:]");
  if (atIndex > count_)
    detail::raiseIndex("-[NSMutableArray insertObject:atIndex:]", atIndex, count_);
  PropertyValue held = value;
  if (count_ == capacity_) grow(count_ + 1);
  PropertyValue* at = values_ + atIndex;
  std::memmove(static_cast<void*>(at + 1), at, (count_ - atIndex) * sizeof(PropertyValue));
  ::new (static_cast<void*>(at)) PropertyValue(std::move(held));
  ++count_;
}

void MutableArray::replaceObjectAtIndex(std::size_t index, const PropertyValue& withObject) {
  if (withObject.isNil())
    detail::raiseNilStored("-[NSMutableArray replaceObjectAtIndex:withObject:]");
  if (index >= count_) {
    detail::raiseIndex("-[NSMutableArray replaceObjectAtIndex:withObject:]", index, count_);
  }
  values_[index] = withObject;
}

// The element is released last, when the array is whole again.
void MutableArray::removeObjectAtIndex(std::size_t index) {
  if (index >= count_) detail::raiseIndex("-[NSMutableArray removeObjectAtIndex:]", index, count_);
  const PropertyValue removed = std::move(values_[index]);
  --count_;
  std::memmove(static_cast<void*>(values_ + index), values_ + index + 1,
               (count_ - index) * sizeof(PropertyValue));
}

void MutableArray::removeLastObject() {
  if (count_ == 0) detail::raiseIndex("-[NSMutableArray removeLastObject]", 0, 0);
  const PropertyValue removed = std::move(values_[--count_]);
}

void MutableArray::removeAllObjects() {
  PropertyValue* values = std::exchange(values_, nullptr);
  const std::size_t count = std::exchange(count_, 0);
  capacity_ = 0;
  std::destroy_n(values, count);
  std::free(values);
}

void MutableArray::addObjectsFromArray(In<Array> other) {
  if (!other) return;
  const Ref<Array> held = ArrayStorage::steady(*other);  // it may be this one
  for (const PropertyValue& value : *held) addObject(value);
}

void MutableArray::setArray(In<Array> other) {
  const Ref<Array> held = other ? ArrayStorage::steady(*other) : nullptr;
  removeAllObjects();
  addObjectsFromArray(held);
}

void MutableArray::exchangeObjectAtIndex(std::size_t index, std::size_t withObjectAtIndex) {
  const PropertyValue a = objectAtIndex(index);
  const PropertyValue b = objectAtIndex(withObjectAtIndex);
  replaceObjectAtIndex(index, b);
  replaceObjectAtIndex(withObjectAtIndex, a);
}

void MutableArray::removeObject(const PropertyValue& value) {
  const PropertyValue held = value;
  for (std::size_t i = count_; i-- > 0;) {
    if (i < count_ && values_[i] == held) removeObjectAtIndex(i);
  }
}

Ref<Object> MutableArray::copy() const { return Array::from(begin(), count()); }

void describe(ClassBuilder<Array>& c) {
  c.setCore();
  c.name("NSArray").inherits<Object>();
  c.operation("count", &Array::count);
  c.operation(
      "objectAtIndex:",
      +[](const PropertyValue& r, std::size_t i) { return r.as<Array>()->objectAtIndex(i); });
  c.operation("firstObject", &Array::firstObject).operation("lastObject", &Array::lastObject);
  c.operation(
      "containsObject:", +[](const PropertyValue& r, const PropertyValue& v) {
        return r.as<Array>()->containsObject(v);
      });
  c.operation(
      "indexOfObject:", +[](const PropertyValue& r, const PropertyValue& v) {
        return r.as<Array>()->indexOfObject(v);
      });
  c.operation("isEqualToArray:", &detail::isEqualOperation);
  c.operation("doesContain:", &detail::comparisonOperation<detail::Comparison::doesContain>);
  c.operation(
      "arrayByAddingObject:", +[](const PropertyValue& r, const PropertyValue& v) {
        return r.as<Array>()->arrayByAddingObject(v);
      });
}

void describe(ClassBuilder<MutableArray>& c) {
  c.setCore();
  c.name("NSMutableArray").inherits<Array>();
  c.operation(
      "addObject:",
      +[](const PropertyValue& r, const PropertyValue& v) { r.as<MutableArray>()->addObject(v); });
  c.operation(
      "insertObject:atIndex:", +[](const PropertyValue& r, const PropertyValue& v, std::size_t i) {
        r.as<MutableArray>()->insertObject(v, i);
      });
  c.operation(
      "replaceObjectAtIndex:withObject:",
      +[](const PropertyValue& r, std::size_t i, const PropertyValue& v) {
        r.as<MutableArray>()->replaceObjectAtIndex(i, v);
      });
  c.operation(
      "removeObjectAtIndex:",
      +[](const PropertyValue& r, std::size_t i) { r.as<MutableArray>()->removeObjectAtIndex(i); });
  c.operation("removeLastObject", &MutableArray::removeLastObject);
  c.operation("removeAllObjects", &MutableArray::removeAllObjects);
  c.operation(
      "addObjectsFromArray:", +[](const PropertyValue& r, const Ref<Array>& other) {
        r.as<MutableArray>()->addObjectsFromArray(other);
      });
  c.operation(
      "removeObject:", +[](const PropertyValue& r, const PropertyValue& v) {
        r.as<MutableArray>()->removeObject(v);
      });
}

const Class& classObject(detail::Type<Array>) { return detail::buildLibraryClass<Array>(); }
const Class& classObject(detail::Type<MutableArray>) {
  return detail::buildLibraryClass<MutableArray>();
}

}  // namespace qx
