// Object, the base of everything that is reference-counted, and the two handles to it:
// `Ref<T>` owns, `In<T>` borrows as a parameter.
//
//     class Person : public qx::Object { public: explicit Person(std::string n); ... };
//     qx::Ref<Person> p = qx::make<Person>("Bob");   // counted; freed with the last Ref
#pragma once

#include <cstddef>
#include <cstdint>
#include <new>
#include <string>
#include <type_traits>
#include <utility>

#include <QXFoundation/fwd.h>
#include <QXFoundation/reference_count.h>

#if defined(__clang__)
// What a function gives does not outlive its object.
#define QX_LIFETIME_BOUND [[clang::lifetimebound]]
#else
// Nothing for compilers that can not tell.
#define QX_LIFETIME_BOUND
#endif

namespace qx {

namespace detail {

// Raises InvalidArgumentException: an operation was asked of nil.
[[noreturn]] QX_EXPORT void raiseNil(const char* where);

// What an object is to the value model, kept in its header so that no virtual call is needed to
// know.
enum class ObjectKind : std::uint8_t {
  object,  // the application's and the library's own
  string,
  number,
  data,
  date,
  array,
  dictionary,
  set,
  cls,
};

// Bits of an object's header beside its kind.
enum ObjectBits : std::uint8_t {
  kLeaf = 1,            // its destructor releases no other object
  kMutableVariant = 2,  // a mutable string, data, array, dictionary or set
  kWide = 4,            // a string of 16-bit units
  kBoxedNumber = 8,     // a plain boxed number, which values unbox where they can hold it inline
  kOwnEquality = 16,    // its class overrides `isEqual`
  kOwnHash = 32,        // its class overrides `hash`
  kHashAside = 64,      // its `isEqual` and its `hash` are not those of one class
};

// The classes whose equality and hash the library knows and walks without recursion.
template <class C>
concept ValueModelClass =
    std::is_same_v<C, Object> || std::is_same_v<C, String> || std::is_same_v<C, MutableString> ||
    std::is_same_v<C, Number> || std::is_same_v<C, Data> || std::is_same_v<C, Date> ||
    std::is_same_v<C, Array> || std::is_same_v<C, Dictionary> || std::is_same_v<C, Set> ||
    std::is_same_v<C, Class>;

template <class C>
constexpr unsigned bitUnlessKnown(bool (C::*)(const PropertyValue&) const) {
  return ValueModelClass<C> ? 0U : unsigned{kOwnEquality};
}
template <class C>
constexpr unsigned bitUnlessKnown(std::size_t (C::*)() const) {
  return ValueModelClass<C> ? 0U : unsigned{kOwnHash};
}
template <class C, class D>
constexpr unsigned bitUnlessTogether(bool (C::*)(const PropertyValue&) const,
                                     std::size_t (D::*)() const) {
  const bool together = std::is_same_v<C, D> || (ValueModelClass<C> && ValueModelClass<D>);
  return together ? 0U : unsigned{kHashAside};
}
// Which of the two T overrides, told by the class that declares the function that T has.
template <class T>
constexpr unsigned overrideBits() {
  unsigned bits = kOwnEquality | kOwnHash | kHashAside;
  if constexpr (requires { bitUnlessKnown(&T::isEqual); }) {
    bits = (bits & ~unsigned{kOwnEquality}) | bitUnlessKnown(&T::isEqual);
  }
  if constexpr (requires { bitUnlessKnown(&T::hash); }) {
    bits = (bits & ~unsigned{kOwnHash}) | bitUnlessKnown(&T::hash);
  }
  if constexpr (requires { bitUnlessTogether(&T::isEqual, &T::hash); }) {
    bits = (bits & ~unsigned{kHashAside}) | bitUnlessTogether(&T::isEqual, &T::hash);
  }
  return bits;
}

template <class T>
struct Type {};

struct ObjectAccess;

// Memory of objects: small ones of one size stand side by side. May be called on any thread, for an
// object of any other.
QX_EXPORT void* allocateObject(std::size_t size);
QX_EXPORT void releaseObject(void* memory) noexcept;

}  // namespace detail

template <class T>
void registerClass();

// Base class. Copying is by `copy()`; comparison by `isEqual`; lifetime by `Ref`. Immutable objects
// may be shared between threads; mutable ones belong to one thread at a time. The count itself is
// atomic. A destructor may still hand its object out as a value, to those who let go of it before
// the destructor ends.
class QX_EXPORT Object {
 public:
  Object(const Object&) = delete;
  Object& operator=(const Object&) = delete;

