#pragma once

// How dictionaries keep their values: an immutable one right behind its object, a mutable one in a
// buffer of its own; the value at a slot belongs to the shape's key of that slot.

#include <cstddef>

#include <QXFoundation/dictionary.h>

#include "frame/shape.h"

namespace qx::detail {

struct DictionaryStorage {
  static bool isMutable(const Dictionary& d) { return ObjectAccess::has(d, kMutableVariant); }
  static const Shape& shape(const Dictionary& d) { return *d.shape_; }
  static const PropertyValue* values(const Dictionary& d) {
    return isMutable(d) ? static_cast<const MutableDictionary&>(d).values_
                        : reinterpret_cast<const PropertyValue*>(&d + 1);
  }
  // Of an immutable dictionary.
  static const PropertyValue* fixedValues(const Dictionary& d) {
    return reinterpret_cast<const PropertyValue*>(&d + 1);
  }
  static PropertyValue* values(Dictionary& d) {
    return const_cast<PropertyValue*>(values(static_cast<const Dictionary&>(d)));
  }
  // Null when absent.
  static const PropertyValue* find(const Dictionary& d, const KeyView& key) {
    const std::size_t slot = d.shape_->slotOf(key);
    return slot == Shape::kAbsent ? nullptr : values(d) + slot;
  }

  // An immutable dictionary of that shape; its values are nil until the caller has filled every
  // one, before anyone else sees it.
  static Ref<Dictionary> allocate(ShapeCount shape);

  // Changes of a mutable dictionary, below its primitives.
  static void set(MutableDictionary& d, PropertyValue value, StringArg key);
  static void remove(MutableDictionary& d, StringArg key);
  static void clear(MutableDictionary& d);
  static void reserve(MutableDictionary& d, std::size_t slots);
  // Fills a dictionary that is empty.
  static void fill(MutableDictionary& d, const Dictionary& from);
  static Ref<Dictionary> immutableCopy(const Dictionary& d);
  // What the dictionary holds now, for walks that run code which may change it: the dictionary
  // itself where nothing can.
  static Ref<Dictionary> steady(const Dictionary& d) {
    return isMutable(d) ? immutableCopy(d) : Ref<Dictionary>(const_cast<Dictionary*>(&d));
  }

 private:
  static ShapeCount closedShape(const Dictionary& d);
  static void append(MutableDictionary& d, PropertyValue value, Ref<String> key);
  static PropertyValue removeShared(MutableDictionary& d, std::size_t slot);
  static PropertyValue removeOwn(MutableDictionary& d, std::size_t slot);
};

// Makes many immutable dictionaries, as a reader does: those with the keys of the one before reuse
// its shape without asking the table.
class DictionaryBuilder {
 public:
  DictionaryBuilder() = default;
  DictionaryBuilder(const DictionaryBuilder&) = delete;
  DictionaryBuilder& operator=(const DictionaryBuilder&) = delete;

  // Distinctness is looked after here: of a key given twice the last value stays, at the first
  // place. Keys are immutable strings. The values are moved from.
  Ref<Dictionary> build(const Ref<String>* keys, PropertyValue* values, std::size_t count);

 private:
  ShapeCount last_;
};

}  // namespace qx::detail
