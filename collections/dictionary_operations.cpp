#include <QXFoundation/dictionary_operations.h>

#include "collections/added_operations.h"

namespace qx {
namespace {

bool isNumberOrString(const PropertyValue& v) { return v.isNumber() || v.isString(); }

PropertyValue ask(const PropertyValue& value, Selector selector) {
  return detail::performSelectorImpl(value, selector, nullptr, 0);
}

}  // namespace

PropertyValue objectForKey(In<Dictionary> dictionary, StringArg key,
                           const PropertyValue& defaultObject) {
  if (!dictionary) return {};
  PropertyValue value = dictionary->objectForKey(key);
  return value.isNil() ? defaultObject : value;
}

namespace detail {

bool boolForKey(In<Dictionary> dictionary, StringArg key, bool otherwise) {
  if (!dictionary) return false;
  const PropertyValue value = dictionary->objectForKey(key);
  return isNumberOrString(value) ? value.boolValue() : otherwise;
}

}  // namespace detail

bool boolForKey(In<Dictionary> dictionary, StringArg key) {
  return boolForKey(dictionary, key, false);
}

std::int32_t intForKey(In<Dictionary> dictionary, StringArg key, std::int32_t defaultValue) {
  if (!dictionary) return 0;
  const PropertyValue value = dictionary->objectForKey(key);
  if (value.isNil()) return defaultValue;
  return isNumberOrString(value) ? value.intValue() : ask(value, "intValue").intValue();
}

std::int32_t intForKey(In<Dictionary> dictionary, StringArg key) {
  return intForKey(dictionary, key, 0);
}

std::uint32_t unsignedIntForKey(In<Dictionary> dictionary, StringArg key,
                                std::uint32_t defaultValue) {
  if (!dictionary) return 0;
  const PropertyValue value = dictionary->objectForKey(key);
  if (value.isNil()) return defaultValue;
  return static_cast<std::uint32_t>(ask(value, "unsignedIntValue").integerValue());
}

std::uint32_t unsignedIntForKey(In<Dictionary> dictionary, StringArg key) {
  return unsignedIntForKey(dictionary, key, 0);
}

void setObject(In<MutableDictionary> dictionary, const PropertyValue& value, StringArg forKey,
               const PropertyValue& defaultValue) {
  if (!dictionary) return;
  if (value.isNil() || isSame(value, defaultValue)) {
    dictionary->removeObjectForKey(forKey);
  } else {
    dictionary->setObject(value, forKey);
  }
}

namespace detail {

void addDictionaryOperations(ClassBuilderBase& c) {
  using Value = const PropertyValue&;
  using Key = const Ref<String>&;
  c.addFunction(
      "objectForKey:defaultObject:",
      +[](Value r, Key key, Value d) { return objectForKey(r.as<Dictionary>(), key, d); });
  c.addFunction(
      "boolForKey:defaultValue:",
      +[](Value r, Key key, bool d) { return qx::boolForKey(r.as<Dictionary>(), key, d); });
  c.addFunction(
      "boolForKey:", +[](Value r, Key key) { return qx::boolForKey(r.as<Dictionary>(), key); });
  c.addFunction(
      "intForKey:defaultValue:",
      +[](Value r, Key key, std::int32_t d) { return intForKey(r.as<Dictionary>(), key, d); });
  c.addFunction("intForKey:", +[](Value r, Key key) { return intForKey(r.as<Dictionary>(), key); });
  c.addFunction(
      "unsignedIntForKey:defaultValue:", +[](Value r, Key key, std::uint32_t d) {
        return unsignedIntForKey(r.as<Dictionary>(), key, d);
      });
  c.addFunction(
      "unsignedIntForKey:",
      +[](Value r, Key key) { return unsignedIntForKey(r.as<Dictionary>(), key); });
}

}  // namespace detail
}  // namespace qx
