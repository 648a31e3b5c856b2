// Sorting 1,000,000 records by a number and by a name, all keys distinct and with a thousand
// different ones; beside it what programs write by hand, and a database. All give ns an element.

#include <benchmark/benchmark.h>

#include "bench/kept.h"
#include "bench/people.h"
#include "tests/support/processor_time.h"

#ifdef QX_BENCH_SQLITE
#include <sqlite3.h>
#endif

namespace {

using bench::Person;

constexpr std::size_t kCount = 1000000;
constexpr std::size_t kFew = 1000;

// The records of one set of keys. All kinds of them are kept: making a million takes longer than
// sorting them, and the repetitions of all benchmarks take turns.
const std::vector<Person>& peopleOf(std::size_t distinct) {
  return bench::keptFor(distinct, [](std::size_t keys) { return bench::people(kCount, keys); });
}
const qx::Ref<qx::MutableArray>& dictionariesOf(std::size_t distinct) {
  return bench::keptFor(distinct,
                        [](std::size_t keys) { return bench::dictionaries(peopleOf(keys)); });
}
const qx::Ref<qx::MutableArray>& objectsOf(std::size_t distinct) {
  return bench::keptFor(distinct, [](std::size_t keys) { return bench::objects(peopleOf(keys)); });
}
const std::vector<std::shared_ptr<const Person>>& pointersOf(std::size_t distinct) {
  return bench::keptFor(distinct, [](std::size_t keys) { return bench::pointers(peopleOf(keys)); });
}

// Runs `sort` on a fresh copy of `records` in each round, and looks at the first result with
// `isSorted`; only sorting is measured.
template <class Records, class Sort, class IsSorted>
void measure(benchmark::State& state, const Records& records, Sort sort, IsSorted isSorted) {
  double seconds = 0;
  for (auto _ : state) {
    auto copy = records();
    const double start = qx::processorTime();
    sort(copy);
    const double took = qx::processorTime() - start;
    state.SetIterationTime(took);
    seconds += took;
    if (seconds == took && !isSorted(copy)) return state.SkipWithError("not sorted");
    benchmark::DoNotOptimize(copy);
  }
  state.counters["ns_per_element"] =
      seconds * 1e9 / static_cast<double>(state.iterations()) / kCount;
}

void sortArray(benchmark::State& state, const qx::Ref<qx::MutableArray>& array, const char* key) {
  const auto orderings =
      qx::array(qx::QXSortOrdering::sortOrderingWithKey(key, "compareAscending:"));
  measure(
      state, [&] { return qx::MutableArray::from(array->begin(), array->count()); },
      [&](const qx::Ref<qx::MutableArray>& copy) { sortUsingKeyOrderArray(copy, orderings); },
      [&](const qx::Ref<qx::MutableArray>& copy) {
        return std::is_sorted(copy->begin(), copy->end(),
                              [&](const qx::PropertyValue& a, const qx::PropertyValue& b) {
                                return a[key].isLessThan(b[key]);
                              });
      });
}

void dictionaries(benchmark::State& state, const char* key, std::size_t distinct) {
  sortArray(state, dictionariesOf(distinct), key);
}
void objects(benchmark::State& state, const char* key, std::size_t distinct) {
  sortArray(state, objectsOf(distinct), key);
}

// Dictionaries that do not stand in memory in the order of the array.
void scattered(benchmark::State& state, const char* key, std::size_t distinct) {
  const auto& array = dictionariesOf(distinct);
  std::vector<qx::PropertyValue> values(array->begin(), array->end());
  std::shuffle(values.begin(), values.end(), std::mt19937_64(1));
  sortArray(state, qx::MutableArray::from(values.data(), values.size()), key);
}

template <class Records, class Before>
void stableSort(benchmark::State& state, const Records& records, Before before) {
  measure(
      state, [&] { return records; },
      [&](Records& copy) { std::stable_sort(copy.begin(), copy.end(), before); },
      [&](const Records& copy) { return std::is_sorted(copy.begin(), copy.end(), before); });
}

template <class Field>
void stableSortOfPointers(benchmark::State& state, Field Person::* field, std::size_t distinct) {
  stableSort(state, pointersOf(distinct),
             [&](const auto& a, const auto& b) { return (*a).*field < (*b).*field; });
}

template <class Field>
void stableSortOfStructs(benchmark::State& state, Field Person::* field, std::size_t distinct) {
  stableSort(state, peopleOf(distinct),
             [&](const Person& a, const Person& b) { return a.*field < b.*field; });
}

#ifdef QX_BENCH_SQLITE

class Database {
 public:
  explicit Database(const std::vector<Person>& people) {
    check(sqlite3_open(":memory:", &db_));
    run("create table people (name text, number integer, city text, score real)");
    run("begin");
    sqlite3_stmt* insert = prepare("insert into people values (?, ?, ?, ?)");
    for (const Person& p : people) {
      sqlite3_bind_text(insert, 1, p.name.data(), static_cast<int>(p.name.size()), SQLITE_STATIC);
      sqlite3_bind_int64(insert, 2, p.number);
      sqlite3_bind_text(insert, 3, p.city.data(), static_cast<int>(p.city.size()), SQLITE_STATIC);
      sqlite3_bind_double(insert, 4, p.score);
      if (sqlite3_step(insert) != SQLITE_DONE) check(SQLITE_ERROR);
      sqlite3_reset(insert);
    }
    sqlite3_finalize(insert);
    run("commit");
  }
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;
  ~Database() { sqlite3_close(db_); }

