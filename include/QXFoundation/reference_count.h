// Counting references, for the value model's own use. In a process of one thread a count needs no
// atomic operation, which costs several times as much; the C library tells when that is so, and a
// second thread begins with all that was counted before it.
#pragma once

#include <atomic>
#include <cstdint>

#if __has_include(<sys/single_threaded.h>)
#include <sys/single_threaded.h>
#define QX_SINGLE_THREADED __libc_single_threaded
#else
// Whether the C library tells that there is one thread alone.
#define QX_SINGLE_THREADED false
#endif

namespace qx::detail {

using ReferenceCount = std::atomic<std::uint32_t>;

inline void addReferences(ReferenceCount& count, std::uint32_t n) noexcept {
  if (QX_SINGLE_THREADED) {
    count.store(count.load(std::memory_order_relaxed) + n, std::memory_order_relaxed);
  } else {
    count.fetch_add(n, std::memory_order_relaxed);
  }
}

// Gives the count before.
inline std::uint32_t dropReferences(ReferenceCount& count, std::uint32_t n) noexcept {
  if (QX_SINGLE_THREADED) {
    const std::uint32_t before = count.load(std::memory_order_relaxed);
    count.store(before - n, std::memory_order_relaxed);
    return before;
  }
  return count.fetch_sub(n, std::memory_order_acq_rel);
}

}  // namespace qx::detail

#undef QX_SINGLE_THREADED
