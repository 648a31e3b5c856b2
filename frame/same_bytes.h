#pragma once

// Comparing few bytes without a call.

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace qx::detail {

template <class Word>
bool sameEnds(const char* a, const char* b, std::size_t count) {
  Word words[4];
  std::memcpy(&words[0], a, sizeof(Word));
  std::memcpy(&words[1], b, sizeof(Word));
  std::memcpy(&words[2], a + count - sizeof(Word), sizeof(Word));
  std::memcpy(&words[3], b + count - sizeof(Word), sizeof(Word));
  return ((words[0] ^ words[1]) | (words[2] ^ words[3])) == 0;
}

// Up to sixteen bytes are covered by two words, which may overlap.
inline bool sameBytes(const char* a, const char* b, std::size_t count) {
  if (count > 16) return std::memcmp(a, b, count) == 0;
  if (count >= 8) return sameEnds<std::uint64_t>(a, b, count);
  if (count >= 4) return sameEnds<std::uint32_t>(a, b, count);
  if (count >= 2) return sameEnds<std::uint16_t>(a, b, count);
  return count == 0 || *a == *b;
}

}  // namespace qx::detail
