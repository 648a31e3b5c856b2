// Sorting records in any order by distinct keys, in place.

#include "bench/growth/growth.h"

namespace bench {
namespace {

void sortBy(benchmark::State& state, const char* key) {
  const auto& all = dictionariesOf(sizeOf(state));
  const auto orderings =
      qx::array(qx::QXSortOrdering::sortOrderingWithKey(key, "compareAscending:"));
  growth(
      state, [&] { return qx::MutableArray::from(all->begin(), all->count()); },
      [&](const qx::Ref<qx::MutableArray>& copy) {
        sortUsingKeyOrderArray(copy, orderings);
        return nullptr;
      });
}

void sortByNumber(benchmark::State& state) { sortBy(state, "number"); }
void sortByName(benchmark::State& state) { sortBy(state, "name"); }
void sortByHand(benchmark::State& state) {
  growth(
      state, [&] { return pointersOf(sizeOf(state)); },
      [](auto& copy) {
        std::stable_sort(copy.begin(), copy.end(),
                         [](const auto& a, const auto& b) { return a->name < b->name; });
        return nullptr;
      });
}

BENCHMARK(sortByNumber)->Name("sort/dictionaries_by_number")->Apply(everySize);
BENCHMARK(sortByName)->Name("sort/dictionaries_by_name")->Apply(everySize);
BENCHMARK(sortByHand)->Name("sort/by_hand")->Apply(everySize);

}  // namespace
}  // namespace bench
