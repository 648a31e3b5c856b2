// What loading a library costs a C++ program that was empty before: time, and memory of its own.
//
//     startup_cost LIBRARY [PEER...]
//
// Every library is loaded with all its symbols resolved, in 21 processes each; shown are the least
// and the median of the time, and the most private memory. Fails where the first library is over
// the limits, or can not be loaded; a peer that is not installed is named.

#include <dlfcn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <optional>
#include <string>
#include <vector>

namespace {

constexpr double kMostMilliseconds = 1;
constexpr long kMostKilobytes = 300;
constexpr int kRounds = 21;

struct Cost {
  double milliseconds;
  long kilobytes;
};

// What no other process shares, changed or not.
long privateKilobytes() {
  std::ifstream file("/proc/self/smaps_rollup");
  long sum = 0;
  for (std::string line; std::getline(file, line);) {
    if (!line.starts_with("Private_Clean:") && !line.starts_with("Private_Dirty:")) continue;
    const char* digits = line.data() + line.find_first_of("0123456789");
    long kilobytes = 0;
    std::from_chars(digits, line.data() + line.size(), kilobytes);
    sum += kilobytes;
  }
  return sum;
}

std::optional<Cost> costHere(const char* library) {
  privateKilobytes();  // what reading the figures needs is there before
  const long before = privateKilobytes();
  const auto begin = std::chrono::steady_clock::now();
  const void* handle = dlopen(library, RTLD_NOW | RTLD_GLOBAL);
  const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - begin;
  if (handle == nullptr) return std::nullopt;
  return Cost{time.count(), privateKilobytes() - before};
}

// The same in a process of its own, which replaces its memory before: `program` called with
// "--once".
std::optional<Cost> cost(const char* program, const char* library) {
  int ends[2];
  if (pipe(ends) != 0) return std::nullopt;
  const pid_t child = fork();
  if (child == 0) {
    dup2(ends[1], STDOUT_FILENO);
    execl(program, program, "--once", library, static_cast<char*>(nullptr));
    _exit(1);
  }
  close(ends[1]);
  Cost result{};
  const ssize_t got = read(ends[0], &result, sizeof result);
  close(ends[0]);
  waitpid(child, nullptr, 0);
  if (got != static_cast<ssize_t>(sizeof result)) return std::nullopt;
  return result;
}

int runOnce(const char* library) {
  const auto result = costHere(library);
  if (!result) return 1;
  return write(STDOUT_FILENO, &*result, sizeof *result) == static_cast<ssize_t>(sizeof *result) ? 0
                                                                                                : 1;
}

// The cost as it is shown, the time being the least; nothing where the library can not be loaded.
std::optional<Cost> show(const char* program, const char* library) {
  std::vector<double> times;
  long kilobytes = 0;
  for (int i = 0; i < kRounds; ++i) {
    const auto result = cost(program, library);
    if (!result) {
      std::printf("%-24s can not be loaded\n", library);
      return std::nullopt;
    }
    times.push_back(result->milliseconds);
    kilobytes = std::max(kilobytes, result->kilobytes);
  }
  std::sort(times.begin(), times.end());
  const char* slash = std::strrchr(library, '/');
  std::printf("%-24s %7.3f ms (median %.3f) %6ld KB\n", slash == nullptr ? library : slash + 1,
              times.front(), times[times.size() / 2], kilobytes);
  return Cost{times.front(), kilobytes};
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 3 && std::strcmp(argv[1], "--once") == 0) return runOnce(argv[2]);
  if (argc < 2) {
    std::fputs("usage: startup_cost LIBRARY [PEER...]\n", stderr);
    return 2;
  }
  const auto own = show(argv[0], argv[1]);
  for (int i = 2; i < argc; ++i) show(argv[0], argv[i]);
  if (!own) return 1;
  if (own->milliseconds <= kMostMilliseconds && own->kilobytes <= kMostKilobytes) return 0;
  std::printf("Loading %s costs more than %g ms or %ld KB\n", argv[1], kMostMilliseconds,
              kMostKilobytes);
  return 1;
}
