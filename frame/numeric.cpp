#include "frame/numeric.h"

#include <cmath>
#include <limits>

#include <QXFoundation/number.h>

#include "frame/hashing.h"
#include "frame/number_text.h"
#include "frame/three_way.h"
#include "frame/word_access.h"

namespace qx::detail {
namespace {

constexpr double kTwo63 = 9223372036854775808.0;
constexpr double kTwo64 = 18446744073709551616.0;

int orderReals(double a, double b) {
  if (std::isnan(a)) return std::isnan(b) ? 0 : -1;
  if (std::isnan(b)) return 1;
  return threeWay(a, b);
}

int orderIntegers(const NumericValue& a, const NumericValue& b) {
  const bool aUnsigned = a.kind == NumberKind::unsignedInteger;
  const bool bUnsigned = b.kind == NumberKind::unsignedInteger;
  if (aUnsigned == bUnsigned) return aUnsigned ? threeWay(a.u, b.u) : threeWay(a.i, b.i);
  if (aUnsigned) return b.i < 0 ? 1 : threeWay(a.u, static_cast<std::uint64_t>(b.i));
  return a.i < 0 ? -1 : threeWay(static_cast<std::uint64_t>(a.i), b.u);
}

int orderDecimal(const Decimal& a, const NumericValue& b) {
  switch (b.kind) {
    case NumberKind::decimal:
      return a.compare(*b.decimal);
    case NumberKind::unsignedInteger:
      return a.compare(b.u);
    case NumberKind::single:
    case NumberKind::real:
      return a.compare(b.d);
    default:
      return a.compare(b.i);
  }
}

// Cut toward zero, stopping at the limits; NaN gives 0.
template <class I>
I clamp(double d) {
  constexpr auto kMin = std::numeric_limits<I>::min();
  constexpr auto kMax = std::numeric_limits<I>::max();
  if (std::isnan(d)) return 0;
  if (d <= static_cast<double>(kMin)) return kMin;
  // Where the largest integer is no double, it stands for the power of two above it.
  if (d >= static_cast<double>(kMax)) return kMax;
  return static_cast<I>(d);
}

template <class I>
I clampDecimal(const Decimal& d) {
  if constexpr (std::is_signed_v<I>) {
    const std::int64_t n = d.toInt64();
    return n < std::numeric_limits<I>::min()   ? std::numeric_limits<I>::min()
           : n > std::numeric_limits<I>::max() ? std::numeric_limits<I>::max()
                                               : static_cast<I>(n);
  } else {
    const std::uint64_t n = d.toUInt64();
    return n > std::numeric_limits<I>::max() ? std::numeric_limits<I>::max() : static_cast<I>(n);
  }
}

template <class I>
I convert(const NumericValue& n) {
  switch (n.kind) {
    case NumberKind::unsignedInteger:
      return static_cast<I>(n.u);
    case NumberKind::single:
    case NumberKind::real:
      return clamp<I>(n.d);
    case NumberKind::decimal:
      return clampDecimal<I>(*n.decimal);
    default:
      return static_cast<I>(n.i);
  }
}

template <class Real>
Real nearest(const NumericValue& n) {
  switch (n.kind) {
    case NumberKind::unsignedInteger:
      return static_cast<Real>(n.u);
    case NumberKind::single:
    case NumberKind::real:
      return static_cast<Real>(n.d);
    case NumberKind::decimal:
      return n.decimal->toReal<Real>();
    default:
      return static_cast<Real>(n.i);
  }
}

std::size_t hashSigned(std::int64_t i) { return hashWord(static_cast<std::uint64_t>(i)); }

std::size_t hashReal(double d) {
  if (d >= -kTwo63 && d < kTwo63 && d == std::trunc(d))
    return hashSigned(static_cast<std::int64_t>(d));
  if (d >= kTwo63 && d < kTwo64) return hashWord(static_cast<std::uint64_t>(d));
  if (std::isnan(d)) d = std::numeric_limits<double>::quiet_NaN();
  return hashWord(std::bit_cast<std::uint64_t>(d) ^ 0x5851F42D4C957F2DU);
}

std::size_t hashDecimal(const Decimal& d) {
  if (const auto i = d.exactInt64()) return hashSigned(*i);
  if (const auto u = d.exactUInt64()) return hashWord(*u);
  if (d.isNaN()) return hashReal(std::numeric_limits<double>::quiet_NaN());
  if (const auto r = d.exactDouble()) return hashReal(*r);
  return d.hash();
}

}  // namespace

int compareExactly(std::int64_t i, double d) {
  if (std::isnan(d)) return 1;
  if (d >= kTwo63) return -1;
  if (d < -kTwo63) return 1;
  const auto whole = static_cast<std::int64_t>(d);
  if (i != whole) return i < whole ? -1 : 1;
  return orderReals(0, d - static_cast<double>(whole));
}

int compareExactly(std::uint64_t u, double d) {
  if (std::isnan(d)) return 1;
  if (d >= kTwo64) return -1;
  if (d < 0) return 1;
  const auto whole = static_cast<std::uint64_t>(d);
  if (u != whole) return u < whole ? -1 : 1;
  return orderReals(0, d - static_cast<double>(whole));
}

int compareNumbers(const NumericValue& a, const NumericValue& b) {
  if (a.kind == NumberKind::decimal) return orderDecimal(*a.decimal, b);
  if (b.kind == NumberKind::decimal) return -orderDecimal(*b.decimal, a);
  if (a.isFloating()) {
    if (b.isFloating()) return orderReals(a.d, b.d);
    return b.kind == NumberKind::unsignedInteger ? -compareExactly(b.u, a.d)
                                                 : -compareExactly(b.i, a.d);
  }
  if (b.isFloating()) {
    return a.kind == NumberKind::unsignedInteger ? compareExactly(a.u, b.d)
                                                 : compareExactly(a.i, b.d);
  }
  return orderIntegers(a, b);
}

std::size_t hashNumber(const NumericValue& n) {
  switch (n.kind) {
    case NumberKind::unsignedInteger:
      return hashWord(n.u);
    case NumberKind::single:
    case NumberKind::real:
      return hashReal(n.d);
    case NumberKind::decimal:
      return hashDecimal(*n.decimal);
    default:
      return hashSigned(n.i);
  }
}

std::int32_t toInt32(const NumericValue& n) { return convert<std::int32_t>(n); }
std::uint32_t toUInt32(const NumericValue& n) { return convert<std::uint32_t>(n); }
std::int64_t toInt64(const NumericValue& n) { return convert<std::int64_t>(n); }
std::uint64_t toUInt64(const NumericValue& n) { return convert<std::uint64_t>(n); }

double toReal(const NumericValue& n) { return nearest<double>(n); }
float toSingle(const NumericValue& n) { return nearest<float>(n); }

bool toBool(const NumericValue& n) {
  switch (n.kind) {
    case NumberKind::single:
    case NumberKind::real:
      return n.d != 0;
    case NumberKind::decimal:
      return !n.decimal->isZero();
    default:
      return n.u != 0;
  }
}

std::string numberText(const NumericValue& n) {
  switch (n.kind) {
    case NumberKind::unsignedInteger:
      return decimalText(n.u);
    case NumberKind::single:
      return shortestText(static_cast<float>(n.d));
    case NumberKind::real:
      return shortestText(n.d);
    case NumberKind::decimal:
      return n.decimal->text();
    default:
      return decimalText(n.i);
  }
}

bool numericOf(const PropertyValue& value, NumericValue& out) {
  if (WordAccess::inlineNumber(value, out)) return true;
  const Object* o = value.object();
  if (o == nullptr || ObjectAccess::kind(*o) != ObjectKind::number) return false;
  out = static_cast<const Number*>(o)->numeric();
  return true;
}

}  // namespace qx::detail
