// The loop that an application would write: a lambda over structs, and over shared_ptr to them.

#include <memory>
#include <vector>

#include "bench/qualifier_filter/measure.h"
#include "bench/qualifier_filter/records.h"

namespace bench {
namespace {

using Pointers = std::vector<std::shared_ptr<Row>>;

Pointers pointersTo(const std::vector<Row>& rows) {
  Pointers made;
  for (const Row& row : rows) made.push_back(std::make_shared<Row>(row));
  return made;
}

void sharedPointersByHand(benchmark::State& state) {
  const Pointers pointers = pointersTo(rowsOf(countOf(state)));
  measure(
      state,
      [&](int query, std::size_t) {
        Pointers hits;
        for (const auto& p : pointers) {
          if (byHand(query, *p)) hits.push_back(p);
        }
        return hits.size();
      },
      /*isBaseline=*/true);
}

void structsByHand(benchmark::State& state) {
  const std::vector<Row>& rows = rowsOf(countOf(state));
  measure(state, [&](int query, std::size_t) {
    std::vector<const Row*> hits;
    for (const Row& row : rows) {
      if (byHand(query, row)) hits.push_back(&row);
    }
    return hits.size();
  });
}

BENCHMARK(sharedPointersByHand)->Apply(eachQuery);
BENCHMARK(structsByHand)->Apply(eachQuery);

}  // namespace
}  // namespace bench
