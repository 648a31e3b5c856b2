#pragma once

// The order of the elements of a run by their keys.

#include <cstddef>
#include <cstdint>
#include <vector>

namespace qx::detail {

// Ascending, elements of equal keys in the order of their numbers.
struct Ranking {
  std::vector<std::uint32_t> order;
  // For each place of `order`: its key equals that of the place before.
  std::vector<unsigned char> tied;

  bool isDistinct() const;
  // Elements with equal keys stay in their order.
  void reverse();
  // Numbers the keys from 0 in their order, and gives each element the number of its key.
  // `elements` is larger than every number of an element; those that are not ranked get -1.
  std::vector<std::int32_t> ranks(std::size_t elements) const;
};

}  // namespace qx::detail
