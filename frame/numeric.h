#pragma once

// Numbers of every kind as plain values: exact comparison and hashing across kinds, and
// conversions.

#include <cstddef>
#include <cstdint>

#include <QXFoundation/property_value.h>

#include "frame/decimal.h"

namespace qx::detail {

// What a number is, free of its representation. Bools are 0 or 1 in `i`; single precision stands
// widened in `d`. A decimal is borrowed from its object.
struct NumericValue {
  NumberKind kind = NumberKind::signedInteger;
  union {
    std::int64_t i = 0;
    std::uint64_t u;
    double d;
    const Decimal* decimal;
  };

  static NumericValue boolean(bool b) {
    NumericValue v;
    v.kind = NumberKind::boolean;
    v.i = b ? 1 : 0;
    return v;
  }
  static NumericValue signedInteger(std::int64_t n) {
    NumericValue v;
    v.i = n;
    return v;
  }
  static NumericValue unsignedInteger(std::uint64_t n) {
    NumericValue v;
    v.kind = NumberKind::unsignedInteger;
    v.u = n;
    return v;
  }
  static NumericValue single(float f) {
    NumericValue v = real(static_cast<double>(f));
    v.kind = NumberKind::single;
    return v;
  }
  static NumericValue real(double n) {
    NumericValue v;
    v.kind = NumberKind::real;
    v.d = n;
    return v;
  }
  static NumericValue ofDecimal(const Decimal& n) {
    NumericValue v;
    v.kind = NumberKind::decimal;
    v.decimal = &n;
    return v;
  }

  bool isFloating() const { return kind == NumberKind::single || kind == NumberKind::real; }
};

// False when the value is no number.
bool numericOf(const PropertyValue& value, NumericValue& out);

// By exact numeric value: exactly -1, 0 or 1. NaN equals NaN and orders below every other number.
int compareNumbers(const NumericValue& a, const NumericValue& b);
// The order of an integer and a double, both exact.
int compareExactly(std::int64_t i, double d);
int compareExactly(std::uint64_t u, double d);
// Equal numbers of whatever kinds hash equally.
std::size_t hashNumber(const NumericValue& n);

// The lenient conversions: integers wrap to the narrower width, the others are cut toward zero and
// stop at the limits.
std::int32_t toInt32(const NumericValue& n);
std::uint32_t toUInt32(const NumericValue& n);
std::int64_t toInt64(const NumericValue& n);
std::uint64_t toUInt64(const NumericValue& n);
// The nearest, ties to even, rounded once; a float may be an infinity.
double toReal(const NumericValue& n);
float toSingle(const NumericValue& n);
bool toBool(const NumericValue& n);

// Decimal text; "1" and "0" for bools; the shortest text that reads back for floating numbers.
std::string numberText(const NumericValue& n);

}  // namespace qx::detail
