// Faults: allocations that fail, a disk without room, signals, and processes killed in the midst of
// their work.

#include <pthread.h>
#include <signal.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <thread>

#include "tests/soak/soak.h"
#include "tests/support/failing_memory/failing_memory.h"

namespace soak {

#ifdef QX_SOAK_KEEPS_ALLOCATOR
bool failAllocationAfter(long) { return false; }
void allowAllocations() {}
#else
bool failAllocationAfter(long count) {
  test_support::failAllocationAfter(count);
  return true;
}
void allowAllocations() { test_support::failAllocationAfter(-1); }
#endif

namespace {

// Files can not grow beyond some bytes for a while: the library meets it as it meets a full disk.
void fillDisk(Ground& ground, std::mt19937& random) {
  rlimit limit{};
  ::getrlimit(RLIMIT_FSIZE, &limit);
  const rlim_t before = limit.rlim_cur;
  ++ground.diskChanges;
  limit.rlim_cur = 64;
  ::setrlimit(RLIMIT_FSIZE, &limit);
  std::this_thread::sleep_for(std::chrono::milliseconds(1 + random() % 20));
  limit.rlim_cur = before;
  ::setrlimit(RLIMIT_FSIZE, &limit);
  ++ground.diskChanges;
}

class Peer {
 public:
  Peer(const std::string& program, const std::string& folder) {
    std::string name = program;
    std::string option = "--peer";
    std::string place = folder;
    char* arguments[] = {name.data(), option.data(), place.data(), nullptr};
    expect(::posix_spawn(&process_, name.c_str(), nullptr, nullptr, arguments, environ) == 0,
           "no peer was started");
  }
  Peer(const Peer&) = delete;
  Peer& operator=(const Peer&) = delete;
  // Where the peer ended by itself, it found something wrong.
  void kill() {
    ::kill(process_, SIGKILL);
    int status = 0;
    while (::waitpid(process_, &status, 0) < 0 && errno == EINTR) {
    }
    process_ = 0;
    expect(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL, "a peer ended by itself");
  }
  ~Peer() {
    if (process_ > 0) ::kill(process_, SIGKILL);
  }

 private:
  pid_t process_ = 0;
};

}  // namespace

void injectFaults(Ground& ground, const std::string& program,
                  const std::vector<pthread_t>& threads) {
  std::mt19937 random(4711);
  while (!ground.isOver) {
    Peer peer(program, ground.folder);
    const auto end =
        std::chrono::steady_clock::now() + std::chrono::milliseconds(100 + random() % 500);
    while (std::chrono::steady_clock::now() < end && !ground.isOver) {
      if (random() % 8 == 0) fillDisk(ground, random);
      for (int i = 0; i < 5; ++i) ::pthread_kill(threads[random() % threads.size()], SIGUSR1);
      std::this_thread::sleep_for(std::chrono::milliseconds(random() % 10));
    }
    peer.kill();
  }
}

}  // namespace soak
