#pragma once

// A borrowed view of string contents in either storage form: Latin-1 bytes or UTF-16 code units.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace qx::detail {

constexpr bool isHighSurrogate(char32_t unit) noexcept { return (unit & 0xFFFFFC00) == 0xD800; }
constexpr bool isLowSurrogate(char32_t unit) noexcept { return (unit & 0xFFFFFC00) == 0xDC00; }
constexpr bool isSurrogate(char32_t unit) noexcept { return (unit & 0xFFFFF800) == 0xD800; }
constexpr bool isAscii(char32_t codePoint) noexcept { return codePoint < 0x80; }

// ASCII alone: the C-locale rules of number texts, and fast paths.

constexpr char32_t asciiLower(char32_t c) noexcept { return c >= U'A' && c <= U'Z' ? c + 32 : c; }
constexpr char32_t asciiUpper(char32_t c) noexcept { return c >= U'a' && c <= U'z' ? c - 32 : c; }
// What isspace answers in the C locale: space and U+0009..U+000D.
constexpr bool isAsciiSpace(char32_t c) noexcept { return c == U' ' || (c >= 0x09 && c <= 0x0D); }
constexpr bool isAsciiDigit(char32_t c) noexcept { return c >= U'0' && c <= U'9'; }

constexpr char32_t joinSurrogates(char16_t high, char16_t low) noexcept {
  return 0x10000 + ((static_cast<char32_t>(high) & 0x3FF) << 10) +
         (static_cast<char32_t>(low) & 0x3FF);
}

// Writes one code point as one or two code units and gives the place behind them; a surrogate is
// written as itself.
constexpr char16_t* writeCodePoint(char16_t* out, char32_t codePoint) noexcept {
  if (codePoint < 0x10000) {
    *out++ = static_cast<char16_t>(codePoint);
    return out;
  }
  *out++ = static_cast<char16_t>(0xD800 + ((codePoint - 0x10000) >> 10));
  *out++ = static_cast<char16_t>(0xDC00 + (codePoint & 0x3FF));
  return out;
}

inline void appendCodePoint(std::u16string& out, char32_t codePoint) {
  char16_t units[2] = {};
  out.append(units, writeCodePoint(units, codePoint));
}

// The code point at `position` of a run of `size` code units, moving `position` behind it.
// A lone surrogate is its own code point. Precondition: position < size.
inline char32_t nextCodePoint(const unsigned char* units, std::size_t /*size*/,
                              std::size_t& position) noexcept {
  return units[position++];
}

inline char32_t nextCodePoint(const char16_t* units, std::size_t size,
                              std::size_t& position) noexcept {
  const char16_t unit = units[position++];
  if (isHighSurrogate(unit) && position < size && isLowSurrogate(units[position])) {
    return joinSurrogates(unit, units[position++]);
  }
  return unit;
}

// Iterates over the code points of a text; see codePoints(). Borrows like the span it came from.
class CodePointRange;

// A view of text it does not own: valid as long as the storage it was made from. The units are
// bytes (Latin-1) when `wide` is false and char16_t when it is true; `size` counts units. Any
// sequence of units is allowed, lone surrogates included. Pass it by value: the form shares a word
// with the size, so that a span travels in two registers.
struct TextSpan {
  const void* data = nullptr;
  std::size_t size : 63 = 0;
  bool wide : 1 = false;

  constexpr TextSpan() noexcept = default;
  // NOLINTNEXTLINE(google-explicit-constructor): UTF-16 text is a text span without a decision.
  constexpr TextSpan(std::u16string_view units) noexcept
      : TextSpan(units.data(), units.size(), true) {}
  // NOLINTNEXTLINE(google-explicit-constructor)
  TextSpan(const std::u16string& units) noexcept : TextSpan(std::u16string_view(units)) {}
  // NOLINTNEXTLINE(google-explicit-constructor)
  constexpr TextSpan(const char16_t* units) noexcept : TextSpan(std::u16string_view(units)) {}

  // Bytes taken as Latin-1. Named, because a std::string usually means UTF-8; ASCII text is both.
  static constexpr TextSpan latin1(std::string_view bytes) noexcept {
    return {bytes.data(), bytes.size(), false};
  }

  // The units as their type. Precondition: the span has that form.
  const unsigned char* bytes() const noexcept { return static_cast<const unsigned char*>(data); }
  const char16_t* units() const noexcept { return static_cast<const char16_t*>(data); }

  std::string_view latin1View() const noexcept { return {static_cast<const char*>(data), size}; }
  std::u16string_view utf16View() const noexcept { return {units(), size}; }

  bool empty() const noexcept { return size == 0; }

  // The code unit at `index`. Precondition: index < size.
  char16_t operator[](std::size_t index) const noexcept {
    return wide ? units()[index] : static_cast<char16_t>(bytes()[index]);
  }

  // The units [position, position + count), both cut to what there is.
  TextSpan substr(std::size_t position,
                  std::size_t count = std::u16string_view::npos) const noexcept {
    if (position > size) position = size;
    if (count > size - position) count = size - position;
    return wide ? TextSpan(std::u16string_view(units() + position, count))
                : latin1({static_cast<const char*>(data) + position, count});
  }

  // The code point at `position`, which moves behind it. Precondition: position < size.
  char32_t next(std::size_t& position) const noexcept {
    return wide ? nextCodePoint(units(), size, position) : bytes()[position++];
  }

  // The code point that ends at `position`, which moves before it. Precondition: position > 0.
  char32_t previous(std::size_t& position) const noexcept {
    const char16_t unit = (*this)[--position];
    if (isLowSurrogate(unit) && position > 0 && isHighSurrogate((*this)[position - 1])) {
      return joinSurrogates((*this)[--position], unit);
    }
    return unit;
  }

  // A range for `for (char32_t c : span.codePoints())`.
  CodePointRange codePoints() const noexcept;

  // The units as UTF-16, copied.
  std::u16string toUtf16() const {
    if (wide) return std::u16string(utf16View());
    return std::u16string(bytes(), bytes() + size);
  }

 private:
  constexpr TextSpan(const void* start, std::size_t count, bool isWide) noexcept
      : data(start), size(count & (~std::size_t{0} >> 1)), wide(isWide) {}
};

static_assert(sizeof(TextSpan) == 2 * sizeof(void*));

class CodePointRange {
 public:
  class Iterator {
   public:
    Iterator(TextSpan text, std::size_t position) noexcept : text_(text), position_(position) {}
    char32_t operator*() const noexcept {
      std::size_t position = position_;
      return text_.next(position);
    }
    Iterator& operator++() noexcept {
      text_.next(position_);
      return *this;
    }
    bool operator==(const Iterator& other) const noexcept { return position_ == other.position_; }
    // The index of the first code unit of the current code point.
    std::size_t position() const noexcept { return position_; }

   private:
    TextSpan text_;
    std::size_t position_;
  };

  explicit CodePointRange(TextSpan text) noexcept : text_(text) {}
  Iterator begin() const noexcept { return {text_, 0}; }
  Iterator end() const noexcept { return {text_, text_.size}; }

 private:
  TextSpan text_;
};

inline CodePointRange TextSpan::codePoints() const noexcept { return CodePointRange(*this); }

// Calls `visitor` with the units as `const unsigned char*` or `const char16_t*`, and their count,
// so that a loop over the text tests the form once instead of at every unit.
template <class Visitor>
decltype(auto) visitUnits(TextSpan text, Visitor&& visitor) {
  if (text.wide) return visitor(text.units(), text.size);
  return visitor(text.bytes(), text.size);
}

}  // namespace qx::detail
