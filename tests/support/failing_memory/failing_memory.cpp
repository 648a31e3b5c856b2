#include "tests/support/failing_memory/failing_memory.h"

#include <cstdlib>

#include "tests/support/plain_memory.h"

namespace {

thread_local long allocationsLeft = -1;

void* allocate(std::size_t size) {
  if (allocationsLeft >= 0 && allocationsLeft-- == 0) return nullptr;
  return std::malloc(size == 0 ? 1 : size);
}

}  // namespace

namespace test_support {
void failAllocationAfter(long count) { allocationsLeft = count; }
}  // namespace test_support

void* operator new(std::size_t size) {
  void* memory = allocate(size);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return allocate(size); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete(void* memory, const std::nothrow_t&) noexcept { std::free(memory); }
