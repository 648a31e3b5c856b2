// The library over dictionaries of one and of many layouts, over described objects, and over plain
// structs. Column bytes: memory per record.

#include <malloc.h>

#include <algorithm>
#include <map>
#include <memory>
#include <numeric>
#include <random>
#include <string>
#include <vector>

#include <QXFoundation/filter.h>
#include <QXFoundation/qualifier.h>
#include <QXFoundation/qualifier_key.h>

#include "bench/qualifier_filter/measure.h"
#include "bench/qualifier_filter/records.h"
#include "frame/object_memory.h"

namespace bench {

void describe(qx::ClassBuilder<Row>& c) {
  c.name("BenchRow").property("name", &Row::name).property("age", &Row::age);
  c.property("city", &Row::city).property("score", &Row::score);
}

class Person : public qx::Object, public Row {};
void describe(qx::ClassBuilder<Person>& c) {
  c.name("BenchPerson").property("name", &Person::name).property("age", &Person::age);
  c.property("city", &Person::city).property("score", &Person::score);
}

namespace {

using Values = std::vector<qx::PropertyValue>;

qx::Ref<qx::QXQualifier> query(int n) {
  if (n == 1) return qx::qualifierWithQualifierFormat("age > %d", 30);
  if (n == 2) return qx::qualifierWithQualifierFormat("age > %d and name like %@", 30, "J*");
  return qx::QXAndQualifier::initWithQualifiers(
      qx::key("city") == "Oslo" || qx::key("city") == "Rome", qx::key("score") >= 0.5,
      !qx::key("name").like("*x*"));
}

// Its entries in the layout's order of the keys.
qx::PropertyValue dictionaryOf(const Row& row, const std::vector<std::size_t>& layout) {
  const Values tags(row.tags.begin(), row.tags.end());
  const qx::Entry entries[] = {{"name", row.name},
                               {"age", row.age},
                               {"city", row.city},
                               {"score", row.score},
                               {"tags", qx::Array::from(tags.data(), tags.size())}};
  std::vector<qx::Entry> ordered;
  for (const std::size_t key : layout) ordered.push_back(entries[key]);
  return qx::Dictionary::from(ordered.data(), ordered.size());
}

// Of `layouts` layouts, one after the other in random order.
Values dictionariesOf(const std::vector<Row>& rows, std::size_t layouts) {
  std::vector<std::vector<std::size_t>> orders(layouts, {0, 1, 2, 3, 4});
  for (std::size_t i = 1; i < layouts; ++i) {
    orders[i] = orders[i - 1];
    std::next_permutation(orders[i].begin(), orders[i].end());
  }
  std::mt19937 random(5);
  Values made;
  made.reserve(rows.size());
  for (const Row& row : rows) made.push_back(dictionaryOf(row, orders[random() % layouts]));
  return made;
}

Values peopleOf(const std::vector<Row>& rows) {
  Values made;
  for (const Row& row : rows) {
    auto person = qx::make<Person>();
    static_cast<Row&>(*person) = row;
    made.emplace_back(person);
  }
  return made;
}

// The elements of one benchmark, in their order, and shuffled.
struct Elements {
  explicit Elements(const Values& values) : inOrder(qx::Array::from(values.data(), values.size())) {
    Values other = values;
    std::shuffle(other.begin(), other.end(), std::mt19937(7));
    shuffled = qx::Array::from(other.data(), other.size());
  }
  qx::Ref<qx::Array> inOrder;
  qx::Ref<qx::Array> shuffled;
  double bytes = 0;
};

std::size_t bytesInUse() {
  return mallinfo2().uordblks + mallinfo2().hblkhd + qx::detail::ObjectMemory::bytesInUse();
}

template <class Make>
Elements measured(Make make, std::size_t count) {
  const std::size_t before = bytesInUse();
  const Values values = make();
  // Less the room of the values' own list.
  const auto bytes = static_cast<double>(bytesInUse() - before) -
                     static_cast<double>(values.capacity() * sizeof(values[0]));
  Elements elements(values);
  elements.bytes = bytes / static_cast<double>(count);
  return elements;
}

// Made once for each number of records, and kept for all repetitions.
const Elements& dictionaries(std::size_t count, std::size_t layouts) {
  static std::map<std::pair<std::size_t, std::size_t>, Elements> known;
  const auto key = std::pair(count, layouts);
  auto place = known.find(key);
  if (place == known.end()) {
    const std::vector<Row>& rows = rowsOf(count);
    const auto make = [&] { return dictionariesOf(rows, layouts); };
    place = known.emplace(key, measured(make, count)).first;
  }
  return place->second;
}

const Elements& people(std::size_t count) {
  static std::map<std::size_t, Elements> known;
  auto place = known.find(count);
  if (place == known.end()) {
    const std::vector<Row>& rows = rowsOf(count);
    place = known.emplace(count, measured([&] { return peopleOf(rows); }, count)).first;
  }
  return place->second;
}

void check(const char* way, int n, const Elements& elements) {
  const qx::Array& all = *elements.inOrder;
  const auto hits = filteredArrayUsingQualifier(elements.inOrder, query(n));
  Hits places;
  std::size_t next = 0;
  for (std::size_t i = 0; i < all.count() && next < hits->count(); ++i) {
    if (!isSame(all.begin()[i], hits->begin()[next])) continue;
    places.push_back(i);
    ++next;
  }
  checkHits(way, n, all.count(), places);
  checkHitCount(way, n, all.count(),
                filteredArrayUsingQualifier(elements.shuffled, query(n))->count());
}

std::size_t filterOf(const qx::Ref<qx::Array>& array, int n) {
  return filteredArrayUsingQualifier(array, query(n))->count();
}

void overDictionaries(benchmark::State& state) {
  const auto layouts = static_cast<std::size_t>(state.range(2));
  const Elements& all = dictionaries(countOf(state), layouts);
  check("dictionaries", queryOf(state), all);
  measure(state, [&](int n, std::size_t) { return filterOf(all.inOrder, n); });
  state.counters["bytes"] = all.bytes;
}

void overShuffledDictionaries(benchmark::State& state) {
  const Elements& all = dictionaries(countOf(state), 1);
  check("dictionaries", queryOf(state), all);
  measure(state, [&](int n, std::size_t) { return filterOf(all.shuffled, n); });
}

void overObjects(benchmark::State& state) {
  const Elements& all = people(countOf(state));
  check("objects", queryOf(state), all);
  measure(state, [&](int n, std::size_t) { return filterOf(all.inOrder, n); });
  state.counters["bytes"] = all.bytes;
}

void overStructs(benchmark::State& state) {
  const std::vector<Row>& rows = rowsOf(countOf(state));
  const auto filter = [&](int n, std::size_t) {
    const qx::Matching<Row> matching(query(n));
    std::vector<const Row*> hits;
    for (const Row& row : rows) {
      if (matching(row)) hits.push_back(&row);
    }
    return hits;
  };
  Hits places;
  for (const Row* hit : filter(queryOf(state), 0))
    places.push_back(static_cast<std::size_t>(hit - rows.data()));
  checkHits("structs", queryOf(state), rows.size(), places);
  measure(state, [&](int n, std::size_t count) { return filter(n, count).size(); });
}

void dictionariesOneByOne(benchmark::State& state) {
  const Elements& all = dictionaries(countOf(state), 1);
  const auto filter = [&](int n, std::size_t) {
    const auto q = query(n);
    std::size_t hits = 0;
    for (const qx::PropertyValue& d : *all.inOrder) hits += q->evaluateWithObject(d);
    return hits;
  };
  checkHitCount("one by one", queryOf(state), countOf(state), filter(queryOf(state), 0));
  measure(state, filter);
}

// Reading the format and preparing the program, without records.
void parseAndBind(benchmark::State& state) {
  const auto none = qx::array();
  for (auto _ : state) benchmark::DoNotOptimize(filteredArrayUsingQualifier(none, query(2)));
}

void eachQueryAndLayout(benchmark::internal::Benchmark* b) {
  for (const long count : {10'000L, 1'000'000L}) {
    for (const long layouts : {1L, 8L, 64L}) {
      for (const long n : {1L, 2L, 3L}) b->Args({n, count, layouts});
    }
  }
  b->ArgNames({"Q", "records", "layouts"})->UseManualTime()->Unit(benchmark::kMillisecond);
}

BENCHMARK(overDictionaries)->Apply(eachQueryAndLayout);
BENCHMARK(overShuffledDictionaries)->Apply(eachQuery);
BENCHMARK(overObjects)->Apply(eachQuery);
BENCHMARK(overStructs)->Apply(eachQuery);
BENCHMARK(dictionariesOneByOne)->Apply(eachQuery);
BENCHMARK(parseAndBind);

}  // namespace
}  // namespace bench
