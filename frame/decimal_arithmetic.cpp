// Boost includes <iostream>, which it does not need, and with which libstdc++ before version 13
// brings an object to be constructed whenever the library is loaded. What it does need of streams
// is declared by these.
#include <istream>
#include <ostream>
#if defined(_GLIBCXX_RELEASE) && _GLIBCXX_RELEASE < 13
#define _GLIBCXX_IOSTREAM 1
#endif

#include <boost/multiprecision/cpp_int.hpp>
#include <cmath>
#include <cstdint>

#include "frame/decimal_parts.h"
#include "frame/three_way.h"

namespace qx::detail {

namespace {

namespace mp = boost::multiprecision;

// Holds every exact intermediate result without allocating. The largest is a sum of operands at the
// two ends of the exponent range: 10^38 * 10^255, 974 bits.
using Wide =
    mp::number<mp::cpp_int_backend<1024, 1024, mp::unsigned_magnitude, mp::unchecked, void>,
               mp::et_off>;

enum class Rounding { halfToEven, halfAwayFromZero };

Wide widen(UInt128 value) {
  Wide wide = static_cast<std::uint64_t>(value >> 64);
  wide <<= 64;
  return wide + static_cast<std::uint64_t>(value);
}

UInt128 narrow(const Wide& value) {
  const Wide mask = ~std::uint64_t{0};
  const auto low = static_cast<std::uint64_t>(value & mask);
  const auto high = static_cast<std::uint64_t>((value >> 64) & mask);
  return UInt128{high} << 64 | low;
}

Wide widePowerOfTen(std::int64_t exponent) {
  return mp::pow(Wide(10), static_cast<unsigned>(exponent));
}

std::int64_t digitCount(const Wide& value) {
  if (value.is_zero()) return 0;
  const int least = leastDigits(static_cast<int>(mp::msb(value)) + 1);
  return least + (value >= widePowerOfTen(least) ? 1 : 0);
}

// The decimal nearest to significand * 10^exponent, rounded once. `more`: the exact value lies a
// bit above; then at least one digit must be in excess.
Decimal round(bool negative, Wide significand, std::int64_t exponent, Rounding rounding,
              bool more = false) {
  const std::int64_t digits = digitCount(significand);
  const std::int64_t excess =
      std::max(digits - Decimal::kMaxDigits, Decimal::kMinExponent - exponent);
  if (excess > digits) return Decimal();
  if (excess > 0) {
    const Wide unit = widePowerOfTen(excess);
    Wide quotient;
    Wide remainder;
    mp::divide_qr(significand, unit, quotient, remainder);
    const int half = Wide(remainder * 2).compare(unit);
    const bool up = half > 0 || (half == 0 && (more || rounding == Rounding::halfAwayFromZero ||
                                               mp::bit_test(quotient, 0)));
    if (up) ++quotient;
    significand = quotient;
    exponent += excess;
  }
  return DecimalParts{negative, narrow(significand), exponent}.canonical();
}

// The sum of two numbers of which `high` has the larger exponent.
Decimal addAligned(const DecimalParts& high, const DecimalParts& low) {
  const std::int64_t shift = high.exponent - low.exponent;
  const bool subtracting = high.negative != low.negative;
  if (digitCount(high.significand) + shift <= Decimal::kMaxDigits) {
    const UInt128 aligned = high.significand * powerOfTen(static_cast<int>(shift));
    if (subtracting) {
      const bool highWins = aligned >= low.significand;
      const UInt128 rest = highWins ? aligned - low.significand : low.significand - aligned;
      return DecimalParts{highWins ? high.negative : low.negative, rest, low.exponent}.canonical();
    }
    const UInt128 sum = aligned + low.significand;
    if (sum <= powerOfTen(Decimal::kMaxDigits)) {
      return DecimalParts{high.negative, sum, low.exponent}.canonical();
    }
  }
  const Wide aligned = widen(high.significand) * widePowerOfTen(shift);
  const Wide other = widen(low.significand);
  if (!subtracting) {
    return round(high.negative, aligned + other, low.exponent, Rounding::halfAwayFromZero);
  }
  const bool highWins = aligned >= other;
  const Wide rest = highWins ? aligned - other : other - aligned;
  return round(highWins ? high.negative : low.negative, rest, low.exponent,
               Rounding::halfAwayFromZero);
}

}  // namespace

Decimal roundedDecimal(const DecimalParts& parts, unsigned guard, bool more) noexcept {
  if (guard == 0 && !more && parts.exponent + 1 >= Decimal::kMinExponent) {
    return DecimalParts{parts.negative, parts.significand, parts.exponent + 1}.canonical();
  }
  const Wide significand = widen(parts.significand) * 10 + guard;
  return round(parts.negative, significand, parts.exponent, Rounding::halfToEven, more);
}

int compareMagnitudeExactly(const DecimalParts& parts, double magnitude) noexcept {
  constexpr int kMantissaBits = 53;
  int exponent = 0;
  const double fraction = std::frexp(magnitude, &exponent);
  Wide right = static_cast<std::uint64_t>(std::ldexp(fraction, kMantissaBits));
  exponent -= kMantissaBits;
  Wide left = widen(parts.significand);
  // Both sides times the powers that make them integers.
  if (parts.exponent >= 0) {
    left *= widePowerOfTen(parts.exponent);
  } else {
    right *= widePowerOfTen(-parts.exponent);
  }
  if (exponent >= 0) {
    right <<= static_cast<unsigned>(exponent);
  } else {
    left <<= static_cast<unsigned>(-exponent);
  }
  return threeWay(left.compare(right), 0);
}

Decimal Decimal::negated() const noexcept {
  Decimal result = *this;
  result.negative_ = !negative_ && !nan_ && !isZero();
  return result;
}

Decimal operator+(const Decimal& left, const Decimal& right) noexcept {
  if (left.isNaN() || right.isNaN()) return Decimal::notANumber();
  if (left.isZero()) return right;
  if (right.isZero()) return left;
  const DecimalParts a = DecimalParts::of(left);
  const DecimalParts b = DecimalParts::of(right);
  return a.exponent >= b.exponent ? addAligned(a, b) : addAligned(b, a);
}

Decimal operator-(const Decimal& left, const Decimal& right) noexcept {
  return left + right.negated();
}

Decimal operator*(const Decimal& left, const Decimal& right) noexcept {
  if (left.isNaN() || right.isNaN()) return Decimal::notANumber();
  const DecimalParts a = DecimalParts::of(left);
  const DecimalParts b = DecimalParts::of(right);
  const bool negative = a.negative != b.negative;
  const std::int64_t exponent = a.exponent + b.exponent;
  if (digitCount(a.significand) + digitCount(b.significand) <= Decimal::kMaxDigits &&
      exponent >= Decimal::kMinExponent) {
    return DecimalParts{negative, a.significand * b.significand, exponent}.canonical();
  }
  return round(negative, widen(a.significand) * widen(b.significand), exponent,
               Rounding::halfAwayFromZero);
}

Decimal operator/(const Decimal& left, const Decimal& right) noexcept {
  if (left.isNaN() || right.isNaN() || right.isZero()) return Decimal::notANumber();
  if (left.isZero()) return left;
  // Enough digits that the quotient always has one in excess; the cut rest cannot matter then,
  // because halves are rounded up.
  constexpr int kExtraDigits = 2 * Decimal::kMaxDigits;
  const DecimalParts a = DecimalParts::of(left);
  const DecimalParts b = DecimalParts::of(right);
  const Wide quotient = widen(a.significand) * widePowerOfTen(kExtraDigits) / widen(b.significand);
  return round(a.negative != b.negative, quotient, a.exponent - b.exponent - kExtraDigits,
               Rounding::halfAwayFromZero);
}

}  // namespace qx::detail
