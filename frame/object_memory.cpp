#include "frame/object_memory.h"

#include <pthread.h>

#include <algorithm>
#include <cstdlib>
#include <mutex>
#include <utility>

#include <QXFoundation/object.h>

#include "frame/fork_mutex.h"
#include "frame/span_arena.h"

namespace qx::detail {
namespace {

constexpr std::size_t sizeOf(std::size_t index) { return (index + 1) * ObjectMemory::kGranularity; }

// Blocks that a thread takes and gives back at once.
constexpr std::uint32_t batchOf(std::size_t index) {
  constexpr std::size_t kBytes = 8192;
  constexpr std::size_t kMost = 128;
  return static_cast<std::uint32_t>(std::min(kBytes / sizeOf(index), kMost));
}

// What all threads share of the blocks of one size.
class SizeClass {
 public:
  // Up to `wanted` blocks, in the order of their addresses where they are new; without any when
  // there is no memory.
  FreeBlocks take(std::size_t index, std::uint32_t wanted) noexcept {
    FreeBlocks taken;
    FreeBlock** end = &taken.first;
    const std::lock_guard lock(mutex_);
    while (taken.count < wanted) {
      if (withFree_ == nullptr && (taken.count != 0 || !addSpan(index))) break;
      Span& span = *withFree_;
      for (; taken.count < wanted; ++taken.count) {
        FreeBlock* const block = takeFrom(span, sizeOf(index));
        if (block == nullptr) break;
        *end = block;
        end = &block->next;
      }
      if (isFull(span, sizeOf(index))) unlink(span);
    }
    *end = nullptr;
    return taken;
  }

  void giveBack(std::size_t index, FreeBlock* block, std::uint32_t count) noexcept {
    const std::lock_guard lock(mutex_);
    for (; count != 0; --count) {
      FreeBlock* const next = block->next;
      Span& span = SpanArena::spanOf(block);
      if (isFull(span, sizeOf(index))) link(span);
      block->next = span.free;
      span.free = block;
      --span.blocksInUse;
      --blocksInUse_;
      const bool isOnly = span.next == nullptr && span.previous == nullptr;
      if (span.blocksInUse == 0 && !isOnly) {
        unlink(span);
        SpanArena::giveBack(span);
      }
      block = next;
    }
  }

  std::size_t blocksInUse() {
    const std::lock_guard lock(mutex_);
    return blocksInUse_;
  }

  void lock() { mutex_.lock(); }
  void unlock() { mutex_.unlock(); }

 private:
  static bool isFull(const Span& span, std::size_t size) {
    return span.free == nullptr && span.fresh + size > SpanArena::kSpanSize;
  }

  FreeBlock* takeFrom(Span& span, std::size_t size) noexcept {
    if (isFull(span, size)) return nullptr;
    ++span.blocksInUse;
    ++blocksInUse_;
    if (span.free != nullptr) return std::exchange(span.free, span.free->next);
    void* const block = span.start + span.fresh;
    span.fresh += static_cast<std::uint32_t>(size);
    return ::new (block) FreeBlock{nullptr};
  }

  bool addSpan(std::size_t index) noexcept {
    Span* const span = SpanArena::take(index);
    if (span != nullptr) link(*span);
    return span != nullptr;
  }

  void link(Span& span) noexcept {
    span.previous = nullptr;
    span.next = withFree_;
    if (withFree_ != nullptr) withFree_->previous = &span;
    withFree_ = &span;
  }

  void unlink(Span& span) noexcept {
    (span.previous != nullptr ? span.previous->next : withFree_) = span.next;
    if (span.next != nullptr) span.next->previous = span.previous;
    span.next = span.previous = nullptr;
  }

