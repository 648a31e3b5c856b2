#include "frame/dictionary_storage.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>

#include "frame/object_memory.h"
#include "frame/raise.h"
#include "frame/string_storage.h"

namespace qx::detail {

Ref<Dictionary> DictionaryStorage::allocate(ShapeCount shape) {
  static const std::uint16_t index = classIndexOf(classOf<Dictionary>());
  static_assert(sizeof(Made<Dictionary>) == sizeof(Dictionary));
  const std::size_t slots = shape->slots();
  void* memory = ObjectMemory::allocate(sizeof(Made<Dictionary>) + slots * sizeof(PropertyValue));
  auto* d = ::new (memory) Made<Dictionary>(Passkey{}, shape.release(), 0U);
  ObjectAccess::setClass(*d, index, 0);
  std::uninitialized_default_construct_n(values(*d), slots);
  return Ref<Dictionary>::adopt(d);
}

void DictionaryStorage::reserve(MutableDictionary& d, std::size_t slots) {
  if (slots <= d.capacity_) return;
  const std::size_t capacity = std::max({slots, d.capacity_ * 2, std::size_t{4}});
  void* grown = std::realloc(static_cast<void*>(d.values_), capacity * sizeof(PropertyValue));
  if (grown == nullptr) throw std::bad_alloc();
  d.values_ = static_cast<PropertyValue*>(grown);
  d.capacity_ = capacity;
}

void DictionaryStorage::append(MutableDictionary& d, PropertyValue value, Ref<String> key) {
  const std::size_t slots = d.shape_->slots();
  reserve(d, slots + 1);
  if (d.shape_->isShared()) {
    ShapeCount next;
    if (slots < Shape::kMaxShared) {
      Ref<String> keys[Shape::kMaxShared];
      std::copy_n(d.shape_->keys(), slots, keys);
      keys[slots] = std::move(key);
      next = Shape::shared(keys, slots + 1);
    } else {
      next = Shape::own(slots * 2);
      for (std::size_t i = 0; i < slots; ++i) next->append(d.shape_->key(i));
      next->append(std::move(key));
    }
    std::exchange(d.shape_, next.release())->release();
  } else {
    d.shape_->append(std::move(key));
  }
  ::new (static_cast<void*>(d.values_ + slots)) PropertyValue(std::move(value));
}

void DictionaryStorage::set(MutableDictionary& d, PropertyValue value, StringArg key) {
  const std::size_t slot = d.shape_->slotOf(KeyText(key));
  if (slot == Shape::kAbsent) {
    append(d, std::move(value), immutableString(key));
  } else {
    std::swap(d.values_[slot], value);  // what stood there is released last
  }
}

// Both give what stood in the slot, to be released when the dictionary is whole again.
PropertyValue DictionaryStorage::removeShared(MutableDictionary& d, std::size_t slot) {
  const std::size_t slots = d.shape_->slots();
  Ref<String> keys[Shape::kMaxShared];
  std::copy_n(d.shape_->keys(), slot, keys);
  std::copy(d.shape_->keys() + slot + 1, d.shape_->keys() + slots, keys + slot);
  ShapeCount next = Shape::shared(keys, slots - 1);
  PropertyValue removed = std::move(d.values_[slot]);
  std::memmove(static_cast<void*>(d.values_ + slot), d.values_ + slot + 1,
               (slots - slot - 1) * sizeof(PropertyValue));
  std::exchange(d.shape_, next.release())->release();
  return removed;
}

PropertyValue DictionaryStorage::removeOwn(MutableDictionary& d, std::size_t slot) {
  PropertyValue removed = std::move(d.values_[slot]);
  d.shape_->makeHole(slot);
  if (d.shape_->worthClosing()) {
    d.shape_->closeHoles([&](std::size_t to, std::size_t from) {
      // Holes hold nil, whose bytes need no end.
      std::memcpy(static_cast<void*>(d.values_ + to), d.values_ + from, sizeof(PropertyValue));
    });
  }
  return removed;
}

void DictionaryStorage::remove(MutableDictionary& d, StringArg key) {
  const std::size_t slot = d.shape_->slotOf(KeyText(key));
  if (slot == Shape::kAbsent) return;
  const PropertyValue removed = d.shape_->isShared() ? removeShared(d, slot) : removeOwn(d, slot);
}

void DictionaryStorage::clear(MutableDictionary& d) {
  Shape* shape = std::exchange(d.shape_, Shape::empty().release());
  PropertyValue* values = std::exchange(d.values_, nullptr);
  d.capacity_ = 0;
  std::destroy_n(values, shape->slots());
  std::free(values);
  shape->release();
}

// The shape of the dictionary's keys without holes, shared where their number allows it.
ShapeCount DictionaryStorage::closedShape(const Dictionary& d) {
  if (d.shape_->isShared()) return d.shape_->another();
  if (d.shape_->count() <= Shape::kMaxShared) {
    Ref<String> keys[Shape::kMaxShared];
    std::size_t count = 0;
    for (const auto& item : d) keys[count++] = const_cast<String*>(&item.key);
    return Shape::shared(keys, count);
  }
  ShapeCount shape = Shape::own(d.shape_->count());
  for (const auto& item : d) shape->append(const_cast<String*>(&item.key));
  return shape;
}

void DictionaryStorage::fill(MutableDictionary& d, const Dictionary& from) {
  ShapeCount shape = closedShape(from);
  reserve(d, shape->slots());
  PropertyValue* to = d.values_;
  for (const auto& item : from) ::new (static_cast<void*>(to++)) PropertyValue(item.value);
  std::exchange(d.shape_, shape.release())->release();
}

Ref<Dictionary> DictionaryStorage::immutableCopy(const Dictionary& d) {
  Ref<Dictionary> copy = allocate(closedShape(d));
  PropertyValue* to = values(*copy);
  for (const auto& item : d) *to++ = item.value;
  return copy;
}

namespace {

constexpr char kFromObjects[] = "+[NSDictionary dictionaryWithObjects:forKeys:]";

bool areDistinct(const Ref<String>* keys, std::size_t count) {
  for (std::size_t i = 1; i < count; ++i) {
    for (std::size_t j = 0; j < i; ++j) {
      if (keys[i]->isEqualToString(keys[j])) return false;
    }
  }
  return true;
}

// Of any number of keys, which may repeat: the values that stay move to the front, in the order of
// the shape's slots.
ShapeCount shapeOfSome(const Ref<String>* keys, PropertyValue* values, std::size_t count) {
  ShapeCount shape = Shape::own(count);
  for (std::size_t i = 0; i < count; ++i) {
    std::size_t slot =
        shape->slotOf({StringStorage::span(*keys[i]), StringStorage::hash(*keys[i])});
    if (slot == Shape::kAbsent) {
      slot = shape->slots();
      shape->append(keys[i]);
    }
    if (slot != i) values[slot] = std::move(values[i]);
  }
  if (shape->slots() > Shape::kMaxShared) return shape;
  return Shape::shared(shape->keys(), shape->slots());
}

}  // namespace

Ref<Dictionary> DictionaryBuilder::build(const Ref<String>* keys, PropertyValue* values,
                                         std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    if (keys[i] == nullptr || values[i].isNil()) raiseNilStored(kFromObjects);
  }
  ShapeCount shape;
  if (last_ != nullptr && last_->hasKeys(keys, count)) {
    shape = last_->another();
  } else if (count <= Shape::kMaxShared && areDistinct(keys, count)) {
    last_ = Shape::shared(keys, count);
    shape = last_->another();
  } else {
    shape = shapeOfSome(keys, values, count);
  }
  const std::size_t slots = shape->slots();
  Ref<Dictionary> d = DictionaryStorage::allocate(std::move(shape));
  std::move(values, values + slots, DictionaryStorage::values(*d));
  return d;
}

}  // namespace qx::detail
