#pragma once

// A stable sort that is safe with any comparison: one that contradicts itself gives some order, and
// one that raises leaves the items as some order of what they were.

#include <algorithm>
#include <cstddef>
#include <vector>

namespace qx::detail {

// `order(a, b)` is positive where b belongs before a.
template <class Item, class Order>
void mergeSort(std::vector<Item>& items, Order order) {
  std::vector<Item> merged(items.size());
  const std::size_t count = items.size();
  for (std::size_t width = 1; width < count; width *= 2) {
    for (std::size_t start = 0; start < count; start += 2 * width) {
      const std::size_t middle = std::min(start + width, count);
      const std::size_t end = std::min(middle + width, count);
      std::size_t left = start;
      std::size_t right = middle;
      for (std::size_t to = start; to < end; ++to) {
        const bool takesRight =
            left == middle || (right < end && order(items[left], items[right]) > 0);
        merged[to] = items[takesRight ? right++ : left++];
      }
    }
    items.swap(merged);
  }
}

}  // namespace qx::detail
