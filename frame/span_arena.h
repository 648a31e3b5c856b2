#pragma once

// One stretch of addresses, reserved when the first small object is made, and given out by spans of
// 64 KB. The stretch costs nothing until a span is used; spans that are free again serve the next
// size that needs one, and beyond some megabytes their memory goes back to the system.

#include <atomic>
#include <cstddef>
#include <cstdint>

#include "frame/fork_mutex.h"
#include "frame/object_memory.h"

namespace qx::detail {

// What a size notes of a span that it holds; guarded by that size's lock.
struct Span {
  char* start = nullptr;
  FreeBlock* free = nullptr;  // blocks that came back
  std::uint32_t fresh = 0;    // where the part begins that was never given out
  std::uint32_t blocksInUse = 0;
  Span* next = nullptr;  // among the spans with free blocks
  Span* previous = nullptr;
};

class SpanArena {
 public:
  static constexpr std::size_t kSpanSize = std::size_t{1} << 16;
  static constexpr std::size_t kReserved = std::size_t{1} << 34;

  // Whether the memory is a block of a span.
  static bool holds(const void* memory) noexcept { return offsetOf(memory) < kReserved; }
  // Of memory that the arena holds: the size that its span was taken for, and the span.
  static std::size_t sizeIndexOf(const void* memory) noexcept {
    return sizeIndexes_[offsetOf(memory) / kSpanSize];
  }
  static Span& spanOf(const void* memory) noexcept { return spans_[offsetOf(memory) / kSpanSize]; }

  // False where addresses are limited, where the program has a leak checker, or where the
  // environment has QXFOUNDATION_PLAIN_MEMORY, so that a memory debugger sees each object.
  static bool isUsable() noexcept;
  // An empty span for blocks of the size; null when there is no memory left. The arena is usable.
  static Span* take(std::size_t sizeIndex) noexcept;
  // No block of it is in use.
  static void giveBack(Span& span) noexcept;

  // Around a fork, so that the child finds the lock free.
  static void lock() { mutex_.lock(); }
  static void unlock() { mutex_.unlock(); }

 private:
  // No address of a program is so high: nothing is held until the stretch is reserved.
  static constexpr std::uintptr_t kNowhere = std::uintptr_t{1} << 63;
  static constexpr std::size_t kSpans = kReserved / kSpanSize;

  static std::uintptr_t offsetOf(const void* memory) noexcept {
    return reinterpret_cast<std::uintptr_t>(memory) - base_.load(std::memory_order_relaxed);
  }
  static void reserve() noexcept;
  static Span* fresh() noexcept;
  static bool grow() noexcept;
  static char* startOfStep(std::size_t step) noexcept;
  static std::size_t stepOf(const Span& span) noexcept;
  static void advise(std::size_t step, bool isLargeWanted) noexcept;

  static constinit std::atomic<std::uintptr_t> base_;
  static constinit std::atomic<bool> isRefused_;
  static constinit std::uint8_t* sizeIndexes_;  // of each span
  static constinit Span* spans_;

  static constinit ForkMutex mutex_;
  // The rest is guarded by the lock.
  static constinit std::size_t takenSpans_;  // that were ever taken, from the start on
  static constinit std::size_t openSpans_;   // that may be written
  static constinit Span* warm_;              // that came back, the last first
  static constinit std::size_t warmSpans_;
  static constinit Span* cold_;                // whose memory the system has
  static constinit std::uint8_t* coldOfStep_;  // their number in each step
};

}  // namespace qx::detail
