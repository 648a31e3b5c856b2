#pragma once

// Memory of small objects.
//
// Objects of one size stand side by side: a thousand dictionaries of five entries are a thousand
// neighbours, whatever was made between them. What walks over many objects and looks at one kind of
// them waits for fewer lines of memory, and none holds what an allocator notes about each block.
//
// Each thread keeps some free blocks of every size, and takes and gives back whole batches under a
// lock of that size (`SizeClass`). Sizes take their memory by spans of one stretch of addresses
// (`SpanArena`), which tells blocks of its own from all others. Larger objects, and all of them
// where there is no such stretch, come from the global operator new.

#include <cstddef>
#include <cstdint>
#include <new>

namespace qx::detail {

struct FreeBlock {
  FreeBlock* next;
};

// The calling thread's free blocks of one size.
struct FreeBlocks {
  FreeBlock* first = nullptr;
  std::uint32_t count = 0;
  std::uint32_t most = 0;  // with so many a batch goes back
};

class ObjectMemory {
 public:
  // The address sanitizer looks at objects only where each has memory of its own.
#if defined(__SANITIZE_ADDRESS__)
  static constexpr bool kIsPlain = true;
#elif defined(__has_feature)
  static constexpr bool kIsPlain = __has_feature(address_sanitizer) != 0;
#else
  static constexpr bool kIsPlain = false;
#endif
  static constexpr std::size_t kGranularity = 16;
  static constexpr std::size_t kLargest = 256;
  static constexpr std::size_t kSizes = kLargest / kGranularity;

  // At least `size` bytes, aligned to 16; throws std::bad_alloc.
  static void* allocate(std::size_t size) {
    if (kIsPlain || size - 1 >= kLargest) [[unlikely]]
      return ::operator new(size);
    const std::size_t index = (size - 1) / kGranularity;
    ThreadCache* const cache = cache_;
    if (cache == nullptr) [[unlikely]]
      return allocateFirst(size, index);
    FreeBlocks& blocks = cache->blocks[index];
    FreeBlock* const block = blocks.first;
    if (block == nullptr) [[unlikely]]
      return refill(blocks, index);
    blocks.first = block->next;
    --blocks.count;
    return block;
  }

  // Memory that `allocate` or the global operator new gave, on any thread.
  static void release(void* memory) noexcept;

  // What objects and the threads' free blocks take of the arena.
  static std::size_t bytesInUse();

 private:
  friend struct CacheOfThread;
  struct ThreadCache {
    FreeBlocks blocks[kSizes];
  };

  // Null where there is no memory for one, or when the thread is over.
  static ThreadCache* makeCache() noexcept;
  static void* allocateFirst(std::size_t size, std::size_t index);
  static void* refill(FreeBlocks& blocks, std::size_t index);
  static void giveBack(FreeBlocks& blocks, std::size_t index) noexcept;

  // Null before the thread's first object and after its end.
  __attribute__((tls_model("initial-exec"))) static constinit thread_local ThreadCache* cache_;
};

}  // namespace qx::detail
