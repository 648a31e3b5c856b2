#pragma once

// What the benchmarks of values share: each does one thing to every item of a list.

#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "tests/support/processor_time.h"

namespace bench {

// Calls `work` for every item in each iteration, and shows nanoseconds per item.
template <class Items, class Work>
void perItem(benchmark::State& state, const Items& items, Work work) {
  double total = 0;
  for (auto _ : state) {
    const double start = qx::processorTime();
    for (const auto& item : items) benchmark::DoNotOptimize(work(item));
    total += qx::processorTime() - start;
  }
  state.counters["ns"] =
      1e9 * total / static_cast<double>(state.iterations()) / static_cast<double>(items.size());
}

// Ends the program where a way to do the work does not do it: its time would mean nothing.
inline void require(bool isRight, const std::string& what) {
  if (isRight) return;
  std::fprintf(stderr, "wrong result: %s\n", what.c_str());
  std::exit(1);
}

}  // namespace bench
