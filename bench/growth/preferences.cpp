// A store with so many keys at three levels: twenty at the lowest, twenty at the middle one.

#include <time.h>

#include <boost/property_tree/ptree.hpp>
#include <filesystem>
#include <unordered_map>

#include "bench/growth/growth.h"

namespace bench {
namespace {

// As they stand in the store, window by window.
const std::vector<std::string>& orderedPathsOf(std::size_t size) {
  return keptFor(size, [](std::size_t n) {
    std::vector<std::string> paths;
    for (std::size_t i = 0; i < n; ++i) {
      paths.push_back("window" + std::to_string(i / 400) + ".panel" + std::to_string(i / 20 % 20) +
                      ".setting" + std::to_string(i % 20));
    }
    return paths;
  });
}
// In any order.
const std::vector<std::string>& pathsOf(std::size_t size) {
  return keptFor(size, [](std::size_t n) {
    std::vector<std::string> paths = orderedPathsOf(n);
    std::shuffle(paths.begin(), paths.end(), std::mt19937(7));
    return paths;
  });
}

// A folder that goes with the program.
class Folder {
 public:
  Folder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "growthXXXXXX").string();
    require(::mkdtemp(pattern.data()) != nullptr, "a folder");
    path_ = pattern;
  }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
  ~Folder() { std::filesystem::remove_all(path_); }
  const std::string& path() const { return path_; }

 private:
  std::string path_;
};

std::string fileOf(std::size_t size) {
  static const Folder folder;
  return folder.path() + "/" + std::to_string(size) + ".plist";
}

void setAll(const qx::Ref<qx::QXPreferences>& store, std::size_t size) {
  int n = 0;
  for (const std::string& path : pathsOf(size)) store->setInteger(++n, path);
}

// As an application has it that read its file at its start.
const qx::Ref<qx::QXPreferences>& storeOf(std::size_t size) {
  return keptFor(size, [](std::size_t n) {
    auto store = qx::QXPreferences::initWithPath(fileOf(n));
    setAll(store, n);
    require(store->synchronize(), "saving");
    return qx::QXPreferences::initWithPath(fileOf(n));
  });
}

double clockTime() {
  timespec t{};
  ::clock_gettime(CLOCK_MONOTONIC, &t);
  return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_nsec) / 1e9;
}

void readEach(benchmark::State& state, const std::vector<std::string>& paths) {
  const auto& store = storeOf(sizeOf(state));
  growth(state, [&] {
    std::int64_t sum = 0;
    for (const std::string& path : paths) sum += store->integerForKeyPath(path);
    return sum;
  });
}

void readAll(benchmark::State& state) { readEach(state, pathsOf(sizeOf(state))); }
void readInOrder(benchmark::State& state) { readEach(state, orderedPathsOf(sizeOf(state))); }

void setEach(benchmark::State& state) {
  const auto& store = storeOf(sizeOf(state));
  growth(state, [&] {
    setAll(store, sizeOf(state));
    return nullptr;
  });
}

void load(benchmark::State& state) {
  storeOf(sizeOf(state));
  growth(state, [&] { return qx::QXPreferences::initWithPath(fileOf(sizeOf(state))); });
}

void saveDurably(benchmark::State& state) {
  const auto& store = storeOf(sizeOf(state));
  int n = 0;
  const auto change = [&] {
    store->setInteger(++n, pathsOf(sizeOf(state)).front());
    return nullptr;
  };
  const auto save = [&](std::nullptr_t) { return store->synchronize(); };
  growth(state, change, save, &clockTime);
}

// The least that the way to memory costs: one table of whole paths.
using WholePaths = std::unordered_map<std::string, int>;
const WholePaths& tableOf(std::size_t size) {
  return keptFor(size, [](std::size_t n) {
    WholePaths table;
    for (const std::string& path : pathsOf(n)) table.emplace(path, static_cast<int>(table.size()));
    return table;
  });
}

void readAllOfOneTable(benchmark::State& state) {
  const WholePaths& table = tableOf(sizeOf(state));
  growth(state, [&] {
    std::int64_t sum = 0;
    for (const std::string& path : pathsOf(sizeOf(state))) sum += table.find(path)->second;
    return sum;
  });
}

// The same levels as the store has.
using boost::property_tree::ptree;
const ptree& treeOf(std::size_t size) {
  return keptFor(size, [](std::size_t n) {
    ptree tree;
    int value = 0;
    for (const std::string& path : pathsOf(n)) tree.put(path, ++value);
    return tree;
  });
}

void readAllOfTree(benchmark::State& state) {
  const ptree& tree = treeOf(sizeOf(state));
  growth(state, [&] {
    std::int64_t sum = 0;
    for (const std::string& path : pathsOf(sizeOf(state))) sum += tree.get<int>(path);
    return sum;
  });
}

BENCHMARK(readAll)->Name("preferences/read")->Apply(everySize);
BENCHMARK(readInOrder)->Name("preferences/read_in_order")->Apply(everySize);
BENCHMARK(setEach)->Name("preferences/set")->Apply(everySize);
BENCHMARK(readAllOfOneTable)->Name("preferences/read_one_table")->Apply(everySize);
BENCHMARK(readAllOfTree)->Name("preferences/read_property_tree")->Apply(everySize);
BENCHMARK(load)->Name("preferences/load")->Apply(everySize);
BENCHMARK(saveDurably)->Name("preferences/save")->Apply(everySize);

}  // namespace
}  // namespace bench
