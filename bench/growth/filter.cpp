// Filtering by a number and the beginning of a name, beside the loop that a program would write.

#include "bench/growth/growth.h"

namespace bench {
namespace {

// Two thirds have such a number, one of 26 of these such a name.
qx::Ref<qx::QXQualifier> queryFor(std::size_t size) {
  return qx::qualifierWithQualifierFormat("number > %d and name like %@",
                                          static_cast<std::int64_t>(size / 3), "J*");
}

using Pointers = std::vector<std::shared_ptr<const Person>>;

Pointers byHand(const Pointers& all) {
  const auto least = static_cast<std::int64_t>(all.size() / 3);
  Pointers hits;
  for (const auto& p : all) {
    if (p->number > least && p->name[0] == 'J') hits.push_back(p);
  }
  return hits;
}

void filter(benchmark::State& state, const qx::Ref<qx::MutableArray>& all) {
  const auto query = queryFor(sizeOf(state));
  const auto work = [&] { return filteredArrayUsingQualifier(all, query); };
  require(work()->count() == byHand(pointersOf(sizeOf(state))).size(), "hits");
  growth(state, work);
}

void filterDictionaries(benchmark::State& state) { filter(state, dictionariesOf(sizeOf(state))); }
void filterObjects(benchmark::State& state) { filter(state, objectsOf(sizeOf(state))); }
void filterByHand(benchmark::State& state) {
  const Pointers& all = pointersOf(sizeOf(state));
  growth(state, [&] { return byHand(all); });
}

BENCHMARK(filterDictionaries)->Name("filter/dictionaries")->Apply(everySize);
BENCHMARK(filterObjects)->Name("filter/objects")->Apply(everySize);
BENCHMARK(filterByHand)->Name("filter/by_hand")->Apply(everySize);

}  // namespace
}  // namespace bench
