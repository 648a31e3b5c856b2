// Key access: reading and storing named values on any value.

#include "frame/key_access.h"

#include <QXFoundation/array.h>
#include <QXFoundation/class.h>
#include <QXFoundation/dictionary.h>
#include <QXFoundation/set.h>
#include <QXFoundation/string.h>

#include "frame/array_storage.h"
#include "frame/class_record.h"
#include "frame/dictionary_storage.h"
#include "frame/raise.h"
#include "frame/string_storage.h"

namespace qx {
namespace detail {
namespace {

// Arrays map their elements, which nests for arrays within arrays.
constexpr unsigned kMaxNesting = 500;

[[noreturn]] void raiseNesting(const char* operation) {
  raiseInvalidArgument(std::string(operation) + ": arrays are nested more than 500 deep");
}

PropertyValue read(const PropertyValue& target, StringArg key, const KeyText& text, unsigned depth);

Ref<Array> readElements(const PropertyValue* first, std::size_t count, StringArg key,
                        const KeyText& text, unsigned depth) {
  if (depth == kMaxNesting) raiseNesting("valueForKey:");
  auto values = ArrayStorage::allocate(count);
  PropertyValue* to = ArrayStorage::values(*values);
  std::fill_n(to, count, PropertyValue(null));
  for (std::size_t i = 0; i < count; ++i) {
    PropertyValue v = read(first[i], key, text, depth + 1);
    if (!v.isNil()) to[i] = std::move(v);
  }
  return values;
}

PropertyValue readProperty(Object& object, StringArg key, const KeyText& text) {
  if (const Property* p = object.cls().record().findProperty(text))
    return p->get(Subject::of(object), p->payload);
  return object.valueForUndefinedKey(key);
}

PropertyValue read(const PropertyValue& target, StringArg key, const KeyText& text,
                   unsigned depth) {
  Object* o = target.object();
  if (o == nullptr) return {};
  switch (ObjectAccess::kind(*o)) {
    case ObjectKind::dictionary: {
      const PropertyValue* v = DictionaryStorage::find(static_cast<Dictionary&>(*o), text);
      return v == nullptr ? PropertyValue() : *v;
    }
    case ObjectKind::array: {
      // A getter may change a mutable array: what is mapped are the elements at the start.
      auto& array = static_cast<Array&>(*o);
      const Ref<Array> held =
          ArrayStorage::isMutable(array) ? Array::from(array.begin(), array.count()) : &array;
      return readElements(held->begin(), held->count(), key, text, depth);
    }
    case ObjectKind::set: {
      const Ref<Array> members = static_cast<Set&>(*o).allObjects();
      return Set::from(readElements(members->begin(), members->count(), key, text, depth));
    }
    default: {
      const Ref<Object> held(o);  // the getter may let go of it
      return readProperty(*o, key, text);
    }
  }
}

void store(const PropertyValue& target, const PropertyValue& value, StringArg key, unsigned depth) {
  Object* o = target.object();
  if (o == nullptr) {
    if (target.isNil()) return;
    raiseInvalidArgument(std::string("-[") + target.cls()->name() +
                         " setValue:forKey:]: there is no property \"" + key.utf8() +
                         "\" that can be set");
  }
  const Ref<Object> held(o);
  if (ObjectAccess::kind(*o) == ObjectKind::dictionary && ObjectAccess::has(*o, kMutableVariant)) {
    return static_cast<MutableDictionary*>(o)->setValueForKey(value, key);
  }
  if (ObjectAccess::kind(*o) == ObjectKind::array) {
    if (depth == kMaxNesting) raiseNesting("setValue:forKey:");
    const auto& array = static_cast<const Array&>(*o);
    const Ref<Array> elements = Array::from(array.begin(), array.count());
    for (const PropertyValue& element : *elements) store(element, value, key, depth + 1);
    return;
  }
  const Property* p = o->cls().record().findProperty(KeyText(key));
  if (p != nullptr && p->set != nullptr) return p->set(Subject::of(*o), p->payload, value);
  const std::string selector = setterNamed(key.utf8());
  if (const Operation* set = o->cls().record().findOperation(Selector::named(selector));
      p != nullptr && set != nullptr) {
    set->call(target, set->payload, &value);
    return;
  }
  o->setValueForUndefinedKey(value, key);
}

}  // namespace

std::string setterNamed(std::string property) {
  if (!property.empty())
    property[0] = static_cast<char>(asciiUpper(static_cast<unsigned char>(property[0])));
  return "set" + property + ":";
}

}  // namespace detail

PropertyValue PropertyValue::valueForKey(StringArg key) const {
  if (object() == nullptr || key.isNil()) return {};
  return detail::read(*this, key, detail::KeyText(key), 0);
}

PropertyValue PropertyValue::valueForKeyPath(StringArg path) const {
  if (object() == nullptr || path.isNil()) return {};
  const detail::ArgText text(path);
  PropertyValue value = *this;
  std::size_t start = 0;
  for (std::size_t i = 0; i <= text->size; ++i) {
    if (i < text->size && (*text.operator->())[i] != u'.') continue;
    if (start == 0 && i == text->size) return value.valueForKey(path);
    value = value.valueForKey(detail::StringStorage::make(text->substr(start, i - start)));
    if (value.isNil()) return {};
    start = i + 1;
  }
  return value;
}

void PropertyValue::setValue(const PropertyValue& value, StringArg forKey) const {
  if (isNil()) return;
  if (forKey.isNil()) detail::raiseNil("-[NSObject setValue:forKey:]");
  detail::store(*this, value, forKey, 0);
}

}  // namespace qx
