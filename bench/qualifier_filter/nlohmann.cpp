// JSON values of nlohmann-json, and a lambda.
#ifdef QX_BENCH_NLOHMANN

#include <map>
#include <nlohmann/json.hpp>
#include <vector>

#include "bench/qualifier_filter/measure.h"
#include "bench/qualifier_filter/records.h"

namespace bench {
namespace {

using Json = nlohmann::json;

const std::vector<Json>& documents(std::size_t count) {
  static std::map<std::size_t, std::vector<Json>> known;
  std::vector<Json>& all = known[count];
  if (!all.empty()) return all;
  for (const Row& row : rowsOf(count)) {
    all.push_back({{"name", row.name},
                   {"age", row.age},
                   {"city", row.city},
                   {"score", row.score},
                   {"tags", row.tags}});
  }
  return all;
}

const std::string& textAt(const Json& d, const char* key) {
  return d.find(key)->get_ref<const std::string&>();
}

bool matches(int query, const Json& d) {
  if (query == 1) return d.find("age")->get<int>() > 30;
  if (query == 2) return d.find("age")->get<int>() > 30 && textAt(d, "name").starts_with('J');
  const std::string& city = textAt(d, "city");
  return (city == "Oslo" || city == "Rome") && d.find("score")->get<double>() >= 0.5 &&
         textAt(d, "name").find('x') == std::string::npos;
}

void nlohmannJson(benchmark::State& state) {
  const std::vector<Json>& all = documents(countOf(state));
  const auto filter = [&](int query, std::size_t) {
    Hits hits;
    for (std::size_t i = 0; i < all.size(); ++i) {
      if (matches(query, all[i])) hits.push_back(i);
    }
    return hits;
  };
  checkHits("nlohmann-json", queryOf(state), countOf(state), filter(queryOf(state), 0));
  measure(state, [&](int query, std::size_t count) { return filter(query, count).size(); });
}
BENCHMARK(nlohmannJson)->Apply(eachQuery);

}  // namespace
}  // namespace bench

#endif
