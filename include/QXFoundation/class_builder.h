// ClassBuilder: how a class declares its name, properties, operations and protocols, beside the
// class.
//
//     class Person : public qx::Object {
//      public:
//       std::string name;  int age = 0;
//       bool adult() const { return age >= 18; }
//       std::string greet(const std::string& whom) const;
//     };
//     void describe(qx::ClassBuilder<Person>& c) {
//       c.name("Person").property("name", &Person::name).property("age", &Person::age)
//        .property("adult", &Person::adult).operation("greet:", &Person::greet);
//     }
//
// A plain struct is described in the same way; its instances work with qualifiers (`qx::Matching`).
#pragma once

#include <concepts>
#include <cstring>
#include <optional>
#include <string>
#include <type_traits>
#include <typeinfo>
#include <utility>

#include <QXFoundation/class.h>

namespace qx {

// C++ types whose values become a PropertyValue by themselves.
template <class M>
concept ValueLike = std::convertible_to<const M&, PropertyValue>;

// How a C++ type comes out of a value; the wrong kind raises InvalidArgumentException. Specialise
// it for own types.
template <class M>
struct FromValue;

namespace detail {
[[noreturn]] QX_EXPORT void raiseKind(const char* wanted, const PropertyValue& got);
template <class M>
M strictly(const PropertyValue& v, const char* wanted) {
  auto x = v.to<M>();
  if (!x) raiseKind(wanted, v);
  return *std::move(x);
}
}  // namespace detail

template <Integer I>
struct FromValue<I> {
  static I get(const PropertyValue& v) { return detail::strictly<I>(v, "an integer that fits"); }
};
template <>
struct FromValue<bool> {
  static bool get(const PropertyValue& v) { return detail::strictly<bool>(v, "a bool"); }
};
template <detail::Floating F>
struct FromValue<F> {
  static F get(const PropertyValue& v) { return detail::strictly<F>(v, "a number"); }
};
template <>
struct FromValue<std::string> {
  static std::string get(const PropertyValue& v) {
    return detail::strictly<std::string>(v, "a string");
  }
};
template <>
struct FromValue<PropertyValue> {
  static PropertyValue get(const PropertyValue& v) { return v; }
};
template <class T>
struct FromValue<Ref<T>> {  // nil gives nil
  static Ref<T> get(const PropertyValue& v) {
    Ref<T> r = v.as<T>();
    if (r == nullptr && !v.isNil()) detail::raiseKind(classOf<T>().name(), v);
    return r;
  }
};
template <class M>
struct FromValue<std::optional<M>> {  // nil gives nothing
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

template <class M>
PropertyValue toValue(const M& m) {
  if constexpr (IsOptional<M>::value) {
    return m ? PropertyValue(*m) : PropertyValue();
  } else {
    return m;
  }
}

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

// Fields of these types are read without making a value.
template <class C, class M>
NativeField nativeField(const Subject& s, const Payload& p) {
  using V = std::remove_const_t<M>;
  using K = NativeField::Kind;
  const V& field = s.as<C>().*unpack<M C::*>(p);
  NativeField n;
  if constexpr (std::same_as<V, bool>) {
    n.kind = K::boolean, n.i = field ? 1 : 0;
  } else if constexpr (Integer<V> && std::is_signed_v<V>) {
    n.kind = K::signedInteger, n.i = field;
  } else if constexpr (Integer<V>) {
    n.kind = K::unsignedInteger, n.u = field;
  } else if constexpr (Floating<V>) {
    n.kind = std::same_as<V, float> ? K::single : K::real, n.d = static_cast<double>(field);
  } else if constexpr (std::same_as<V, PropertyValue>) {
    n.kind = K::value, n.value = &field;
  } else {
    n.kind = K::text, n.text = field;
  }
  return n;
}
template <class V>
concept Native = std::same_as<V, bool> || Integer<V> || Floating<V> ||
                 std::same_as<V, PropertyValue> || std::same_as<V, std::string>;

template <class F, class C, class R, class... A, std::size_t... I>
PropertyValue callMember(const PropertyValue& receiver, const Payload& p,
                         [[maybe_unused]] const PropertyValue* a, std::index_sequence<I...>) {
  auto f = unpack<F>(p);
  auto& target = static_cast<C&>(*receiver.object());
  if constexpr (std::is_void_v<R>) {
    (target.*f)(FromValue<std::remove_cvref_t<A>>::get(a[I])...);
    return {};
  } else {
    return toValue<std::remove_cvref_t<R>>(
        (target.*f)(FromValue<std::remove_cvref_t<A>>::get(a[I])...));
  }
}
template <class F, class R, class... A, std::size_t... I>
PropertyValue callFree(const PropertyValue& receiver, const Payload& p,
                       [[maybe_unused]] const PropertyValue* a, std::index_sequence<I...>) {
  auto f = unpack<F>(p);
  if constexpr (std::is_void_v<R>) {
    f(receiver, FromValue<std::remove_cvref_t<A>>::get(a[I])...);
    return {};
  } else {
    return toValue<std::remove_cvref_t<R>>(
        f(receiver, FromValue<std::remove_cvref_t<A>>::get(a[I])...));
  }
}

template <class T>
concept Coded = requires(const T& t, T& u, Archiver& a, Unarchiver& d) {
  t.encodeWithCoder(a);
  u.decodeWithCoder(d);
};

// Gathers what a class declares; ClassBuilder<T> is the typed face of it.
class QX_EXPORT ClassBuilderBase {
 public:
  ClassBuilderBase(const ClassBuilderBase&) = delete;
  ClassBuilderBase& operator=(const ClassBuilderBase&) = delete;

