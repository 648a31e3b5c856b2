// Lua 5.4: tables, and a compiled function.
#ifdef QX_BENCH_LUA

#include <lua.hpp>
#include <map>
#include <memory>

#include "bench/qualifier_filter/measure.h"
#include "bench/qualifier_filter/records.h"

namespace bench {
namespace {

constexpr const char* kScript = R"(
local tests = {
  function(r) return r.age > 30 end,
  function(r) return r.age > 30 and string.sub(r.name, 1, 1) == 'J' end,
  function(r)
    return (r.city == 'Oslo' or r.city == 'Rome') and r.score >= 0.5 and
           not string.find(r.name, 'x', 1, true)
  end
}
function filter(query)
  local test, hits, n = tests[query], {}, 0
  for i = 1, #rows do
    local row = rows[i]
    if test(row) then
      n = n + 1
      hits[n] = row
    end
  end
  return hits, n
end
)";

struct Close {
  void operator()(lua_State* lua) const { lua_close(lua); }
};
using Lua = std::unique_ptr<lua_State, Close>;

void setText(lua_State* lua, const char* key, const std::string& text) {
  lua_pushlstring(lua, text.data(), text.size());
  lua_setfield(lua, -2, key);
}

void pushRow(lua_State* lua, const Row& row, std::size_t number) {
  lua_createtable(lua, 0, 6);
  setText(lua, "name", row.name);
  setText(lua, "city", row.city);
  lua_pushinteger(lua, row.age);
  lua_setfield(lua, -2, "age");
  lua_pushnumber(lua, row.score);
  lua_setfield(lua, -2, "score");
  lua_createtable(lua, static_cast<int>(row.tags.size()), 0);
  for (std::size_t i = 0; i < row.tags.size(); ++i) {
    lua_pushlstring(lua, row.tags[i].data(), row.tags[i].size());
    lua_rawseti(lua, -2, static_cast<lua_Integer>(i) + 1);
  }
  lua_setfield(lua, -2, "tags");
  lua_pushinteger(lua, static_cast<lua_Integer>(number));
  lua_setfield(lua, -2, "number");
}

Lua filled(const std::vector<Row>& rows) {
  Lua lua(luaL_newstate());
  luaL_openlibs(lua.get());
  lua_createtable(lua.get(), static_cast<int>(rows.size()), 0);
  for (std::size_t i = 0; i < rows.size(); ++i) {
    pushRow(lua.get(), rows[i], i);
    lua_rawseti(lua.get(), -2, static_cast<lua_Integer>(i) + 1);
  }
  lua_setglobal(lua.get(), "rows");
  if (luaL_dostring(lua.get(), kScript) != LUA_OK) std::abort();
  return lua;
}

lua_State* stateWith(std::size_t count) {
  static std::map<std::size_t, Lua> known;
  Lua& lua = known[count];
  if (lua == nullptr) lua = filled(rowsOf(count));
  return lua.get();
}

// Leaves the table of the hits on the stack, and gives their number.
std::size_t callFilter(lua_State* lua, int query) {
  lua_settop(lua, 0);
  lua_getglobal(lua, "filter");
  lua_pushinteger(lua, query);
  if (lua_pcall(lua, 1, 2, 0) != LUA_OK) std::abort();
  return static_cast<std::size_t>(lua_tointeger(lua, 2));
}

Hits hitsOf(lua_State* lua, int query) {
  const std::size_t count = callFilter(lua, query);
  Hits hits;
  for (std::size_t i = 1; i <= count; ++i) {
    lua_rawgeti(lua, 1, static_cast<lua_Integer>(i));
    lua_getfield(lua, -1, "number");
    hits.push_back(static_cast<std::size_t>(lua_tointeger(lua, -1)));
    lua_pop(lua, 2);
  }
  return hits;
}

void lua(benchmark::State& state) {
  lua_State* machine = stateWith(countOf(state));
  checkHits("Lua", queryOf(state), countOf(state), hitsOf(machine, queryOf(state)));
  measure(state, [&](int query, std::size_t) { return callFilter(machine, query); });
}
BENCHMARK(lua)->Apply(eachQuery);

}  // namespace
}  // namespace bench

#endif