  ForkMutex mutex_;
  Span* withFree_ = nullptr;
  std::size_t blocksInUse_ = 0;
};

constinit SizeClass sizeClasses[ObjectMemory::kSizes];

// A child has one thread, whose memory must work whatever the others did in the parent.
void lockAll() {
  for (SizeClass& sizeClass : sizeClasses) sizeClass.lock();
  SpanArena::lock();
  ForkMutex::isForking = true;
}

void unlockAll() {
  ForkMutex::isForking = false;
  SpanArena::unlock();
  for (SizeClass& sizeClass : sizeClasses) sizeClass.unlock();
}

bool prepareForForks() { return pthread_atfork(lockAll, unlockAll, unlockAll) == 0; }

}  // namespace

thread_local constinit ObjectMemory::ThreadCache* ObjectMemory::cache_ = nullptr;

namespace {

// Stands outside of what ends with the thread: it is asked afterwards.
thread_local constinit bool isThreadOver = false;

}  // namespace

// Gives the thread's free blocks back when it ends. What is destroyed later takes and gives single
// blocks.
struct CacheOfThread {
  ObjectMemory::ThreadCache* cache = nullptr;

  ~CacheOfThread() {
    isThreadOver = true;
    ObjectMemory::cache_ = nullptr;
    if (cache == nullptr) return;
    for (std::size_t i = 0; i < ObjectMemory::kSizes; ++i)
      sizeClasses[i].giveBack(i, cache->blocks[i].first, cache->blocks[i].count);
    std::free(cache);
  }
};

namespace {

thread_local CacheOfThread cacheOfThread;

}  // namespace

ObjectMemory::ThreadCache* ObjectMemory::makeCache() noexcept {
  if (isThreadOver) return nullptr;
  void* const memory = std::malloc(sizeof(ThreadCache));
  if (memory == nullptr) return nullptr;
  cache_ = ::new (memory) ThreadCache;
  for (std::size_t i = 0; i < kSizes; ++i) cache_->blocks[i].most = 2 * batchOf(i);
  cacheOfThread.cache = cache_;
  return cache_;
}

void* ObjectMemory::allocateFirst(std::size_t size, std::size_t index) {
  static const bool isReady = prepareForForks();
  static_cast<void>(isReady);
  if (!SpanArena::isUsable()) return ::operator new(size);
  if (ThreadCache* const cache = makeCache()) return refill(cache->blocks[index], index);
  FreeBlock* const block = sizeClasses[index].take(index, 1).first;
  return block != nullptr ? block : ::operator new(size);
}

void* ObjectMemory::refill(FreeBlocks& blocks, std::size_t index) {
  const FreeBlocks taken = sizeClasses[index].take(index, batchOf(index));
  if (taken.first == nullptr) return ::operator new(sizeOf(index));
  blocks.first = taken.first->next;
  blocks.count = taken.count - 1;
  return taken.first;
}

void ObjectMemory::release(void* memory) noexcept {
  if (kIsPlain || !SpanArena::holds(memory)) return ::operator delete(memory);
  const std::size_t index = SpanArena::sizeIndexOf(memory);
  FreeBlock* const block = ::new (memory) FreeBlock{nullptr};
  ThreadCache* cache = cache_;
  if (cache == nullptr) [[unlikely]] {
    cache = makeCache();
    if (cache == nullptr) return sizeClasses[index].giveBack(index, block, 1);
  }
  FreeBlocks& blocks = cache->blocks[index];
  block->next = blocks.first;
  blocks.first = block;
  if (++blocks.count >= blocks.most) [[unlikely]]
    giveBack(blocks, index);
}

// The blocks that came last: they are still in the nearest caches.
void ObjectMemory::giveBack(FreeBlocks& blocks, std::size_t index) noexcept {
  const std::uint32_t count = batchOf(index);
  FreeBlock* const first = blocks.first;
  FreeBlock* last = first;
  for (std::uint32_t i = 1; i < count; ++i) last = last->next;
  blocks.first = last->next;
  blocks.count -= count;
  sizeClasses[index].giveBack(index, first, count);
}

std::size_t ObjectMemory::bytesInUse() {
  std::size_t bytes = 0;
  for (std::size_t i = 0; i < kSizes; ++i) bytes += sizeClasses[i].blocksInUse() * sizeOf(i);
  return bytes;
}

void* allocateObject(std::size_t size) { return ObjectMemory::allocate(size); }
void releaseObject(void* memory) noexcept { ObjectMemory::release(memory); }

}  // namespace qx::detail
