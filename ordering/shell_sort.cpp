#include "ordering/shell_sort.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <numeric>

namespace qx::detail {
namespace {

// Ranks and the numbers of their elements, which move together.
struct Ranked {
  std::int32_t* ranks;
  std::uint32_t* items;
};

void insert(Ranked run, std::size_t at, std::size_t gap) {
  const std::int32_t rank = run.ranks[at];
  const std::uint32_t item = run.items[at];
  while (at >= gap && rank < run.ranks[at - gap]) {
    run.ranks[at] = run.ranks[at - gap];
    run.items[at] = run.items[at - gap];
    at -= gap;
  }
  run.ranks[at] = rank;
  run.items[at] = item;
}

// Four neighbours at once.
constexpr std::size_t kLanes = 4;
using Lanes = std::int32_t __attribute__((vector_size(16)));
using Halves = std::int64_t __attribute__((vector_size(16)));

Lanes load(const void* from) {
  Lanes lanes;
  std::memcpy(&lanes, from, sizeof lanes);
  return lanes;
}
void store(void* to, Lanes lanes) { std::memcpy(to, &lanes, sizeof lanes); }
Lanes choose(Lanes mask, Lanes ifSet, Lanes otherwise) {
  return (mask & ifSet) | (~mask & otherwise);
}

// Inserts the elements at `at` and the three behind it. With a gap of four or more each of them has
// its own chain of elements a gap apart, and nothing that one insertion moves is seen by another.
// All go on as long as one of them has to: in a chain whose element has found its place, what lies
// below is in order, and further steps move nothing. The four must not span a multiple of the gap,
// so that their chains end together.
void insertFour(Ranked run, std::size_t at, std::size_t gap) {
  Lanes rank = load(run.ranks + at);
  Lanes item = load(run.items + at);
  bool moved = true;
  while (moved && at >= gap) {
    const Lanes rankBelow = load(run.ranks + at - gap);
    const Lanes itemBelow = load(run.items + at - gap);
    const Lanes swaps = rank < rankBelow;
    store(run.ranks + at, choose(swaps, rankBelow, rank));
    store(run.items + at, choose(swaps, itemBelow, item));
    rank = choose(swaps, rank, rankBelow);
    item = choose(swaps, item, itemBelow);
    at -= gap;
    const auto halves = std::bit_cast<Halves>(swaps);
    moved = (halves[0] | halves[1]) != 0;
  }
  store(run.ranks + at, rank);
  store(run.items + at, item);
}

void pass(Ranked run, std::size_t count, std::size_t gap) {
  for (std::size_t row = gap; row < count; row += gap) {
    const std::size_t end = std::min(row + gap, count);
    std::size_t at = row;
    for (; at + kLanes <= end; at += kLanes) insertFour(run, at, gap);
    for (; at < end; ++at) insert(run, at, gap);
  }
}

}  // namespace

std::vector<std::uint32_t> shellOrder(std::vector<std::int32_t> ranks) {
  std::vector<std::uint32_t> items(ranks.size());
  std::iota(items.begin(), items.end(), 0U);
  const Ranked run{ranks.data(), items.data()};
  forEachGap(ranks.size(), [&](std::size_t gap) { pass(run, ranks.size(), gap); });
  return items;
}

}  // namespace qx::detail
