// The parts of the soak: a program in which several threads use every subsystem at once while
// faults are injected.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <random>
#include <string>
#include <vector>

namespace soak {

// What all parts share. Everything but the atomics is set before the threads begin.
struct Ground {
  std::string folder;  // empty at the start, for files of the soak alone
  bool hasAttributes = false;
  std::atomic<bool> isOver{false};
  // Counts the beginnings and the ends of times in which files can not be written: odd within one.
  std::atomic<std::uint64_t> diskChanges{0};

  std::atomic<std::uint64_t> signalsHandled{0};
};

// Remembers whether the disk was full at any moment since it was made.
class DiskWatch {
 public:
  explicit DiskWatch(const Ground& ground) : ground_(ground), begin_(ground.diskChanges) {}
  bool wasFull() const { return begin_ % 2 == 1 || ground_.diskChanges != begin_; }

 private:
  const Ground& ground_;
  std::uint64_t begin_;
};

// One thread's work, done again and again. A round that finds something wrong throws.
struct Work {
  std::string name;
  std::function<void(Ground&, std::mt19937&)> round;
};

// Throws std::runtime_error with that text.
void expect(bool condition, const char* what);

std::vector<Work> workOnValues();
std::vector<Work> workOnFiles();

// Has messages sent by two threads to a third one that runs its loop, until the soak is over; then
// checks that all came.
void exchangeMessages(Ground& ground);

// Until the soak is over: times of a full disk, signals to `threads`, and other processes that use
// the same files and are killed at any moment. `program` is this one, which does runPeer when it is
// called with "--peer".
void injectFaults(Ground& ground, const std::string& program,
                  const std::vector<pthread_t>& threads);
[[noreturn]] void runPeer(const std::string& folder);

// Makes the allocation after so many fail in this thread, once; false where this program can not.
bool failAllocationAfter(long count);
void allowAllocations();

}  // namespace soak
