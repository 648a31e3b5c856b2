#pragma once

// The sort by which arrays are put in key order: gapped insertion passes over a falling sequence of
// gaps, the last of them 1. It is not stable, and the permutation that it gives for equal keys is
// part of what callers see.

#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

namespace qx::detail {

// Calls `pass(gap)` for each gap that a run of `count` elements is passed over with.
template <class Pass>
void forEachGap(std::size_t count, Pass pass) {
  constexpr std::size_t kLargest = (std::numeric_limits<std::size_t>::max() - 1) / 3;
  std::size_t gap = 1;
  while (gap <= count && gap <= kLargest) gap = 3 * gap + 1;
  std::size_t before = 0;
  do {
    before = gap;
    gap = before / 3;
    if (gap < count) pass(gap);
  } while (before >= 9);
}

// What becomes of the numbers 0, 1, ... when they are sorted by these ranks. The ranks are used up.
std::vector<std::uint32_t> shellOrder(std::vector<std::int32_t> ranks);

}  // namespace qx::detail
