// Key access: reading and storing named values on any value.

#include <algorithm>
#include <unordered_map>

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

// A key that is looked up: as it was given, or a part of a path.
struct Key {
  explicit Key(StringArg key) : text(key), given(key) {}
  explicit Key(TextSpan part) : text(part), given(nullptr) {}

  const KeyText text;
  const StringArg given;
};

// A mutable string could change under a getter that is found by it.
bool mayChange(StringArg text) {
  const String* s = text.object();
  return s != nullptr && StringStorage::isMutable(*s);
}

// Arrays and sets map their members, which nests for collections within collections. One that is
// met again below the first is not walked again, so that widely shared data does not multiply.
class Nesting {
 public:
  explicit Nesting(const char* operation) : operation_(operation) {}

  // What `walk` gives for the collection, from before where it was walked already.
  template <class Walk>
  PropertyValue within(const PropertyValue& collection, Walk walk) {
    const bool isNested = depth_ != 0;
    if (isNested) {
      const auto known = walked_.find(collection.object());
      if (known != walked_.end()) return known->second.result;
    }
    if (depth_ == kMaxDepth) {
      raiseInvalidArgument(std::string(operation_) + " collections are nested more than 500 deep");
    }
    ++depth_;
    PropertyValue result = walk();
    --depth_;
    if (isNested) walked_.insert({collection.object(), {collection, result}});
    return result;
  }

 private:
  static constexpr unsigned kMaxDepth = 500;
  struct Walked {
    PropertyValue collection;  // held, so that no other comes to stand at its address
    PropertyValue result;
  };
  const char* operation_;
  unsigned depth_ = 0;
  std::unordered_map<const Object*, Walked> walked_;
};

PropertyValue readProperty(Object& object, const Key& key) {
  const Ref<Object> held(&object);  // the getter may let go of it
  if (const Property* p = object.cls().record().findProperty(key.text))
    return p->get(Subject::of(object), p->payload);
  if (!key.given.isNil()) return object.valueForUndefinedKey(key.given);
  return object.valueForUndefinedKey(StringStorage::make(key.text.span));
}

PropertyValue readOne(Object& object, const Key& key) {
  if (ObjectAccess::kind(object) != ObjectKind::dictionary) return readProperty(object, key);
  const PropertyValue* v = DictionaryStorage::find(static_cast<Dictionary&>(object), key.text);
  return v == nullptr ? PropertyValue() : *v;
}

bool isMapped(const PropertyValue& v) { return v.isArray() || v.isSet(); }

// Reads a key from every member of a collection.
class MemberReader {
 public:
  explicit MemberReader(const Key& key) : key_(key) {}

  // Of an array an array, of a set a set.
  PropertyValue readAll(const PropertyValue& collection) {
    return nesting_.within(collection, [&]() -> PropertyValue {
      if (collection.isSet()) {
        return Set::from(readEach(*static_cast<Set&>(*collection.object()).allObjects()));
      }
      return readEach(*ArrayStorage::steady(static_cast<Array&>(*collection.object())));
    });
  }

 private:
  Ref<Array> readEach(const Array& members) {
    auto values = ArrayStorage::allocate(members.count());
    PropertyValue* to = ArrayStorage::values(*values);
    std::fill_n(to, members.count(), PropertyValue(null));
    for (const PropertyValue& member : members) {
      PropertyValue v = isMapped(member)             ? readAll(member)
                        : member.object() != nullptr ? readOne(*member.object(), key_)
                                                     : PropertyValue();
      if (!v.isNil()) *to = std::move(v);
      ++to;
    }
    return values;
  }

  const Key& key_;
  Nesting nesting_{"valueForKey:"};
};

PropertyValue read(const PropertyValue& target, const Key& key) {
  if (target.object() == nullptr) return {};
  return isMapped(target) ? MemberReader(key).readAll(target) : readOne(*target.object(), key);
}

// Stores a value under a key, on every element of an array.
class Storer {
 public:
  Storer(const PropertyValue& value, StringArg key) : value_(value), key_(key) {}

  void store(const PropertyValue& target) {
    Object* o = target.object();
    if (o == nullptr) {
      if (!target.isNil()) raiseNotSettable(*target.cls(), key_);
      return;
    }
    const PropertyValue held(o);  // the setter may let go of it
    if (ObjectAccess::kind(*o) == ObjectKind::array) {
      nesting_.within(held, [&] {
        const Ref<Array> elements = ArrayStorage::steady(static_cast<Array&>(*o));
        for (const PropertyValue& element : *elements) store(element);
        return PropertyValue();
      });
    } else if (ObjectAccess::kind(*o) == ObjectKind::dictionary &&
               ObjectAccess::has(*o, kMutableVariant)) {
      static_cast<MutableDictionary*>(o)->setValueForKey(value_, key_);
    } else {
      storeProperty(held, *o);
    }
  }

 private:
  void storeProperty(const PropertyValue& target, Object& object) {
    const Property* p = object.cls().record().findProperty(KeyText(key_));
    if (p == nullptr || (p->set == nullptr && p->setter == nullptr))
      return object.setValueForUndefinedKey(value_, key_);
    const Taken* taken = p->set != nullptr ? p->taken : p->setter->taken;
    if (taken != nullptr && !taken->fits(value_)) raiseUnfit(object.cls(), key_, *taken, value_);
    if (p->set != nullptr) {
      p->set(Subject::of(object), p->payload, value_);
    } else {
      p->setter->call(target, p->setter->payload, &value_);
    }
  }

  const PropertyValue value_;
  const StringArg key_;
  Nesting nesting_{"setValue:forKey:"};
};

}  // namespace
}  // namespace detail

PropertyValue PropertyValue::valueForKey(StringArg key) const {
  if (object() == nullptr || key.isNil()) return {};
  if (detail::mayChange(key)) return valueForKey(detail::immutableString(key));
  return detail::read(*this, detail::Key(key));
}

PropertyValue PropertyValue::valueForKeyPath(StringArg path) const {
  if (object() == nullptr || path.isNil()) return {};
  if (detail::mayChange(path)) return valueForKeyPath(detail::immutableString(path));
  const detail::ArgText argument(path);
  const detail::TextSpan text = argument;
  PropertyValue value = *this;
  std::size_t start = 0;
  while (!value.isNil()) {
    std::size_t end = start;
    while (end < text.size && text[end] != u'.') ++end;
    const detail::Key key(text.substr(start, end - start));
    if (end == text.size) return detail::read(value, key);
    value = detail::read(value, key);
    start = end + 1;
  }
  return {};
}

void PropertyValue::setValue(const PropertyValue& value, StringArg forKey) const {
  if (isNil()) return;
  if (forKey.isNil()) detail::raiseNil("-[NSObject setValue:forKey:]");
  if (detail::mayChange(forKey)) return setValue(value, detail::immutableString(forKey));
  detail::Storer(value, forKey).store(*this);
}

}  // namespace qx
