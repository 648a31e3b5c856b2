// FromValue: how C++ types come out of values, for the fields, setters and parameters of described
// classes. An own type joins in by a specialisation:
//
//     template <>
//     struct qx::FromValue<Colour> {
//       static Colour get(const qx::PropertyValue& v) { return Colour::named(v.description()); }
//     };
//
// and becomes a value by `operator qx::PropertyValue() const`.
#pragma once

#include <concepts>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>

#include <QXFoundation/class.h>

namespace qx {

// C++ types whose values become a PropertyValue by themselves.
template <class M>
concept ValueLike = std::convertible_to<const M&, PropertyValue>;

// `get` makes an M of the value; the wrong kind raises InvalidArgumentException. Two more functions
// are optional and go together: `fits` tells whether `get` would succeed, and `wanted` names what
// is taken ("a string"). With them comparisons of what does not fit are false instead of raising,
// and key access says which property refused a value.
template <class M>
struct FromValue;

namespace detail {

[[noreturn]] QX_EXPORT void raiseKind(const char* wanted, const PropertyValue& got);

// The types that PropertyValue::to() gives.
template <class M>
concept Viewed = std::same_as<M, bool> || Integer<M> || Floating<M> || std::same_as<M, std::string>;

template <class M>
concept TellsFit = requires(const PropertyValue& v) {
  { FromValue<M>::fits(v) } -> std::same_as<bool>;
  { FromValue<M>::wanted() } -> std::convertible_to<const char*>;
};

}  // namespace detail

// The kinds of C++ types that the library knows.
template <detail::Viewed M>
struct FromValue<M> {
  // What every specialisation does, as told above.
  static bool fits(const PropertyValue& v) {
    if constexpr (std::same_as<M, std::string>) {
      return v.isString();
    } else {
      return v.to<M>().has_value();
    }
  }
  // As told above.
  static const char* wanted() {
    if constexpr (std::same_as<M, bool>) {
      return "a bool";
    } else if constexpr (Integer<M>) {
      return "an integer that fits";
    } else {
      return detail::Floating<M> ? "a number" : "a string";
    }
  }
  // As told above.
  static M get(const PropertyValue& v) {
    auto x = v.to<M>();
    if (!x) detail::raiseKind(wanted(), v);
    return *std::move(x);
  }
};
// Any value as it is.
template <>
struct FromValue<PropertyValue> {
  // The value.
  static PropertyValue get(const PropertyValue& v) { return v; }
};
// Objects of a class; nil gives nil.
template <class T>
struct FromValue<Ref<T>> {
  // As told above.
  static bool fits(const PropertyValue& v) { return v.isNil() || v.as<T>() != nullptr; }
  static const char* wanted() { return classOf<T>().name(); }
  static Ref<T> get(const PropertyValue& v) {
    Ref<T> r = v.as<T>();
    if (r == nullptr && !v.isNil()) detail::raiseKind(wanted(), v);
    return r;
  }
};
// What may be missing: nil gives nothing.
template <class M>
struct FromValue<std::optional<M>> {
  // As told above.
  static bool fits(const PropertyValue& v)
    requires detail::TellsFit<M>
  {
    return v.isNil() || FromValue<M>::fits(v);
  }
  static const char* wanted()
    requires detail::TellsFit<M>
  {
    return FromValue<M>::wanted();
  }
  static std::optional<M> get(const PropertyValue& v) {
    if (v.isNil()) return std::nullopt;
    return FromValue<M>::get(v);
  }
};

template <class M>
concept Settable = requires(const PropertyValue& v) {
  { FromValue<M>::get(v) } -> std::same_as<M>;
};

namespace detail {

template <class M>
struct IsOptional : std::false_type {};
template <class M>
struct IsOptional<std::optional<M>> : std::bool_constant<ValueLike<M>> {};

template <class M>
concept Readable = ValueLike<M> || IsOptional<M>::value;

// What an operation may take and give.
template <class A>
concept Argument =
    Settable<std::remove_cvref_t<A>> && std::is_convertible_v<std::remove_cvref_t<A>, A>;
template <class R>
concept Result = std::is_void_v<R> || Readable<std::remove_cvref_t<R>>;

template <class M>
PropertyValue toValue(const M& m) {
  if constexpr (IsOptional<M>::value) {
    return m ? PropertyValue(*m) : PropertyValue();
  } else {
    return m;
  }
}

template <class M>
inline constexpr Taken kTaken{&FromValue<M>::fits, &FromValue<M>::wanted};

// What a field or parameter of type M takes; null: its `get` alone knows.
template <class M>
constexpr const Taken* takenBy() {
  if constexpr (TellsFit<M>) {
    return &kTaken<M>;
  } else {
    return nullptr;
  }
}
// The same of the only parameter of an operation; null for any other number of them.
template <class... A>
constexpr const Taken* takenByOnly() {
  if constexpr (sizeof...(A) == 1) {
    return takenBy<std::remove_cvref_t<A>...>();
  } else {
    return nullptr;
  }
}

}  // namespace detail
}  // namespace qx