  // Objects come from qx::make<T>(...), never from `new T` or a local variable.
  virtual void create_me_with_qx_make() const = 0;

  // The run-time class.
  const Class& cls() const noexcept;

  // Value equality; the default is identity. A class that overrides it overrides `hash` too, and
  // neither changes any container: containers call them while they search. Containers ask their own
  // element, with the value that is sought as `other`.
  virtual bool isEqual(const PropertyValue& other) const;
  // Equal objects have equal hashes.
  virtual std::size_t hash() const;
  // Text of the object for people, UTF-8.
  virtual std::string description() const;
  // An immutable copy (containers copy shallowly; immutable objects give themselves) and a mutable
  // one. Classes that offer none raise InvalidArgumentException.
  virtual Ref<Object> copy() const;
  virtual Ref<Object> mutableCopy() const;
  // Called by key access for a key that the class declares no property for: nil, and a raise, by
  // default.
  virtual PropertyValue valueForUndefinedKey(StringArg key) const;
  virtual void setValueForUndefinedKey(const PropertyValue& value, StringArg key);

  // Counts a reference, and gives one up; the last one destroys the object. Ref does both.
  void retain() const noexcept { detail::addReferences(refs_, kOne); }
  void release() const noexcept {
    if ((detail::dropReferences(refs_, kOne) & ~kWatched) == kOne) destroy();
  }

  // Objects with values behind them are larger than their type: memory is given back without a
  // size.
  static void* operator new(std::size_t size) { return detail::allocateObject(size); }
  static void* operator new(std::size_t size, std::align_val_t alignment) {
    return ::operator new(size, alignment);
  }
  static void* operator new(std::size_t, void* place) noexcept { return place; }
  static void operator delete(void* memory) { detail::releaseObject(memory); }
  static void operator delete(void* memory, std::align_val_t alignment) {
    ::operator delete(memory, alignment);
  }
  static void operator delete(void*, void*) noexcept {}

 protected:
  constexpr Object() = default;
  // Inside the library.
  explicit constexpr Object(detail::ObjectKind kind, unsigned bits = 0)
      : kind_(kind), bits_(static_cast<std::uint8_t>(bits)) {}
  virtual ~Object() = default;

 private:
  friend struct detail::ObjectAccess;
  static constexpr std::uint32_t kWatched = 1;  // a weak reference may point here
  static constexpr std::uint32_t kOne = 2;      // so that 2^30 references can be counted
  static constexpr std::uint32_t kDying = std::uint32_t{1} << 31;

  void destroy() const noexcept;

  mutable detail::ReferenceCount refs_{kOne};
  std::uint16_t classIndex_ = 0;
  detail::ObjectKind kind_ = detail::ObjectKind::object;
  std::uint8_t bits_ = 0;
};

// Owning handle; nil when default-constructed. Using nil raises, it is never undefined.
template <class T>
class Ref {
 public:
  // What the handle refers to.
  using element_type = T;

  constexpr Ref() = default;
  // From nil, an object, or another handle. An object given as a pointer is counted once more.
  constexpr Ref(std::nullptr_t) {}
  Ref(T* p) : p_(p) {
    if (p_ != nullptr) p_->retain();
  }
  Ref(const Ref& r) : Ref(r.p_) {}
  Ref(Ref&& r) noexcept : p_(std::exchange(r.p_, nullptr)) {}
  template <class U>
    requires std::is_convertible_v<U*, T*>
  Ref(const Ref<U>& r) : Ref(static_cast<T*>(r.get())) {}
  template <class U>
    requires std::is_convertible_v<U*, T*>
  Ref(Ref<U>&& r) noexcept : p_(r.leak()) {}
  ~Ref() {
    if (p_ != nullptr) p_->release();
  }
  Ref& operator=(Ref r) noexcept {
    std::swap(p_, r.p_);
    return *this;
  }

  // Takes over a count that the caller owns, and gives it up again.
  static Ref adopt(T* p) {
    Ref r;
    r.p_ = p;
    return r;
  }
  [[nodiscard]] T* leak() { return std::exchange(p_, nullptr); }

