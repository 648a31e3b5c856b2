#pragma once

// What the parts of the decimal number's implementation share.

#include <array>
#include <cstdint>

#include "frame/decimal.h"

namespace qx::detail {

__extension__ typedef unsigned __int128 UInt128;

constexpr std::array<UInt128, Decimal::kMaxDigits + 1> makePowersOfTen() noexcept {
  std::array<UInt128, Decimal::kMaxDigits + 1> powers{};
  powers[0] = 1;
  for (std::size_t i = 1; i < powers.size(); ++i) powers[i] = powers[i - 1] * 10;
  return powers;
}

// 10^0 to 10^38.
inline constexpr auto kPowersOfTen = makePowersOfTen();

constexpr UInt128 powerOfTen(int exponent) noexcept {
  return kPowersOfTen[static_cast<std::size_t>(exponent)];
}

// A decimal taken apart; never NaN.
struct DecimalParts {
  bool negative = false;
  UInt128 significand = 0;
  std::int64_t exponent = 0;

  // Precondition: not NaN.
  static DecimalParts of(const Decimal& decimal) noexcept;

  // The canonical number of that value, or NaN when it is too large. Preconditions: the
  // significand is at most 10^38, the exponent at least Decimal::kMinExponent.
  Decimal canonical() const noexcept;
};

// Number of decimal digits that a value of so many bits has at least; at most one more. The factor
// is log10(2), rounded up by too little to matter below 100000 bits.
constexpr int leastDigits(int bits) noexcept { return bits * 30103 / 100000; }

// Number of decimal digits; 0 has none.
int digitCount(UInt128 value) noexcept;

// The decimal nearest to (significand * 10 + guard) * 10^exponent, of which `more` says that it is
// cut: a bit more than written. Halves are rounded to even. Preconditions: significand < 10^38,
// guard < 10.
Decimal roundedDecimal(const DecimalParts& parts, unsigned guard, bool more) noexcept;

// Order of two magnitudes that round to the same double: significand * 10^exponent against the
// finite, positive `magnitude`.
int compareMagnitudeExactly(const DecimalParts& parts, double magnitude) noexcept;

}  // namespace qx::detail
