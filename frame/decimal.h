#pragma once

// A decimal number: up to 38 significant digits, a power of ten from -128 to 127, or NaN.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "frame/text_span.h"

namespace qx::detail {

// A value type of 24 bytes, kept canonical: zero has no sign and exponent 0, trailing zeros are
// moved into the exponent as far as the exponent goes. Equal numbers are therefore equal field by
// field. The value is significand * 10^exponent; there are no infinities.
//
// Rounding, wherever a result does not fit 38 digits or needs an exponent below -128: texts are
// rounded half to even; arithmetic rounds half away from zero. Results too large for the largest
// exponent are NaN; results that round to nothing are zero. NaN in gives NaN out.
class Decimal {
 public:
  static constexpr int kMaxDigits = 38;
  static constexpr int kMinExponent = -128;
  static constexpr int kMaxExponent = 127;

  // Zero.
  constexpr Decimal() noexcept = default;
  static Decimal notANumber() noexcept;

  // Exact.
  static Decimal fromInt64(std::int64_t value) noexcept;
  static Decimal fromUInt64(std::uint64_t value) noexcept;

  // The number whose shortest decimal text reads back as `value`: 0.1 gives one tenth. NaN and
  // infinities, like everything beyond the exponent range, give NaN.
  static Decimal fromDouble(double value) noexcept;
  static Decimal fromFloat(float value) noexcept;

  // Reads the longest prefix of the form: whitespace (ASCII), sign, digits with an optional point,
  // exponent (only when it has a digit). No digit gives NaN. Linear in the text, whatever it says.
  static Decimal parse(TextSpan text) noexcept;
  static Decimal parse(std::string_view text) noexcept { return parse(TextSpan::latin1(text)); }

  bool isNaN() const noexcept { return nan_; }
  bool isZero() const noexcept { return !nan_ && (high_ | low_) == 0; }
  bool isNegative() const noexcept { return negative_; }
  bool isInteger() const noexcept;

  // Plain notation without exponent or trailing zeros: "1.5", "-0.001", "100000", "NaN".
  std::string text() const;

  // Cut towards zero, limited to the type; NaN gives 0.
  std::int64_t toInt64() const noexcept;
  std::uint64_t toUInt64() const noexcept;
  // The nearest double, ties to even; NaN gives NaN.
  double toDouble() const noexcept;
  // The same as a float, which may be an infinity or 0. Not by way of the double, which would round
  // twice.
  float toFloat() const noexcept;
  template <class Real>
  Real toReal() const noexcept {
    if constexpr (sizeof(Real) == sizeof(float)) {
      return toFloat();
    } else {
      return toDouble();
    }
  }

  // The value in that type, if the type holds exactly this number.
  std::optional<std::int64_t> exactInt64() const noexcept;
  std::optional<std::uint64_t> exactUInt64() const noexcept;
  std::optional<double> exactDouble() const noexcept;

  // Order of the exact values: exactly -1, 0 or 1. A double counts with its full binary value,
  // infinities are beyond every decimal. NaN equals NaN and is before every other number.
  int compare(const Decimal& other) const noexcept;
  int compare(std::int64_t other) const noexcept;
  int compare(std::uint64_t other) const noexcept;
  int compare(double other) const noexcept;

  friend bool operator==(const Decimal&, const Decimal&) noexcept = default;

  // Equal numbers have equal hashes. Not related to the hashes of other kinds of numbers; use the
  // exact...() views to agree with those.
  std::size_t hash() const noexcept;

  Decimal negated() const noexcept;
  friend Decimal operator+(const Decimal& left, const Decimal& right) noexcept;
  friend Decimal operator-(const Decimal& left, const Decimal& right) noexcept;
  friend Decimal operator*(const Decimal& left, const Decimal& right) noexcept;
  // Division by zero is NaN.
  friend Decimal operator/(const Decimal& left, const Decimal& right) noexcept;

 private:
  friend struct DecimalParts;

  std::uint64_t high_ = 0;  // the significand's upper and lower 64 bits
  std::uint64_t low_ = 0;
  std::int16_t exponent_ = 0;
  bool negative_ = false;
  bool nan_ = false;
};

}  // namespace qx::detail
