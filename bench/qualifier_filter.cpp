// Filtering records by three qualifiers: over dictionaries, over described objects, over a plain
// struct, and beside each what a lambda does by hand. Every way must give the same hits before
// anything is timed.
//
//   Q1  age > 30
//   Q2  age > 30 and name like "J*"
//   Q3  city is one of two, and score >= 0.5, and not name like "*x*"
//
// Columns: ns (nanoseconds per record), ratio (to the lambda over shared_ptr of the same query and
// number of records, when that ran before), hits (share of the records), bytes (memory per record,
// where it is the library's).

#include <benchmark/benchmark.h>
#include <malloc.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <QXFoundation/filter.h>
#include <QXFoundation/qualifier.h>
#include <QXFoundation/qualifier_key.h>

#include "tests/support/processor_time.h"

namespace bench {

struct Row {
  std::string name;
  int age = 0;
  std::string city;
  double score = 0;
  std::vector<std::string> tags;
};
void describe(qx::ClassBuilder<Row>& c) {
  c.name("BenchRow").property("name", &Row::name).property("age", &Row::age);
  c.property("city", &Row::city).property("score", &Row::score);
}

class Person : public qx::Object {
 public:
  std::string name;
  int age = 0;
  std::string city;
  double score = 0;
  std::vector<std::string> tags;
};
void describe(qx::ClassBuilder<Person>& c) {
  c.name("BenchPerson").property("name", &Person::name).property("age", &Person::age);
  c.property("city", &Person::city).property("score", &Person::score);
}

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

qx::PropertyValue dictionaryOf(const Row& row) {
  std::vector<qx::PropertyValue> tags(row.tags.begin(), row.tags.end());
  return qx::dict({{"name", row.name},
                   {"age", row.age},
                   {"city", row.city},
                   {"score", row.score},
                   {"tags", qx::Array::from(tags.data(), tags.size())}});
}

template <class T>
void copyInto(T& to, const Row& row) {
  to.name = row.name;
  to.age = row.age;
  to.city = row.city;
  to.score = row.score;
  to.tags = row.tags;
}

// One set of records in every form.
struct Records {
  explicit Records(std::size_t count) : rows(makeRows(count)) {
    std::vector<qx::PropertyValue> values;
    const std::size_t before = mallinfo2().uordblks;
    values.reserve(count);
    for (const Row& row : rows) values.push_back(dictionaryOf(row));
    dictionaryBytes =
        static_cast<double>(mallinfo2().uordblks - before) / static_cast<double>(count);
    dictionaries = qx::Array::from(values.data(), count);
    std::shuffle(values.begin(), values.end(), std::mt19937(7));
    shuffled = qx::Array::from(values.data(), count);
    values.clear();
    for (const Row& row : rows) {
      auto person = qx::make<Person>();
      copyInto(*person, row);
      values.emplace_back(person);
      pointers.push_back(std::make_shared<Row>(row));
    }
    people = qx::Array::from(values.data(), count);
  }

