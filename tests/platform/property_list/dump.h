#pragma once

// One line of ASCII for a property list, the same as peer.py prints of what another reader made of
// it.

#include <bit>
#include <cmath>
#include <cstdint>
#include <string>

#include <QXFoundation/QXFoundation.h>

#include "frame/numeric.h"

namespace qx::plist {

inline std::string hexadecimal(std::string_view bytes) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string text;
  for (const char c : bytes) {
    text += kDigits[static_cast<unsigned char>(c) >> 4];
    text += kDigits[static_cast<unsigned char>(c) & 15];
  }
  return text;
}

inline std::string dumpOfNumber(const detail::NumericValue& n) {
  if (n.kind == NumberKind::boolean) return n.i != 0 ? "true" : "false";
  if (n.kind == NumberKind::unsignedInteger) return "i" + std::to_string(n.u);
  if (n.kind == NumberKind::signedInteger) return "i" + std::to_string(n.i);
  if (std::isnan(n.d)) return "rnan";
  const auto bits = std::bit_cast<std::uint64_t>(n.d);
  std::string bytes;
  for (int shift = 56; shift >= 0; shift -= 8) bytes += static_cast<char>(bits >> shift);
  return "r" + hexadecimal(bytes);
}

inline std::string dump(const PropertyValue& v) {
  if (v.isNil()) return "nil";
  if (v.isString()) return "s" + hexadecimal(v.as<String>()->utf8());
  if (v.isData()) return "b" + hexadecimal(v.as<Data>()->view());
  if (v.isDate()) {
    // Microseconds: other readers know no finer ones.
    const double seconds = v.as<Date>()->timeIntervalSinceReferenceDate();
    return "d" + std::to_string(std::llround(seconds * 1e6));
  }
  std::string text;
  if (const auto elements = v.as<Array>()) {
    for (const PropertyValue& inner : *elements) text += dump(inner) + ",";
    return "[" + text + "]";
  }
  if (const auto entries = v.as<Dictionary>()) {
    for (const auto& [key, value] : *entries) {
      text += hexadecimal(key.utf8()) + "=" + dump(value) + ",";
    }
    return "{" + text + "}";
  }
  detail::NumericValue n;
  return detail::numericOf(v, n) ? dumpOfNumber(n) : "?";
}

}  // namespace qx::plist
