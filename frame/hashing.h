#pragma once

// Hashing of texts, numbers and words. The seed differs from process to process, so that crafted
// keys can not be made to collide; hashes are never written anywhere.

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "frame/text_span.h"

namespace qx::detail {

inline constexpr std::uint64_t kHashMix0 = 0xA0761D6478BD642FU;
inline constexpr std::uint64_t kHashMix1 = 0xE7037ED1A0B428DBU;

// Zero until somebody asks for the seed.
extern std::atomic<std::uint64_t> knownSeed;
std::uint64_t makeSeed();

// The seed of this process; never zero. Thread-safe.
inline std::uint64_t hashSeed() {
  const std::uint64_t seed = knownSeed.load(std::memory_order_relaxed);
  return seed != 0 ? seed : makeSeed();
}

// Folds the 128-bit product of the two words.
inline std::uint64_t mixWords(std::uint64_t a, std::uint64_t b) {
  __extension__ using Wide = unsigned __int128;
  const Wide product = static_cast<Wide>(a) * b;
  return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
}

inline std::uint64_t hashWord(std::uint64_t word) {
  return mixWords(word ^ hashSeed(), 0x9E3779B97F4A7C15U);
}

inline std::uint64_t combineHashes(std::uint64_t a, std::uint64_t b) {
  return mixWords(a ^ kHashMix0, b ^ kHashMix1);
}

inline std::uint64_t load8(const unsigned char* p) {
  std::uint64_t word = 0;
  std::memcpy(&word, p, 8);
  return word;
}
inline std::uint64_t load4(const unsigned char* p) {
  std::uint32_t word = 0;
  std::memcpy(&word, p, 4);
  return word;
}

// All bytes of a short text in two words, by loads of fixed sizes that overlap. Texts of one size
// are equal when their words are; sizes are told apart by the caller.
struct ShortText {
  static constexpr std::size_t kMaxSize = 16;
  std::uint64_t first = 0;
  std::uint64_t last = 0;

  ShortText(const void* bytes, std::size_t size) {
    const auto* p = static_cast<const unsigned char*>(bytes);
    if (size >= 8) {
      first = load8(p);
      last = load8(p + size - 8);
    } else if (size >= 4) {
      first = load4(p);
      last = load4(p + size - 4);
    } else if (size > 0) {
      first = std::uint64_t{p[0]} << 16 | std::uint64_t{p[size / 2]} << 8 | p[size - 1];
    }
  }
  bool operator==(const ShortText&) const = default;
};

std::uint64_t hashLongBytes(const void* bytes, std::size_t size);

inline std::uint64_t hashBytes(const void* bytes, std::size_t size) {
  if (size > ShortText::kMaxSize) return hashLongBytes(bytes, size);
  const ShortText text(bytes, size);
  const std::uint64_t seed = hashSeed();
  const std::uint64_t h = seed ^ mixWords(size ^ kHashMix0, kHashMix1);
  return mixWords(text.first ^ kHashMix1 ^ h, text.last ^ kHashMix0 ^ seed);
}

// Never zero. Texts of equal units hash equally when both stand in the narrowest form.
inline std::uint32_t hashText(TextSpan text) {
  const std::uint64_t h = hashBytes(text.data, text.wide ? text.size * 2 : text.size);
  const auto folded = static_cast<std::uint32_t>(h ^ (h >> 32));
  return folded == 0 ? 1 : folded;
}

}  // namespace qx::detail