  std::vector<Row> rows;
  std::vector<std::shared_ptr<Row>> pointers;
  qx::Ref<qx::Array> dictionaries;
  qx::Ref<qx::Array> shuffled;
  qx::Ref<qx::Array> people;
  double dictionaryBytes = 0;
};

const Records& records(std::size_t count) {
  static std::map<std::size_t, std::unique_ptr<Records>> made;
  auto& r = made[count];
  if (r == nullptr) r = std::make_unique<Records>(count);
  return *r;
}

qx::Ref<qx::QXQualifier> query(int n) {
  if (n == 1) return qx::qualifierWithQualifierFormat("age > %d", 30);
  if (n == 2) return qx::qualifierWithQualifierFormat("age > %d and name like %@", 30, "J*");
  return qx::QXAndQualifier::initWithQualifiers(
      qx::key("city") == "Oslo" || qx::key("city") == "Rome", qx::key("score") >= 0.5,
      !qx::key("name").like("*x*"));
}

bool byHand(int n, const Row& row) {
  if (n == 1) return row.age > 30;
  if (n == 2) return row.age > 30 && !row.name.empty() && row.name[0] == 'J';
  return (row.city == "Oslo" || row.city == "Rome") && row.score >= 0.5 &&
         row.name.find('x') == std::string::npos;
}

void require(bool same, const char* what) {
  if (same) return;
  std::fprintf(stderr, "different hits: %s\n", what);
  std::exit(1);
}

// Every way gives the same hits.
void checkOnce(int n, std::size_t count) {
  static std::map<std::pair<int, std::size_t>, bool> checked;
  if (std::exchange(checked[{n, count}], true)) return;
  const Records& all = records(count);
  const auto q = query(n);
  const qx::Matching<Row> matching(q);
  const auto dictionaries = filteredArrayUsingQualifier(all.dictionaries, q);
  const auto people = filteredArrayUsingQualifier(all.people, q);
  std::size_t hits = 0;
  for (std::size_t i = 0; i < count; ++i) {
    const bool expected = byHand(n, all.rows[i]);
    require(matching(all.rows[i]) == expected, "struct");
    require(q->evaluateWithObject(all.dictionaries->begin()[i]) == expected, "one by one");
    if (!expected) continue;
    require(hits < dictionaries->count() &&
                isSame(dictionaries->begin()[hits], all.dictionaries->begin()[i]),
            "dictionaries");
    require(hits < people->count() && isSame(people->begin()[hits], all.people->begin()[i]),
            "objects");
    ++hits;
  }
  require(hits == dictionaries->count() && hits == people->count(), "count");
  require(filteredArrayUsingQualifier(all.shuffled, q)->count() == hits, "shuffled");
}

// Times `filter`, which gives the number of hits.
template <class Filter>
void measure(benchmark::State& state, Filter filter, bool isBaseline = false) {
  const int n = static_cast<int>(state.range(0));
  const auto count = static_cast<std::size_t>(state.range(1));
  static std::map<std::pair<int, std::size_t>, double> baseline;
  checkOnce(n, count);
  const Records& all = records(count);
  double total = 0;
  std::size_t hits = 0;
  for (auto _ : state) {
    const double start = qx::processorTime();
    hits = filter(n, all);
    const double took = qx::processorTime() - start;
    state.SetIterationTime(took);
    total += took;
  }
  const double ns =
      1e9 * total / static_cast<double>(state.iterations()) / static_cast<double>(count);
  state.counters["ns"] = ns;
  state.counters["hits"] = static_cast<double>(hits) / static_cast<double>(count);
  if (isBaseline) baseline[{n, count}] = ns;
  if (baseline.count({n, count}) != 0) state.counters["ratio"] = ns / baseline[{n, count}];
}

void sharedPointersByHand(benchmark::State& state) {
  const auto filter = [](int n, const Records& all) {
    std::vector<std::shared_ptr<Row>> hits;
    for (const auto& p : all.pointers) {
      if (byHand(n, *p)) hits.push_back(p);
    }
    return hits.size();
  };
  measure(state, filter, /*isBaseline=*/true);
}

void structsByHand(benchmark::State& state) {
  measure(state, [](int n, const Records& all) {
    std::vector<const Row*> hits;
    for (const Row& row : all.rows) {
      if (byHand(n, row)) hits.push_back(&row);
    }
    return hits.size();
  });
}

void structsMatching(benchmark::State& state) {
  measure(state, [](int n, const Records& all) {
    const qx::Matching<Row> matching(query(n));
    std::vector<const Row*> hits;
    for (const Row& row : all.rows) {
      if (matching(row)) hits.push_back(&row);
    }
    return hits.size();
  });
}

void dictionaries(benchmark::State& state) {
  measure(state, [](int n, const Records& all) {
    return filteredArrayUsingQualifier(all.dictionaries, query(n))->count();
  });
  state.counters["bytes"] = records(static_cast<std::size_t>(state.range(1))).dictionaryBytes;
}

void shuffledDictionaries(benchmark::State& state) {
  measure(state, [](int n, const Records& all) {
    return filteredArrayUsingQualifier(all.shuffled, query(n))->count();
  });
}

void objects(benchmark::State& state) {
  measure(state, [](int n, const Records& all) {
    return filteredArrayUsingQualifier(all.people, query(n))->count();
  });
}

void dictionariesOneByOne(benchmark::State& state) {
  measure(state, [](int n, const Records& all) {
    const auto q = query(n);
    std::size_t hits = 0;
    for (const qx::PropertyValue& d : *all.dictionaries) hits += q->evaluateWithObject(d);
    return hits;
  });
}

// Reading the format and preparing the program, without records.
void parseAndBind(benchmark::State& state) {
  const auto none = qx::array();
  for (auto _ : state) benchmark::DoNotOptimize(filteredArrayUsingQualifier(none, query(2)));
}

void arguments(benchmark::internal::Benchmark* b) {
  for (const long count : {10'000L, 1'000'000L}) {
    for (const long n : {1L, 2L, 3L}) b->Args({n, count});
  }
  b->ArgNames({"Q", "records"})->UseManualTime()->Unit(benchmark::kMillisecond);
}

BENCHMARK(sharedPointersByHand)->Apply(arguments);
BENCHMARK(structsByHand)->Apply(arguments);
BENCHMARK(structsMatching)->Apply(arguments);
BENCHMARK(dictionaries)->Apply(arguments);
BENCHMARK(shuffledDictionaries)->Apply(arguments);
BENCHMARK(objects)->Apply(arguments);
BENCHMARK(dictionariesOneByOne)->Apply(arguments);
BENCHMARK(parseAndBind);

}  // namespace
}  // namespace bench
