#pragma once

// Fractions as the tests write and show them.

#include <cstdint>
#include <limits>
#include <ostream>

#include <QXFoundation/fraction_number.h>

namespace qx {

inline void PrintTo(const FractionPair& p, std::ostream* out) {
  *out << p.numerator << '/' << p.denominator;
}

}  // namespace qx

namespace fractions {

inline constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();
inline constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();

inline qx::Ref<qx::QXFractionNumber> fraction(std::int64_t n, std::int64_t d) {
  return qx::QXFractionNumber::qxFractionNumberWithNumerator(n, d);
}
// The pair as it stands, which no public operation gives.
inline qx::Ref<qx::QXFractionNumber> unreduced(std::int64_t n, std::int64_t d) {
  return qx::make<qx::QXFractionNumber>(qx::detail::Passkey{}, qx::FractionPair{n, d});
}
inline qx::FractionPair pairOf(const qx::Ref<qx::QXFractionNumber>& f) {
  return {f->numerator(), f->denominator()};
}

}  // namespace fractions
