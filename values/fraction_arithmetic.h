#pragma once

// Arithmetic of fractions. It wraps at 64 bits, and is defined for every pair, the least integers
// included.

#include <cstdint>

#include <QXFoundation/fraction_number.h>

namespace qx::detail {

// What QXFractionNumber::gcd promises.
std::int64_t signedGcd(std::int64_t a, std::int64_t b) noexcept;

// The pair reduced, with its denominator above 0 (or -2^63, which has no counterpart).
FractionPair normalized(FractionPair pair) noexcept;

// The fraction of a double by its short expansion, not reduced.
FractionPair expanded(double x) noexcept;

// The quotient cut toward zero, the remainder that goes with it, and the double quotient;
// denominator not 0.
std::int64_t quotient(FractionPair pair) noexcept;
std::int64_t remainder(FractionPair pair) noexcept;
double realQuotient(FractionPair pair) noexcept;

// |n| in 64 bits without a sign.
constexpr std::uint64_t magnitude(std::int64_t n) noexcept {
  const auto bits = static_cast<std::uint64_t>(n);
  return n < 0 ? 0 - bits : bits;
}

// -n, where the least integer is its own negative.
constexpr std::int64_t negated(std::int64_t n) noexcept {
  return static_cast<std::int64_t>(0 - static_cast<std::uint64_t>(n));
}

}  // namespace qx::detail
