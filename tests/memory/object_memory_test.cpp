// Memory of small objects: blocks that never overlap, whatever threads take and give them back, and
// that other objects and the system get back.

#include "frame/object_memory.h"

#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include <QXFoundation/array.h>
#include <QXFoundation/dictionary.h>
#include <QXFoundation/string.h>

#include "frame/span_arena.h"
#include "tests/support/scoped_environment.h"

namespace {

using qx::detail::ObjectMemory;
using qx::detail::SpanArena;

// Memory that is full of one byte, and must stay so.
struct Piece {
  Piece(std::size_t bytes, unsigned char with)
      : memory(static_cast<unsigned char*>(ObjectMemory::allocate(bytes))),
        size(bytes),
        fill(with) {
    std::memset(memory, fill, size);
  }
  bool isWhole() const {
    return std::all_of(memory, memory + size, [this](unsigned char c) { return c == fill; });
  }
  unsigned char* memory;
  std::size_t size;
  unsigned char fill;
};

bool takesArena() { return !ObjectMemory::kIsPlain && SpanArena::isUsable(); }

// Takes and gives back at random; false when a piece was not what was written there.
bool takeAndGive(std::uint64_t seed, int steps) {
  std::mt19937_64 random(seed);
  std::vector<Piece> pieces;
  bool isWhole = true;
  const auto give = [&](std::size_t i) {
    isWhole = isWhole && pieces[i].isWhole();
    ObjectMemory::release(pieces[i].memory);
    pieces[i] = pieces.back();
    pieces.pop_back();
  };
  for (int i = 0; i < steps; ++i) {
    // Waves, so that spans fill and empty.
    const bool isRising = (i / 5000) % 2 == 0;
    if (pieces.empty() || random() % 4 < (isRising ? 3U : 1U)) {
      pieces.emplace_back(1 + random() % 300, static_cast<unsigned char>(random()));
    } else {
      give(random() % pieces.size());
    }
  }
  while (!pieces.empty()) give(pieces.size() - 1);
  return isWhole;
}

TEST(ObjectMemory, HasPiecesOfEverySizeThatDoNotOverlap) { EXPECT_TRUE(takeAndGive(1, 200000)); }

TEST(ObjectMemory, IsAlignedAsTheGlobalOperatorsIs) {
  for (std::size_t size = 1; size <= 400; ++size) {
    void* const memory = ObjectMemory::allocate(size);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(memory) % 16, 0U) << size;
    ObjectMemory::release(memory);
  }
}

TEST(ObjectMemory, PutsObjectsOfOneSizeSideBySide) {
  if (!takesArena()) GTEST_SKIP() << "objects come from the global operator new";
  std::vector<qx::Ref<qx::Dictionary>> dictionaries;
  std::vector<qx::Ref<qx::String>> between;
  std::size_t neighbours = 0;
  for (int i = 0; i < 10000; ++i) {
    dictionaries.push_back(qx::dict({{"a", i}, {"b", i}}));
    between.push_back(qx::String::from(std::string(static_cast<std::size_t>(60 + i % 100), 'x')));
    if (i == 0) continue;
    const auto apart = reinterpret_cast<const char*>(dictionaries.back().get()) -
                       reinterpret_cast<const char*>(dictionaries[dictionaries.size() - 2].get());
    neighbours += std::abs(apart) <= 64 ? 1U : 0U;
  }
  EXPECT_GT(neighbours, 9000U);
}

TEST(ObjectMemory, IsThereForOtherSizesAgain) {
  if (!takesArena()) GTEST_SKIP() << "objects come from the global operator new";
  const auto fill = [](std::size_t size) {
    std::vector<void*> pieces;
    for (std::size_t i = 0; i < 50000; ++i) pieces.push_back(ObjectMemory::allocate(size));
    const auto [least, most] = std::minmax_element(pieces.begin(), pieces.end());
    const auto spread = static_cast<char*>(*most) - static_cast<char*>(*least);
    for (void* piece : pieces) ObjectMemory::release(piece);
    return spread;
  };
  const std::size_t before = ObjectMemory::bytesInUse();
  const auto first = fill(64);
  for (std::size_t size = 16; size <= 64; size += 16) EXPECT_LE(fill(size), 2 * first) << size;
  // What the thread keeps of each size.
  EXPECT_LE(ObjectMemory::bytesInUse(), before + 6 * 16384);
}

