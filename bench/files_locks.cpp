// Locking a file and unlocking it again, beside QLockFile of Qt 6 where it was installed when this
// was built, on the disk and in memory. By the clock, as a wait for the disk is no processor time:
// "us" is the median of many pairs, "cpu_us" the processor time of the best round. "qt/NAME" is how
// many times longer QLockFile takes.
//
// Neither kind of lock waits for the disk, since a lock that a crash of the system loses is stale.
// "durable" is what it would cost to wait, for the record's file and for its folder; QLockFile
// waits for the file alone.

#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <string>

#include <QXFoundation/QXFoundation.h>

#include "bench/ways.h"
#include "files/lock_record.h"
#include "platform/atomic_file.h"

#ifdef QX_BENCH_QT
#include <QLockFile>
#endif

namespace bench {
namespace {

constexpr int kRounds = 21;
constexpr int kPairs = 40;
constexpr int kDurablePairs = 4;
const char* const kFolders[] = {".", "/dev/shm"};

// A folder that goes with its holder; it must be empty then.
class Folder {
 public:
  explicit Folder(const std::string& above) : path_(above + "/locksXXXXXX") {
    isThere_ = ::mkdtemp(path_.data()) != nullptr;
  }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
  ~Folder() {
    if (isThere_) ::rmdir(path_.c_str());
  }
  bool isThere() const { return isThere_; }
  std::string file() const { return path_ + "/report.txt"; }

 private:
  std::string path_;
  bool isThere_ = false;
};

double clockTime() {
  timespec t{};
  clock_gettime(CLOCK_MONOTONIC, &t);
  return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_nsec) / 1e9;
}

struct Locker {
  std::string name;
  std::function<bool()> lockAndUnlock;
  int pairs = kPairs;
  std::vector<double> times{};
  double leastProcessorTime = 1e9;

  void round() {
    const double processor = qx::processorTime();
    for (int i = 0; i < pairs; ++i) {
      const double start = clockTime();
      const bool done = lockAndUnlock();
      times.push_back(clockTime() - start);
      if (!done) require(false, name);
    }
    leastProcessorTime = std::min(leastProcessorTime, (qx::processorTime() - processor) / pairs);
  }
  double median() {
    const auto middle = times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2);
    std::nth_element(times.begin(), middle, times.end());
    return *middle;
  }
};

bool exists(const std::string& path) { return ::access(path.c_str(), F_OK) == 0; }

bool byOperations(const std::string& path) {
  const auto files = qx::FileManager::defaultManager();
  bool created = false;
  const auto record = lockFileAtPath(files, path, false, created);
  if (record == nullptr || !created) return false;
  unlockFileAtPath(files, path);
  return true;
}

bool byFileLock(const std::string& path) {
  auto lock = qx::QXFileLock::lock(path);
  return lock.isHeld() && lock.unlock();
}

bool durably(const std::string& path) {
  const std::string lockPath = qx::detail::lockPathOf(path);
  std::string bytes;
  return qx::detail::lockFileBytes(*qx::detail::ownLockRecord(), bytes) &&
         qx::detail::replaceFile(lockPath, bytes, {.durable = true, .following = false}) == 0 &&
         ::unlink(lockPath.c_str()) == 0;
}

#ifdef QX_BENCH_QT
bool byQt(const std::string& path) {
  QLockFile lock(QString::fromStdString(path + ".qtlock"));
  if (!lock.tryLock(0)) return false;
  lock.unlock();
  return true;
}
#endif

// Two ask for one lock: the second gets none, until the first has given it back.
void check(const std::string& path) {
  auto first = qx::QXFileLock::lock(path);
  require(first.isHeld() && exists(path + ".lock"), "a lock");
  require(!qx::QXFileLock::lock(path).isHeld() && !byOperations(path), "a second lock");
  require(first.unlock() && !exists(path + ".lock"), "unlocking");
  require(byOperations(path) && !exists(path + ".lock"), "locking again");
}

void report(benchmark::State& state, std::vector<Locker>& lockers) {
  const double last = lockers.back().median();
  for (Locker& locker : lockers) {
    state.counters[locker.name + "_us"] = locker.median() * 1e6;
    state.counters[locker.name + "_cpu_us"] = locker.leastProcessorTime * 1e6;
    if (lockers.back().name == "qt") state.counters["qt/" + locker.name] = last / locker.median();
  }
}

void lockAndUnlock(benchmark::State& state) {
  const char* where = kFolders[state.range(0)];
  state.SetLabel(where);
  const Folder folder(where);
  if (!folder.isThere()) {
    state.SkipWithError("there is no such folder");
    return;
  }
  const std::string path = folder.file();
  check(path);
  std::vector<Locker> lockers;
  lockers.push_back({"operations", [&] { return byOperations(path); }});
  lockers.push_back({"file_lock", [&] { return byFileLock(path); }});
  lockers.push_back({"durable", [&] { return durably(path); }, kDurablePairs});
#ifdef QX_BENCH_QT
  lockers.push_back({"qt", [&] { return byQt(path); }});
#endif
  for (auto _ : state) {
    for (int i = 0; i < kRounds; ++i) {
      for (Locker& locker : lockers) locker.round();
    }
  }
  report(state, lockers);
}

BENCHMARK(lockAndUnlock)->Arg(0)->Arg(1)->Iterations(1);

}  // namespace
}  // namespace bench
