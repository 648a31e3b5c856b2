// Sorting arrays by the value that each element has for a key.
//
//     auto byName = qx::QXSortOrdering::sortOrderingWithKey("name", "compareAscending:");
//     sortUsingKeyOrderArray(people, qx::array(byName));        // people: Ref<MutableArray>
//
// The sort is the classical one of gapped insertion passes with the gaps ..., 121, 40, 13, 4, 1:
// not stable, but for the same keys in the same places the result is always the same, ties
// included.
//
// Elements are asked for the key itself, not for a key path. Missing and null values do not compare
// with others: where the sort meets one beside a value that has the comparison, it raises
// InvalidArgumentException, as it does for two values that have no order. Values without the
// comparison compare as the same. Whatever raises, in a comparison or a getter, the array then
// holds exactly the elements it held, in some order.
//
// Getters and comparisons of the application may run, each element's getter usually once. They had
// better leave the array alone. A mutable array belongs to one thread at a time.
#pragma once

#include <cstddef>

#include <QXFoundation/array.h>
#include <QXFoundation/sort_ordering.h>

namespace qx {

// Sorts by the first of the orderings; the others are of no account, ties included. No orderings
// leave the array as it is. A nil array does nothing.
QX_EXPORT void sortUsingKeyOrderArray(In<MutableArray> array, In<Array> orderings);

// A new array that is always empty: what is sorted is a new array, into which the elements are not
// copied. For the elements in order, sort a mutable copy. Nil for a nil array.
QX_EXPORT Ref<Array> sortedArrayUsingKeyOrderArray(In<Array> array, In<Array> orderings);

// Sorts the elements from an index on. Indexes are not tested beforehand: a range beyond the array
// raises RangeException when the sort reaches for what is not there. With a nil ordering every
// value is missing.
QX_EXPORT void _sortUsingKeyOrder(In<MutableArray> array, In<QXSortOrdering> ordering,
                                  std::size_t fromIndex, std::size_t count);

// ---- convenience, beside the operations above ----

// Sorts by the first ordering, what it finds the same by the second, and so on; elements that are
// the same for all of them stay in their order. Missing and null values come first, with a
// descending ordering last. Values without order among each other raise InvalidArgumentException,
// and the array is unchanged. An array that code of the application changes meanwhile raises
// InternalInconsistencyException.
QX_EXPORT void sortStablyUsingOrderings(In<MutableArray> array, In<Array> orderings);

// The same as a new array. Nil for a nil array.
QX_EXPORT Ref<Array> arraySortedStablyUsingOrderings(In<Array> array, In<Array> orderings);

}  // namespace qx
