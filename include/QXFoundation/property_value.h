// PropertyValue: one value of any kind (string, number, data, date, array, dictionary, set, null,
// any object) or nil.
//
//     qx::PropertyValue v = qx::dict({{"name", "Bob"}, {"age", 42}});
//     if (v["age"] == 42 && v["boss"] == nullptr) use(v["name"].valueOr(std::string("nobody")));
//
// One machine word. Nil, null, bools, floats, integers of up to 61 bits and most doubles are inline
// (zero, the infinities, NaN and every magnitude from 2^-255 up to but not including 2^257);
// everything else is a counted Object. All NaN are one: payload and sign are not kept.
#pragma once

#include <bit>
#include <concepts>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include <QXFoundation/object.h>
#include <QXFoundation/string_arg.h>

namespace qx {

namespace detail {
struct WordAccess;
template <class T>
concept Floating = std::same_as<T, float> || std::same_as<T, double>;
template <class T>
concept Character = std::same_as<T, char> || std::same_as<T, wchar_t> || std::same_as<T, char8_t> ||
                    std::same_as<T, char16_t> || std::same_as<T, char32_t>;
}  // namespace detail

// The integers that become numbers: not bool, not the character types.
template <class T>
concept Integer =
    std::integral<T> && sizeof(T) <= 8 && !std::same_as<T, bool> && !detail::Character<T>;

// What a number remembers of how it was made.
enum class NumberKind : std::uint8_t {
  boolean,
  signedInteger,
  unsignedInteger,
  single,
  real,
  decimal
};

// A value or nil. Copies share objects (reference semantics for containers). `==` is value
// equality, `isSame` identity. As thread-safe as what it holds; one PropertyValue variable belongs
// to one thread at a time.
class PropertyValue {
 public:
  constexpr PropertyValue() = default;
  // From nil, null, a bool, a number, a text.
  constexpr PropertyValue(std::nullptr_t) {}
  constexpr PropertyValue(Null) : word_(kNull) {}
  template <std::same_as<bool> B>
  constexpr PropertyValue(B b) : word_(b ? kTrue : kFalse) {}
  template <Integer I>
  constexpr PropertyValue(I i) {
    if constexpr (std::is_signed_v<I>) {
      setSigned(i);
    } else {
      setUnsigned(i);
    }
  }
  template <detail::Floating F>
  constexpr PropertyValue(F f) {
    if constexpr (sizeof(F) == sizeof(float)) {
      const std::uint32_t bits = f != f ? kFloatNaN : std::bit_cast<std::uint32_t>(f);
      word_ = Word{bits} << 32 | kFloatTag;
    } else {
      setDouble(f);
    }
  }
  template <class S>
    requires Utf8Text<S>
  PropertyValue(const S& text) : PropertyValue(StringArg(text)) {}
  // Text from a parameter: nil, a new string, or the string object itself.
  QX_EXPORT PropertyValue(StringArg text);
  template <class T>
    requires std::is_base_of_v<Object, T>
  PropertyValue(const Ref<T>& object) {
    setObject(object.get());
  }
  template <class T>
    requires std::is_base_of_v<Object, T>
  PropertyValue(Ref<T>&& object) {
    adoptObject(object.leak());
  }
  template <class T>
    requires(!Utf8Text<T*>) && std::is_base_of_v<Object, T> && (!std::is_const_v<T>)
  PropertyValue(T* object) {
    setObject(object);
  }
  // Classes are immutable objects: a const one is a value as it stands.
  template <std::same_as<Class> C>
  PropertyValue(const C& cls) : PropertyValue(const_cast<C*>(&cls)) {}
  template <std::same_as<Class> C>
  PropertyValue(const C* cls) : PropertyValue(const_cast<C*>(cls)) {}
  template <class T>
    requires(!Utf8Text<T*>) && (!std::is_base_of_v<Object, T> || std::is_const_v<T>)
  PropertyValue(T*) =
      delete;  // not an Object that may change: no pointer becomes a bool or a number
  template <detail::Character C>
  PropertyValue(C) = delete;            // say "c" (text) or int{c} (number)
  PropertyValue(long double) = delete;  // say double(x)

