#pragma once

// Sorting of keys that are one word each.

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace qx::detail {

// A key, and the number of the element it belongs to.
struct SortEntry {
  std::uint64_t key;
  std::uint32_t element;
};

// Sorts entries by key, those of one key in the order of their elements' numbers. The entries must
// come in that order. Linear in time; `room` is working memory, kept between calls.
void sortEntries(std::span<SortEntry> entries, std::vector<SortEntry>& room);

}  // namespace qx::detail
