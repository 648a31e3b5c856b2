// How the library reaches the fields and functions that a class declares: what ClassBuilder makes
// of them. Programs include class_builder.h.
#pragma once

#include <bit>
#include <cstring>
#include <string>
#include <type_traits>
#include <utility>

#include <QXFoundation/class.h>
#include <QXFoundation/from_value.h>

namespace qx::detail {

template <class X>
Payload pack(X x) {
  static_assert(sizeof(X) <= sizeof(Payload) && std::is_trivially_copyable_v<X>);
  Payload p;
  std::memcpy(p.bytes, &x, sizeof x);
  return p;
}
template <class X>
X unpack(const Payload& p) {
  X x;
  std::memcpy(&x, p.bytes, sizeof x);
  return x;
}

template <class C, class M>
PropertyValue getField(const Subject& s, const Payload& p) {
  return toValue(s.as<C>().*unpack<M C::*>(p));
}
template <class C, class M>
void setField(const Subject& s, const Payload& p, const PropertyValue& v) {
  s.mutableAs<C>().*unpack<M C::*>(p) = FromValue<M>::get(v);
}
template <class C, class R, class F>
PropertyValue callGetter(const Subject& s, const Payload& p) {
  return toValue<std::remove_cvref_t<R>>((s.as<C>().*unpack<F>(p))());
}

template <class C, class M>
const void* fieldAddress(const Subject& s, const Payload& p) {
  return &(s.as<C>().*unpack<M C::*>(p));
}
template <class V>
constexpr FieldType fieldType() {
  if constexpr (std::same_as<V, bool>) {
    return FieldType::boolean;
  } else if constexpr (Integer<V>) {
    constexpr FieldType kSigned[] = {FieldType::int8, FieldType::int16, FieldType::int32,
                                     FieldType::int64};
    constexpr FieldType kUnsigned[] = {FieldType::uint8, FieldType::uint16, FieldType::uint32,
                                       FieldType::uint64};
    constexpr int kWidth = std::countr_zero(sizeof(V));
    return std::is_signed_v<V> ? kSigned[kWidth] : kUnsigned[kWidth];
  } else if constexpr (Floating<V>) {
    return std::same_as<V, float> ? FieldType::single : FieldType::real;
  } else if constexpr (std::same_as<V, PropertyValue>) {
    return FieldType::value;
  } else {
    return std::same_as<V, std::string> ? FieldType::text : FieldType::none;
  }
}

// Gives `call` the arguments as its parameters' types, and its result as a value.
template <class R, class... A, class Call, std::size_t... I>
PropertyValue callWith(const Call& call, [[maybe_unused]] const PropertyValue* a,
                       std::index_sequence<I...>) {
  if constexpr (std::is_void_v<R>) {
    call(FromValue<std::remove_cvref_t<A>>::get(a[I])...);
    return {};
  } else {
    return toValue<std::remove_cvref_t<R>>(call(FromValue<std::remove_cvref_t<A>>::get(a[I])...));
  }
}
// The three forms of an operation: a member F of C, a function of the receiver and the arguments,
// and a function of the arguments alone.
template <class F, class C, class R, class... A>
PropertyValue callMember(const PropertyValue& receiver, const Payload& p, const PropertyValue* a) {
  const auto call = [f = unpack<F>(p), &target = static_cast<C&>(*receiver.object())](
                        auto&&... x) -> R { return (target.*f)(std::forward<decltype(x)>(x)...); };
  return callWith<R, A...>(call, a, std::index_sequence_for<A...>{});
}
template <class R, class... A>
PropertyValue callFunction(const PropertyValue& receiver, const Payload& p,
                           const PropertyValue* a) {
  const auto call = [f = unpack<R (*)(const PropertyValue&, A...)>(p), &receiver](
                        auto&&... x) -> R { return f(receiver, std::forward<decltype(x)>(x)...); };
  return callWith<R, A...>(call, a, std::index_sequence_for<A...>{});
}
template <class R, class... A>
PropertyValue callStatic(const PropertyValue&, const Payload& p, const PropertyValue* a) {
  return callWith<R, A...>(unpack<R (*)(A...)>(p), a, std::index_sequence_for<A...>{});
}

}  // namespace qx::detail
