// Node: a script run beside, which measures itself and gives medians of its own.
#ifdef QX_BENCH_NODE

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>

#include "bench/qualifier_filter/measure.h"
#include "bench/qualifier_filter/records.h"

namespace bench {
namespace {

struct Figures {
  double nanoseconds = 0;
  std::size_t hits = 0;
  std::size_t sum = 0;  // of the places of the hits
};
using FiguresByQuery = std::map<int, Figures>;

void writeRows(const std::filesystem::path& file, std::size_t count) {
  std::ofstream out(file);
  for (const Row& row : rowsOf(count)) {
    out << row.name << '\t' << row.age << '\t' << row.city << '\t' << row.score << '\t';
    for (const std::string& tag : row.tags) out << tag << ' ';
    out << '\n';
  }
}

FiguresByQuery run(std::size_t count) {
  const auto file =
      std::filesystem::temp_directory_path() / ("qx-bench-rows-" + std::to_string(count) + ".tsv");
  writeRows(file, count);
  const std::string command =
      std::string(QX_BENCH_NODE) + " " QX_BENCH_DIR "/qualifier_filter/node.js " + file.string();
  FiguresByQuery figures;
  std::FILE* output = popen(command.c_str(), "r");
  int query = 0;
  Figures f;
  while (output != nullptr &&
         std::fscanf(output, "%d %lf %zu %zu", &query, &f.nanoseconds, &f.hits, &f.sum) == 4)
    figures[query] = f;
  if (output != nullptr) pclose(output);
  std::filesystem::remove(file);
  return figures;
}

void check(int query, std::size_t count, const Figures& figures) {
  const std::vector<Row>& rows = rowsOf(count);
  std::size_t sum = 0;
  for (std::size_t i = 0; i < count; ++i) sum += byHand(query, rows[i]) ? i : 0;
  checkHitCount("Node", query, count, figures.sum == sum ? figures.hits : ~std::size_t{0});
}

void node(benchmark::State& state) {
  static std::map<std::size_t, FiguresByQuery> known;
  const std::size_t count = countOf(state);
  if (known.count(count) == 0) known[count] = run(count);
  if (known[count].size() != 3) return state.SkipWithError("Node has not answered");
  const Figures& figures = known[count][queryOf(state)];
  check(queryOf(state), count, figures);
  for (auto _ : state)
    state.SetIterationTime(figures.nanoseconds * static_cast<double>(count) / 1e9);
  report(state, figures.nanoseconds, figures.hits);
}
void once(benchmark::internal::Benchmark* b) {
  eachQuery(b);
  b->Iterations(1);
}
BENCHMARK(node)->Apply(once);

}  // namespace
}  // namespace bench

#endif