  // Copies share objects; a value that was moved from is nil.
  PropertyValue(const PropertyValue& v) noexcept : word_(v.word_) {
    if (const Object* o = object()) o->retain();
  }
  PropertyValue(PropertyValue&& v) noexcept : word_(std::exchange(v.word_, 0)) {}
  PropertyValue& operator=(const PropertyValue& v) noexcept {
    PropertyValue copy(v);
    std::swap(word_, copy.word_);
    return *this;
  }
  PropertyValue& operator=(PropertyValue&& v) noexcept {
    PropertyValue old(std::move(v));
    std::swap(word_, old.word_);
    return *this;
  }
  constexpr ~PropertyValue() {
    if (const Object* o = object()) o->release();
  }

  // Presence is `v != nullptr`, truth is `v.boolValue()`: a stored false is present.
  explicit operator bool() const = delete;

  // Which kind it is; none of the kinds holds for nil. A bool is a number too.
  constexpr bool isNil() const { return word_ == 0; }
  constexpr bool isNull() const { return word_ == kNull; }
  bool isNumber() const;
  bool isString() const { return isKind(detail::ObjectKind::string); }
  bool isArray() const { return isKind(detail::ObjectKind::array); }
  bool isDictionary() const { return isKind(detail::ObjectKind::dictionary); }
  bool isData() const { return isKind(detail::ObjectKind::data); }
  bool isDate() const { return isKind(detail::ObjectKind::date); }
  bool isSet() const { return isKind(detail::ObjectKind::set); }

  // Lenient views: numbers convert (integers wrap to the narrower width, floating and decimal ones
  // are cut toward zero and stop at the width's limits, NaN gives 0; true is what is not zero, NaN
  // included), strings are read as number text (see String), nil and every other kind gives 0 or
  // false. float and double are the nearest to the exact number, rounded once.
  QX_EXPORT int intValue() const;
  QX_EXPORT std::int64_t integerValue() const;
  QX_EXPORT std::uint64_t unsignedIntegerValue() const;
  QX_EXPORT float floatValue() const;
  QX_EXPORT double doubleValue() const;
  QX_EXPORT bool boolValue() const;

  // Strict views. Integers: a number of an integer kind, in T's range. float, double: any number
  // but a bool, the nearest one (a float may be an infinity). bool: a bool number. std::string: a
  // string, as UTF-8. Empty for everything else.
  template <class T>
  [[nodiscard]] std::optional<T> to() const;
  template <class T>
  T valueOr(T otherwise) const {
    if (auto x = to<T>()) return *std::move(x);
    return otherwise;
  }
  // The object as a T, owned; nil when it is of another class. `as<Number>` boxes an inline number.
  template <class T>
  [[nodiscard]] Ref<T> as() const;
  // The same, borrowed from this value; null for an inline number.
  template <class T>
  [[nodiscard]] T* peek() const&;
  template <class T>
  T* peek() const&& = delete;  // the value dies at the ';': use as<T>()

  // What every value answers. Nil: no class, equal to nothing but nil, empty description, false or
  // nil. Asking for a selector or protocol that nobody declares is no error.
  //
  // Descriptions of containers end at 60 levels and at about 16 MiB, those of data after 1024
  // bytes; "..." stands for the rest. A null or number has no mutable copy: that raises
  // InvalidArgumentException, as both copies of an object do whose class offers none.
  QX_EXPORT const Class* cls() const;
  QX_EXPORT bool isKindOfClass(const Class& cls) const;
  QX_EXPORT bool respondsToSelector(Selector selector) const;
  QX_EXPORT bool conformsToProtocol(const Protocol& protocol) const;
  QX_EXPORT std::size_t hash() const;
  QX_EXPORT std::string description() const;
  QX_EXPORT PropertyValue copy() const;
  QX_EXPORT PropertyValue mutableCopy() const;

  // Key access. A missing property, entry or step, a nil key and a nil receiver read as nil. Arrays
  // give the array of their members' values, null for nil, and sets the set of them. Plain numbers
  // and null have no properties. Collections within collections beyond 500 levels raise
  // InvalidArgumentException.
  QX_EXPORT PropertyValue valueForKey(StringArg key) const;
  QX_EXPORT PropertyValue valueForKeyPath(StringArg path) const;
  PropertyValue operator[](StringArg key) const { return valueForKey(key); }
  // Stores under the named property or key; an array stores on each of its elements, to the same
  // depth; a set refuses. Raises InvalidArgumentException where there is nothing settable of that
  // name, where the property does not take the value, and for a nil key. Nil as value removes a
  // dictionary's entry; nil as receiver does nothing.
  QX_EXPORT void setValue(const PropertyValue& value, StringArg forKey) const;

