#include "frame/number_text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

namespace qx::detail {

namespace {

bool isSign(char16_t unit) noexcept { return unit == u'+' || unit == u'-'; }

// The unit at `position`, or 0 behind the end (which no scanner takes for anything).
char16_t unitAt(TextSpan text, std::size_t position) noexcept {
  return position < text.size ? text[position] : u'\0';
}

std::size_t skipSpace(TextSpan text) noexcept {
  std::size_t position = 0;
  while (position < text.size && isAsciiSpace(text[position])) ++position;
  return position;
}

std::size_t skipDigits(TextSpan text, std::size_t position) noexcept {
  while (position < text.size && isAsciiDigit(text[position])) ++position;
  return position;
}

// Sign and magnitude of the integer prefix; the magnitude saturates.
struct ScannedInteger {
  bool negative = false;
  std::uint64_t magnitude = 0;
};

ScannedInteger scanInteger(TextSpan text) noexcept {
  constexpr std::uint64_t kMost = std::numeric_limits<std::uint64_t>::max();
  ScannedInteger scanned;
  std::size_t position = skipSpace(text);
  if (isSign(unitAt(text, position))) scanned.negative = text[position++] == u'-';
  for (; position < text.size && isAsciiDigit(text[position]); ++position) {
    const auto digit = static_cast<std::uint64_t>(text[position] - u'0');
    if (scanned.magnitude > (kMost - digit) / 10) {
      scanned.magnitude = kMost;
      return scanned;
    }
    scanned.magnitude = scanned.magnitude * 10 + digit;
  }
  return scanned;
}

// The value saturated at the limits of a signed type.
template <class Signed>
Signed saturate(ScannedInteger scanned) noexcept {
  using Limits = std::numeric_limits<Signed>;
  const auto most = static_cast<std::uint64_t>(Limits::max());
  if (scanned.magnitude <= most) {
    const auto value = static_cast<Signed>(scanned.magnitude);
    return scanned.negative ? static_cast<Signed>(-value) : value;
  }
  return scanned.negative ? Limits::min() : Limits::max();
}

// The power of ten of the first digit that is not 0. Only its sign matters to the caller, for
// numbers far beyond the range of double.
std::int64_t decimalMagnitude(TextSpan text, const ScannedReal& real) noexcept {
  std::size_t first = real.start;
  while (first < real.mantissa && (text[first] == u'0' || text[first] == u'.')) ++first;
  const auto place = static_cast<std::int64_t>(real.point) - static_cast<std::int64_t>(first);
  return place + scanExponent(text, real);
}

template <class Real>
Real readReal(TextSpan text, const ScannedReal& real, const char* digits) noexcept {
  Real value = 0;
  const auto result = std::from_chars(digits, digits + (real.end - real.start), value);
  if (result.ec == std::errc::result_out_of_range) {
    value = decimalMagnitude(text, real) > 0 ? std::numeric_limits<Real>::infinity() : Real{0};
  }
  return real.negative ? -value : value;
}

// Lays the digits out with or without an exponent, as %g does, but always all of them.
template <class Floating>
std::string shortest(Floating value) {
  constexpr int kLeastPlain = -4;
  constexpr int kMostPlain = 16;
  if (std::isnan(value)) return "nan";
  if (std::isinf(value)) return value < 0 ? "-inf" : "inf";
  char scientific[64];
  const auto end = std::to_chars(scientific, scientific + sizeof scientific, value,
                                 std::chars_format::scientific)
                       .ptr;
  const std::string_view text(scientific, static_cast<std::size_t>(end - scientific));
  const std::size_t exponentAt = text.find('e');
  int exponent = 0;
  const char* exponentDigits = text.data() + exponentAt + 2;
  std::from_chars(exponentDigits, end, exponent);
  if (text[exponentAt + 1] == '-') exponent = -exponent;
  if (exponent < kLeastPlain || exponent > kMostPlain) return std::string(text);

  std::string digits;
  for (const char c : text.substr(0, exponentAt)) {
    if (isAsciiDigit(static_cast<unsigned char>(c))) digits.push_back(c);
  }
  if (exponent < 0) {
    digits.insert(0, "0." + std::string(static_cast<std::size_t>(-exponent - 1), '0'));
  } else {
    const auto whole = static_cast<std::size_t>(exponent) + 1;
    if (digits.size() < whole) digits.resize(whole, '0');
    if (digits.size() > whole) digits.insert(whole, ".");
  }
  return text[0] == '-' ? "-" + digits : digits;
}

template <class Integer>
std::string integerText(Integer value) {
  char digits[24];
  return {digits, std::to_chars(digits, digits + sizeof digits, value).ptr};
}

}  // namespace

std::int64_t scanInt64(TextSpan text) noexcept { return saturate<std::int64_t>(scanInteger(text)); }

std::int32_t scanInt32(TextSpan text) noexcept { return saturate<std::int32_t>(scanInteger(text)); }

std::uint64_t scanUInt64(TextSpan text) noexcept {
  const ScannedInteger scanned = scanInteger(text);
  if (!scanned.negative) return scanned.magnitude;
  return static_cast<std::uint64_t>(saturate<std::int64_t>(scanned));
}

ScannedReal scanReal(TextSpan text) noexcept {
  ScannedReal real;
  std::size_t position = skipSpace(text);
  if (isSign(unitAt(text, position))) real.negative = text[position++] == u'-';
  real.start = position;
  real.point = skipDigits(text, position);
  real.mantissa = real.point;
  std::size_t digits = real.point - real.start;
  if (unitAt(text, real.point) == u'.') {
    real.mantissa = skipDigits(text, real.point + 1);
    digits += real.mantissa - real.point - 1;
  }
  real.end = digits == 0 ? real.start : real.mantissa;
  if (digits == 0 || asciiLower(unitAt(text, real.mantissa)) != U'e') return real;
  position = real.mantissa + 1;
  if (isSign(unitAt(text, position))) ++position;
  const std::size_t exponentEnd = skipDigits(text, position);
  if (exponentEnd > position) real.end = exponentEnd;
  return real;
}

std::int64_t scanExponent(TextSpan text, const ScannedReal& real) noexcept {
  constexpr std::int64_t kFar = std::int64_t{1} << 62;
  if (real.end == real.mantissa) return 0;
  const std::size_t start = real.mantissa + 1;
  return std::clamp(scanInt64(text.substr(start, real.end - start)), -kFar, kFar);
}

namespace {

template <class Real>
Real scan(TextSpan text) {
  const ScannedReal real = scanReal(text);
  if (!real.found()) return 0;
  if (!text.wide) return readReal<Real>(text, real, text.latin1View().data() + real.start);
  // All units of the number are ASCII.
  constexpr std::size_t kOnStack = 128;
  const std::u16string_view units = text.utf16View().substr(real.start, real.end - real.start);
  const auto narrow = [](char16_t unit) { return static_cast<char>(unit); };
  if (units.size() <= kOnStack) {
    char digits[kOnStack];
    std::transform(units.begin(), units.end(), digits, narrow);
    return readReal<Real>(text, real, digits);
  }
  std::string digits(units.size(), '\0');
  std::transform(units.begin(), units.end(), digits.begin(), narrow);
  return readReal<Real>(text, real, digits.data());
}

}  // namespace

double scanDouble(TextSpan text) { return scan<double>(text); }
float scanFloat(TextSpan text) { return scan<float>(text); }

bool scanBool(TextSpan text) noexcept {
  std::size_t position = skipSpace(text);
  if (isSign(unitAt(text, position))) ++position;
  while (unitAt(text, position) == u'0') ++position;
  const char32_t unit = asciiLower(unitAt(text, position));
  return unit == U'y' || unit == U't' || (unit >= U'1' && unit <= U'9');
}

std::string shortestText(double value) { return shortest(value); }
std::string shortestText(float value) { return shortest(value); }

std::string fixedText(double value) {
  if (std::isnan(value)) return "nan";
  // The largest finite value has 309 digits before the point.
  char text[400];
  const auto end = std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, 6).ptr;
  return {text, end};
}

std::string decimalText(std::int64_t value) { return integerText(value); }
std::string decimalText(std::uint64_t value) { return integerText(value); }

}  // namespace qx::detail
