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

#include <bit>
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

// "age" -> "setAge:"
QX_EXPORT Selector setterSelector(std::string_view property);

// Gathers what a class declares; ClassBuilder<T> is the typed face of it.
class QX_EXPORT ClassBuilderBase {
 public:
  ClassBuilderBase(const ClassBuilderBase&) = delete;
  ClassBuilderBase& operator=(const ClassBuilderBase&) = delete;

  // Adds an operation whose receiver is any value of the class: f(receiver, arguments...).
  template <class R, class... A>
  void addFunction(SelectorFor<sizeof...(A)> s, R (*f)(const PropertyValue&, A...)) {
    static_assert((Argument<A> && ...),
                  "operation(selector, f): a parameter of f cannot be made from a PropertyValue");
    static_assert(Result<R>, "operation(selector, f): what f gives cannot become a PropertyValue");
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

  // The run-time name, by which the class is found. Of two classes of one name the first has it,
  // and the library's names stay the library's. A class that declares none shows its C++ name, and
  // is not found by it.
  ClassBuilder& name(const char* text) {
    setName(text);
    return *this;
  }

  // The described base class S, whose properties, operations and protocols T has too. Without it
  // the superclass is NSObject.
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
      constexpr detail::FieldType kType = detail::fieldType<V>();
      const void* (*address)(const detail::Subject&, const detail::Payload&) = nullptr;
      if constexpr (kType != detail::FieldType::none) {
        address = &detail::fieldAddress<OwnerOf<C>, M>;
      }
      addProperty({text, &detail::getField<OwnerOf<C>, M>, setter, address, kType,
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
    addProperty({text, &detail::callGetter<O, R, F>, nullptr, nullptr, detail::FieldType::none,
                 detail::pack(static_cast<F>(getter))});
    return *this;
  }

  // A getter and a setter, which is also the operation "setName:" of a property "name".
  template <class R, class C, class D, class A>
    requires detail::Readable<std::remove_cvref_t<R>> && Settable<std::remove_cvref_t<A>>
  ClassBuilder& property(const char* text, R (C::*getter)() const, void (D::*setter)(A)) {
    property(text, getter);
    return operation(detail::setterSelector(text), setter);
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

  // The same by a class of its own, for a T that changes in no other way: `Coder::encode(const T&,
  // Archiver&)` and `Coder::decode(T&, Unarchiver&)`, both static.
  template <class Coder>
  ClassBuilder& archivedBy() {
    setCoding([](const Object& o, Archiver& a) { Coder::encode(static_cast<const T&>(o), a); },
              [](Object& o, Unarchiver& u) { Coder::decode(static_cast<T&>(o), u); },
              []() -> Ref<Object> { return make<T>(); });
    return *this;
  }

 private:
  // Fields that a plain struct takes over from a base are reached through the struct itself.
  template <class C>
  using OwnerOf = std::conditional_t<std::is_base_of_v<Object, C>, C, T>;

  template <class F, class C, class R, class... A>
  ClassBuilder& member(Selector s, F f) {
    static_assert(std::is_base_of_v<Object, T>,
                  "operation(selector, f): a plain struct performs no operations");
    static_assert(std::is_base_of_v<C, T>, "operation(selector, f): f is not T's");
    static_assert((detail::Argument<A> && ...),
                  "operation(selector, f): a parameter of f cannot be made from a PropertyValue");
    static_assert(detail::Result<R>,
                  "operation(selector, f): what f gives cannot become a PropertyValue");
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

// A class is known by its C++ type; the first caller builds it, once. Thread-safe. A description
// must not ask for the class it describes; one that raises is run again by the next caller.
QX_EXPORT const Class& findOrBuildClass(const std::type_info& type, void (*build)(ClassRecord&));

template <class T>
const Class& describedClass() {
  static_assert(Described<T>,
                "declare  void describe(qx::ClassBuilder<T>&)  beside T, in T's namespace");
  static const Class& c = findOrBuildClass(typeid(T), [](ClassRecord& record) {
    ClassBuilder<T> builder(record);
    if constexpr (std::is_base_of_v<Object, T>) builder.template inherits<Object>();
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
