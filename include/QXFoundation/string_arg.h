// StringArg: the parameter type for text.
//
//     void setTitle(qx::StringArg title);
//     setTitle("plain UTF-8");  setTitle(std::string("also"));  setTitle(someString);
//     setTitle(nullptr);
//
// It borrows what it is given and is never stored: keep `string()` or `utf8()` instead.
#pragma once

#include <concepts>
#include <cstddef>
#include <string>
#include <string_view>
#include <type_traits>

#include <QXFoundation/fwd.h>

namespace qx {

// Types that read as UTF-8 text: std::string, std::string_view, const char* and literals.
template <class S>
concept Utf8Text =
    std::convertible_to<const S&, std::string_view> && !std::same_as<S, std::nullptr_t>;

// Nil, UTF-8 bytes or a String object. Two words; parameter only. Ill-formed UTF-8 reads as U+FFFD.
class StringArg {
 public:
  // From nil, UTF-8, a string object.
  constexpr StringArg(std::nullptr_t) {}
  template <class S>
    requires Utf8Text<std::remove_cvref_t<S>>
  constexpr StringArg(const S& text) {
    if constexpr (std::is_pointer_v<S>) {
      if (text != nullptr) setBytes(std::string_view(text));
    } else {
      setBytes(std::string_view(text));
    }
  }
  StringArg(const Ref<String>& string);
  StringArg(const Ref<MutableString>& string);
  StringArg(const String& string) : data_(&string), size_(kObject) {}
  template <std::integral I>
  StringArg(I) = delete;  // text is wanted here, not a number

  // Whether there is no text.
  constexpr bool isNil() const { return data_ == nullptr; }
  // The text as well-formed UTF-8, empty for nil; lone surrogates of a String become U+FFFD.
  QX_EXPORT std::string utf8() const;
  // The text as an immutable String (the given object itself where it is one), nil for nil.
  QX_EXPORT Ref<String> string() const;
  // The String that was given, or null when text came as bytes.
  const String* object() const {
    return size_ == kObject ? static_cast<const String*>(data_) : nullptr;
  }
  // The bytes that were given; only where `object()` is null.
  constexpr std::string_view bytes() const {
    return {static_cast<const char*>(data_), isNil() ? 0 : size_};
  }

 private:
  static constexpr std::size_t kObject = ~std::size_t{0};
  constexpr void setBytes(std::string_view v) {
    data_ = v.data() != nullptr ? v.data() : "";
    size_ = v.size();
  }

  const void* data_ = nullptr;
  std::size_t size_ = 0;
};

}  // namespace qx