// In bytes.
std::size_t residentMemory() {
  unsigned long pages = 0;
  unsigned long resident = 0;
  FILE* const file = fopen("/proc/self/statm", "r");
  if (file == nullptr) return 0;
  const bool isRead = fscanf(file, "%lu %lu", &pages, &resident) == 2;
  fclose(file);
  return isRead ? resident * static_cast<std::size_t>(sysconf(_SC_PAGESIZE)) : 0;
}

TEST(ObjectMemory, GoesBackToTheSystem) {
  if (!takesArena()) GTEST_SKIP() << "objects come from the global operator new";
  constexpr std::size_t kCount = 1500000;
  std::vector<void*> pieces(kCount);
  const std::size_t before = residentMemory();
  for (void*& piece : pieces) std::memset(piece = ObjectMemory::allocate(128), 1, 128);
  EXPECT_GT(residentMemory(), before + kCount * 100);
  std::shuffle(pieces.begin(), pieces.end(), std::mt19937(3));
  for (void* piece : pieces) ObjectMemory::release(piece);
  EXPECT_LT(residentMemory(), before + kCount * 50);
}

TEST(ObjectMemoryThread, TakesAndGivesOnManyThreadsAtOnce) {
  std::atomic<int> whole{0};
  std::vector<std::thread> threads;
  for (std::uint64_t i = 0; i < 6; ++i)
    threads.emplace_back([&whole, i] { whole += takeAndGive(i, 60000) ? 1 : 0; });
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(whole, 6);
}

// One makes objects, another lets go of them.
TEST(ObjectMemoryThread, TakesBackWhatAnotherThreadTook) {
  const std::size_t before = ObjectMemory::bytesInUse();
  std::mutex mutex;
  std::vector<Piece> handed;
  std::atomic<bool> isOver{false};
  bool isWhole = true;
  std::thread taker([&] {
    for (bool isLast = false; !isLast;) {
      isLast = isOver;
      std::vector<Piece> mine;
      {
        const std::lock_guard lock(mutex);
        mine.swap(handed);
      }
      for (const Piece& piece : mine) {
        isWhole = isWhole && piece.isWhole();
        ObjectMemory::release(piece.memory);
      }
    }
  });
  std::vector<std::thread> makers;
  for (unsigned maker = 0; maker < 3; ++maker) {
    makers.emplace_back([&, maker] {
      std::mt19937 random(maker);
      for (int i = 0; i < 40000; ++i) {
        const Piece piece(1 + random() % 256, static_cast<unsigned char>(random()));
        const std::lock_guard lock(mutex);
        handed.push_back(piece);
      }
    });
  }
  for (std::thread& maker : makers) maker.join();
  isOver = true;
  taker.join();
  EXPECT_TRUE(isWhole);
  // Threads that ended keep nothing.
  EXPECT_LE(ObjectMemory::bytesInUse(), before);
}

// Destroyed after what the thread keeps for its objects, as it was made before the first of them.
struct Late {
  ~Late() {
    if (held == nullptr) return;
    held = nullptr;
    for (int i = 0; i < 1000; ++i)
      isRight = isRight && qx::String::from("made at the end")->length() == 15;
    *result = isRight;
  }
  qx::Ref<qx::String> held;
  bool isRight = true;
  bool* result = nullptr;
};

