// Reading and writing property lists, beside libplist (where it was installed when this was built)
// and Python's plistlib (where python3 is found): a list of 50,000 dictionaries of seven entries.
//
// Before anything is measured, what the peers read and write is compared with the list. Behind the
// measurements stands each operation's speed against the faster of the two peers, and the ratio
// that is to be reached. Freeing what was read is measured for nobody.

#include <benchmark/benchmark.h>
#include <stdio.h>
#include <stdlib.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include <QXFoundation/QXFoundation.h>

#ifdef QX_BENCH_LIBPLIST
#include <plist/plist.h>
#endif

namespace {

using qx::PropertyListFormat;
using qx::PropertyListSerialization;

struct Operation {
  const char* name;
  double wanted;  // times the speed of the faster peer
};
constexpr Operation kOperations[] = {
    {"xml_read", 1.5}, {"xml_write", 2.5}, {"binary_read", 3}, {"binary_write", 10}};

qx::Ref<qx::Array> makeList() {
  constexpr int kCount = 50000;
  constexpr std::array kCities = {"Aachen", "Bremen", "Chemnitz", "Dresden", "Essen", "Fulda"};
  std::mt19937_64 random(20010101);
  const auto below = [&](std::uint64_t n) { return random() % n; };
  const auto list = qx::MutableArray::arrayWithCapacity(kCount);
  for (int i = 0; i < kCount; ++i) {
    std::string name(8 + below(13), ' ');
    for (char& c : name) c = static_cast<char>('a' + below(26));
    std::string token(9, ' ');
    for (char& c : token) c = static_cast<char>(below(256));
    const auto second = static_cast<double>(below(700000000));
    list->addObject(qx::dict({{"id", i},
                              {"name", name},
                              {"city", kCities[below(kCities.size())]},
                              {"score", static_cast<double>(below(1000000000)) / 1e7},
                              {"active", below(2) == 0},
                              {"joined", qx::Date::dateWithTimeIntervalSinceReferenceDate(second)},
                              {"token", qx::Data::from(token)}}));
  }
  return list;
}

std::string written(const qx::PropertyValue& v, PropertyListFormat format) {
  return std::string(PropertyListSerialization::dataWithPropertyList(v, format)->view());
}

// The list in all its forms, and as files for programs beside.
struct Input {
  qx::PropertyValue list = makeList();
  std::string xml = written(list, PropertyListFormat::xml);
  std::string binary = written(list, PropertyListFormat::binary);
  std::filesystem::path folder;

