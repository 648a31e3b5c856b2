#pragma once

// Ways to do one thing, timed in turns.

#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "tests/support/processor_time.h"

namespace bench {

struct Way {
  std::string name;
  std::function<void()> work;
};

// Runs the ways in turns, so that all meet the same machine, and shows the best time of each, by
// `units` of work: nanoseconds under its name, and for all but the first, as NAME/first, how many
// times longer it takes than the first.
inline void compareWays(benchmark::State& state, const std::vector<Way>& ways, double units,
                        int turns = 15) {
  std::vector<double> best(ways.size(), std::numeric_limits<double>::max());
  for (auto _ : state) {
    for (int turn = 0; turn < turns; ++turn) {
      for (std::size_t i = 0; i < ways.size(); ++i) {
        const double start = qx::processorTime();
        ways[i].work();
        best[i] = std::min(best[i], qx::processorTime() - start);
      }
    }
  }
  for (std::size_t i = 0; i < ways.size(); ++i) {
    state.counters[ways[i].name] = best[i] * 1e9 / units;
    if (i != 0) state.counters[ways[i].name + "/" + ways[0].name] = best[i] / best[0];
  }
}

// Ends the program where a way does not do the work: its time would mean nothing.
inline void require(bool isRight, const std::string& what) {
  if (isRight) return;
  std::fprintf(stderr, "wrong result: %s\n", what.c_str());
  std::exit(1);
}

}  // namespace bench
