#pragma once

// The bounds that keep small property lists small.

#include <cstdint>

namespace qx::detail {

// A container that is met several times is one object in memory, but whoever walks the tree meets
// it as often. A list may hold this many values when each occurrence counts, `distinct` counting
// every container once. The first term lets all lists pass whose walk takes no time worth a
// thought.
inline std::uint64_t maxExpandedValues(std::uint64_t distinct) {
  return (std::uint64_t{1} << 20) + 64 * distinct;
}

// How many values may be made of so many bytes where each occurrence is an object of its own, as in
// a mutable list; and how many bytes of strings and data that stand in the list once and are
// copied.
inline std::uint64_t maxCopiedValues(std::uint64_t bytes) { return 4096 + 2 * bytes; }
inline std::uint64_t maxCopiedBytes(std::uint64_t bytes) {
  return (std::uint64_t{1} << 24) + 16 * bytes;
}

// Objects of a binary list are numbered with 32 bits.
inline constexpr std::uint64_t kMaxPlistObjects = 0xFFFFFFF0U;

}  // namespace qx::detail
