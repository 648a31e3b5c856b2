// Shuffling arrays.
//
//     auto deck = kwRandomize(cards);   // a shuffled copy
//     kwRandomize(mutableCards);        // a mutable array is shuffled in place
//
// Which of the two it is follows from the type of the argument; by selector, from its class. The
// numbers come from one generator of the process, which threads may share.
#pragma once

#include <concepts>
#include <utility>

#include <QXFoundation/array.h>
#include <QXFoundation/object.h>

namespace qx {

namespace detail {
QX_EXPORT void shuffle(MutableArray& array);
}

// A shuffled mutable copy; nil for nil.
[[nodiscard]] QX_EXPORT Ref<MutableArray> kwRandomize(In<Array> array);

// Shuffles in place; nothing for nil. For each index but the last, in ascending order, the element
// there is exchanged with the one `random() % (count - index)` places behind it. The generator is
// the system's `random()`, which is not seeded here. Not for secrets: its numbers can be foretold.
template <std::convertible_to<In<MutableArray>> A>
void kwRandomize(A&& array) {
  const In<MutableArray> target(std::forward<A>(array));
  if (target) detail::shuffle(*target);
}

}  // namespace qx
