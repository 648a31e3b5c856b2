#pragma once

// Hashing of texts, numbers and words. The seed differs from process to process, so that crafted
// keys can not be made to collide; hashes are never written anywhere.

#include <cstddef>
#include <cstdint>

#include "frame/text_span.h"

namespace qx::detail {

// The seed of this process; never zero. Thread-safe.
std::uint64_t hashSeed();

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
  return mixWords(a ^ 0xA0761D6478BD642FU, b ^ 0xE7037ED1A0B428DBU);
}

std::uint64_t hashBytes(const void* bytes, std::size_t size);

// Never zero. Texts of equal units hash equally when both stand in the narrowest form.
std::uint32_t hashText(TextSpan text);

}  // namespace qx::detail
