// Size texts, of numbers and of strings, beside snprintf with the same decisions. Both must give
// the same texts before anything is timed. Column ns: nanoseconds per text.

#include <cinttypes>
#include <random>
#include <vector>

#include <QXFoundation/size_formatter.h>
#include <QXFoundation/thousand_format.h>

#include "bench/values_support.h"

namespace bench {
namespace {

// Every order of magnitude alike.
const std::vector<std::int64_t>& counts() {
  static const std::vector<std::int64_t> all = [] {
    std::mt19937_64 random(17);
    std::vector<std::int64_t> made(20'000);
    for (std::int64_t& n : made) n = static_cast<std::int64_t>(random() >> (1 + random() % 63));
    return made;
  }();
  return all;
}

std::string printed(std::int64_t n) {
  char text[64];
  const auto print = [&](std::int64_t unit, std::int64_t step, const char* name) {
    const std::int64_t rest = n % unit / step;
    return rest != 0
               ? snprintf(text, sizeof text, "%" PRId64 ".%" PRId64 " %s", n / unit, rest, name)
               : snprintf(text, sizeof text, "%" PRId64 " %s", n / unit, name);
  };
  if (n >= 1000000000) {
    print(1000000000, 10000000, "GB");
  } else if (n >= 1000000) {
    print(1000000, 10000, "MB");
  } else if (n > 1000) {
    print(1000, 1, "KB");
  } else {
    snprintf(text, sizeof text, "%" PRId64 " bytes", n);
  }
  return text;
}

void ofNumber(benchmark::State& state) {
  const auto formatter = qx::QXSizeFormatter::init();
  std::vector<qx::PropertyValue> values(counts().begin(), counts().end());
  for (std::size_t i = 0; i < values.size(); ++i) {
    require(formatter->stringForObjectValue(values[i]) == printed(counts()[i]),
            printed(counts()[i]));
  }
  perItem(state, values,
          [&](const qx::PropertyValue& v) { return formatter->stringForObjectValue(v); });
}
void ofString(benchmark::State& state) {
  const auto formatter = qx::QXSizeFormatter::init();
  std::vector<qx::PropertyValue> values;
  for (const std::int64_t n : counts()) values.emplace_back(std::to_string(n));
  perItem(state, values,
          [&](const qx::PropertyValue& v) { return formatter->stringForObjectValue(v); });
}
void bySnprintf(benchmark::State& state) { perItem(state, counts(), printed); }
void thousands(benchmark::State& state) { perItem(state, counts(), qx::thousandFormat); }

BENCHMARK(ofNumber);
BENCHMARK(bySnprintf);
BENCHMARK(ofString);
BENCHMARK(thousands);

}  // namespace
}  // namespace bench
