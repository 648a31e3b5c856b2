#pragma once

// Equality of property lists with the kinds of numbers, which the values' own equality does not ask
// for. Also the size of a list.

#include <cmath>
#include <cstddef>
#include <string>

#include <QXFoundation/QXFoundation.h>

#include "frame/numeric.h"

namespace qx::plist {

// What a list is compared as, after it went through a format.
enum class Kept {
  asBinary,  // all kinds
  asXml      // reals are doubles, dates have whole seconds
};

inline bool sameNumber(const PropertyValue& a, const PropertyValue& b, Kept kept) {
  detail::NumericValue x;
  detail::NumericValue y;
  if (!detail::numericOf(a, x) || !detail::numericOf(b, y)) return false;
  const auto isReal = [](NumberKind k) { return k == NumberKind::single || k == NumberKind::real; };
  const bool sameKind =
      x.kind == y.kind || (kept == Kept::asXml && isReal(x.kind) && isReal(y.kind));
  if (!sameKind || detail::compareNumbers(x, y) != 0) return false;
  return !isReal(x.kind) || std::isnan(x.d) || std::signbit(x.d) == std::signbit(y.d);
}

inline double keptDate(const PropertyValue& v, Kept kept) {
  const double seconds = v.as<Date>()->timeIntervalSince1970();
  return kept == Kept::asXml ? std::floor(seconds) : seconds;
}

// Lists are nested 512 deep at most. `a` went through the format and became `b`.
inline bool sameList(const PropertyValue& a, const PropertyValue& b, Kept kept) {
  if (a.isNumber() || b.isNumber()) return sameNumber(a, b, kept);
  if (a.isDate() && b.isDate()) return keptDate(a, kept) == keptDate(b, kept);
  if (a.isArray() && b.isArray()) {
    const auto x = a.as<Array>();
    const auto y = b.as<Array>();
    if (x->count() != y->count()) return false;
    for (std::size_t i = 0; i < x->count(); ++i) {
      if (!sameList(x->objectAtIndex(i), y->objectAtIndex(i), kept)) return false;
    }
    return true;
  }
  if (a.isDictionary() && b.isDictionary()) {
    const auto x = a.as<Dictionary>();
    const auto y = b.as<Dictionary>();
    if (x->count() != y->count()) return false;
    auto other = y->begin();
    for (const auto& [key, value] : *x) {
      const auto [otherKey, otherValue] = *other;
      if (!key.isEqualToString(otherKey) || !sameList(value, otherValue, kept)) return false;
      ++other;
    }
    return true;
  }
  return (a.isString() || a.isData()) && a == b;
}

// Values of the list, each occurrence counted, as far as `most`.
inline std::size_t valueCount(const PropertyValue& v, std::size_t most) {
  std::size_t count = 1;
  const auto add = [&](const PropertyValue& inner) {
    if (count < most) count += valueCount(inner, most - count);
  };
  if (const auto a = v.as<Array>()) {
    for (const PropertyValue& inner : *a) add(inner);
  } else if (const auto d = v.as<Dictionary>()) {
    for (const auto& item : *d) add(item.value);
  }
  return count;
}

}  // namespace qx::plist
