#pragma once

// Timing one way of filtering, after its hits were compared with those of the loop by hand.
//
// Columns: ns (nanoseconds per record, median of the repetitions), ratio (to the lambda over
// shared_ptr of the same query and number of records, when that ran before), hits (share of the
// records).

#include <benchmark/benchmark.h>

#include <cstddef>
#include <functional>
#include <vector>

namespace bench {

// The places of the records that are hits.
using Hits = std::vector<std::size_t>;
// Ends the program where `hits` are not those of the query over that many records.
void checkHits(const char* way, int query, std::size_t count, const Hits& hits);
// The same where only the number of the hits is known.
void checkHitCount(const char* way, int query, std::size_t count, std::size_t hits);

// Times `filter`, which gives the number of hits; processor time of the thread.
void measure(benchmark::State& state, const std::function<std::size_t(int, std::size_t)>& filter,
             bool isBaseline = false);
// Reports what was measured elsewhere, in nanoseconds per record.
void report(benchmark::State& state, double nanoseconds, std::size_t hits);

inline int queryOf(const benchmark::State& state) { return static_cast<int>(state.range(0)); }
inline std::size_t countOf(const benchmark::State& state) {
  return static_cast<std::size_t>(state.range(1));
}

// Three queries over few records, which stay in the caches, and over many.
void eachQuery(benchmark::internal::Benchmark* b);

}  // namespace bench
