// Operations on arrays, beside loops as one writes them by hand that retain what these retain;
// shuffling, beside the calls of random() that it makes; and membership of 100,000 elements in
// 100,000, alone. Times in nanoseconds for each element; "loop/ours" is how many times longer the
// loop takes.

#include <stdlib.h>

#include <vector>

#include <QXFoundation/QXFoundation.h>

#include "bench/ways.h"

namespace bench {
namespace {

using qx::PropertyValue;

qx::Ref<qx::Array> names(std::size_t count, std::size_t first = 0) {
  const auto all = qx::MutableArray::arrayWithCapacity(count);
  for (std::size_t i = 0; i < count; ++i) all->addObject("name " + std::to_string(first + i));
  return qx::Array::from(all->begin(), all->count());
}
qx::Ref<qx::Array> numbers(std::size_t count) {
  const auto all = qx::MutableArray::arrayWithCapacity(count);
  for (std::size_t i = 0; i < count; ++i) all->addObject(i);
  return qx::Array::from(all->begin(), all->count());
}

const auto isKept = [](const PropertyValue& v) { return (v.object()->hash() & 1) != 0; };

void map(benchmark::State& state) {
  const auto count = static_cast<std::size_t>(state.range(0));
  const auto a = names(count);
  const auto same = [](const PropertyValue& v) { return v; };
  compareWays(state,
              {{"ours", [&] { benchmark::DoNotOptimize(qxMap(a, same)); }},
               {"loop",
                [&] {
                  std::vector<PropertyValue> all;
                  all.reserve(count);
                  for (const PropertyValue& v : *a) all.push_back(same(v));
                  benchmark::DoNotOptimize(all.data());
                }},
               {"loop_array",
                [&] {
                  const auto all = qx::MutableArray::arrayWithCapacity(count);
                  for (const PropertyValue& v : *a) all->addObject(same(v));
                  benchmark::DoNotOptimize(all.get());
                }}},
              static_cast<double>(count));
}

void filter(benchmark::State& state) {
  const auto count = static_cast<std::size_t>(state.range(0));
  const auto a = names(count);
  compareWays(state,
              {{"ours", [&] { benchmark::DoNotOptimize(qxFilter(a, isKept)); }},
               {"loop",
                [&] {
                  std::vector<PropertyValue> all;
                  for (const PropertyValue& v : *a) {
                    if (isKept(v)) all.push_back(v);
                  }
                  benchmark::DoNotOptimize(all.data());
                }},
               {"loop_array",
                [&] {
                  const auto all = qx::MutableArray::init();
                  for (const PropertyValue& v : *a) {
                    if (isKept(v)) all->addObject(v);
                  }
                  benchmark::DoNotOptimize(all.get());
                }}},
              static_cast<double>(count));
}

void reduce(benchmark::State& state) {
  const auto count = static_cast<std::size_t>(state.range(0));
  const auto a = numbers(count);
  const auto add = [](const PropertyValue& sum, const PropertyValue& v) {
    return sum.integerValue() + v.integerValue();
  };
  compareWays(state,
              {{"ours", [&] { benchmark::DoNotOptimize(qxReduce(a, 0, add)); }},
               {"loop",
                [&] {
                  PropertyValue sum = 0;
                  for (const PropertyValue& v : *a) sum = add(sum, v);
                  benchmark::DoNotOptimize(sum);
                }}},
              static_cast<double>(count));
}

void shuffle(benchmark::State& state) {
  const auto count = static_cast<std::size_t>(state.range(0));
  const auto fixed = names(count);
  const auto a = qx::MutableArray::from(fixed->begin(), count);
  compareWays(state,
              {{"random",
                [&] {
                  for (std::size_t i = 0; i + 1 < count; ++i) benchmark::DoNotOptimize(::random());
                }},
               {"shuffle", [&] { kwRandomize(a); }}},
              static_cast<double>(count));
}

void membership(benchmark::State& state) {
  constexpr std::size_t kCount = 100'000;
  constexpr double kMilliseconds = 1e6;
  const auto a = names(kCount);
  const auto b = names(kCount, kCount / 2);
  const auto changed = [&](void (*change)(qx::In<qx::MutableArray>, qx::In<qx::Array>)) {
    const auto copy = qx::MutableArray::from(a->begin(), kCount);
    change(copy, b);
    benchmark::DoNotOptimize(copy->count());
  };
  compareWays(
      state,
      {{"intersect_ms", [&] { benchmark::DoNotOptimize(subarrayByIntersectingWithArray(a, b)); }},
       {"difference_ms", [&] { benchmark::DoNotOptimize(subarrayByDifferenceWithArray(a, b)); }},
       {"add_absent_ms", [&] { changed(&qx::addObjectsFromArrayIfAbsent); }},
       {"remove_others_ms", [&] { changed(&qx::removeObjectsNotInArray); }},
       {"remove_equal_ms", [&] { changed(&qx::removeObjectsInArrayUsingIsEqual); }}},
      kMilliseconds, 5);
}

void sizes(benchmark::internal::Benchmark* b) { b->Iterations(1)->Arg(1000)->Arg(100'000); }
BENCHMARK(map)->Apply(sizes);
BENCHMARK(filter)->Apply(sizes);
BENCHMARK(reduce)->Apply(sizes);
BENCHMARK(shuffle)->Apply(sizes);
BENCHMARK(membership)->Iterations(1);

}  // namespace
}  // namespace bench
