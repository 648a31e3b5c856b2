#include "bench/qualifier_filter/measure.h"

#include <cstdio>
#include <cstdlib>
#include <map>
#include <random>
#include <utility>

#include "bench/qualifier_filter/records.h"
#include "tests/support/processor_time.h"

namespace bench {
namespace {

constexpr const char* kCities[] = {"Oslo",  "Rome",  "Paris", "Lima",
                                   "Cairo", "Quito", "Tokyo", "Delhi"};
constexpr const char* kTags[] = {"red", "green", "blue", "new", "used"};

std::vector<Row> makeRows(std::size_t count) {
  std::mt19937 random(42);
  std::vector<Row> rows(count);
  for (Row& row : rows) {
    row.name.resize(8 + random() % 13);
    for (char& c : row.name) c = static_cast<char>('a' + random() % 26);
    row.name[0] = static_cast<char>('A' + random() % 26);
    row.age = static_cast<int>(random() % 100);
    row.city = kCities[random() % std::size(kCities)];
    row.score = static_cast<double>(random() % 1000) / 1000;
    for (std::size_t n = random() % 4; n > 0; --n)
      row.tags.emplace_back(kTags[random() % std::size(kTags)]);
  }
  return rows;
}

const Hits& expectedHits(int query, std::size_t count) {
  static std::map<std::pair<int, std::size_t>, Hits> known;
  const auto [place, isNew] = known.try_emplace({query, count});
  if (isNew) {
    const std::vector<Row>& rows = rowsOf(count);
    for (std::size_t i = 0; i < count; ++i) {
      if (byHand(query, rows[i])) place->second.push_back(i);
    }
  }
  return place->second;
}

void require(bool same, const char* way, int query) {
  if (same) return;
  std::fprintf(stderr, "different hits of query %d: %s\n", query, way);
  std::exit(1);
}

// Nanoseconds per record of the lambda over shared_ptr.
double& baselineOf(const benchmark::State& state) {
  static std::map<std::pair<int, std::size_t>, double> baselines;
  return baselines[{queryOf(state), countOf(state)}];
}

}  // namespace

const std::vector<Row>& rowsOf(std::size_t count) {
  static std::map<std::size_t, std::vector<Row>> made;
  std::vector<Row>& rows = made[count];
  if (rows.empty()) rows = makeRows(count);
  return rows;
}

void checkHits(const char* way, int query, std::size_t count, const Hits& hits) {
  require(hits == expectedHits(query, count), way, query);
}

void checkHitCount(const char* way, int query, std::size_t count, std::size_t hits) {
  require(hits == expectedHits(query, count).size(), way, query);
}

void report(benchmark::State& state, double nanoseconds, std::size_t hits) {
  state.counters["ns"] = nanoseconds;
  state.counters["hits"] = static_cast<double>(hits) / static_cast<double>(countOf(state));
  if (baselineOf(state) != 0) state.counters["ratio"] = nanoseconds / baselineOf(state);
}

void measure(benchmark::State& state, const std::function<std::size_t(int, std::size_t)>& filter,
             bool isBaseline) {
  double total = 0;
  std::size_t hits = 0;
  for (auto _ : state) {
    const double start = qx::processorTime();
    hits = filter(queryOf(state), countOf(state));
    const double took = qx::processorTime() - start;
    state.SetIterationTime(took);
    total += took;
  }
  const double ns =
      1e9 * total / static_cast<double>(state.iterations()) / static_cast<double>(countOf(state));
  if (isBaseline) baselineOf(state) = ns;
  report(state, ns, hits);
}

void eachQuery(benchmark::internal::Benchmark* b) {
  for (const long count : {10'000L, 1'000'000L}) {
    for (const long query : {1L, 2L, 3L}) b->Args({query, count});
  }
  b->ArgNames({"Q", "records"})->UseManualTime()->Unit(benchmark::kMillisecond);
}

}  // namespace bench
