#include "frame/span_arena.h"

#include <stdlib.h>
#include <sys/mman.h>
#include <sys/resource.h>

#include <mutex>

// There where the program has a leak checker, whether this library was built for one or not.
extern "C" [[gnu::weak]] int __lsan_do_recoverable_leak_check();

namespace qx::detail {
namespace {

static_assert(sizeof(void*) == 8, "the stretch needs addresses of 64 bits");

// Spans are opened by steps of a large page of the system.
constexpr std::size_t kStep = std::size_t{1} << 21;
constexpr std::size_t kSpansOfStep = kStep / SpanArena::kSpanSize;
constexpr std::size_t kSteps = SpanArena::kReserved / kStep;
// Beyond so much of small objects a program is better off with large pages: walking over them waits
// for the translation of addresses otherwise.
constexpr std::size_t kStepsOfSmallPages = (std::size_t{16} << 20) / kStep;
// Kept for the next objects: reading a list of some megabytes again and again asks the system once.
constexpr std::size_t kMostWarm = (std::size_t{32} << 20) / SpanArena::kSpanSize;

bool isPlainMemoryWanted() {
  const char* const wish = secure_getenv("QXFOUNDATION_PLAIN_MEMORY");
  return wish != nullptr && *wish != '\0';
}

// The checker does not look for pointers in mapped memory: what objects hold would be lost to it.
// Nor would the address sanitizer notice a use of what was released.
bool isMemoryChecked() { return __lsan_do_recoverable_leak_check != nullptr; }

bool isLimited(decltype(RLIMIT_AS) resource) {
  rlimit limit{};
  return getrlimit(resource, &limit) != 0 || limit.rlim_cur != RLIM_INFINITY;
}

// A stretch that is mostly unused would take what such a limit leaves for the program.
bool areAddressesLimited() { return isLimited(RLIMIT_AS) || isLimited(RLIMIT_DATA); }

void* map(std::size_t size, int protection) {
  void* const memory =
      mmap(nullptr, size, protection, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  return memory == MAP_FAILED ? nullptr : memory;
}

}  // namespace

constinit std::atomic<std::uintptr_t> SpanArena::base_{kNowhere};
constinit std::atomic<bool> SpanArena::isRefused_{false};
constinit std::uint8_t* SpanArena::sizeIndexes_ = nullptr;
constinit Span* SpanArena::spans_ = nullptr;
constinit ForkMutex SpanArena::mutex_;
constinit std::size_t SpanArena::takenSpans_ = 0;
constinit std::size_t SpanArena::openSpans_ = 0;
constinit Span* SpanArena::warm_ = nullptr;
constinit std::size_t SpanArena::warmSpans_ = 0;
constinit Span* SpanArena::cold_ = nullptr;
constinit std::uint8_t* SpanArena::coldOfStep_ = nullptr;

char* SpanArena::startOfStep(std::size_t step) noexcept {
  return reinterpret_cast<char*>(base_.load(std::memory_order_relaxed)) + step * kStep;
}

std::size_t SpanArena::stepOf(const Span& span) noexcept {
  return static_cast<std::size_t>(&span - spans_) / kSpansOfStep;
}

bool SpanArena::isUsable() noexcept {
  if (base_.load(std::memory_order_acquire) != kNowhere) return true;
  if (isRefused_.load(std::memory_order_relaxed)) return false;
  const std::lock_guard lock(mutex_);
  if (base_.load(std::memory_order_relaxed) == kNowhere) reserve();
  return base_.load(std::memory_order_relaxed) != kNowhere;
}

void SpanArena::reserve() noexcept {
  constexpr std::size_t kTables = kSpans * (sizeof(Span) + sizeof(std::uint8_t)) + kSteps;
  isRefused_.store(true, std::memory_order_relaxed);
  if (isPlainMemoryWanted() || isMemoryChecked() || areAddressesLimited()) return;
  void* const stretch = map(kReserved + kStep, PROT_NONE);
  if (stretch == nullptr) return;
  // Zeros are spans that were never taken.
  void* const tables = map(kTables, PROT_READ | PROT_WRITE);
  if (tables == nullptr) {
    munmap(stretch, kReserved + kStep);
    return;
  }
  madvise(tables, kTables, MADV_NOHUGEPAGE);
  spans_ = static_cast<Span*>(tables);
  sizeIndexes_ = reinterpret_cast<std::uint8_t*>(spans_ + kSpans);
  coldOfStep_ = sizeIndexes_ + kSpans;
  const auto address = reinterpret_cast<std::uintptr_t>(stretch);
  base_.store((address + kStep - 1) / kStep * kStep, std::memory_order_release);
}

Span* SpanArena::take(std::size_t sizeIndex) noexcept {
  const std::lock_guard lock(mutex_);
  Span* span = nullptr;
  if (warm_ != nullptr) {
    span = warm_;
    warm_ = span->next;
    --warmSpans_;
  } else if (cold_ != nullptr) {
    span = cold_;
    cold_ = span->next;
    const std::size_t step = stepOf(*span);
    if (--coldOfStep_[step] == 0) advise(step, true);
  } else {
    span = fresh();
  }
  if (span == nullptr) return nullptr;
  *span = Span{.start = span->start};
  sizeIndexes_[span - spans_] = static_cast<std::uint8_t>(sizeIndex);
  return span;
}

Span* SpanArena::fresh() noexcept {
  if (takenSpans_ == openSpans_ && !grow()) return nullptr;
  Span* const span = spans_ + takenSpans_;
  span->start = startOfStep(0) + takenSpans_ * kSpanSize;
  ++takenSpans_;
  return span;
}

bool SpanArena::grow() noexcept {
  if (openSpans_ == kSpans) return false;
  const std::size_t step = openSpans_ / kSpansOfStep;
  if (mprotect(startOfStep(step), kStep, PROT_READ | PROT_WRITE) != 0) return false;
  advise(step, true);
  openSpans_ += kSpansOfStep;
  return true;
}

// Advice only: whether the system has such pages is its affair. It may fill them up where parts
// were given back, so none are wanted where there is a cold span.
void SpanArena::advise(std::size_t step, bool isLargeWanted) noexcept {
  const bool isLarge = isLargeWanted && step >= kStepsOfSmallPages;
  madvise(startOfStep(step), kStep, isLarge ? MADV_HUGEPAGE : MADV_NOHUGEPAGE);
}

void SpanArena::giveBack(Span& span) noexcept {
  const std::lock_guard lock(mutex_);
  const bool isKept = warmSpans_ < kMostWarm;
  if (isKept) {
    ++warmSpans_;
  } else {
    const std::size_t step = stepOf(span);
    if (++coldOfStep_[step] == 1) advise(step, false);
    madvise(span.start, kSpanSize, MADV_DONTNEED);
  }
  Span*& list = isKept ? warm_ : cold_;
  span.next = list;
  list = &span;
}

}  // namespace qx::detail
