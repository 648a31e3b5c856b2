// What only many repetitions show: processes that lock one path, of which some are killed. A
// fiftieth of the counts by default; scripts/endurance.sh runs them all.

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <time.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <memory>
#include <new>
#include <random>
#include <string>
#include <vector>

#include <QXFoundation/exception.h>
#include <QXFoundation/file_lock.h>
#include <QXFoundation/lock_file.h>

#include "files/lock_record.h"
#include "platform/atomic_file.h"
#include "tests/support/child_process.h"
#include "tests/support/fake_machine.h"
#include "tests/support/temporary_folder.h"

namespace qx {
namespace {

using test_support::ChildProcess;

int scaled(int count) {
  const char* whole = std::getenv("QXFOUNDATION_ENDURANCE");
  return whole != nullptr && whole == std::string("full") ? count : count / 50;
}

constexpr int kProcesses = 8;

void sleepMicroseconds(long microseconds) {
  const timespec time{0, microseconds * 1000};
  ::nanosleep(&time, nullptr);
}

// Memory that forked processes share.
template <class T>
class Shared {
 public:
  Shared()
      : value_(new(::mmap(nullptr, sizeof(T), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS,
                          -1, 0)) T) {}
  ~Shared() { ::munmap(value_, sizeof(T)); }
  Shared(const Shared&) = delete;
  Shared& operator=(const Shared&) = delete;
  T* operator->() const { return value_; }
  T& operator*() const { return *value_; }

 private:
  T* value_;
};

struct Tally {
  std::atomic<int> turns{0};
  std::atomic<int> torn{0};
  std::atomic<int> crossed{0};  // locks that another replaced meanwhile
};

// Whoever finds the lock file there finds a whole record in it.
void lookForTornRecord(const std::string& lockPath, Tally& tally) {
  std::string bytes;
  if (detail::readFile(lockPath, bytes) != 0) return;
  const auto record = detail::lockRecordFrom(bytes);
  if (record == nullptr || record->count() != 4) ++tally.torn;
}

int lockAndUnlock(const std::string& path, Tally& tally, int turns) {
  const auto files = FileManager::defaultManager();
  while (tally.turns < turns) {
    bool created = false;
    const auto record = lockFileAtPath(files, path, false, created);
    if (record == nullptr) return 1;
    lookForTornRecord(path + ".lock", tally);
    if (!created) {
      sleepMicroseconds(20);
      continue;
    }
    ++tally.turns;
    try {
      unlockFileAtPath(files, path);
    } catch (const Exception&) {
      ++tally.crossed;  // the last writer wins, and its lock, or none, is found here
    }
  }
  return 0;
}

TEST(LockEndurance, KilledProcessesLeaveLocksThatAreRecovered) {
  const test_support::TemporaryFolder folder;
  const std::string path = folder / "f";
  const int turns = scaled(20000);
  Shared<Tally> tally;
  std::mt19937 random(11);
  const auto start = [&] {
    return std::make_unique<ChildProcess>([&] { return lockAndUnlock(path, *tally, turns); });
  };
  std::vector<std::unique_ptr<ChildProcess>> processes;
  for (int i = 0; i < kProcesses; ++i) processes.push_back(start());
  int killed = 0;
  while (tally->turns < turns) {
    sleepMicroseconds(500 + static_cast<long>(random() % 3000));
    auto& victim = processes[random() % processes.size()];
    victim->kill();
    ++killed;
    victim = start();
  }
  for (auto& process : processes) EXPECT_EQ(process->wait(), 0);
  EXPECT_EQ(tally->torn, 0);
  EXPECT_GT(killed, 0);
  // What the killed ones left is stale now.
  bool created = false;
  lockFileAtPath(FileManager::defaultManager(), path, false, created);
  EXPECT_TRUE(created);
  RecordProperty("killed", killed);
  RecordProperty("crossed", tally->crossed.load());
}

// ---- takeovers

constexpr int kMostHolders = 400'000;

struct Holders {
  std::atomic<int> next{1};
  std::atomic<int> inside{0};
  std::atomic<int> takeovers{0};
  std::atomic<int> doubles{0};
  std::atomic<bool> alive[kMostHolders] = {};
};

// Holders that "die" at once: a made-up process number for each asking, whose life stands in shared
// memory.
class MortalProcesses : public detail::Processes {
 public:
  explicit MortalProcesses(Holders& holders) : holders_(holders) {}
  pid_t current() override { return own_; }
  int probe(pid_t process) override { return holders_.alive[process] ? 0 : ESRCH; }

