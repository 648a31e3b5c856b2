#pragma once

// Numbers to text and back, always by the rules of the C locale.

#include <cstddef>
#include <cstdint>
#include <string>

#include "frame/text_span.h"

namespace qx::detail {

// The numeric views of a string: each reads the longest numeric prefix after leading ASCII
// whitespace and ignores what follows. Text without a number gives 0 or false.

// Optional sign and decimal digits. Values beyond the type become its nearest limit.
std::int64_t scanInt64(TextSpan text) noexcept;
std::int32_t scanInt32(TextSpan text) noexcept;

// As above up to 2^64 - 1. A negative number gives the two's complement of its value ("-1" gives
// 2^64 - 1), taken from the value saturated at the least int64.
std::uint64_t scanUInt64(TextSpan text) noexcept;

// Optional sign, digits with an optional point, optional exponent (only when it has a digit). No
// hexadecimal, infinity or NaN texts. Correctly rounded; overflow gives an infinity, underflow a
// zero, both with the sign of the text. Throws nothing but std::bad_alloc (very long numbers in
// wide text).
double scanDouble(TextSpan text);
// The nearest float to the number itself, not to its double.
float scanFloat(TextSpan text);

// Skips whitespace, then a sign, then zeros: true when the next character is one of Y, y, T, t and
// 1 to 9.
bool scanBool(TextSpan text) noexcept;

// Where the parts of a decimal number stand in a text, by the rules of scanDouble.
struct ScannedReal {
  bool negative = false;
  std::size_t start = 0;     // the first digit, or the point before it
  std::size_t point = 0;     // the point, or the end of the digits without one
  std::size_t mantissa = 0;  // end of the digits and the point
  std::size_t end = 0;       // end of the number; equal to start when there is none

  bool found() const noexcept { return end > start; }
};
ScannedReal scanReal(TextSpan text) noexcept;

// The value of the exponent part, 0 without one. Limited to +-2^62, so that a position in a text
// can be added to it.
std::int64_t scanExponent(TextSpan text, const ScannedReal& real) noexcept;

// The shortest decimal text that reads back as the same value of the same type: "1.5", "3", "0.1",
// "-0". The exponent form ("1e+22", "1.5e-07") is used when the decimal exponent is below -4 or
// above 16. Otherwise "inf", "-inf" or "nan".
std::string shortestText(double value);
std::string shortestText(float value);

// Six digits after the point, exactly rounded, never an exponent: "1.500000"; "inf", "-inf", "nan".
std::string fixedText(double value);
inline std::string fixedText(float value) { return fixedText(static_cast<double>(value)); }

std::string decimalText(std::int64_t value);
std::string decimalText(std::uint64_t value);

}  // namespace qx::detail