  // Adds an operation whose receiver is any value of the class: f(receiver, arguments...).
  template <class R, class... A>
  void addFunction(SelectorFor<sizeof...(A)> s, R (*f)(const PropertyValue&, A...)) {
    using F = R (*)(const PropertyValue&, A...);
    addOperation({s,
                  [](const PropertyValue& r, const Payload& p, const PropertyValue* a) {
                    return callFree<F, R, A...>(r, p, a, std::index_sequence_for<A...>{});
                  },
                  sizeof...(A), pack(f)});
  }
  void addOperation(const Operation& operation);
  void addClassOperation(const Operation& operation);
  void addProperty(const Property& property);
  // The class is one of the value model's own, whose comparisons are built in.
  void setCore();

 protected:
  explicit ClassBuilderBase(ClassRecord& record) : record_(record) {}
  void setName(const char* name);
  void setSuper(const Class& super);
  void addProtocol(const Protocol& protocol, void* (*cast)(Object&));
  void setTextInitialiser(PropertyValue (*make)(StringArg));
  void setCoding(void (*encode)(const Object&, Archiver&), void (*decode)(Object&, Unarchiver&),
                 Ref<Object> (*makeEmpty)());

 private:
  ClassRecord& record_;
};

}  // namespace detail

// Declares class T. Names are literals or live for ever. Everything chains.
template <class T>
class ClassBuilder : public detail::ClassBuilderBase {
 public:
  explicit ClassBuilder(detail::ClassRecord& record) : ClassBuilderBase(record) {}

  ClassBuilder& name(const char* text) {
    setName(text);
    return *this;
  }

  // The described base class S, whose properties, operations and protocols T has too.
  template <class S>
  ClassBuilder& inherits() {
    static_assert(std::is_base_of_v<S, T> && !std::same_as<S, T>,
                  "inherits<S>(): S is not a base class of T");
    static_assert(std::is_base_of_v<Object, S>,
                  "inherits<S>(): S is no Object; list the fields of a plain base directly");
    setSuper(classOf<S>());
    return *this;
  }

  // A field: read and written; a const field is read-only.
  template <class M, class C>
    requires(!std::is_function_v<M>)
  ClassBuilder& property(const char* text, M C::* field) {
    using V = std::remove_const_t<M>;
    static_assert(std::is_base_of_v<C, T>, "property(name, field): the field is not T's");
    static_assert(detail::Readable<V>,
                  "property(name, field): the field's type M cannot become a PropertyValue; give a "
                  "getter instead");
    void (*setter)(const detail::Subject&, const detail::Payload&, const PropertyValue&) = nullptr;
    if constexpr (!std::is_const_v<M>) {
      static_assert(Settable<V>,
                    "property(name, field): a PropertyValue cannot become the field's type M; make "
                    "the field const "
                    "or give a getter and setter");
      if constexpr (Settable<V>) setter = &detail::setField<OwnerOf<C>, M>;
    }
    if constexpr (detail::Readable<V>) {
      NativeReader native = nullptr;
      if constexpr (detail::Native<V>) native = &detail::nativeField<OwnerOf<C>, M>;
      addProperty({text, &detail::getField<OwnerOf<C>, M>, setter, native,
                   detail::pack(static_cast<M OwnerOf<C>::*>(field))});
    }
    return *this;
  }

  // A getter; read-only.
  template <class R, class C>
    requires detail::Readable<std::remove_cvref_t<R>>
  ClassBuilder& property(const char* text, R (C::*getter)() const) {
    static_assert(std::is_base_of_v<C, T>, "property(name, getter): the getter is not T's");
    using O = OwnerOf<C>;
    using F = R (O::*)() const;
    addProperty({text, &detail::callGetter<O, R, F>, nullptr, nullptr,
                 detail::pack(static_cast<F>(getter))});
    return *this;
  }

  // A getter and a setter.
  template <class R, class C, class D, class A>
    requires detail::Readable<std::remove_cvref_t<R>> && Settable<std::remove_cvref_t<A>>
  ClassBuilder& property(const char* text, R (C::*getter)() const, void (D::*setter)(A)) {
    property(text, getter);
    return operation(Selector::named(setterName(text)), setter);
  }

