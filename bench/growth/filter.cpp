// Filtering by a number and the beginning of a name, beside the loop that a program would write.

#include "bench/growth/growth.h"

namespace bench {
namespace {

// Two thirds have such a number, one of 26 of these such a name.
qx::Ref<qx::QXQualifier> queryFor(std::size_t size) {
  return qx::qualifierWithQualifierFormat("number > %d and name like %@",
                                          static_cast<std::int64_t>(size / 3), "J*");
}

std::vector<std::shared_ptr<const Person>> byHand(std::size_t size) {
  const auto least = static_cast<std::int64_t>(size / 3);
  std::vector<std::shared_ptr<const Person>> hits;
  for (const auto& p : pointersOf(size)) {
    if (p->number > least && p->name[0] == 'J') hits.push_back(p);
  }
  return hits;
}

void filter(benchmark::State& state, const qx::Ref<qx::MutableArray>& all) {
  const auto query = queryFor(sizeOf(state));
  const auto work = [&] { return filteredArrayUsingQualifier(all, query); };
  require(work()->count() == byHand(sizeOf(state)).size(), "hits");
  growth(state, work);
}

void filterDictionaries(benchmark::State& state) { filter(state, dictionariesOf(sizeOf(state))); }
void filterObjects(benchmark::State& state) { filter(state, objectsOf(sizeOf(state))); }
void filterByHand(benchmark::State& state) {
  growth(state, [&] { return byHand(sizeOf(state)); });
}

BENCHMARK(filterDictionaries)->Name("filter/dictionaries")->Apply(everySize);
BENCHMARK(filterObjects)->Name("filter/objects")->Apply(everySize);
BENCHMARK(filterByHand)->Name("filter/by_hand")->Apply(everySize);

}  // namespace
}  // namespace bench
