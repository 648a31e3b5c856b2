#include "frame/decimal.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <limits>

#include "frame/decimal_parts.h"
#include "frame/hashing.h"
#include "frame/number_text.h"
#include "frame/three_way.h"

namespace qx::detail {

namespace {

constexpr std::uint64_t kMostUInt64 = std::numeric_limits<std::uint64_t>::max();
constexpr std::uint64_t kMostInt64 =
    static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
// Integers up to here, and powers of ten up to the next, are doubles; one operation on two such
// numbers is rounded once.
constexpr std::uint64_t kDoubleIntegers = std::uint64_t{1} << 53;
constexpr double kExactPowers[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                   1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                   1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
constexpr std::int64_t kMostExactPower = 22;

// Writes the digits of a value below 10^39 and gives their end.
char* writeDigits(char* out, UInt128 value) noexcept {
  constexpr UInt128 kChunk = 10'000'000'000'000'000'000u;  // 10^19
  const auto write = [&out](std::uint64_t part) { out = std::to_chars(out, out + 20, part).ptr; };
  if (value < kChunk) {
    write(static_cast<std::uint64_t>(value));
    return out;
  }
  write(static_cast<std::uint64_t>(value / kChunk % kChunk));
  char low[20];
  const char* const end =
      std::to_chars(low, low + sizeof low, static_cast<std::uint64_t>(value % kChunk)).ptr;
  out = std::fill_n(out, 19 - (end - low), '0');
  return std::copy(static_cast<const char*>(low), end, out);
}

// The integer part, or 2^64 when that is larger.
UInt128 truncatedMagnitude(const DecimalParts& parts) noexcept {
  constexpr UInt128 kLimit = UInt128{kMostUInt64} + 1;
  if (parts.significand == 0) return 0;
  if (parts.exponent >= 0) {
    if (parts.exponent >= 20) return kLimit;
    const UInt128 power = powerOfTen(static_cast<int>(parts.exponent));
    return parts.significand > kLimit / power ? kLimit
                                              : std::min(kLimit, parts.significand * power);
  }
  if (parts.exponent <= -Decimal::kMaxDigits) return 0;
  return std::min(kLimit, parts.significand / powerOfTen(static_cast<int>(-parts.exponent)));
}

int compareMagnitudes(const DecimalParts& left, const DecimalParts& right) noexcept {
  if (left.significand == 0 || right.significand == 0) {
    return threeWay(left.significand, right.significand);
  }
  const std::int64_t leftPlace = digitCount(left.significand) + left.exponent;
  const std::int64_t rightPlace = digitCount(right.significand) + right.exponent;
  if (leftPlace != rightPlace) return threeWay(leftPlace, rightPlace);
  // The first digits have the same place, so the shorter significand can grow to the longer one.
  const auto shift = static_cast<int>(left.exponent - right.exponent);
  return shift >= 0 ? threeWay(left.significand * powerOfTen(shift), right.significand)
                    : threeWay(left.significand, right.significand * powerOfTen(-shift));
}

// The significand's digits of a text, as far as they are kept.
struct CollectedDigits {
  DecimalParts parts;
  unsigned guard = 0;
  bool more = false;
};

CollectedDigits collectDigits(TextSpan text, const ScannedReal& real) noexcept {
  CollectedDigits digits;
  digits.parts.negative = real.negative;
  std::int64_t exponent = 0;
  int kept = 0;  // the guard digit is the one behind the most digits that are kept
  for (std::size_t i = real.start; i < real.mantissa; ++i) {
    if (i == real.point) continue;
    const auto digit = static_cast<unsigned>(text[i] - u'0');
    if (kept > Decimal::kMaxDigits) {
      digits.more = digits.more || digit != 0;
      if (i < real.point) ++exponent;
      continue;
    }
    if (kept == Decimal::kMaxDigits) {
      digits.guard = digit;
    } else {
      digits.parts.significand = digits.parts.significand * 10 + digit;
    }
    if (digits.parts.significand != 0) ++kept;
    if (i > real.point) --exponent;
  }
  // Without a guard digit from the text a zero stands in its place.
  if (kept <= Decimal::kMaxDigits) --exponent;
  digits.parts.exponent = exponent + scanExponent(text, real);
  return digits;
}

template <class Floating>
Decimal fromFloating(Floating value) noexcept {
  char text[64];
  const auto end =
      std::to_chars(text, text + sizeof text, value, std::chars_format::scientific).ptr;
  return Decimal::parse(std::string_view(text, static_cast<std::size_t>(end - text)));
}

}  // namespace

int digitCount(UInt128 value) noexcept {
  const auto high = static_cast<std::uint64_t>(value >> 64);
  const auto low = static_cast<std::uint64_t>(value);
  const auto bits = static_cast<int>(high != 0 ? 64 + std::bit_width(high) : std::bit_width(low));
  const int least = leastDigits(bits);
  return least + (value >= powerOfTen(least) ? 1 : 0);
}

DecimalParts DecimalParts::of(const Decimal& decimal) noexcept {
  return {decimal.negative_, UInt128{decimal.high_} << 64 | decimal.low_, decimal.exponent_};
}

Decimal DecimalParts::canonical() const noexcept {
  Decimal decimal;
  if (significand == 0) return decimal;
  UInt128 digits = significand;
  std::int64_t power = exponent;
  for (const int zeros : {32, 16, 8, 4, 2, 1}) {
    if (power + zeros > Decimal::kMaxExponent || digits % powerOfTen(zeros) != 0) continue;
    digits /= powerOfTen(zeros);
    power += zeros;
  }
  const std::int64_t excess = power - Decimal::kMaxExponent;
  if (excess > 0) {
    if (excess + digitCount(digits) > Decimal::kMaxDigits) return Decimal::notANumber();
    digits *= powerOfTen(static_cast<int>(excess));
    power = Decimal::kMaxExponent;
  }
  if (digits >= powerOfTen(Decimal::kMaxDigits)) return Decimal::notANumber();
  decimal.high_ = static_cast<std::uint64_t>(digits >> 64);
  decimal.low_ = static_cast<std::uint64_t>(digits);
  decimal.exponent_ = static_cast<std::int16_t>(power);
  decimal.negative_ = negative;
  return decimal;
}

Decimal Decimal::notANumber() noexcept {
  Decimal decimal;
  decimal.nan_ = true;
  return decimal;
}

Decimal Decimal::fromInt64(std::int64_t value) noexcept {
  const auto bits = static_cast<std::uint64_t>(value);
  return DecimalParts{value < 0, value < 0 ? 0 - bits : bits, 0}.canonical();
}

Decimal Decimal::fromUInt64(std::uint64_t value) noexcept {
  return DecimalParts{false, value, 0}.canonical();
}

Decimal Decimal::fromDouble(double value) noexcept { return fromFloating(value); }
Decimal Decimal::fromFloat(float value) noexcept { return fromFloating(value); }

Decimal Decimal::parse(TextSpan text) noexcept {
  const ScannedReal real = scanReal(text);
  if (!real.found()) return notANumber();
  const CollectedDigits digits = collectDigits(text, real);
  return roundedDecimal(digits.parts, digits.guard, digits.more);
}

bool Decimal::isInteger() const noexcept { return !nan_ && exponent_ >= 0; }

std::string Decimal::text() const {
  if (nan_) return "NaN";
  char digits[48];
  const auto end = writeDigits(digits, DecimalParts::of(*this).significand);
  std::string text(digits, end);
  if (exponent_ > 0) {
    text.append(static_cast<std::size_t>(exponent_), '0');
  } else if (exponent_ < 0) {
    const auto places = static_cast<std::size_t>(-exponent_);
    if (text.size() <= places) text.insert(0, places - text.size() + 1, '0');
    text.insert(text.size() - places, 1, '.');
  }
  if (negative_) text.insert(0, 1, '-');
  return text;
}

std::int64_t Decimal::toInt64() const noexcept {
  if (nan_) return 0;
  const UInt128 magnitude = truncatedMagnitude(DecimalParts::of(*this));
  if (magnitude > kMostInt64) {
    return negative_ ? std::numeric_limits<std::int64_t>::min()
                     : std::numeric_limits<std::int64_t>::max();
  }
  const auto value = static_cast<std::int64_t>(magnitude);
  return negative_ ? -value : value;
}

std::uint64_t Decimal::toUInt64() const noexcept {
  if (nan_ || negative_) return 0;
  const UInt128 magnitude = truncatedMagnitude(DecimalParts::of(*this));
  return magnitude > kMostUInt64 ? kMostUInt64 : static_cast<std::uint64_t>(magnitude);
}

namespace {

// The magnitude as the nearest Real, by way of its text; out of range 0 or an infinity.
template <class Real>
Real readBack(const Decimal& d) noexcept {
  const DecimalParts parts = DecimalParts::of(d);
  char text[56];
  char* end = writeDigits(text, parts.significand);
  const auto digits = end - text;
  *end++ = 'e';
  end = std::to_chars(end, text + sizeof text, parts.exponent).ptr;
  Real value = 0;
  if (std::from_chars(text, end, value).ec == std::errc::result_out_of_range)
    value = digits + parts.exponent > 0 ? std::numeric_limits<Real>::infinity() : Real{0};
  return value;
}

}  // namespace

float Decimal::toFloat() const noexcept {
  if (nan_) return std::numeric_limits<float>::quiet_NaN();
  const float value = readBack<float>(*this);
  return negative_ ? -value : value;
}

double Decimal::toDouble() const noexcept {
  if (nan_) return std::numeric_limits<double>::quiet_NaN();
  double value = 0;
  const bool simple = high_ == 0 && low_ <= kDoubleIntegers && exponent_ >= -kMostExactPower &&
                      exponent_ <= kMostExactPower;
  if (simple) {
    const auto digits = static_cast<double>(low_);
    value = exponent_ < 0 ? digits / kExactPowers[-exponent_] : digits * kExactPowers[exponent_];
  } else {
    value = readBack<double>(*this);  // never out of range: 1e-128 to 1e165
  }
  return negative_ ? -value : value;
}

std::optional<std::int64_t> Decimal::exactInt64() const noexcept {
  if (!isInteger()) return std::nullopt;
  const std::int64_t value = toInt64();
  if (compare(value) != 0) return std::nullopt;
  return value;
}

std::optional<std::uint64_t> Decimal::exactUInt64() const noexcept {
  if (!isInteger()) return std::nullopt;
  const std::uint64_t value = toUInt64();
  if (compare(value) != 0) return std::nullopt;
  return value;
}

// A double is an odd integer below 2^53 times a power of two, and 10^n is 5^n * 2^n.
std::optional<double> Decimal::exactDouble() const noexcept {
  if (nan_ || isZero()) return toDouble();
  UInt128 odd = DecimalParts::of(*this).significand;
  int twos = exponent_;
  while (odd % 2 == 0) {
    odd /= 2;
    ++twos;
  }
  for (int i = exponent_; i < 0; ++i) {
    if (odd % 5 != 0) return std::nullopt;
    odd /= 5;
  }
  for (int i = exponent_; i > 0 && odd < kDoubleIntegers; --i) odd *= 5;
  if (odd >= kDoubleIntegers) return std::nullopt;
  const double value = std::ldexp(static_cast<double>(static_cast<std::uint64_t>(odd)), twos);
  return negative_ ? -value : value;
}

int Decimal::compare(const Decimal& other) const noexcept {
  if (nan_ || other.nan_) return threeWay(!nan_, !other.nan_);
  if (negative_ != other.negative_) return negative_ ? -1 : 1;
  const int order = compareMagnitudes(DecimalParts::of(*this), DecimalParts::of(other));
  return negative_ ? -order : order;
}

int Decimal::compare(std::int64_t other) const noexcept { return compare(fromInt64(other)); }
int Decimal::compare(std::uint64_t other) const noexcept { return compare(fromUInt64(other)); }

int Decimal::compare(double other) const noexcept {
  if (nan_ || std::isnan(other)) return threeWay(!nan_, !std::isnan(other));
  // Rounding keeps order, so that only numbers which round to `other` itself need more.
  const double nearest = toDouble();
  if (nearest != other) return threeWay(nearest, other);
  if (isZero()) return 0;
  const int order = compareMagnitudeExactly(DecimalParts::of(*this), std::fabs(other));
  return negative_ ? -order : order;
}

std::size_t Decimal::hash() const noexcept {
  const std::uint64_t rest = static_cast<std::uint64_t>(exponent_ - kMinExponent) << 2 |
                             static_cast<std::uint64_t>(negative_) << 1 |
                             static_cast<std::uint64_t>(nan_);
  return combineHashes(hashWord(low_), combineHashes(high_, rest));
}

}  // namespace qx::detail
