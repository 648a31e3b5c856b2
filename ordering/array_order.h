#pragma once

// Putting the elements of arrays in another order.

#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include <QXFoundation/array.h>
#include <QXFoundation/sort_ordering.h>

namespace qx::detail {

// Places of elements are kept in 32 bits.
inline constexpr std::size_t kMaxSorted = std::numeric_limits<std::int32_t>::max();

// False for a subclass, which wants to see every change.
bool isPlain(const MutableArray& array);

// True when the array holds at that index the very same elements.
bool stillHolds(const Array& array, std::size_t index, const Array& elements);

// Element `order[i]` of the run goes to place i. Of a plain array; raises nothing but
// std::bad_alloc, and then changes nothing.
void reorder(MutableArray& array, std::size_t index, const std::vector<std::uint32_t>& order);

// The ordering at that place of an array of orderings. Raises InvalidArgumentException for anything
// else.
Ref<QXSortOrdering> orderingAt(const Array& orderings, std::size_t index);

}  // namespace qx::detail