  // A member function as an operation; its colons are counted against its parameters.
  template <class R, class C, class... A>
  ClassBuilder& operation(SelectorFor<sizeof...(A)> s, R (C::*f)(A...)) {
    return member<R (C::*)(A...), C, R, A...>(s, f);
  }
  template <class R, class C, class... A>
  ClassBuilder& operation(SelectorFor<sizeof...(A)> s, R (C::*f)(A...) const) {
    return member<R (C::*)(A...) const, C, R, A...>(s, f);
  }
  // A function whose first parameter is the receiver.
  template <class R, class... A>
  ClassBuilder& operation(SelectorFor<sizeof...(A)> s, R (*f)(const PropertyValue&, A...)) {
    addFunction(s, f);
    return *this;
  }

  // Declares that T implements the interface P.
  template <class P>
  ClassBuilder& conforms() {
    static_assert(std::is_base_of_v<P, T>, "conforms<P>(): T does not derive from the interface P");
    addProtocol(P::protocol(),
                [](Object& o) -> void* { return static_cast<P*>(&static_cast<T&>(o)); });
    return *this;
  }

  // How an instance is made from text, for a cast in a qualifier format: a function of StringArg
  // that gives a Ref<T>, nil where the text is refused.
  template <Ref<T> (*Make)(StringArg)>
  ClassBuilder& initialisedFromText() {
    setTextInitialiser([](StringArg text) -> PropertyValue { return Make(text); });
    return *this;
  }

  // Instances can be archived: T has `void encodeWithCoder(qx::Archiver&) const`, `void
  // decodeWithCoder(qx::Unarchiver&)` and a default constructor; it is made empty, then decoded, so
  // that cycles work.
  ClassBuilder& archived() {
    static_assert(detail::Coded<T>,
                  "archived(): T needs  void encodeWithCoder(qx::Archiver&) const  and  void "
                  "decodeWithCoder(qx::Unarchiver&)");
    static_assert(std::is_default_constructible_v<detail::Made<T>>,
                  "archived(): T needs a default constructor: it is made empty, then decoded, so "
                  "that cycles work");
    setCoding([](const Object& o, Archiver& a) { static_cast<const T&>(o).encodeWithCoder(a); },
              [](Object& o, Unarchiver& u) { static_cast<T&>(o).decodeWithCoder(u); },
              []() -> Ref<Object> { return make<T>(); });
    return *this;
  }

 private:
  using NativeReader = detail::NativeField (*)(const detail::Subject&, const detail::Payload&);
  // Fields that a plain struct takes over from a base are reached through the struct itself.
  template <class C>
  using OwnerOf = std::conditional_t<std::is_base_of_v<Object, C>, C, T>;

  static std::string setterName(std::string text) {
    if (!text.empty() && text[0] >= 'a' && text[0] <= 'z')
      text[0] = static_cast<char>(text[0] - 32);
    return "set" + text + ":";
  }

  template <class F, class C, class R, class... A>
  ClassBuilder& member(Selector s, F f) {
    static_assert(std::is_base_of_v<Object, T>,
                  "operation(selector, f): a plain struct performs no operations");
    static_assert(std::is_base_of_v<C, T>, "operation(selector, f): f is not T's");
    static_assert((Settable<std::remove_cvref_t<A>> && ...),
                  "operation(selector, f): a parameter of f cannot be made from a PropertyValue");
    using O = std::conditional_t<std::is_base_of_v<Object, C>, C, T>;
    addOperation({s,
                  [](const PropertyValue& r, const detail::Payload& p, const PropertyValue* a) {
                    return detail::callMember<F, O, R, A...>(r, p, a,
                                                             std::index_sequence_for<A...>{});
                  },
                  sizeof...(A), detail::pack(f)});
    return *this;
  }
};

// True for types that are declared by  void describe(qx::ClassBuilder<T>&)  beside T.
template <class T>
concept Described = requires(ClassBuilder<T>& c) { describe(c); };

namespace detail {

// A class is known by its C++ type; the first caller builds it, once. Thread-safe.
QX_EXPORT const Class& findOrBuildClass(const char* typeName, void (*build)(ClassRecord&));

template <class T>
const Class& describedClass() {
  static_assert(Described<T>,
                "declare  void describe(qx::ClassBuilder<T>&)  beside T, in T's namespace");
  static const Class& c = findOrBuildClass(typeid(T).name(), [](ClassRecord& record) {
    ClassBuilder<T> builder(record);
    if constexpr (Described<T>) describe(builder);
  });
  return c;
}

}  // namespace detail

// Makes T known by name before its first use; `make<T>` does so by itself.
template <class T>
void registerClass() {
  (void)classOf<T>();
}

}  // namespace qx