  // Value equality: like `==`, and so true for nil with nil. Arrays and dictionaries compare at any
  // depth; sets, and application classes that compare what they hold, raise
  // InvalidArgumentException beyond 500 comparisons within each other.
  bool isEqual(const PropertyValue& other) const { return isEqualImpl(*this, other); }
  // The comparison operations, this value on the left; false for nil as receiver (`isNotEqualTo`
  // too, as a message to nil gives no), and false where the two kinds do not compare, for which
  // `isNotEqualTo` is true. The four orders never raise by themselves: where a class declares
  // `compare:` with a typed parameter, what does not fit it, and nil, is neither less nor greater.
  QX_EXPORT bool isEqualTo(const PropertyValue& other) const;
  QX_EXPORT bool isNotEqualTo(const PropertyValue& other) const;
  QX_EXPORT bool isLessThan(const PropertyValue& other) const;
  QX_EXPORT bool isLessThanOrEqualTo(const PropertyValue& other) const;
  QX_EXPORT bool isGreaterThan(const PropertyValue& other) const;
  QX_EXPORT bool isGreaterThanOrEqualTo(const PropertyValue& other) const;
  // These three, and the two below, raise InvalidArgumentException on a receiver without the
  // operation.
  QX_EXPORT bool doesContain(const PropertyValue& other) const;
  QX_EXPORT bool isLike(const PropertyValue& pattern) const;
  QX_EXPORT bool isCaseInsensitiveLike(const PropertyValue& pattern) const;
  // Three-way order of two numbers, two strings (by code unit, free of locale) or two dates, or by
  // a class's own operation; an argument of another kind raises too.
  QX_EXPORT ComparisonResult compare(const PropertyValue& other) const;
  QX_EXPORT ComparisonResult caseInsensitiveCompare(const PropertyValue& other) const;

  // Value equality, across the kinds of numbers.
  friend bool operator==(const PropertyValue& a, const PropertyValue& b) {
    return isEqualImpl(a, b);
  }
  template <std::same_as<std::nullptr_t> N>
  friend constexpr bool operator==(const PropertyValue& a, N) {
    return a.isNil();
  }
  // Identity: the same object, or inline values of the same kind and value (0.0 and -0.0 are two).
  friend bool isSame(const PropertyValue& a, const PropertyValue& b) { return a.word_ == b.word_; }

  // The object behind the value, borrowed; null for nil and for inline values.
  constexpr Object* object() const {
    return (word_ & kTagMask) == 0 && word_ != 0 ? pointerOf(word_) : nullptr;
  }

 private:
  friend struct detail::WordAccess;
  using Word = std::uint64_t;

  // The low three bits tell what the word is. Doubles are kept whole: rotated left by four, their
  // low three bits are the top of the exponent, which is 011 or 100 for the magnitudes that are
  // inline.
  static constexpr Word kTagMask = 7;
  static constexpr Word kSignedTag = 1;
  static constexpr Word kUnsignedTag = 2;
  static constexpr Word kSmallDoubleTag = 3;
  static constexpr Word kLargeDoubleTag = 4;
  static constexpr Word kFloatTag = 5;
  static constexpr Word kSpecialTag = 6;
  static constexpr Word kNull = Word{0} << 3 | kSpecialTag;
  static constexpr Word kFalse = Word{1} << 3 | kSpecialTag;
  static constexpr Word kTrue = Word{2} << 3 | kSpecialTag;
  static constexpr Word kZero = Word{3} << 3 | kSpecialTag;
  static constexpr Word kMinusZero = Word{4} << 3 | kSpecialTag;
  static constexpr Word kInfinity = Word{5} << 3 | kSpecialTag;
  static constexpr Word kMinusInfinity = Word{6} << 3 | kSpecialTag;
  static constexpr Word kNaN = Word{7} << 3 | kSpecialTag;

  static constexpr Word specialDoubleWord(double d) {
    const Word bits = std::bit_cast<Word>(d);
    if (bits == 0) return kZero;
    if (bits == Word{1} << 63) return kMinusZero;
    if (bits == 0x7FF0000000000000U) return kInfinity;
    if (bits == 0xFFF0000000000000U) return kMinusInfinity;
    return d != d ? kNaN : 0;
  }
  static constexpr std::uint32_t kFloatNaN = 0x7FC00000;

