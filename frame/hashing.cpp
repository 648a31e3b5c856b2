#include "frame/hashing.h"

#include <sys/auxv.h>

#include <atomic>
#include <cstring>

namespace qx::detail {
namespace {

constexpr std::uint64_t kMix0 = 0xA0761D6478BD642FU;
constexpr std::uint64_t kMix1 = 0xE7037ED1A0B428DBU;

std::uint64_t load(const unsigned char* p, std::size_t n) {
  std::uint64_t word = 0;
  if (n != 0) std::memcpy(&word, p, n);  // an empty text may stand nowhere
  return word;
}

// The system gives every process 16 random bytes at its start.
std::uint64_t makeSeed() {
  std::uint64_t seed = 0;
  if (const auto* random = reinterpret_cast<const unsigned char*>(getauxval(AT_RANDOM))) {
    seed = load(random, 8) ^ (load(random + 8, 8) << 1);
  }
  return seed | 1;
}

}  // namespace

std::uint64_t hashSeed() {
  static std::atomic<std::uint64_t> seed{0};
  std::uint64_t s = seed.load(std::memory_order_relaxed);
  if (s == 0) [[unlikely]] {
    s = makeSeed();  // the same in every thread
    seed.store(s, std::memory_order_relaxed);
  }
  return s;
}

std::uint64_t hashBytes(const void* bytes, std::size_t size) {
  const auto* p = static_cast<const unsigned char*>(bytes);
  std::uint64_t h = hashSeed() ^ mixWords(size ^ kMix0, kMix1);
  for (; size > 16; p += 16, size -= 16) h = mixWords(load(p, 8) ^ kMix0 ^ h, load(p + 8, 8) ^ h);
  const std::uint64_t a = size >= 8 ? load(p, 8) : load(p, size);
  const std::uint64_t b = size > 8 ? load(p + 8, size - 8) : 0;
  return mixWords(a ^ kMix1 ^ h, b ^ kMix0 ^ hashSeed());
}

std::uint32_t hashText(TextSpan text) {
  const std::uint64_t h = hashBytes(text.data, text.wide ? text.size * 2 : text.size);
  const auto folded = static_cast<std::uint32_t>(h ^ (h >> 32));
  return folded == 0 ? 1 : folded;
}

}  // namespace qx::detail
