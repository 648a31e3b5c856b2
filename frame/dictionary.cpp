#include <cstdlib>
#include <memory>
#include <vector>

#include <QXFoundation/dictionary.h>

#include "frame/array_storage.h"
#include "frame/comparison_operations.h"
#include "frame/deep.h"
#include "frame/dictionary_storage.h"
#include "frame/library_class.h"
#include "frame/raise.h"
#include "frame/string_storage.h"

namespace qx {

using detail::DictionaryStorage;
using detail::KeyText;
using detail::Shape;

Dictionary::Dictionary(detail::Passkey, Shape* shape, unsigned bits)
    : Object(detail::ObjectKind::dictionary, bits), shape_(shape) {}

Dictionary::~Dictionary() {
  if (!DictionaryStorage::isMutable(*this))
    std::destroy_n(DictionaryStorage::values(*this), shape_->slots());
  shape_->release();
}

Ref<Dictionary> Dictionary::from(const Entry* first, std::size_t count) {
  std::vector<Ref<String>> keys;
  std::vector<PropertyValue> values;
  keys.reserve(count);
  values.reserve(count);
  for (const Entry* e = first; e != first + count; ++e) {
    keys.push_back(detail::immutableString(e->key));
    values.push_back(e->value);
  }
  return detail::DictionaryBuilder().build(keys.data(), values.data(), count);
}

Ref<Dictionary> Dictionary::init() { return from(nullptr, 0); }

Ref<Dictionary> dict() { return Dictionary::init(); }
Ref<Dictionary> dict(std::initializer_list<Entry> entries) {
  return Dictionary::from(entries.begin(), entries.size());
}

std::size_t Dictionary::count() const { return shape_->count(); }

const PropertyValue* Dictionary::find(StringArg key) const {
  return key.isNil() ? nullptr : DictionaryStorage::find(*this, KeyText(key));
}

PropertyValue Dictionary::objectForKey(StringArg key) const {
  const PropertyValue* v = find(key);
  return v == nullptr ? PropertyValue() : *v;
}

Ref<Array> Dictionary::allKeys() const {
  auto all = detail::ArrayStorage::allocate(count());
  PropertyValue* to = detail::ArrayStorage::values(*all);
  for (const auto& item : *this) *to++ = PropertyValue(const_cast<String*>(&item.key));
  return all;
}

Ref<Array> Dictionary::allValues() const {
  auto all = detail::ArrayStorage::allocate(count());
  PropertyValue* to = detail::ArrayStorage::values(*all);
  for (const auto& item : *this) *to++ = item.value;
  return all;
}

bool Dictionary::isEqualToDictionary(In<Dictionary> other) const {
  return other && isEqual(other.get());
}

Dictionary::Item Dictionary::Iterator::operator*() const {
  return {*DictionaryStorage::shape(*owner_).key(slot_), DictionaryStorage::values(*owner_)[slot_]};
}

Dictionary::Iterator& Dictionary::Iterator::operator++() {
  const Shape& shape = DictionaryStorage::shape(*owner_);
  do {
    ++slot_;
  } while (slot_ < shape.slots() && shape.key(slot_) == nullptr);
  return *this;
}

Dictionary::Iterator Dictionary::begin() const {
  if (shape_->slots() == 0 || shape_->key(0) != nullptr) return {this, 0};
  return ++Iterator(this, 0);
}
Dictionary::Iterator Dictionary::end() const { return {this, shape_->slots()}; }

bool Dictionary::isEqual(const PropertyValue& other) const {
  return detail::deepEqual(*this, other);
}
std::size_t Dictionary::hash() const { return detail::shallowHash(*this); }
std::string Dictionary::description() const { return detail::describeDeep(*this); }
Ref<Object> Dictionary::copy() const { return const_cast<Dictionary*>(this); }
Ref<Object> Dictionary::mutableCopy() const {
  return MutableDictionary::dictionaryWithDictionary(const_cast<Dictionary*>(this));
}

MutableDictionary::MutableDictionary()
    : Dictionary(detail::Passkey{}, Shape::empty().release(), detail::kMutableVariant) {}

MutableDictionary::~MutableDictionary() {
  std::destroy_n(values_, DictionaryStorage::shape(*this).slots());
  std::free(values_);
}

Ref<MutableDictionary> MutableDictionary::init() { return make<MutableDictionary>(); }

Ref<MutableDictionary> MutableDictionary::dictionaryWithDictionary(In<Dictionary> other) {
  auto d = init();
  if (other) DictionaryStorage::fill(*d, *other);
  return d;
}

void MutableDictionary::setObject(const PropertyValue& value, StringArg forKey) {
  if (value.isNil() || forKey.isNil())
    detail::raiseNilStored("-[NSMutableDictionary setObject:forKey:]");
  DictionaryStorage::set(*this, value, forKey);
}

void MutableDictionary::removeObjectForKey(StringArg key) {
  if (key.isNil()) detail::raiseNil("-[NSMutableDictionary removeObjectForKey:]");
  DictionaryStorage::remove(*this, key);
}

void MutableDictionary::removeAllObjects() { DictionaryStorage::clear(*this); }

void MutableDictionary::addEntriesFromDictionary(In<Dictionary> other) {
  if (!other || other.get() == this) return;
  const Ref<Dictionary> held = DictionaryStorage::steady(*other);  // a subclass may run any code
  for (const auto& [key, value] : *held) setObject(value, key);
}

void MutableDictionary::setDictionary(In<Dictionary> other) {
  const Ref<Dictionary> held = other ? DictionaryStorage::steady(*other) : nullptr;
  removeAllObjects();
  addEntriesFromDictionary(held);
}

void MutableDictionary::setValueForKey(const PropertyValue& value, StringArg key) {
  if (key.isNil()) detail::raiseNil("-[NSMutableDictionary setValue:forKey:]");
  if (value.isNil()) {
    removeObjectForKey(key);
  } else {
    setObject(value, key);
  }
}

Ref<Object> MutableDictionary::copy() const { return DictionaryStorage::immutableCopy(*this); }

void describe(ClassBuilder<Dictionary>& c) {
  c.setCore();
  c.name("NSDictionary").inherits<Object>();
  c.operation("count", &Dictionary::count);
  c.operation(
      "objectForKey:", +[](const PropertyValue& r, const Ref<String>& key) {
        return r.as<Dictionary>()->objectForKey(key);
      });
  c.operation("allKeys", &Dictionary::allKeys).operation("allValues", &Dictionary::allValues);
  c.operation("isEqualToDictionary:", &detail::isEqualOperation);
  c.operation("doesContain:", &detail::comparisonOperation<detail::Comparison::doesContain>);
}

void describe(ClassBuilder<MutableDictionary>& c) {
  c.setCore();
  c.name("NSMutableDictionary").inherits<Dictionary>();
  c.operation(
      "setObject:forKey:",
      +[](const PropertyValue& r, const PropertyValue& v, const Ref<String>& key) {
        r.as<MutableDictionary>()->setObject(v, key);
      });
  c.operation(
      "removeObjectForKey:", +[](const PropertyValue& r, const Ref<String>& key) {
        r.as<MutableDictionary>()->removeObjectForKey(key);
      });
  c.operation("removeAllObjects", &MutableDictionary::removeAllObjects);
  c.operation(
      "addEntriesFromDictionary:", +[](const PropertyValue& r, const Ref<Dictionary>& other) {
        r.as<MutableDictionary>()->addEntriesFromDictionary(other);
      });
  c.operation(
      "setDictionary:", +[](const PropertyValue& r, const Ref<Dictionary>& other) {
        r.as<MutableDictionary>()->setDictionary(other);
      });
}

const Class& classObject(detail::Type<Dictionary>) {
  return detail::buildLibraryClass<Dictionary>();
}
const Class& classObject(detail::Type<MutableDictionary>) {
  return detail::buildLibraryClass<MutableDictionary>();
}

}  // namespace qx
