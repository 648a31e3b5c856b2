// A store with so many keys at three levels: twenty at the lowest, twenty at the middle one.

#include <time.h>

#include <filesystem>

#include "bench/growth/growth.h"

namespace bench {
namespace {

// In any order.
const std::vector<std::string>& pathsOf(std::size_t size) {
  return onceForEachSize(size, [](std::size_t n) {
    std::vector<std::string> paths;
    for (std::size_t i = 0; i < n; ++i) {
      paths.push_back("window" + std::to_string(i / 400) + ".panel" + std::to_string(i / 20 % 20) +
                      ".setting" + std::to_string(i % 20));
    }
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

// Its file is written.
const qx::Ref<qx::QXPreferences>& storeOf(std::size_t size) {
  return onceForEachSize(size, [](std::size_t n) {
    auto store = qx::QXPreferences::initWithPath(fileOf(n));
    setAll(store, n);
    require(store->synchronize(), "saving");
    return store;
  });
}

double clockTime() {
  timespec t{};
  ::clock_gettime(CLOCK_MONOTONIC, &t);
  return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_nsec) / 1e9;
}

void readAll(benchmark::State& state) {
  const auto& store = storeOf(sizeOf(state));
  growth(state, [&] {
    std::int64_t sum = 0;
    for (const std::string& path : pathsOf(sizeOf(state))) sum += store->integerForKeyPath(path);
    return sum;
  });
}

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

BENCHMARK(readAll)->Name("preferences/read")->Apply(everySize);
BENCHMARK(setEach)->Name("preferences/set")->Apply(everySize);
BENCHMARK(load)->Name("preferences/load")->Apply(everySize);
BENCHMARK(saveDurably)->Name("preferences/save")->Apply(everySize);

}  // namespace
}  // namespace bench