TEST(ObjectMemoryThread, WorksToTheEndOfTheThread) {
  const auto first = qx::String::from("held to the end");  // with its class
  const std::size_t before = ObjectMemory::bytesInUse();
  for (int i = 0; i < 20; ++i) {
    bool isRight = false;
    std::thread([&isRight] {
      thread_local Late late;
      late.result = &isRight;
      late.held = qx::String::from("held to the end");
    }).join();
    EXPECT_TRUE(isRight);
  }
  EXPECT_EQ(ObjectMemory::bytesInUse(), before);
}

// A thread that makes no object keeps blocks as well, and gives them back.
TEST(ObjectMemoryThread, TakesBackOnThreadsThatTakeNothing) {
  const std::size_t before = ObjectMemory::bytesInUse();
  for (int i = 0; i < 20; ++i) {
    std::vector<void*> pieces(1000);
    std::thread([&] {
      for (void*& piece : pieces) piece = ObjectMemory::allocate(64);
    }).join();
    std::thread([&] {
      for (void* piece : pieces) ObjectMemory::release(piece);
    }).join();
  }
  EXPECT_LE(ObjectMemory::bytesInUse(), before);
}

TEST(ObjectMemory, WorksInAChildThatWasForkedFromBusyThreads) {
#if defined(__has_feature)
#if __has_feature(thread_sanitizer)
  GTEST_SKIP() << "the sanitizer does not follow a fork of several threads";
#endif
#endif
  std::atomic<bool> isOver{false};
  std::vector<std::thread> busy;
  for (std::uint64_t i = 0; i < 3; ++i)
    busy.emplace_back([&isOver, i] {
      while (!isOver) takeAndGive(i, 2000);
    });
  for (int i = 0; i < 30; ++i) {
    const pid_t child = fork();
    if (child == 0) {
      alarm(60);
      _exit(takeAndGive(1, 3000) ? 0 : 1);
    }
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
  }
  isOver = true;
  for (std::thread& thread : busy) thread.join();
}

void useObjects() {
  alarm(60);
  takeAndGive(2, 2000);
}

// In a program without objects: its fork handlers come before those of the memory.
[[noreturn]] void forkWithHandlersThatUseObjects() {
  alarm(60);
  pthread_atfork(useObjects, useObjects, useObjects);
  useObjects();
  const pid_t child = fork();
  if (child == 0) _exit(0);
  int status = -1;
  waitpid(child, &status, 0);
  _exit(status == 0 ? 0 : 1);
}

[[noreturn]] void seeWhetherItIsPlain() { _exit(SpanArena::isUsable() ? 1 : 0); }

[[noreturn]] void limitAddressesAndSee() {
  const rlimit limit{rlim_t{1} << 40, RLIM_INFINITY};  // enough for the stretch many times over
  setrlimit(RLIMIT_AS, &limit);
  seeWhetherItIsPlain();
}

// Each in a program of its own, in which no object was made yet.
class ObjectMemoryDeathTest : public testing::Test {
 protected:
  void SetUp() override { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

TEST_F(ObjectMemoryDeathTest, MayBeUsedByHandlersOfForks) {
  EXPECT_EXIT(forkWithHandlersThatUseObjects(), testing::ExitedWithCode(0), "");
}

TEST_F(ObjectMemoryDeathTest, IsPlainWhereItIsWished) {
  const test_support::ScopedEnvironment plain("QXFOUNDATION_PLAIN_MEMORY", "1");
  EXPECT_EXIT(seeWhetherItIsPlain(), testing::ExitedWithCode(0), "");
}

TEST_F(ObjectMemoryDeathTest, IsPlainWhereAddressesAreLimited) {
  EXPECT_EXIT(limitAddressesAndSee(), testing::ExitedWithCode(0), "");
}

TEST_F(ObjectMemoryDeathTest, IsUsedOtherwise) {
  const int plain = ObjectMemory::kIsPlain ? 0 : 1;
  EXPECT_EXIT(seeWhetherItIsPlain(), testing::ExitedWithCode(plain), "");
}

}  // namespace