  // The object, borrowed; the operators raise InvalidArgumentException for nil. What `*f()` of
  // a function gives lives as long as the expression: a loop over it needs a named Ref, of which
  // clang warns (-Wdangling).
  T* get() const { return p_; }
  T& operator*() const QX_LIFETIME_BOUND { return *checked(); }
  T* operator->() const { return checked(); }
  explicit operator bool() const { return p_ != nullptr; }
  friend bool operator==(const Ref& a, std::nullptr_t) { return a.p_ == nullptr; }
  template <class U>
  friend bool operator==(const Ref&, const Ref<U>&) = delete;  // isSame(a, b) or isEqual(a, b)

 private:
  T* checked() const {
    if (p_ == nullptr) [[unlikely]]
      detail::raiseNil(__PRETTY_FUNCTION__);
    return p_;
  }

  T* p_ = nullptr;
};

// Borrowed object parameter; may be nil. Lives as long as what it was made from.
template <class T>
class In {
 public:
  // From nil, an object, a handle.
  constexpr In(std::nullptr_t) {}
  constexpr In(T& r) : p_(&r) {}
  constexpr In(T* p) : p_(p) {}
  template <class U>
    requires std::is_convertible_v<U*, T*>
  In(const Ref<U>& r) : p_(r.get()) {}
  template <class U>
    requires std::is_convertible_v<U*, T*>
  In(In<U> r) : p_(r.get()) {}

  // The object; the operators raise InvalidArgumentException for nil.
  T* get() const { return p_; }
  T* operator->() const {
    if (p_ == nullptr) [[unlikely]]
      detail::raiseNil(__PRETTY_FUNCTION__);
    return p_;
  }
  T& operator*() const { return *operator->(); }
  explicit operator bool() const { return p_ != nullptr; }

 private:
  T* p_ = nullptr;
};

namespace detail {

// The library's view into an object's header.
struct ObjectAccess {
  static ObjectKind kind(const Object& o) { return o.kind_; }
  static bool has(const Object& o, ObjectBits bit) { return (o.bits_ & bit) != 0; }
  static void set(Object& o, ObjectBits bit) { o.bits_ = static_cast<std::uint8_t>(o.bits_ | bit); }
  static void clear(Object& o, ObjectBits bit) {
    o.bits_ = static_cast<std::uint8_t>(o.bits_ & ~unsigned{bit});
  }
  static std::uint16_t classIndex(const Object& o) { return o.classIndex_; }
  static void setClass(Object& o, std::uint16_t index, unsigned overrideBits) {
    o.classIndex_ = index;
    o.bits_ = static_cast<std::uint8_t>(o.bits_ | overrideBits);
  }
  static ReferenceCount& refs(const Object& o) { return o.refs_; }
  static constexpr std::uint32_t kWatched = Object::kWatched;
  static constexpr std::uint32_t kOne = Object::kOne;
  static constexpr std::uint32_t kDying = Object::kDying;
};

// The header's number of a class.
QX_EXPORT std::uint16_t classIndexOf(const Class& cls);

// True for classes of this library, which are known without the application's registration.
template <class T>
concept LibraryClass = requires { classObject(Type<T>{}); };

// An application's class; in class_builder.h.
template <class T>
const Class& describedClass();

// The one concrete form of T, made by `make` alone. An application class enters the table of
// classes when a program that makes instances of it is loaded, so that archives and casts find it
// by name.
template <class T>
struct Made final : T {
  using T::T;
  static inline const bool registered = (registerClass<T>(), true);
  void create_me_with_qx_make() const override {}
};
template <LibraryClass T>
struct Made<T> final : T {
  using T::T;
  static constexpr bool registered = true;
  void create_me_with_qx_make() const override {}
};

}  // namespace detail

// The class of T: the library's own, or the one that `describe(qx::ClassBuilder<T>&)` beside T
// declares.
template <class T>
const Class& classOf() {
  if constexpr (detail::LibraryClass<T>) {
    return classObject(detail::Type<T>{});
  } else {
    return detail::describedClass<T>();
  }
}

// Makes a counted object; arguments go to T's constructor.
template <class T, class... A>
  requires std::is_base_of_v<Object, T> && std::is_constructible_v<detail::Made<T>, A...>
[[nodiscard]] Ref<T> make(A&&... arguments) {
  (void)detail::Made<T>::registered;
  static const std::uint16_t index = detail::classIndexOf(classOf<T>());
  auto* object = new detail::Made<T>(std::forward<A>(arguments)...);
  detail::ObjectAccess::setClass(*object, index, detail::overrideBits<T>());
  return Ref<T>::adopt(object);
}

}  // namespace qx

#undef QX_LIFETIME_BOUND
