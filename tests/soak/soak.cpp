// Uses every subsystem at once from several threads while faults are injected, and looks at the
// memory.
//
//     soak SECONDS
//
// Meant to run under the address and the thread sanitizer (scripts/soak.sh). Fails where a thread
// finds something wrong, a kind of work was never done, a sanitizer has something to say, or memory
// goes on growing: what is allocated is read many times a second, and the least of the last third
// of the time is compared with that of the second third.

#include "tests/soak/soak.h"

#include <malloc.h>
#include <pthread.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <thread>

#include <QXFoundation/QXFoundation.h>

#include "frame/object_memory.h"

#if defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#include <sanitizer/allocator_interface.h>
#define QX_SOAK_SANITIZED 1
#endif
#endif

namespace soak {

void expect(bool condition, const char* what) {
  if (!condition) throw std::runtime_error(what);
}

namespace {

using Clock = std::chrono::steady_clock;

std::size_t allocatedBytes() {
#ifdef QX_SOAK_SANITIZED
  const std::size_t bytes = __sanitizer_get_current_allocated_bytes();
#else
  const std::size_t bytes = mallinfo2().uordblks;
#endif
  return bytes + qx::detail::ObjectMemory::bytesInUse();
}

// What went wrong, by any thread.
class Faults {
 public:
  void add(const std::string& text) {
    const std::lock_guard<std::mutex> hold(mutex_);
    if (++count_ <= 20) std::fprintf(stderr, "%s\n", text.c_str());
  }
  int count() {
    const std::lock_guard<std::mutex> hold(mutex_);
    return count_;
  }

 private:
  std::mutex mutex_;
  int count_ = 0;
};

// A folder of its own, removed at the end.
class Folder {
 public:
  Folder() {
    std::string name = (std::filesystem::temp_directory_path() / "soak-XXXXXX").string();
    expect(::mkdtemp(name.data()) != nullptr, "no folder could be made");
    path = name;
  }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
  ~Folder() {
    std::error_code ignored;
    std::filesystem::remove_all(path, ignored);
  }
  std::string path;
};

struct Counted {
  explicit Counted(Work w) : work(std::move(w)) {}
  Work work;
  std::atomic<long> rounds{0};
};

void repeat(Counted& counted, unsigned seed, Ground& ground, Faults& faults) {
  std::mt19937 random(seed);
  while (!ground.isOver) {
    try {
      counted.work.round(ground, random);
      ++counted.rounds;
    } catch (const std::exception& fault) {
      allowAllocations();
      faults.add(counted.work.name + ": " + fault.what());
      std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
  }
}

// The least that is allocated in each third of the time.
class MemoryWatch {
 public:
  explicit MemoryWatch(Clock::duration time) : time_(time) {}
  void read() {
    const auto third = std::min<Clock::rep>((Clock::now() - begin_) * 3 / time_, 2);
    least_[third] = std::min(least_[third], allocatedBytes());
  }
  bool hasGrown() const { return least_[2] > least_[1] + least_[1] / 50 + kTolerance; }
  void show() const {
    std::printf("allocated at least, by thirds of the time: %zu, %zu, %zu bytes\n", least_[0],
                least_[1], least_[2]);
  }

 private:
  static constexpr std::size_t kTolerance = 256 * 1024;
  Clock::time_point begin_ = Clock::now();
  Clock::duration time_;
  std::size_t least_[3] = {SIZE_MAX, SIZE_MAX, SIZE_MAX};
};

bool keepsAttributes(const std::string& folder) {
  const std::string path = folder + "/marked.txt";
  std::ofstream(path) << "text";
  if (::setxattr(path.c_str(), "user.soak", "x", 1, 0) == 0) return true;
  std::puts("the file system keeps no attributes: marking files is left out");
  return false;
}

Ground* handlerGround = nullptr;

void prepareProcess(const std::string& folder) {
  ::setenv("XDG_CONFIG_HOME", folder.c_str(), 1);
  ::setenv("TMPDIR", folder.c_str(), 1);
  qx::UserDefaults::setApplicationName("soak");
}

// A signal that interrupts what waits, and does nothing else.
void handleSignals(Ground& ground) {
  handlerGround = &ground;
  struct sigaction action{};
  action.sa_handler = [](int) { ++handlerGround->signalsHandled; };
  ::sigaction(SIGUSR1, &action, nullptr);
}

bool soakFor(Clock::duration time, const std::string& program) {
  const Folder folder;
  Ground ground;
  ground.folder = folder.path;
  ground.hasAttributes = keepsAttributes(folder.path);
  prepareProcess(folder.path);
  handleSignals(ground);
  qx::FileManager::didLoad();

  Faults faults;
  std::vector<std::unique_ptr<Counted>> all;
  for (auto& list : {workOnValues(), workOnFiles()}) {
    for (const auto& work : list) all.push_back(std::make_unique<Counted>(work));
  }
  std::vector<std::thread> threads;
  std::vector<pthread_t> targets;
  for (const auto& counted : all) {
    threads.emplace_back([&, seed = static_cast<unsigned>(threads.size())] {
      repeat(*counted, seed, ground, faults);
    });
    targets.push_back(threads.back().native_handle());
  }
  const auto guarded = [&](const char* name, auto work) {
    threads.emplace_back([&faults, &ground, name, work] {
      try {
        work();
      } catch (const std::exception& fault) {
        faults.add(std::string(name) + ": " + fault.what());
        ground.isOver = true;
      }
    });
  };
  guarded("messages", [&ground] { exchangeMessages(ground); });
  targets.push_back(threads.back().native_handle());
  guarded("faults", [&] { injectFaults(ground, program, targets); });

  MemoryWatch memory(time);
  for (const auto end = Clock::now() + time; Clock::now() < end && !ground.isOver;) {
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    memory.read();
  }
  ground.isOver = true;
  threads.back().join();  // first: it sends signals to the others, which must be there still
  threads.pop_back();
  for (auto& thread : threads) thread.join();

  for (const auto& counted : all) {
    std::printf("%-18s %8ld rounds\n", counted->work.name.c_str(), counted->rounds.load());
    if (counted->rounds == 0) faults.add(counted->work.name + ": was never done");
  }
  std::printf("%llu times of a full disk, %llu signals\n",
              static_cast<unsigned long long>(ground.diskChanges / 2),
              static_cast<unsigned long long>(ground.signalsHandled));
  if (ground.diskChanges == 0 || ground.signalsHandled == 0) faults.add("no faults were injected");
  memory.show();
  if (memory.hasGrown()) faults.add("memory has grown");
  return faults.count() == 0;
}

}  // namespace
}  // namespace soak

int main(int argc, char** argv) {
  if (argc == 3 && std::strcmp(argv[1], "--peer") == 0) {
    soak::prepareProcess(argv[2]);
    soak::runPeer(argv[2]);
  }
  int seconds = 0;
  if (argc == 2) std::from_chars(argv[1], argv[1] + std::strlen(argv[1]), seconds);
  if (seconds < 1) {
    std::fputs("usage: soak SECONDS\n", stderr);
    return 2;
  }
  return soak::soakFor(std::chrono::seconds(seconds), "/proc/self/exe") ? 0 : 1;
}
