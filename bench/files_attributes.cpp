// Extended attributes beside the system calls that they need, made with the same bytes: the bytes
// of an attribute, and values, whose coding as property lists is timed alone too. On a file on the
// disk and, where it takes attributes, on one in memory. What is written must be what the other way
// reads before anything is timed. Nanoseconds a call; "set/raw_set" is how many times longer ours
// takes, and "set_without_coding/raw_set" the same less the coding.

#include <sys/xattr.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include <QXFoundation/QXFoundation.h>

#include "bench/ways.h"

namespace bench {
namespace {

constexpr int kCalls = 500;
constexpr char kName[] = "sample";
constexpr char kStoredName[] = "user.sample";

// A file that goes with its holder.
class File {
 public:
  explicit File(const std::string& folder)
      : path_(std::filesystem::absolute(folder).lexically_normal() / "attributesXXXXXX") {
    const int file = ::mkstemp(path_.data());
    isThere_ = file >= 0;
    if (isThere_) ::close(file);
  }
  File(const File&) = delete;
  File& operator=(const File&) = delete;
  ~File() {
    if (isThere_) ::unlink(path_.c_str());
  }
  const std::string& path() const { return path_; }
  bool takesAttributes() const { return isThere_ && rawSet("probe"); }

  bool rawSet(std::string_view bytes) const {
    return ::lsetxattr(path_.c_str(), kStoredName, bytes.data(), bytes.size(), 0) == 0;
  }
  // Into room that is there already, as one who counts the calls would.
  std::string_view rawGet() const {
    static char room[4096];
    const ssize_t got = ::lgetxattr(path_.c_str(), kStoredName, room, sizeof room);
    return {room, got < 0 ? 0 : static_cast<std::size_t>(got)};
  }

 private:
  std::string path_;
  bool isThere_ = false;
};

template <class Work>
std::function<void()> many(Work work) {
  return [work] {
    for (int i = 0; i < kCalls; ++i) benchmark::DoNotOptimize(work());
  };
}

const char* const kFolders[] = {".", "/dev/shm"};

// The benchmark's arguments: which folder, and how long the text is.
bool isSkipped(benchmark::State& state, const File& file) {
  state.SetLabel(kFolders[state.range(0)]);
  if (file.takesAttributes()) return false;
  state.SkipWithError("the file system takes no attributes");
  return true;
}

void get(benchmark::State& state) {
  const File file(kFolders[state.range(0)]);
  if (isSkipped(state, file)) return;
  const qx::PropertyValue value = std::string(static_cast<std::size_t>(state.range(1)), 'x');
  const auto url = qx::URL::fileURLWithPath(file.path());
  require(setExtendedAttributeValue(url, value, kName), "set");
  const auto bytes = dataForExtendedAttribute(url, kName);
  require(bytes->view() == file.rawGet(), "get");
  require(valueOfExtendedAttributeWithName(url, kName) == value, "value");
  compareWays(state,
              {{"raw_get", many([&] { return file.rawGet(); })},
               {"data", many([&] { return dataForExtendedAttribute(url, kName); })},
               {"value", many([&] { return valueOfExtendedAttributeWithName(url, kName); })},
               {"coding", many([&] {
                  return qx::PropertyListSerialization::propertyListWithData(
                      bytes, qx::PropertyListMutability::immutable, nullptr);
                })}},
              kCalls, 41);
  state.counters["value_without_coding/raw_get"] =
      (state.counters["value"] - state.counters["coding"]) / state.counters["raw_get"];
}

void set(benchmark::State& state) {
  const File file(kFolders[state.range(0)]);
  if (isSkipped(state, file)) return;
  const qx::PropertyValue value = std::string(static_cast<std::size_t>(state.range(1)), 'x');
  const auto bytes =
      qx::PropertyListSerialization::dataWithPropertyList(value, qx::PropertyListFormat::binary);
  const auto url = qx::URL::fileURLWithPath(file.path());
  require(setExtendedAttributeValue(url, value, kName) && file.rawGet() == bytes->view(), "value");
  require(file.rawSet("") && setExtendedAttributeData(url, bytes, kName) &&
              file.rawGet() == bytes->view(),
          "data");
  compareWays(state,
              {{"raw_set", many([&] { return file.rawSet(bytes->view()); })},
               {"data", many([&] { return setExtendedAttributeData(url, bytes, kName); })},
               {"value", many([&] { return setExtendedAttributeValue(url, value, kName); })},
               {"coding", many([&] {
                  return qx::PropertyListSerialization::dataWithPropertyList(
                      value, qx::PropertyListFormat::binary);
                })}},
              kCalls, 41);
  state.counters["value_without_coding/raw_set"] =
      (state.counters["value"] - state.counters["coding"]) / state.counters["raw_set"];
}

void cases(benchmark::internal::Benchmark* b) {
  b->Iterations(1)->ArgsProduct({{0, 1}, {16, 1000}});
}
BENCHMARK(get)->Apply(cases);
BENCHMARK(set)->Apply(cases);

}  // namespace
}  // namespace bench
