// Inserting 100,000 records one after the other into a sorted array; beside it a vector of pointers
// to structs with lower_bound. All give ns an insertion.

#include <benchmark/benchmark.h>

#include "bench/people.h"
#include "tests/support/processor_time.h"

namespace {

using bench::Person;

constexpr std::size_t kCount = 100000;

// In the order in which they are inserted: any, or that of the numbers.
const std::vector<Person>& people(bool inOrder) {
  static const auto* any = new std::vector<Person>(bench::people(kCount, kCount));
  static const auto* sorted = [] {
    auto* copy = new std::vector<Person>(*any);
    std::sort(copy->begin(), copy->end(),
              [](const Person& a, const Person& b) { return a.number < b.number; });
    return copy;
  }();
  return inOrder ? *sorted : *any;
}

template <class Insert>
void measure(benchmark::State& state, Insert insertAll) {
  double seconds = 0;
  for (auto _ : state) {
    const double start = qx::processorTime();
    insertAll();
    const double took = qx::processorTime() - start;
    state.SetIterationTime(took);
    seconds += took;
  }
  state.counters["ns_per_insertion"] =
      seconds * 1e9 / static_cast<double>(state.iterations()) / kCount;
}

void intoArray(benchmark::State& state, const qx::Array& elements, const char* key) {
  const auto ordering = qx::QXSortOrdering::sortOrderingWithKey(key, "compareAscending:");
  measure(state, [&] {
    const auto array = qx::MutableArray::init();
    for (const qx::PropertyValue& element : elements)
      insertObjectInSortedArray(array, element, ordering);
    benchmark::DoNotOptimize(array->begin());
  });
}

void dictionaries(benchmark::State& state, const char* key, bool inOrder) {
  intoArray(state, *bench::dictionaries(people(inOrder)), key);
}
void objects(benchmark::State& state, const char* key, bool inOrder) {
  intoArray(state, *bench::objects(people(inOrder)), key);
}

template <class Field>
void vectorWithLowerBound(benchmark::State& state, Field Person::* field, bool inOrder) {
  measure(state, [&] {
    std::vector<const Person*> sorted;
    for (const Person& p : people(inOrder)) {
      sorted.insert(
          std::lower_bound(sorted.begin(), sorted.end(), &p,
                           [&](const Person* a, const Person* b) { return a->*field < b->*field; }),
          &p);
    }
    benchmark::DoNotOptimize(sorted.data());
  });
}

template <class Run, class... A>
void add(const std::string& name, Run run, A... arguments) {
  benchmark::RegisterBenchmark(name.c_str(), run, arguments...)
      ->UseManualTime()
      ->Unit(benchmark::kMillisecond);
}

void addAll(const std::string& order, bool inOrder) {
  for (const char* key : {"number", "name"}) {
    add("Insertion/dictionaries/" + order + "/" + key, &dictionaries, key, inOrder);
    add("Insertion/objects/" + order + "/" + key, &objects, key, inOrder);
  }
  add("Insertion/vector_lower_bound/" + order + "/number", &vectorWithLowerBound<std::int64_t>,
      &Person::number, inOrder);
  add("Insertion/vector_lower_bound/" + order + "/name", &vectorWithLowerBound<std::string>,
      &Person::name, inOrder);
}

const bool added = (addAll("any_order", false), addAll("by_number", true), true);

}  // namespace
