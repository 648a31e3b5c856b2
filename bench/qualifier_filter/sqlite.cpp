// SQLite in memory, a prepared scan.
#ifdef QX_BENCH_SQLITE

#include <sqlite3.h>

#include <map>
#include <memory>
#include <string>

#include "bench/qualifier_filter/measure.h"
#include "bench/qualifier_filter/records.h"

namespace bench {
namespace {

struct Close {
  void operator()(sqlite3* db) const { sqlite3_close(db); }
  void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
using Database = std::unique_ptr<sqlite3, Close>;
using Statement = std::unique_ptr<sqlite3_stmt, Close>;

Statement prepared(const Database& db, const char* text) {
  sqlite3_stmt* statement = nullptr;
  if (sqlite3_prepare_v2(db.get(), text, -1, &statement, nullptr) != SQLITE_OK) std::abort();
  return Statement(statement);
}

void bindText(const Statement& statement, int at, const std::string& text) {
  sqlite3_bind_text(statement.get(), at, text.data(), static_cast<int>(text.size()), SQLITE_STATIC);
}

std::string joined(const std::vector<std::string>& tags) {
  std::string all;
  for (const std::string& tag : tags) all += tag + ' ';
  return all;
}

Database filled(const std::vector<Row>& rows) {
  sqlite3* opened = nullptr;
  if (sqlite3_open(":memory:", &opened) != SQLITE_OK) std::abort();
  Database db(opened);
  const char* table = "create table t(name text, age integer, city text, score real, tags text)";
  sqlite3_exec(db.get(), table, nullptr, nullptr, nullptr);
  sqlite3_exec(db.get(), "begin", nullptr, nullptr, nullptr);
  const Statement insert = prepared(db, "insert into t values(?, ?, ?, ?, ?)");
  for (const Row& row : rows) {
    const std::string tags = joined(row.tags);
    bindText(insert, 1, row.name);
    sqlite3_bind_int(insert.get(), 2, row.age);
    bindText(insert, 3, row.city);
    sqlite3_bind_double(insert.get(), 4, row.score);
    bindText(insert, 5, tags);
    if (sqlite3_step(insert.get()) != SQLITE_DONE) std::abort();
    sqlite3_reset(insert.get());
  }
  sqlite3_exec(db.get(), "commit", nullptr, nullptr, nullptr);
  return db;
}

const Database& database(std::size_t count) {
  static std::map<std::size_t, Database> known;
  Database& db = known[count];
  if (db == nullptr) db = filled(rowsOf(count));
  return db;
}

const char* textOf(int query) {
  if (query == 1) return "select rowid from t where age > 30";
  if (query == 2) return "select rowid from t where age > 30 and name glob 'J*'";
  return "select rowid from t where (city = 'Oslo' or city = 'Rome') and score >= 0.5 and not "
         "name glob '*x*'";
}

void sqlite(benchmark::State& state) {
  const Database& db = database(countOf(state));
  const Statement select = prepared(db, textOf(queryOf(state)));
  const auto filter = [&](int, std::size_t) {
    Hits hits;
    while (sqlite3_step(select.get()) == SQLITE_ROW)
      hits.push_back(static_cast<std::size_t>(sqlite3_column_int64(select.get(), 0)) - 1);
    sqlite3_reset(select.get());
    return hits;
  };
  checkHits("SQLite", queryOf(state), countOf(state), filter(0, 0));
  measure(state, [&](int query, std::size_t count) { return filter(query, count).size(); });
}
BENCHMARK(sqlite)->Apply(eachQuery);

}  // namespace
}  // namespace bench

#endif
