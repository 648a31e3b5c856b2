#include "frame/hashing.h"

#include <sys/auxv.h>

namespace qx::detail {

std::atomic<std::uint64_t> knownSeed{0};

// The system gives every process 16 random bytes at its start: the same to every thread.
std::uint64_t makeSeed() {
  std::uint64_t seed = 0;
  if (const auto* random = reinterpret_cast<const unsigned char*>(getauxval(AT_RANDOM))) {
    seed = load8(random) ^ (load8(random + 8) << 1);
  }
  seed |= 1;
  knownSeed.store(seed, std::memory_order_relaxed);
  return seed;
}

std::uint64_t hashLongBytes(const void* bytes, std::size_t size) {
  const auto* p = static_cast<const unsigned char*>(bytes);
  const std::uint64_t seed = hashSeed();
  std::uint64_t h = seed ^ mixWords(size ^ kHashMix0, kHashMix1);
  const unsigned char* const end = p + size;
  for (; end - p > 16; p += 16) h = mixWords(load8(p) ^ kHashMix0 ^ h, load8(p + 8) ^ h);
  return mixWords(load8(end - 16) ^ kHashMix1 ^ h, load8(end - 8) ^ kHashMix0 ^ seed);
}

}  // namespace qx::detail
