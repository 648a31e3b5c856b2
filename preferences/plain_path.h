#pragma once

// The short road through most key paths: those of ASCII alone and without indexes need no copy, and
// one pass over their text.

#include <bit>
#include <cstddef>
#include <cstdint>

#include <QXFoundation/string_arg.h>

#include "frame/hashing.h"
#include "frame/string_storage.h"
#include "frame/text_span.h"

namespace qx::detail {

// Eight characters of a text at once; the first is the lowest byte.
struct EightCharacters {
  static constexpr std::uint64_t kEach = 0x0101010101010101U;
  static constexpr std::uint64_t kLow = kEach * 0x7F;
  static constexpr std::uint64_t kHigh = kEach * 0x80;

  std::uint64_t word;

  // Those from `at` on; zeros behind the end.
  static EightCharacters load(const unsigned char* text, std::size_t size, std::size_t at) {
    const std::size_t left = size - at;
    if (left >= 8) return {load8(text + at)};
    if (size >= 8) return {load8(text + size - 8) >> (8 * (8 - left))};
    std::uint64_t word = 0;
    for (std::size_t i = left; i-- > 0;) word = word << 8 | text[at + i];
    return {word};
  }

  // The highest bit of each byte that is the character.
  std::uint64_t marks(char character) const {
    const std::uint64_t x = word ^ (kEach * static_cast<unsigned char>(character));
    return ~(((x & kLow) + kLow) | x | kLow);
  }
  bool isPlain() const { return ((word | marks('[')) & kHigh) == 0; }
};

// Calls `visit(key, isLast)` for each component of the path, as long as it gives true. False where
// it did not, or the path is another one: then the components from the first that is not plain on
// were not visited.
template <class Visit>
bool eachPlainKey(StringArg path, Visit visit) {
  if constexpr (std::endian::native != std::endian::little) return false;
  const String* s = path.object();
  const TextSpan text = s != nullptr ? StringStorage::span(*s) : TextSpan::latin1(path.bytes());
  if (text.wide) return false;
  const unsigned char* const characters = text.bytes();
  const std::size_t size = text.size;
  const auto visitKey = [&](std::size_t from, std::size_t to, bool isLast) {
    if (to - from >= 4 && characters[to - 1] == ']') return false;
    return visit(text.substr(from, to - from), isLast);
  };
  std::size_t start = 0;
  for (std::size_t at = 0; at < size; at += 8) {
    const auto eight = EightCharacters::load(characters, size, at);
    if (!eight.isPlain()) return false;
    for (std::uint64_t dots = eight.marks('.'); dots != 0; dots &= dots - 1) {
      const std::size_t dot = at + static_cast<std::size_t>(std::countr_zero(dots)) / 8;
      if (!visitKey(start, dot, false)) return false;
      start = dot + 1;
    }
  }
  return visitKey(start, size, true);
}

}  // namespace qx::detail