  Input() {
    std::string pattern = (std::filesystem::temp_directory_path() / "benchXXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) return;
    folder = pattern;
    std::ofstream(folder / "list.xml", std::ios::binary) << xml;
    std::ofstream(folder / "list.bin", std::ios::binary) << binary;
  }
  ~Input() { std::filesystem::remove_all(folder); }
  Input(const Input&) = delete;
  Input& operator=(const Input&) = delete;
};

// Whether a peer's copy of the list reads as the list.
void requireSame(const Input& input, std::string_view copy, const char* peer) {
  const auto read = PropertyListSerialization::propertyListWithData(
      qx::Data::from(copy), qx::PropertyListMutability::immutable, nullptr);
  if (read == input.list) return;
  printf("%s reads or writes the list differently\n", peer);
  exit(1);
}

// ---- this library

void readOwn(benchmark::State& state, const std::string& bytes) {
  const auto data = qx::Data::from(bytes);
  for (auto _ : state) {
    qx::PropertyValue v = PropertyListSerialization::propertyListWithData(
        data, qx::PropertyListMutability::immutable, nullptr);
    if (v.isNil()) state.SkipWithError("refused");
    state.PauseTiming();
    v = nullptr;
    state.ResumeTiming();
  }
}

void writeOwn(benchmark::State& state, const qx::PropertyValue& list, PropertyListFormat format) {
  for (auto _ : state) {
    auto data = PropertyListSerialization::dataWithPropertyList(list, format);
    if (data == nullptr) state.SkipWithError("refused");
    state.PauseTiming();
    data = nullptr;
    state.ResumeTiming();
  }
}

void registerOwn(const Input& input) {
  benchmark::RegisterBenchmark("xml_read/qx", [&](auto& s) { readOwn(s, input.xml); });
  benchmark::RegisterBenchmark("binary_read/qx", [&](auto& s) { readOwn(s, input.binary); });
  benchmark::RegisterBenchmark("xml_write/qx",
                               [&](auto& s) { writeOwn(s, input.list, PropertyListFormat::xml); });
  benchmark::RegisterBenchmark(
      "binary_write/qx", [&](auto& s) { writeOwn(s, input.list, PropertyListFormat::binary); });
}

// ---- libplist

#ifdef QX_BENCH_LIBPLIST

template <class Read>
void readPeer(benchmark::State& state, const std::string& bytes, Read read) {
  for (auto _ : state) {
    plist_t list = nullptr;
    read(bytes.data(), static_cast<std::uint32_t>(bytes.size()), &list);
    if (list == nullptr) state.SkipWithError("refused");
    state.PauseTiming();
    plist_free(list);
    state.ResumeTiming();
  }
}

template <class Write>
void writePeer(benchmark::State& state, const std::string& bytes, Write write) {
  plist_t list = nullptr;
  plist_from_bin(bytes.data(), static_cast<std::uint32_t>(bytes.size()), &list);
  for (auto _ : state) {
    char* out = nullptr;
    std::uint32_t size = 0;
    write(list, &out, &size);
    if (size == 0) state.SkipWithError("refused");
    state.PauseTiming();
    free(out);
    state.ResumeTiming();
  }
  plist_free(list);
}

void checkLibplist(const Input& input) {
  plist_t lists[2] = {};
  plist_from_xml(input.xml.data(), static_cast<std::uint32_t>(input.xml.size()), &lists[0]);
  plist_from_bin(input.binary.data(), static_cast<std::uint32_t>(input.binary.size()), &lists[1]);
  for (const auto write : {&plist_to_xml, &plist_to_bin}) {
    for (plist_t list : lists) {
      char* out = nullptr;
      std::uint32_t size = 0;
      write(list, &out, &size);
      requireSame(input, {out, size}, "libplist");
      free(out);
    }
  }
  for (plist_t list : lists) plist_free(list);
}

void registerLibplist(const Input& input) {
  benchmark::RegisterBenchmark("xml_read/libplist",
                               [&](auto& s) { readPeer(s, input.xml, plist_from_xml); });
  benchmark::RegisterBenchmark("binary_read/libplist",
                               [&](auto& s) { readPeer(s, input.binary, plist_from_bin); });
  benchmark::RegisterBenchmark("xml_write/libplist",
                               [&](auto& s) { writePeer(s, input.binary, plist_to_xml); });
  benchmark::RegisterBenchmark("binary_write/libplist",
                               [&](auto& s) { writePeer(s, input.binary, plist_to_bin); });
}

#else

void checkLibplist(const Input&) {}
void registerLibplist(const Input&) { printf("libplist is left out: it was not installed\n"); }

#endif

// ---- plistlib

// The seconds that the script says the operation took; 0 where it can not be run.
double pythonSeconds(const Input& input, const std::string& operation) {
  const std::string command = "python3 '" QX_BENCH_DIR "/property_list_plistlib.py' " + operation +
                              " '" + input.folder.string() + "'";
  FILE* pipe = popen(command.c_str(), "r");
  if (pipe == nullptr) return 0;
  double seconds = 0;
  if (fscanf(pipe, "%lf", &seconds) != 1) seconds = 0;
  pclose(pipe);
  return seconds;
}

bool checkPlistlib(const Input& input) {
  if (pythonSeconds(input, "check") <= 0) {
    printf("plistlib is left out: python3 can not be run\n");
    return false;
  }
  for (const char* const name : {"peer.xml", "peer.bin"}) {
    std::ifstream file(input.folder / name, std::ios::binary);
    requireSame(input, std::string{std::istreambuf_iterator<char>(file), {}}, "plistlib");
  }
  return true;
}

void registerPlistlib(const Input& input) {
  for (const Operation& o : kOperations) {
    const auto run = [&input, name = std::string(o.name)](benchmark::State& state) {
      for (auto _ : state) state.SetIterationTime(pythonSeconds(input, name));
    };
    benchmark::RegisterBenchmark((std::string(o.name) + "/plistlib").c_str(), run)
        ->UseManualTime()
        ->Iterations(1);
  }
}

// ---- ratios

// Prints as usual, and keeps the times.
class Reporter : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override {
    ConsoleReporter::ReportRuns(runs);
    for (const Run& r : runs) {
      if (r.aggregate_name != "median") continue;
      // All of them work in one thread: the time of the processor leaves out what others do with
      // it.
      const bool isManual = !r.run_name.time_type.empty();
      times_[r.run_name.function_name] =
          isManual ? r.GetAdjustedRealTime() : r.GetAdjustedCPUTime();
    }
  }

  void printRatios() const {
    for (const Operation& o : kOperations) {
      const std::string name = o.name;
      const double own = median(name + "/qx");
      double peer = 0;
      for (const char* const other : {"/libplist", "/plistlib"}) {
        const double time = median(name + other);
        if (time > 0 && (peer == 0 || time < peer)) peer = time;
      }
      if (own <= 0 || peer <= 0) continue;
      printf("%-12s %5.1f times the faster peer, %.1f wanted\n", o.name, peer / own, o.wanted);
    }
  }

 private:
  // 0 for what was not measured.
  double median(const std::string& name) const {
    const auto found = times_.find(name);
    return found == times_.end() ? 0 : found->second;
  }

  std::map<std::string, double> times_;
};

// Names alone are wanted: there is nothing to compare before.
bool isListing(int argc, char** argv) {
  return std::any_of(argv, argv + argc, [](std::string_view argument) {
    return argument == "--benchmark_list_tests" || argument == "--benchmark_list_tests=true";
  });
}

}  // namespace

int main(int argc, char** argv) {
  const bool compares = !isListing(argc, argv);
  // Alternating, so that what else the machine does meets all alike.
  std::vector<char*> arguments(argv, argv + argc);
  std::string defaults[] = {"--benchmark_repetitions=7", "--benchmark_report_aggregates_only=true",
                            "--benchmark_enable_random_interleaving=true",
                            "--benchmark_min_time=0.2"};
  for (std::string& d : defaults) arguments.insert(arguments.begin() + 1, d.data());
  int count = static_cast<int>(arguments.size());
  benchmark::Initialize(&count, arguments.data());

  const Input input;
  printf("%zu bytes as XML, %zu as binary\n", input.xml.size(), input.binary.size());
  if (compares) checkLibplist(input);
  registerOwn(input);
  registerLibplist(input);
  if (!compares || checkPlistlib(input)) registerPlistlib(input);
  Reporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  reporter.printRatios();
  return 0;
}
