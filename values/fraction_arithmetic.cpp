#include "values/fraction_arithmetic.h"

#include <bit>
#include <cmath>
#include <limits>
#include <utility>

#include "values/truncation.h"

namespace qx::detail {
namespace {

// Two signed numbers as the bits that wrap.
std::int64_t wrappedSum(std::int64_t a, std::int64_t b) {
  return static_cast<std::int64_t>(static_cast<std::uint64_t>(a) + static_cast<std::uint64_t>(b));
}
std::int64_t wrappedProduct(std::int64_t a, std::int64_t b) {
  return static_cast<std::int64_t>(static_cast<std::uint64_t>(a) * static_cast<std::uint64_t>(b));
}

// The least integer over -1 is the one quotient that does not fit: it wraps to the least integer.
std::int64_t divided(std::int64_t n, std::int64_t divisor) {
  return divisor == -1 ? negated(n) : n / divisor;
}

// Halving and subtracting: some three times as fast as remainders. a, b <= 2^63, so that
// differences of their odd parts have a sign. Which part is the less is decided by masks of that
// sign: it is as good as random, and a wrongly predicted jump costs more than the rest of a round
// (g++ makes one even of a conditional expression).
std::uint64_t binaryGcd(std::uint64_t a, std::uint64_t b) {
  if (a == 0) return b;
  if (b == 0) return a;
  const int shared = std::countr_zero(a | b);
  a >>= std::countr_zero(a);
  b >>= std::countr_zero(b);
  auto difference = static_cast<std::int64_t>(a - b);
  while (difference != 0) {
    // The zeros of the difference are those of its negative, so that counting need not wait for the
    // sign.
    const int zeros = std::countr_zero(static_cast<std::uint64_t>(difference));
    const std::int64_t sign = difference >> 63;
    b += static_cast<std::uint64_t>(difference & sign);
    difference = (difference ^ sign) - sign;
    difference = (difference >> zeros) - static_cast<std::int64_t>(b);
  }
  return b << shared;
}

}  // namespace

std::int64_t quotient(FractionPair pair) noexcept {
  return divided(pair.numerator, pair.denominator);
}
std::int64_t remainder(FractionPair pair) noexcept {
  return pair.denominator == -1 ? 0 : pair.numerator % pair.denominator;
}
double realQuotient(FractionPair pair) noexcept {
  return static_cast<double>(pair.numerator) / static_cast<double>(pair.denominator);
}

std::int64_t signedGcd(std::int64_t a, std::int64_t b) noexcept {
  while (b != 0) {
    const std::int64_t rest = remainder({a, b});
    a = std::exchange(b, rest);
  }
  return a;
}

FractionPair normalized(FractionPair pair) noexcept {
  constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();
  auto& [n, d] = pair;
  if (n != 1 && d != 1) {
    // The divisor's sign goes away again with that of the denominator, unless this has none to
    // change.
    const std::int64_t g = d == kLeast || d == 0
                               ? signedGcd(n, d)
                               : static_cast<std::int64_t>(binaryGcd(magnitude(n), magnitude(d)));
    if (g < 0 || g > 1) pair = {divided(n, g), divided(d, g)};
  }
  if (d < 0) pair = {negated(n), negated(d)};
  return pair;
}

namespace {

// The partial quotients of an expansion: the last, and those before it, of which there are `count`
// (1 to 3).
struct Expansion {
  std::int64_t quotients[3];
  int count;
  std::int64_t last;
};

Expansion expand(std::int64_t first, double rest) {
  Expansion e{{first}, 1, 0};
  for (;; ++e.count) {
    const double reciprocal = 1 / rest;
    e.last = truncated<std::int64_t>(std::floor(reciprocal));
    rest = reciprocal - static_cast<double>(e.last);
    if (rest == 0 || e.count == 3) return e;
    e.quotients[e.count] = e.last;
  }
}

// The last quotient is added to the one before it, where a continued fraction would be inverted.
FractionPair evaluate(const Expansion& e) {
  const std::int64_t before = e.quotients[e.count - 1];
  if (before == 0) return {1, e.last};
  const std::int64_t sum = wrappedSum(before, e.last);
  if (e.count == 1) return {sum, 1};
  const std::int64_t second = e.quotients[e.count - 2];
  if (second == 0) return {sum, 1};
  const std::int64_t product = wrappedSum(wrappedProduct(second, sum), 1);
  if (e.count == 2 || e.quotients[0] == 0) return {product, sum};
  return {wrappedSum(wrappedProduct(e.quotients[0], product), sum), product};
}

}  // namespace

FractionPair expanded(double x) noexcept {
  const auto whole = truncated<std::int64_t>(x);
  if (x == static_cast<double>(whole)) return {whole, 1};
  const double size = std::fabs(x);
  const auto first = truncated<std::int64_t>(std::floor(size));
  const double rest = size - static_cast<double>(first);
  FractionPair pair = rest == 0 ? FractionPair{1, first} : evaluate(expand(first, rest));
  if (!(x > 0)) pair.numerator = negated(pair.numerator);
  return pair;
}

}  // namespace qx::detail
