#pragma once

// Cost against size, from 100 elements to 1,000,000. All give nanoseconds an element as "ns".

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstddef>
#include <vector>

#include "bench/kept.h"
#include "bench/people.h"
#include "bench/values_support.h"

namespace bench {

inline void everySize(benchmark::internal::Benchmark* b) {
  b->RangeMultiplier(10)->Range(100, 1'000'000);
  b->UseManualTime()->Unit(benchmark::kMillisecond);
}

inline std::size_t sizeOf(const benchmark::State& state) {
  return static_cast<std::size_t>(state.range(0));
}

// Reports `seconds` of each of the iterations.
inline void reportGrowth(benchmark::State& state, double seconds) {
  state.counters["ns"] =
      1e9 * seconds / static_cast<double>(state.iterations()) / static_cast<double>(state.range(0));
}

// Times `work` on what `prepare` makes afresh for it. Small sizes are worked on several times
// between two looks at `now`, which would cost more than they: an iteration is all of them. What
// the work gives is freed afterwards.
template <class Prepare, class Work>
void growth(benchmark::State& state, Prepare prepare, Work work,
            double (*now)() = &qx::processorTime) {
  const std::size_t times = std::max<std::size_t>(1, 10'000 / sizeOf(state));
  std::vector<decltype(prepare())> inputs;
  std::vector<decltype(work(inputs[0]))> results;
  double total = 0;
  for (auto _ : state) {
    results.clear();
    inputs.clear();
    results.reserve(times);
    for (std::size_t i = 0; i < times; ++i) inputs.push_back(prepare());
    const double start = now();
    for (auto& input : inputs) results.push_back(work(input));
    const double took = now() - start;
    state.SetIterationTime(took);
    total += took;
  }
  reportGrowth(state, total / static_cast<double>(times));
}

// The same on what stays as it is.
template <class Work>
void growth(benchmark::State& state, Work work) {
  growth(state, [] { return nullptr; }, [&](std::nullptr_t) { return work(); });
}

// People with a number and a name of their own each.
inline const std::vector<Person>& peopleOf(std::size_t size) {
  return keptFor(size, [](std::size_t n) { return people(n, n); });
}
inline const qx::Ref<qx::MutableArray>& dictionariesOf(std::size_t size) {
  return keptFor(size, [](std::size_t n) { return dictionaries(peopleOf(n)); });
}
inline const qx::Ref<qx::MutableArray>& objectsOf(std::size_t size) {
  return keptFor(size, [](std::size_t n) { return objects(peopleOf(n)); });
}
inline const std::vector<std::shared_ptr<const Person>>& pointersOf(std::size_t size) {
  return keptFor(size, [](std::size_t n) { return pointers(peopleOf(n)); });
}

}  // namespace bench
