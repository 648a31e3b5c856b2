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
#include <string_view>
#include <type_traits>
#include <typeinfo>

#include <QXFoundation/class.h>
#include <QXFoundation/from_value.h>
#include <QXFoundation/member_access.h>

namespace qx {

namespace detail {

template <class T>
concept Coded = requires(const T& t, T& u, Archiver& a, Unarchiver& d) {
  t.encodeWithCoder(a);
  u.decodeWithCoder(d);
};

template <class Coder, class T>
concept CoderOf = requires(const T& t, T& u, Archiver& a, Unarchiver& d) {
  Coder::encode(t, a);
  Coder::decode(u, d);
};

// What every object does by a virtual function, so that `==`, containers and copies hear of it. An
// operation of that name would be heard by selector alone.
constexpr bool isVirtualOperation(std::string_view name) {
  return name == "isEqual:" || name == "hash" || name == "description" || name == "copy" ||
         name == "mutableCopy";
}
void override_isEqual_hash_description_copy_or_mutableCopy_instead();  // never defined: named in
                                                                       // the compiler's message
[[noreturn]] QX_EXPORT void raiseVirtualOperation(Selector name);

// The selector of an operation that a class declares. Names of virtual functions are refused: by
// the compiler for a literal, else by InvalidArgumentException.
template <std::size_t N>
class DeclaredSelector {
 public:
  template <std::size_t M>
  consteval DeclaredSelector(const char (&text)[M]) : selector_(text) {
    if (isVirtualOperation({text, M - 1}))
      override_isEqual_hash_description_copy_or_mutableCopy_instead();
  }
  constexpr DeclaredSelector(Selector s) : selector_(s) {
    if (isVirtualOperation(s.text())) raiseVirtualOperation(s);
  }
  constexpr operator Selector() const { return selector_; }

 private:
  SelectorFor<N> selector_;
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
    checkSignature<R, A...>();
    addOperation({s, &callFunction<R, A...>, sizeof...(A), pack(f), takenByOnly<A...>()});
  }
  // Adds an operation of the class object: f(arguments...).
  template <class R, class... A>
  void addClassFunction(SelectorFor<sizeof...(A)> s, R (*f)(A...)) {
    checkSignature<R, A...>();
    addClassOperation({s, &callStatic<R, A...>, sizeof...(A), pack(f)});
  }
  void addOperation(const Operation& operation);
  void addClassOperation(const Operation& operation);
  void addProperty(const Property& property);
  // The class is one of the value model's own, whose comparisons are built in.
  void setCore();

 protected:
  explicit ClassBuilderBase(ClassRecord& record) : record_(record) {}
  template <class R, class... A>
  static constexpr void checkSignature() {
    static_assert((Argument<A> && ...),
                  "operation(selector, f): a parameter of f cannot be made from a PropertyValue");
    static_assert(Result<R>, "operation(selector, f): what f gives cannot become a PropertyValue");
  }
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
  // Inside the library.
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
                   detail::pack(static_cast<M OwnerOf<C>::*>(field)), nullptr,
                   detail::takenBy<V>()});
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
  //
  // A class may declare comparisons, such as "compare:" or "isLessThan:", which every form of
  // comparing then uses. Where the parameter has a type (`const Ref<Person>&`), a comparison with
  // what is none is false and the function is not called; the ordering operators do not call
  // "compare:" with nil either. `compare` itself raises then, as does the function where it wants.
  //
  // "isEqual:", "hash", "description", "copy" and "mutableCopy" are refused: override the virtual
  // functions, which `==` and the containers call.
  template <class R, class C, class... A>
  ClassBuilder& operation(detail::DeclaredSelector<sizeof...(A)> s, R (C::*f)(A...)) {
    return member<R (C::*)(A...), C, R, A...>(s, f);
  }
  template <class R, class C, class... A>
  ClassBuilder& operation(detail::DeclaredSelector<sizeof...(A)> s, R (C::*f)(A...) const) {
    return member<R (C::*)(A...) const, C, R, A...>(s, f);
  }
  // A function whose first parameter is the receiver.
  template <class R, class... A>
  ClassBuilder& operation(detail::DeclaredSelector<sizeof...(A)> s,
                          R (*f)(const PropertyValue&, A...)) {
    addFunction(Selector(s), f);
    return *this;
  }
  // An operation of the class object, and of those of subclasses: a function of the arguments
  // alone, such as a static member function.
  //
  //     c.classOperation("personNamed:", &Person::named);
  //     qx::performSelector(qx::classOf<Person>(), "personNamed:", "Bob");
  template <class R, class... A>
  ClassBuilder& classOperation(SelectorFor<sizeof...(A)> s, R (*f)(A...)) {
    addClassFunction(s, f);
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
  // that gives a Ref<T>, nil where the text is refused. A subclass does not inherit it, because it
  // would make the wrong class.
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
    static_assert(detail::CoderOf<Coder, T>,
                  "archivedBy<Coder>(): Coder needs  static void encode(const T&, qx::Archiver&)  "
                  "and  static void decode(T&, qx::Unarchiver&)");
    static_assert(std::is_default_constructible_v<detail::Made<T>>,
                  "archivedBy<Coder>(): T needs a default constructor: it is made empty, then "
                  "decoded, so that cycles work");
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
    checkSignature<R, A...>();
    addOperation({s, &detail::callMember<F, OwnerOf<C>, R, A...>, sizeof...(A), detail::pack(f),
                  detail::takenByOnly<A...>()});
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