  static Object* pointerOf(Word w) { return reinterpret_cast<Object*>(w); }

  constexpr void setSigned(std::int64_t i) {
    const Word w = static_cast<Word>(i) << 3 | kSignedTag;
    if (static_cast<std::int64_t>(w) >> 3 == i) {
      word_ = w;
    } else {
      boxSigned(i);
    }
  }
  constexpr void setUnsigned(std::uint64_t i) {
    if (i >> 61 == 0) {
      word_ = i << 3 | kUnsignedTag;
    } else {
      boxUnsigned(i);
    }
  }
  constexpr void setDouble(double d) {
    const Word w = std::rotl(std::bit_cast<Word>(d), 4);
    const Word tag = w & kTagMask;
    if (tag == kSmallDoubleTag || tag == kLargeDoubleTag) {
      word_ = w;
    } else if (const Word s = specialDoubleWord(d)) {
      word_ = s;
    } else {
      boxDouble(d);
    }
  }
  void setObject(Object* o) {
    if (o == nullptr) return;
    o->retain();
    adoptObject(o);
  }
  void adoptObject(Object* o) {
    word_ = reinterpret_cast<Word>(o);
    if (o != nullptr && detail::ObjectAccess::has(*o, detail::kBoxedNumber)) unbox();
  }
  QX_EXPORT void boxSigned(std::int64_t i);
  QX_EXPORT void boxUnsigned(std::uint64_t i);
  QX_EXPORT void boxDouble(double d);
  QX_EXPORT void unbox();

  bool isKind(detail::ObjectKind kind) const {
    const Object* o = object();
    return o != nullptr && detail::ObjectAccess::kind(*o) == kind;
  }
  static bool isEqualImpl(const PropertyValue& a, const PropertyValue& b) {
    return a.word_ == b.word_ || isEqualSlow(a, b);
  }
  QX_EXPORT static bool isEqualSlow(const PropertyValue& a, const PropertyValue& b);
  QX_EXPORT std::optional<std::int64_t> exactSigned() const;
  QX_EXPORT std::optional<std::uint64_t> exactUnsigned() const;
  QX_EXPORT std::optional<double> exactReal() const;
  QX_EXPORT std::optional<float> exactSingle() const;
  QX_EXPORT std::optional<std::string> exactText() const;
  QX_EXPORT Ref<Number> boxedNumber() const;

  Word word_ = 0;
};

// Identity; see PropertyValue.
bool isSame(const PropertyValue& a, const PropertyValue& b);
// Value equality; nil equals nil.
inline bool isEqual(const PropertyValue& a, const PropertyValue& b) { return a == b; }

inline bool PropertyValue::isNumber() const {
  const Word tag = word_ & kTagMask;
  return tag == 0 ? isKind(detail::ObjectKind::number) : tag != kSpecialTag || word_ != kNull;
}

template <class T>
std::optional<T> PropertyValue::to() const {
  if constexpr (std::same_as<T, bool>) {
    if (word_ == kTrue) return true;
    if (word_ == kFalse) return false;
    return std::nullopt;
  } else if constexpr (Integer<T> && std::is_signed_v<T>) {
    const auto i = exactSigned();
    if (!i || static_cast<T>(*i) != *i) return std::nullopt;
    return static_cast<T>(*i);
  } else if constexpr (Integer<T>) {
    const auto i = exactUnsigned();
    if (!i || static_cast<T>(*i) != *i) return std::nullopt;
    return static_cast<T>(*i);
  } else if constexpr (detail::Floating<T>) {
    if constexpr (std::same_as<T, float>) {
      return exactSingle();
    } else {
      return exactReal();
    }
  } else {
    static_assert(std::same_as<T, std::string>,
                  "to<T>(): T is bool, an integer, float, double or std::string");
    return exactText();
  }
}

// The object as a T, borrowed from this value; null for an inline number.
template <class T>
T* PropertyValue::peek() const& {
  Object* o = object();
  if constexpr (std::same_as<T, Object>) {
    return o;
  } else {
    return o == nullptr ? nullptr : dynamic_cast<T*>(o);
  }
}

template <class T>
Ref<T> PropertyValue::as() const {
  if constexpr (std::same_as<T, Number>) {
    return boxedNumber();
  } else {
    return Ref<T>(peek<T>());
  }
}

}  // namespace qx
