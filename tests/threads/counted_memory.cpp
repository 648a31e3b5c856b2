#include "tests/threads/counted_memory.h"

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>

#include "tests/support/plain_memory.h"

namespace {

std::atomic<long> given{0};
std::atomic<long> back{0};
thread_local bool refused = false;

}  // namespace

namespace threads_test {
long allocations() { return given; }
long livePieces() { return given - back; }
NoMemory::NoMemory() { refused = true; }
NoMemory::~NoMemory() { refused = false; }
}  // namespace threads_test

#ifndef QX_TESTS_OWN_NO_MEMORY

namespace {

void* allocate(std::size_t size, std::size_t alignment = alignof(std::max_align_t)) {
  if (refused) return nullptr;
  given.fetch_add(1, std::memory_order_relaxed);
  return std::aligned_alloc(alignment, (size / alignment + 1) * alignment);
}
void release(void* memory) {
  if (memory == nullptr) return;
  back.fetch_add(1, std::memory_order_relaxed);
  std::free(memory);
}

}  // namespace

void* operator new(std::size_t size) {
  void* memory = allocate(size);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return allocate(size); }
void* operator new(std::size_t size, std::align_val_t alignment) {
  void* memory = allocate(size, static_cast<std::size_t>(alignment));
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}
void* operator new(std::size_t size, std::align_val_t alignment, const std::nothrow_t&) noexcept {
  return allocate(size, static_cast<std::size_t>(alignment));
}
void operator delete(void* memory) noexcept { release(memory); }
void operator delete(void* memory, std::size_t) noexcept { release(memory); }
void operator delete(void* memory, const std::nothrow_t&) noexcept { release(memory); }
void operator delete(void* memory, std::align_val_t) noexcept { release(memory); }
void operator delete(void* memory, std::size_t, std::align_val_t) noexcept { release(memory); }
void operator delete(void* memory, std::align_val_t, const std::nothrow_t&) noexcept {
  release(memory);
}

#endif

// Calls that are never performed leave their records in memory, which is how they are meant to be:
// that much, and no more, is no finding of the leak checker.
extern "C" const char* __lsan_default_suppressions() {
  return "leak:allocateThreadMessage";  // where it was inlined, its namespace is not told
}
