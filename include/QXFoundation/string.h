// String and MutableString: Unicode text as UTF-16 code units.
//
//     auto s = qx::String::from("naïve");     // from UTF-8
//     s->length();                            // 5 code units
//
// Units are kept in the narrowest form (Latin-1 bytes where all are <= 0xFF, else 16-bit), at most
// 2^32 - 2 of them. Lone surrogates survive; conversion to UTF-8 gives U+FFFD for them. Nothing
// here depends on a locale.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include <QXFoundation/object.h>
#include <QXFoundation/property_value.h>
#include <QXFoundation/string_arg.h>

namespace qx {

namespace detail {
struct TextSpan;
struct StringStorage;
struct Passkey {
  explicit Passkey() = default;
};
}  // namespace detail

// Positions and lengths count UTF-16 code units.
struct Range {
  // The first position, and the length; equal where both are.
  std::size_t location = 0;
  std::size_t length = 0;
  friend bool operator==(const Range&, const Range&) = default;
};
// Where what was looked for is not there.
inline constexpr std::size_t kNotFound = ~std::size_t{0};

// The normal forms of Unicode.
enum class NormalForm { c, d, kc, kd };

// Immutable text. The class is "NSString". Thread-safe.
class QX_EXPORT String : public Object {
 public:
  // A new string; ill-formed UTF-8 reads as U+FFFD. An immutable String given gives itself. Nil
  // raises.
  static Ref<String> from(StringArg text);
  static Ref<String> fromUtf16(std::u16string_view units);
  static Ref<String> fromLatin1(std::string_view bytes);
  // Nil where the bytes are not well-formed UTF-8.
  static Ref<String> fromStrictUtf8(std::string_view bytes);
  static Ref<String> empty();

  // The number of UTF-16 code units.
  std::size_t length() const { return length_; }
  // Raises RangeException at or beyond the length.
  char16_t characterAtIndex(std::size_t index) const;
  std::string utf8() const;
  std::string UTF8String() const { return utf8(); }
  std::u16string utf16() const;

  // By code units, or by folded case; nil as argument raises.
  bool isEqualToString(StringArg other) const;
  ComparisonResult compare(StringArg other) const;
  ComparisonResult caseInsensitiveCompare(StringArg other) const;
  bool hasPrefix(StringArg prefix) const;
  bool hasSuffix(StringArg suffix) const;
  // By code units, from the start or from `from` on; location kNotFound when absent, and for an
  // empty or nil `other`.
  Range rangeOfString(StringArg other) const;
  Range rangeOfString(StringArg other, std::size_t from) const;
  // Whole text against a pattern: `*` any run, `?` one character (a code point; ignoring case too,
  // where "ß" equals the literal "ss"), `\` takes the next literally.
  bool matchesPattern(StringArg pattern, bool ignoringCase) const;

  // A range that leaves the text raises RangeException.
  Ref<String> substringWithRange(Range range) const;
  Ref<String> substringFromIndex(std::size_t index) const;
  Ref<String> substringToIndex(std::size_t index) const;
  Ref<String> stringByAppendingString(StringArg other) const;
  Ref<String> stringByReplacingOccurrencesOfString(StringArg target, StringArg with) const;
  // Always at least one piece.
  Ref<Array> componentsSeparatedByString(StringArg separator) const;

  // Full Unicode mappings (final sigma included).
  Ref<String> lowercaseString() const;
  Ref<String> uppercaseString() const;
  Ref<String> capitalizedString() const;
  Ref<String> caseFoldedString() const;
  Ref<String> normalizedString(NormalForm form) const;

  // Number text at the start, leading white space skipped; 0 without digits. Integers stop at the
  // type's limits (a negative text as unsigned gives the two's complement), floating numbers at the
  // infinities.
  int intValue() const;
  std::int64_t integerValue() const;
  std::uint64_t unsignedIntegerValue() const;
  float floatValue() const;
  double doubleValue() const;
  // True when the text, after white space, a sign and zeros, goes on with one of Y y T t 1-9.
  bool boolValue() const;

  bool isEqual(const PropertyValue& other) const override;
  std::size_t hash() const override;
  std::string description() const override;
  Ref<Object> copy() const override;
  Ref<Object> mutableCopy() const override;

  // Inside the library: strings are made by the functions above.
  String(detail::Passkey, std::size_t length, unsigned bits);

 private:
  friend struct detail::StringStorage;

  std::uint32_t length_;
  mutable std::atomic<std::uint32_t> hash_{0};  // 0: not computed yet
};

// Text that changes in place. The class is "NSMutableString". Belongs to one thread at a time. As a
// dictionary key it is copied; its hash follows its content.
class QX_EXPORT MutableString : public String {
 public:
  // A mutable string of that text; an empty one.
  static Ref<MutableString> from(StringArg text);
  static Ref<MutableString> init();

  // Replaces the whole text; adds behind it. Nil raises.
  void setString(StringArg text);
  void appendString(StringArg text);
  // Ranges that leave the text raise RangeException, and nothing changes.
  void insertString(StringArg text, std::size_t atIndex);
  void deleteCharactersInRange(Range range);
  void replaceCharactersInRange(Range range, StringArg withString);

  std::size_t hash() const override;
  Ref<Object> copy() const override;

  // Inside the library.
  explicit MutableString(detail::Passkey);

 protected:
  ~MutableString() override;

 private:
  friend struct detail::StringStorage;
  void* units_ = nullptr;
  std::size_t capacity_ = 0;
};

QX_EXPORT const Class& classObject(detail::Type<String>);
QX_EXPORT const Class& classObject(detail::Type<MutableString>);

inline StringArg::StringArg(const Ref<String>& string)
    : data_(string.get()), size_(string != nullptr ? kObject : 0) {}
inline StringArg::StringArg(const Ref<MutableString>& string)
    : data_(static_cast<const String*>(string.get())), size_(string != nullptr ? kObject : 0) {}

}  // namespace qx
