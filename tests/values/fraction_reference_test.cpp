// The arithmetic of fractions beside a plain transcription of its rules, step by step as they are
// laid down.

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include <QXFoundation/fraction_number.h>

#include "values/fraction_arithmetic.h"

namespace qx::detail {
namespace {

constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();

// 64-bit integers that wrap, on twice the width.
__extension__ using Wide = __int128;
std::int64_t wrap(Wide n) { return static_cast<std::int64_t>(static_cast<std::uint64_t>(n)); }

namespace reference {

std::int64_t truncate(double d) {
  if (std::isnan(d) || d >= 9223372036854775808.0 || d < -9223372036854775808.0) return kLeast;
  return static_cast<std::int64_t>(d);
}
std::int64_t floorOf(double d) { return truncate(std::floor(d)); }

std::int64_t gcd(std::int64_t a, std::int64_t b) {
  if (b == 0) return a;
  Wide m = a;
  Wide n = b;
  Wide rest = 0;
  do {
    rest = m % n;
    m = n;
    n = rest;
  } while (rest != 0);
  return wrap(m);
}

FractionPair normalize(FractionPair p) {
  if (p.numerator != 1 && p.denominator != 1) {
    const std::int64_t g = gcd(p.numerator, p.denominator);
    if (g < 0 || g > 1) p = {wrap(Wide{p.numerator} / g), wrap(Wide{p.denominator} / g)};
  }
  if (p.denominator < 0) p = {wrap(-Wide{p.numerator}), wrap(-Wide{p.denominator})};
  return p;
}

FractionPair fromDouble(double x) {
  const std::int64_t t = truncate(x);
  if (x == static_cast<double>(t)) return {t, 1};
  const double a = std::fabs(x);
  const std::int64_t c0 = floorOf(a);
  const double r0 = a - static_cast<double>(c0);
  if (r0 == 0) return {x > 0 ? 1 : -1, c0};
  std::int64_t c[4] = {c0, 0, 0, 0};
  const double q1 = 1 / r0;
  const std::int64_t c1 = floorOf(q1);
  const double r1 = q1 - static_cast<double>(c1);
  int k = 0;
  std::int64_t last = c1;
  if (r1 != 0) {
    c[1] = c1;
    const double q2 = 1 / r1;
    const std::int64_t c2 = floorOf(q2);
    const double r2 = q2 - static_cast<double>(c2);
    k = 1;
    last = c2;
    if (r2 != 0) {
      c[2] = c2;
      k = 2;
      last = floorOf(1 / r2);
    }
  }
  std::int64_t n = 0;
  std::int64_t d = 0;
  const std::int64_t p = c[k];
  if (p == 0) {
    n = 1;
    d = last;
  } else {
    const std::int64_t s = wrap(Wide{p} + last);
    if (k == 0 || c[k - 1] == 0) {
      n = s;
      d = 1;
    } else {
      const std::int64_t m = wrap(Wide{c[k - 1]} * s + 1);
      if (k == 1 || c0 == 0) {
        n = m;
        d = s;
      } else {
        n = wrap(Wide{c0} * m + s);
        d = m;
      }
    }
  }
  return {x > 0 ? n : wrap(-Wide{n}), d};
}

}  // namespace reference

void expectSame(double x) {
  const FractionPair expected = reference::fromDouble(x);
  const FractionPair actual = expanded(x);
  ASSERT_EQ(actual.numerator, expected.numerator) << std::hexfloat << x;
  ASSERT_EQ(actual.denominator, expected.denominator) << std::hexfloat << x;
}

TEST(FractionReference, QuotientsOfSmallIntegersExpandAlike) {
  for (int d = 1; d <= 400; ++d) {
    for (int n = -1200; n <= 1200; ++n) expectSame(static_cast<double>(n) / d);
  }
}

TEST(FractionReference, EveryFloatOfManyExpandsAlike) {
  // Every 997th of all single-precision numbers, NaNs and infinities included.
  for (std::uint64_t bits = 0; bits < (std::uint64_t{1} << 32); bits += 997) {
    expectSame(static_cast<double>(std::bit_cast<float>(static_cast<std::uint32_t>(bits))));
  }
}

TEST(FractionReference, RandomDoublesExpandAlike) {
  std::mt19937_64 random(43);
  std::uniform_real_distribution<double> usual(-1000, 1000);
  for (int i = 0; i < 1000000; ++i) {
    expectSame(std::bit_cast<double>(random()));
    expectSame(usual(random));
    expectSame(std::ldexp(usual(random), static_cast<int>(random() % 160) - 80));
  }
}

TEST(FractionReference, EdgesOfTheRangeExpandAlike) {
  for (const double edge : {9223372036854775808.0, 4611686018427387904.0, 4503599627370496.0, 1.0,
                            5e-324, std::ldexp(1, -62), std::ldexp(1, -63), std::ldexp(1, -64),
                            std::ldexp(1, -1022), std::numeric_limits<double>::max()}) {
    double up = edge;
    double down = edge;
    for (int i = 0; i < 100; ++i) {
      for (const double x : {up, -up, down, -down}) expectSame(x);
      up = std::nextafter(up, std::numeric_limits<double>::infinity());
      down = std::nextafter(down, 0);
    }
  }
  expectSame(std::numeric_limits<double>::infinity());
  expectSame(-std::numeric_limits<double>::infinity());
  expectSame(std::numeric_limits<double>::quiet_NaN());
}

void expectSamePair(std::int64_t n, std::int64_t d) {
  const FractionPair expected = reference::normalize({n, d});
  const FractionPair actual = normalized({n, d});
  ASSERT_EQ(actual.numerator, expected.numerator) << n << '/' << d;
  ASSERT_EQ(actual.denominator, expected.denominator) << n << '/' << d;
  ASSERT_EQ(signedGcd(n, d), reference::gcd(n, d)) << n << ' ' << d;
}

TEST(FractionReference, SmallPairsReduceAlike) {
  for (std::int64_t n = -300; n <= 300; ++n) {
    for (std::int64_t d = -300; d <= 300; ++d) expectSamePair(n, d);
  }
}

TEST(FractionReference, PairsAtTheLimitsReduceAlike) {
  std::vector<std::int64_t> edges;
  for (std::int64_t i = 0; i <= 20; ++i) {
    for (const std::int64_t e : {kLeast + i, kMost - i, i, -i}) edges.push_back(e);
  }
  for (int shift = 1; shift < 63; ++shift) {
    for (const std::int64_t e : {-1LL, 0LL, 1LL}) {
      edges.push_back((std::int64_t{1} << shift) + e);
      edges.push_back(-(std::int64_t{1} << shift) + e);
    }
  }
  for (const std::int64_t n : edges) {
    for (const std::int64_t d : edges) expectSamePair(n, d);
  }
}

TEST(FractionReference, RandomPairsReduceAlike) {
  std::mt19937_64 random(47);
  const auto number = [&] { return static_cast<std::int64_t>(random()) >> (random() % 64); };
  for (int i = 0; i < 500000; ++i) {
    const std::int64_t shared = number() >> 32;
    expectSamePair(number(), number());
    expectSamePair((number() >> 32) * shared, (number() >> 32) * shared);
  }
}

}  // namespace
}  // namespace qx::detail
