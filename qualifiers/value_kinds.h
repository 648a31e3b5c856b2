#pragma once

// What evaluation may take for granted about a value: classes whose behaviour is the value model's
// own.

#include <QXFoundation/class.h>
#include <QXFoundation/dictionary.h>
#include <QXFoundation/property_value.h>
#include <QXFoundation/string.h>

namespace qx::detail {

// The numbers of the string classes, once they are known.
struct StringClasses {
  std::uint16_t fixed = classIndexOf(classOf<String>());
  std::uint16_t changing = classIndexOf(classOf<MutableString>());
};
inline const StringClasses& stringClasses() {
  static const StringClasses classes;
  return classes;
}

// The same of the dictionary classes, whose objects never evaluate themselves.
struct DictionaryClasses {
  std::uint16_t fixed = classIndexOf(classOf<Dictionary>());
  std::uint16_t changing = classIndexOf(classOf<MutableDictionary>());
};
inline const DictionaryClasses& dictionaryClasses() {
  static const DictionaryClasses classes;
  return classes;
}

// A dictionary's keys are its entries, whatever its class; null for other values.
inline const Dictionary* asDictionary(const PropertyValue& v) {
  return v.isDictionary() ? static_cast<const Dictionary*>(v.object()) : nullptr;
}

// The string, when it is one of exactly the library's classes, whose operations are the value
// model's; else null.
inline const String* plainString(const PropertyValue& v) {
  const Object* o = v.object();
  if (o == nullptr || ObjectAccess::kind(*o) != ObjectKind::string) return nullptr;
  const std::uint16_t index = ObjectAccess::classIndex(*o);
  return index == stringClasses().fixed || index == stringClasses().changing
             ? static_cast<const String*>(o)
             : nullptr;
}

// True when comparing the value with another can run no code of the application that the value
// would have to outlive.
inline bool comparesQuietly(const PropertyValue& v) {
  return v.object() == nullptr || plainString(v) != nullptr;
}

}  // namespace qx::detail