  sqlite3_stmt* prepare(const std::string& sql) const {
    sqlite3_stmt* statement = nullptr;
    check(sqlite3_prepare_v2(db_, sql.c_str(), -1, &statement, nullptr));
    return statement;
  }

 private:
  void run(const char* sql) const { check(sqlite3_exec(db_, sql, nullptr, nullptr, nullptr)); }
  void check(int code) const {
    if (code != SQLITE_OK) throw std::runtime_error(sqlite3_errmsg(db_));
  }
  sqlite3* db_ = nullptr;
};

void orderBy(benchmark::State& state, const std::string& key, std::size_t distinct) {
  const std::vector<Person>& people = peopleOf(distinct);
  const Database& database = *bench::keptFor(
      distinct, [](std::size_t keys) { return std::make_unique<Database>(peopleOf(keys)); });
  sqlite3_stmt* select = database.prepare("select rowid from people order by " + key);
  using Rows = std::vector<sqlite3_int64>;  // from 1, in the order of the records
  const auto person = [&](sqlite3_int64 row) -> const Person& {
    return people[static_cast<std::size_t>(row) - 1];
  };
  measure(
      state, [&] { return Rows(kCount); },
      [&](Rows& rows) {
        std::size_t n = 0;
        while (sqlite3_step(select) == SQLITE_ROW) rows[n++] = sqlite3_column_int64(select, 0);
        sqlite3_reset(select);
      },
      [&](const Rows& rows) {
        return std::is_sorted(rows.begin(), rows.end(), [&](sqlite3_int64 a, sqlite3_int64 b) {
          return key == "name" ? person(a).name < person(b).name
                               : person(a).number < person(b).number;
        });
      });
  sqlite3_finalize(select);
}

#else

void orderBy(benchmark::State& state, const std::string&, std::size_t) {
  state.SkipWithError("left out: SQLite is not installed (libsqlite3-dev)");
}

#endif

template <class Run, class... A>
void add(const std::string& name, Run run, A... arguments) {
  benchmark::RegisterBenchmark(name.c_str(), run, arguments...)
      ->UseManualTime()
      ->Unit(benchmark::kMillisecond);
}

void addAll(const std::string& set, std::size_t distinct) {
  for (const char* key : {"number", "name"}) {
    const std::string name = "/" + set + "/" + key;
    add("Sort/dictionaries" + name, &dictionaries, key, distinct);
    add("Sort/dictionaries_scattered" + name, &scattered, key, distinct);
    add("Sort/objects" + name, &objects, key, distinct);
    add("Sort/sqlite_order_by" + name, &orderBy, std::string(key), distinct);
  }
  add("Sort/stable_sort_of_shared_ptr/" + set + "/number", &stableSortOfPointers<std::int64_t>,
      &Person::number, distinct);
  add("Sort/stable_sort_of_shared_ptr/" + set + "/name", &stableSortOfPointers<std::string>,
      &Person::name, distinct);
  add("Sort/stable_sort_of_structs/" + set + "/number", &stableSortOfStructs<std::int64_t>,
      &Person::number, distinct);
  add("Sort/stable_sort_of_structs/" + set + "/name", &stableSortOfStructs<std::string>,
      &Person::name, distinct);
}

const bool added = (addAll("distinct", kCount), addAll("thousand_keys", kFew), true);

}  // namespace