  bool beBorn() {
    own_ = holders_.next++;
    if (own_ >= kMostHolders) return false;
    holders_.alive[own_] = true;
    return true;
  }
  void die() { holders_.alive[own_] = false; }
  void becomeAnother() { own_ = 0; }

 private:
  Holders& holders_;
  pid_t own_ = 0;
  detail::ReplacedProcesses replaced_{*this};
};

int takeOverAgainAndAgain(const std::string& path, Holders& holders, int turns, unsigned seed) {
  std::mt19937 random(seed);
  MortalProcesses processes(holders);
  if (!processes.beBorn()) return 2;
  while (holders.takeovers < turns) {
    auto lock = QXFileLock::lock(path);
    if (!lock.isHeld()) {
      if (lock.record() == nullptr) return 1;
      sleepMicroseconds(1);  // whoever is inside may wait for a processor
      continue;
    }
    if (holders.inside++ != 0) ++holders.doubles;
    ++holders.takeovers;
    random.discard(random() % 200);
    holders.inside--;
    const bool unlocks = random() % 8 == 0;
    if (unlocks && !lock.unlock()) return 3;
    processes.die();
    processes.becomeAnother();
    if (!processes.beBorn()) return 2;
  }
  return 0;
}

TEST(LockEndurance, ContestedTakeoversHaveOneWinner) {
  const test_support::TemporaryFolder folder;
  const int turns = scaled(100'000);
  Shared<Holders> holders;
  std::vector<std::unique_ptr<ChildProcess>> processes;
  for (unsigned i = 0; i < kProcesses; ++i) {
    processes.push_back(std::make_unique<ChildProcess>(
        [&, i] { return takeOverAgainAndAgain(folder / "f", *holders, turns, i); }));
  }
  for (auto& process : processes) EXPECT_EQ(process->wait(), 0);
  EXPECT_EQ(holders->doubles, 0);
  EXPECT_GE(holders->takeovers, turns);
}

// The same with processes that really die, in the middle of anything.
TEST(LockEndurance, KilledHoldersOfTheStrictLockAreReplacedByOne) {
  const test_support::TemporaryFolder folder;
  const int turns = scaled(20'000);
  struct Strict {
    std::atomic<int> turns{0};
    std::atomic<int> doubles{0};
    std::atomic<pid_t> inside{0};
  };
  Shared<Strict> shared;
  const auto work = [&] {
    while (shared->turns < turns) {
      auto lock = QXFileLock::lock(folder / "f");
      if (!lock.isHeld()) {
        if (lock.record() == nullptr) return 1;
        sleepMicroseconds(20);
        continue;
      }
      // Whoever was inside is dead, or has left.
      const pid_t before = shared->inside.exchange(::getpid());
      if (before != 0 && ::kill(before, 0) == 0) ++shared->doubles;
      ++shared->turns;
      shared->inside = 0;
    }
    return 0;
  };
  std::mt19937 random(13);
  std::vector<std::unique_ptr<ChildProcess>> processes;
  for (int i = 0; i < kProcesses; ++i) processes.push_back(std::make_unique<ChildProcess>(work));
  while (shared->turns < turns) {
    sleepMicroseconds(500 + static_cast<long>(random() % 3000));
    auto& victim = processes[random() % processes.size()];
    victim->kill();
    victim = std::make_unique<ChildProcess>(work);
  }
  for (auto& process : processes) EXPECT_EQ(process->wait(), 0);
  EXPECT_EQ(shared->doubles, 0);
}

}  // namespace
}  // namespace qx
