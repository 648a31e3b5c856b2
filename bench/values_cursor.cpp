// The lines of a file of 100 MB, beside a loop over memchr that makes the same strings, and beside
// std::getline, which makes shorter-lived ones. All must find the same lines before anything is
// timed. Each reads the file itself, from the system's cache. Column ms: milliseconds for the file.

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>
#include <fstream>
#include <memory>
#include <random>

#include <QXFoundation/data_cursor.h>

#include "bench/values_support.h"

namespace bench {
namespace {

constexpr std::size_t kSize = 100'000'000;

// A file that is removed when the program ends: lines of 0 to 80 characters.
class TextFile {
 public:
  TextFile() {
    char path[] = "/tmp/values_cursor_XXXXXX";
    const int file = mkstemp(path);
    require(file >= 0, "no temporary file");
    path_ = path;
    std::mt19937_64 random(19);
    std::string text;
    while (text.size() < kSize) {
      text.append(random() % 81, static_cast<char>('a' + random() % 26));
      text += '\n';
    }
    require(::write(file, text.data(), text.size()) == static_cast<ssize_t>(text.size()),
            "a short write");
    close(file);
  }
  ~TextFile() { unlink(path_.c_str()); }
  const std::string& path() const { return path_; }

 private:
  std::string path_;
};

const TextFile& file() {
  static const TextFile one;
  return one;
}

struct Seen {
  std::size_t lines = 0;
  std::size_t characters = 0;
  friend bool operator==(const Seen&, const Seen&) = default;
};

Seen byCursor() {
  Seen seen;
  const auto cursor = qx::QXDataCursor::initWithFile(file().path());
  while (const auto line = cursor->readLine()) {
    ++seen.lines;
    seen.characters += line->length();
  }
  return seen;
}

Seen byMemchr() {
  Seen seen;
  const int descriptor = open(file().path().c_str(), O_RDONLY | O_CLOEXEC);
  struct stat about{};
  fstat(descriptor, &about);
  const auto size = static_cast<std::size_t>(about.st_size);
  const auto bytes = std::make_unique_for_overwrite<char[]>(size);
  require(read(descriptor, bytes.get(), size) == about.st_size, "a short read");
  close(descriptor);
  const char* at = bytes.get();
  const char* end = at + size;
  while (at != end) {
    const auto* next =
        static_cast<const char*>(std::memchr(at, '\n', static_cast<std::size_t>(end - at)));
    const char* lineEnd = next != nullptr ? next : end;
    const auto line = qx::String::fromLatin1({at, static_cast<std::size_t>(lineEnd - at)});
    ++seen.lines;
    seen.characters += line->length();
    at = next != nullptr ? next + 1 : end;
  }
  return seen;
}

Seen byGetline() {
  Seen seen;
  std::ifstream in(file().path());
  for (std::string line; std::getline(in, line);) {
    ++seen.lines;
    seen.characters += line.size();
  }
  return seen;
}

template <Seen (*Read)()>
void lines(benchmark::State& state) {
  require(Read() == byMemchr(), "the lines differ");
  double total = 0;
  for (auto _ : state) {
    const double start = qx::processorTime();
    benchmark::DoNotOptimize(Read());
    total += qx::processorTime() - start;
  }
  state.counters["ms"] = 1e3 * total / static_cast<double>(state.iterations());
}

BENCHMARK(lines<byCursor>)->Name("linesByCursor");
BENCHMARK(lines<byMemchr>)->Name("linesByMemchr");
BENCHMARK(lines<byGetline>)->Name("linesByGetline");

}  // namespace
}  // namespace bench
