#pragma once

// Exact reference arithmetic and random numbers for the tests of the decimal number.

#include <algorithm>
#include <boost/multiprecision/cpp_int.hpp>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <string>

#include "frame/decimal.h"
#include "frame/three_way.h"

namespace qx::detail {

namespace mp = boost::multiprecision;
using Rational = mp::cpp_rational;
using Integer = mp::cpp_int;

inline constexpr double kInfinity = std::numeric_limits<double>::infinity();
inline constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
inline constexpr std::int64_t kMost64 = std::numeric_limits<std::int64_t>::max();
inline constexpr std::int64_t kLeast64 = std::numeric_limits<std::int64_t>::min();
inline constexpr std::uint64_t kMostU64 = std::numeric_limits<std::uint64_t>::max();

inline Decimal dec(const std::string& text) { return Decimal::parse(text); }

inline std::string nines(int count) { return std::string(static_cast<std::size_t>(count), '9'); }
inline std::string zeros(int count) { return std::string(static_cast<std::size_t>(count), '0'); }

// The exact value, through the plain text (which has its own tests).
inline Rational exact(const Decimal& decimal) {
  std::string text = decimal.text();
  const std::size_t point = text.find('.');
  Integer scale = 1;
  if (point != std::string::npos) {
    scale = mp::pow(Integer(10), static_cast<unsigned>(text.size() - point - 1));
    text.erase(point, 1);
  }
  const bool negative = text[0] == '-';
  if (negative) text.erase(0, 1);
  text.erase(0, std::min(text.find_first_not_of('0'), text.size() - 1));
  const Rational value(Integer(text), scale);
  return negative ? Rational(-value) : value;
}

inline Rational exact(double value) {
  int exponent = 0;
  const double fraction = std::frexp(value, &exponent);
  const Integer mantissa = static_cast<std::int64_t>(std::ldexp(fraction, 53));
  exponent -= 53;
  const Integer power = Integer(1) << static_cast<unsigned>(std::abs(exponent));
  return exponent >= 0 ? Rational(mantissa * power) : Rational(mantissa, power);
}

inline int order(const Rational& left, const Rational& right) {
  return threeWay(left.compare(right), 0);
}

inline double randomDouble(std::mt19937_64& random, int lowest, int highest) {
  const double mantissa = static_cast<double>(random() >> 11);
  const int span = highest - lowest + 1;
  const int exponent = lowest + static_cast<int>(random() % static_cast<unsigned>(span)) - 53;
  return std::ldexp(random() % 2 == 0 ? mantissa : -mantissa, exponent);
}

inline Decimal randomDecimal(std::mt19937_64& random) {
  std::string text = random() % 2 == 0 ? "-" : "";
  const auto digits = 1 + random() % 38;
  for (unsigned i = 0; i < digits; ++i) text += static_cast<char>('0' + random() % 10);
  const int exponent = random() % 2 == 0 ? static_cast<int>(random() % 40) - 30
                                         : static_cast<int>(random() % 256) - 128;
  return dec(text + "e" + std::to_string(exponent));
}

}  // namespace qx::detail
