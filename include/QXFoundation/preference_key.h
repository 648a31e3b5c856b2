// PreferenceKey: the key path of a setting together with its C++ type and its value when nothing is
// stored.
//
//     constexpr qx::PreferenceKey<int> kWidth{"ui.width", 80};
//     constexpr qx::PreferenceKey<std::string> kTitle{"ui.title", "untitled"};
//     int w = preferences->get(kWidth);
//     preferences->set(kWidth, w + 1);
//     preferences->set(kWidth, 2.5);    // refused by the compiler
#pragma once

#include <concepts>
#include <string>
#include <string_view>
#include <type_traits>

#include <QXFoundation/property_value.h>

namespace qx {

// The types of settings that have keys.
template <class T>
concept PreferenceType =
    std::same_as<T, bool> || Integer<T> || detail::Floating<T> || std::same_as<T, std::string>;

// Both texts live as long as the key: literals, as a rule.
template <PreferenceType T>
struct PreferenceKey {
  // The key path, and the value of those who never chose one.
  using Standard = std::conditional_t<std::same_as<T, std::string>, std::string_view, T>;
  const char* path;
  Standard standard;
};

// What may be stored under a key of type T: T itself, and what becomes a T of the same kind without
// loss: a narrower integer, a float for a double, any text for a string.
template <class V, class T>
concept PreferenceValueFor =
    std::same_as<V, T> || (Integer<V> && Integer<T> && requires(V v) { T{v}; }) ||
    (detail::Floating<V> && detail::Floating<T> && requires(V v) { T{v}; }) ||
    (std::same_as<T, std::string> && Utf8Text<V>);

}  // namespace qx
