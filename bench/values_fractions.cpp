// Making fractions: from integers beside std::gcd on the same pairs and boost::rational, and from
// doubles. Every way must reduce alike before anything is timed. Column ns: nanoseconds per
// fraction.

#include <boost/rational.hpp>
#include <cstdint>
#include <numeric>
#include <random>
#include <utility>
#include <vector>

#include <QXFoundation/fraction_number.h>

#include "bench/values_support.h"

namespace bench {
namespace {

// So many that the processor does not learn them by heart: std::gcd branches on every bit.
constexpr std::size_t kCount = 100'000;

using Pair = std::pair<std::int64_t, std::int64_t>;

// Pairs of up to that many bits, of both signs.
std::vector<Pair> pairs(std::int64_t bits) {
  std::mt19937_64 random(11);
  const auto number = [&] { return static_cast<std::int64_t>(random() >> (65 - bits)) + 1; };
  std::vector<Pair> made(kCount);
  for (Pair& p : made) p = {random() % 2 == 0 ? number() : -number(), number()};
  return made;
}

std::vector<double> doubles() {
  std::mt19937_64 random(13);
  std::uniform_real_distribution<double> small(-1000, 1000);
  std::vector<double> made(kCount);
  for (double& x : made) x = small(random);
  return made;
}

void requireReduced(const std::vector<Pair>& all) {
  for (const auto& [n, d] : all) {
    const auto f = qx::QXFractionNumber::initWithNumerator(n, d);
    const boost::rational<std::int64_t> r(n, d);
    const std::int64_t g = n == 1 || d == 1 ? 1 : std::gcd(n, d);
    require(f->numerator() == n / g && f->denominator() == d / g, "a fraction");
    require(f->numerator() == r.numerator() && f->denominator() == r.denominator(), "a rational");
  }
}

void fromIntegers(benchmark::State& state) {
  const auto all = pairs(state.range(0));
  requireReduced(all);
  perItem(state, all,
          [](const Pair& p) { return qx::QXFractionNumber::initWithNumerator(p.first, p.second); });
}
void gcdAlone(benchmark::State& state) {
  perItem(state, pairs(state.range(0)), [](const Pair& p) { return std::gcd(p.first, p.second); });
}
void rational(benchmark::State& state) {
  perItem(state, pairs(state.range(0)),
          [](const Pair& p) { return boost::rational<std::int64_t>(p.first, p.second); });
}
void fromDouble(benchmark::State& state) {
  perItem(state, doubles(), [](double x) { return qx::QXFractionNumber::initWithDouble(x); });
}
void description(benchmark::State& state) {
  std::vector<qx::Ref<qx::QXFractionNumber>> fractions;
  for (const auto& [n, d] : pairs(20))
    fractions.push_back(qx::QXFractionNumber::initWithNumerator(n, d));
  perItem(state, fractions, [](const auto& f) { return f->description(); });
}

// Numbers of up to so many bits.
BENCHMARK(fromIntegers)->Arg(8)->Arg(20)->Arg(40)->Arg(63);
BENCHMARK(gcdAlone)->Arg(8)->Arg(20)->Arg(40)->Arg(63);
BENCHMARK(rational)->Arg(8)->Arg(20)->Arg(40)->Arg(63);
BENCHMARK(fromDouble);
BENCHMARK(description);

}  // namespace
}  // namespace bench
