#include "ordering/ranking.h"

#include <algorithm>

namespace qx::detail {

bool Ranking::isDistinct() const { return std::find(tied.begin(), tied.end(), 1) == tied.end(); }

void Ranking::reverse() {
  std::vector<std::uint32_t> reversed(order.size());
  std::vector<unsigned char> reversedTied(order.size());
  std::size_t to = 0;
  for (std::size_t end = order.size(); end > 0;) {
    std::size_t start = end - 1;
    while (tied[start] != 0) --start;
    for (std::size_t i = start; i < end; ++i, ++to) {
      reversed[to] = order[i];
      reversedTied[to] = tied[i];
    }
    end = start;
  }
  order.swap(reversed);
  tied.swap(reversedTied);
}

std::vector<std::int32_t> Ranking::ranks(std::size_t elements) const {
  std::vector<std::int32_t> ranks(elements, -1);
  std::int32_t rank = -1;
  for (std::size_t i = 0; i < order.size(); ++i) {
    if (tied[i] == 0) ++rank;
    ranks[order[i]] = rank;
  }
  return ranks;
}

}  // namespace qx::detail
