// Selector: the name of an operation as data, such as "isLessThan:".
//
//     qx::performSelector(person, "greet:", "you");          // colons are counted by the compiler
//     auto s = qx::Selector::named(textFromSomewhere);       // at run time
#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include <QXFoundation/property_value.h>

namespace qx {

namespace detail {
void the_selector_needs_one_colon_for_each_argument();  // never defined: named in the compiler's
                                                        // message
struct SelectorAccess;
}  // namespace detail

// Two words, copied freely. The default one, like that of the empty text, is the null selector,
// which nothing responds to. The text behind a selector lives as long as the process.
class Selector {
 public:
  constexpr Selector() = default;
  // The null selector, and that of a literal.
  constexpr Selector(std::nullptr_t) {}
  template <std::size_t M>
  consteval Selector(const char (&text)[M]) {
    if (M > 1) *this = Selector(Interned{}, text, M - 1);
  }

  // The selector of that name; null for nil and for the empty text. Each new name is kept for the
  // life of the process: names that come from outside are checked before. Thread-safe.
  QX_EXPORT static Selector named(StringArg text);

  // Whether it names nothing.
  constexpr bool isNull() const { return text_ == nullptr; }
  // The name, UTF-8 with a NUL behind it; empty for the null selector.
  constexpr std::string_view text() const { return {text_ == nullptr ? "" : text_, size_}; }
  constexpr std::uint32_t hash() const { return hash_; }
  // The number of arguments the name asks for: its colons.
  constexpr std::size_t argumentCount() const {
    std::size_t n = 0;
    for (char c : text()) n += c == ':';
    return n;
  }

  // Whether both have one name.
  friend constexpr bool operator==(Selector a, Selector b) {
    return a.hash_ == b.hash_ && (a.text_ == b.text_ || a.text() == b.text());
  }

 private:
  friend struct detail::SelectorAccess;
  struct Interned {};
  constexpr Selector(Interned, const char* text, std::uint32_t size)
      : text_(text), size_(size), hash_(hashOf({text, size})) {}
  static constexpr std::uint32_t hashOf(std::string_view s) {
    std::uint32_t h = 2166136261U;
    for (char c : s) h = (h ^ static_cast<unsigned char>(c)) * 16777619U;
    return h;
  }

  const char* text_ = nullptr;
  std::uint32_t size_ = 0;
  std::uint32_t hash_ = 0;
};

// A selector for a call with N arguments: a literal's colons are counted by the compiler.
template <std::size_t N>
class SelectorFor {
 public:
  // From a literal, whose colons the compiler counts, or from a selector found at run time;
  // and back.
  template <std::size_t M>
  consteval SelectorFor(const char (&text)[M]) : selector_(text) {
    if (selector_.argumentCount() != N) detail::the_selector_needs_one_colon_for_each_argument();
  }
  constexpr SelectorFor(Selector s) : selector_(s) {}
  constexpr operator Selector() const { return selector_; }

 private:
  Selector selector_;
};

namespace detail {
QX_EXPORT PropertyValue performSelectorImpl(const PropertyValue& target, Selector selector,
                                            const PropertyValue* arguments, std::size_t count);
}

// Makes `target` perform the operation; nil gives nil. A target without the operation, the null
// selector, and a number of arguments that is not the operation's own raise
// InvalidArgumentException.
template <class... A>
  requires(sizeof...(A) <= 2) && (std::convertible_to<A, PropertyValue> && ...)
PropertyValue performSelector(const PropertyValue& target, SelectorFor<sizeof...(A)> selector,
                              A&&... arguments) {
  const PropertyValue list[sizeof...(A) + 1] = {PropertyValue(std::forward<A>(arguments))...};
  return detail::performSelectorImpl(target, selector, list, sizeof...(A));
}

}  // namespace qx
