// Reading dictionaries with defaults, and storing only what differs from a default.
//
//     int width = intForKey(settings, "width", 80);
//     setObject(settings, title, "title", defaultTitle);   // nil, the default itself: removes it
//
// A null that is stored is a value. What takes at most two objects can be performed by selector
// too. A nil dictionary gives nil, 0 or false. Thread-safe, as far as the dictionaries are.
#pragma once

#include <concepts>
#include <cstdint>

#include <QXFoundation/dictionary.h>
#include <QXFoundation/object.h>
#include <QXFoundation/property_value.h>
#include <QXFoundation/string_arg.h>

namespace qx {

namespace detail {
QX_EXPORT bool boolForKey(In<Dictionary> dictionary, StringArg key, bool otherwise);
}

// The value, or `defaultObject` where there is none.
QX_EXPORT PropertyValue objectForKey(In<Dictionary> dictionary, StringArg key,
                                     const PropertyValue& defaultObject);

// The `boolValue` of a string or number; `defaultValue` for everything else.
template <std::same_as<bool> B>
bool boolForKey(In<Dictionary> dictionary, StringArg key, B defaultValue) {
  return detail::boolForKey(dictionary, key, defaultValue);
}
// The same with false as default.
QX_EXPORT bool boolForKey(In<Dictionary> dictionary, StringArg key);

// The `intValue` of the value, whatever it is, or `defaultValue` where there is none. A value that
// has no such operation, a date for example, raises InvalidArgumentException.
QX_EXPORT std::int32_t intForKey(In<Dictionary> dictionary, StringArg key,
                                 std::int32_t defaultValue);
// The same with 0 as default.
QX_EXPORT std::int32_t intForKey(In<Dictionary> dictionary, StringArg key);

// The `unsignedIntValue` of the value, in the same way: "-1" and -1 give 4294967295.
QX_EXPORT std::uint32_t unsignedIntForKey(In<Dictionary> dictionary, StringArg key,
                                          std::uint32_t defaultValue);
QX_EXPORT std::uint32_t unsignedIntForKey(In<Dictionary> dictionary, StringArg key);

// Stores the value, unless it is nil or the very object `defaultValue`: then the entry is removed.
// A value that is equal to the default but another object is stored. A nil key raises
// InvalidArgumentException.
QX_EXPORT void setObject(In<MutableDictionary> dictionary, const PropertyValue& value,
                         StringArg forKey, const PropertyValue& defaultValue);

}  // namespace qx
