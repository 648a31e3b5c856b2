// What loading a library costs a C++ program that was empty before: time, and memory of its own.
//
//     startup_cost LIBRARY [PEER...]
//
// Every library is loaded with all its symbols resolved, in 21 processes one after the other; shown
// are the least and the median of the time, and the most private memory: once while another program
// has the same library loaded, so that pages that are only read are shared between the two, and
// once for a program that is alone with it. The system counts those pages as private then, although
// it may drop them, and one copy serves any number of programs.
//
// Fails where the first library takes more than the limits beside another program, or can not be
// loaded; a peer that is not installed is named.

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
constexpr long kMostKilobytes = 100;  // 300 are wanted of a program that is alone
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

// Has the library loaded, in a process of its own, while this exists.
class OtherProgram {
 public:
  OtherProgram(const char* program, const char* library) {
    int ready[2];
    int hold[2];
    if (pipe(ready) != 0 || pipe(hold) != 0) return;
    child_ = fork();
    if (child_ == 0) {
      dup2(ready[1], STDOUT_FILENO);
      dup2(hold[0], STDIN_FILENO);
      close(hold[1]);
      execl(program, program, "--hold", library, static_cast<char*>(nullptr));
      _exit(1);
    }
    close(ready[1]);
    close(hold[0]);
    hold_ = hold[1];
    char byte;
    if (read(ready[0], &byte, 1) != 1) std::puts("the other program did not start");
    close(ready[0]);
  }
  OtherProgram(const OtherProgram&) = delete;
  OtherProgram& operator=(const OtherProgram&) = delete;
  ~OtherProgram() {
    close(hold_);
    waitpid(child_, nullptr, 0);
  }

 private:
  pid_t child_ = -1;
  int hold_ = -1;
};

// What OtherProgram runs: loads the library, says so, and waits for the end of its input.
int holdLibrary(const char* library) {
  if (dlopen(library, RTLD_NOW | RTLD_GLOBAL) == nullptr) return 1;
  char byte = 0;
  if (write(STDOUT_FILENO, &byte, 1) != 1) return 1;
  while (read(STDIN_FILENO, &byte, 1) > 0) {
  }
  return 0;
}

int runOnce(const char* library) {
  const auto result = costHere(library);
  if (!result) return 1;
  return write(STDOUT_FILENO, &*result, sizeof *result) == static_cast<ssize_t>(sizeof *result) ? 0
                                                                                                : 1;
}

// The times of all rounds, in order, and the most memory; nothing where the library can not be
// loaded.
struct Costs {
  std::vector<double> milliseconds;
  long kilobytes = 0;
};
std::optional<Costs> costs(const char* program, const char* library) {
  Costs all;
  for (int i = 0; i < kRounds; ++i) {
    const auto result = cost(program, library);
    if (!result) return std::nullopt;
    all.milliseconds.push_back(result->milliseconds);
    all.kilobytes = std::max(all.kilobytes, result->kilobytes);
  }
  std::sort(all.milliseconds.begin(), all.milliseconds.end());
  return all;
}

// Shows a line, and gives the least time and the memory beside another program.
std::optional<Cost> show(const char* program, const char* library) {
  const auto alone = costs(program, library);
  if (!alone) {
    std::printf("%-24s can not be loaded\n", library);
    return std::nullopt;
  }
  const OtherProgram other(program, library);
  const auto beside = costs(program, library);
  if (!beside) return std::nullopt;
  const char* slash = std::strrchr(library, '/');
  std::printf("%-26s %7.3f ms (median %.3f) %6ld KB, alone %6ld KB\n",
              slash == nullptr ? library : slash + 1, beside->milliseconds.front(),
              beside->milliseconds[kRounds / 2], beside->kilobytes, alone->kilobytes);
  return Cost{beside->milliseconds.front(), beside->kilobytes};
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 3 && std::strcmp(argv[1], "--once") == 0) return runOnce(argv[2]);
  if (argc == 3 && std::strcmp(argv[1], "--hold") == 0) return holdLibrary(argv[2]);
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
