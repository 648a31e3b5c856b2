// Sorting by one ordering.

#include <QXFoundation/class_builder.h>
#include <QXFoundation/key_order_sorting.h>

#include "frame/array_storage.h"
#include "ordering/array_order.h"
#include "ordering/column_reading.h"
#include "ordering/mode.h"
#include "ordering/shell_sort.h"

namespace qx {
namespace detail {
namespace {

struct Run {
  MutableArray& array;
  const Ref<String> key;
  const Mode mode;
  const std::size_t first;
  const std::size_t count;
};

// Negative where the value `later`, which stands behind, has to go before the value `earlier`. Null
// stands for a missing value and is then the receiver; what null answers to another value counts
// the other way round.
int compareKeys(Mode mode, const PropertyValue& later, const PropertyValue& earlier) {
  const bool oneIsMissing = later.isNil() || earlier.isNil();
  const PropertyValue left = oneIsMissing ? PropertyValue(null) : later;
  const PropertyValue right = oneIsMissing && earlier.isNil() ? later : earlier;
  const int order = compareInMode(mode, left, right);
  const bool negated = left.isNull() && !right.isNull() && !right.isNil();
  return negated ? (order < 0) - (order > 0) : order;
}

// Compares the elements at `index` and `gap` behind it, and exchanges them if they are to be.
bool exchanges(const Run& run, std::size_t index, std::size_t gap) {
  const PropertyValue later = run.array.objectAtIndex(index + gap);
  const PropertyValue earlier = run.array.objectAtIndex(index);
  const PropertyValue laterKey = later.valueForKey(run.key);
  const PropertyValue earlierKey = earlier.valueForKey(run.key);
  if (compareKeys(run.mode, laterKey, earlierKey) >= 0) return false;
  run.array.replaceObjectAtIndex(index + gap, earlier);
  run.array.replaceObjectAtIndex(index, later);
  return true;
}

// Step by step, on the array itself.
void sortInPlace(const Run& run) {
  forEachGap(run.count, [&](std::size_t gap) {
    for (std::size_t i = gap; i < run.count; ++i) {
      std::size_t index = run.first + i - gap;
      while (exchanges(run, index, gap) && index >= run.first + gap) index -= gap;
    }
  });
}

// The order that the sort gives. Where no two keys are the same there is but one; otherwise the
// steps are taken on the keys' ranks.
std::vector<std::uint32_t> sortedOrder(KeyColumn& column, const Run& run) {
  Ranking ranking = column.rank();
  if (run.mode.descending) ranking.reverse();
  if (ranking.isDistinct()) return std::move(ranking.order);
  return shellOrder(ranking.ranks(run.count));
}

// False where the keys are to be compared step by step.
bool sortByColumn(const Run& run, KeyColumn& column) {
  if (column.order() == KeyColumn::Order::unknown) return false;
  if (column.order() == KeyColumn::Order::total) {
    reorder(run.array, run.first, sortedOrder(column, run));
  }
  return true;
}

// Where elements have to be asked for their keys: everything is held while they answer, and if they
// change the array meanwhile, the answers are not used.
bool sortByAskedKeys(const Run& run) {
  const Ref<Array> elements = Array::from(run.array.begin() + run.first, run.count);
  const std::vector<PropertyValue> keys = readKeys(*elements, run.key);
  if (!stillHolds(run.array, run.first, *elements)) return false;
  KeyColumn column(run.count, run.mode.ignoringCase);
  for (std::size_t i = 0; i < run.count; ++i) column.add(static_cast<std::uint32_t>(i), keys[i]);
  return sortByColumn(run, column);
}

bool sortByKeys(const Run& run) {
  const bool isWithin = run.first <= run.array.count() &&
                        run.count <= run.array.count() - run.first && run.count <= kMaxSorted;
  if (!isWithin || !isPlain(run.array)) return false;
  KeyColumn column(run.count, run.mode.ignoringCase);
  if (!readBorrowed(run.array.begin() + run.first, run.count, run.key, column)) {
    return sortByAskedKeys(run);
  }
  return sortByColumn(run, column);
}

}  // namespace
}  // namespace detail

void _sortUsingKeyOrder(In<MutableArray> array, In<QXSortOrdering> ordering, std::size_t fromIndex,
                        std::size_t count) {
  if (!array || count < 2) return;
  const Ref<MutableArray> held(array.get());
  const detail::Run run{*held, ordering ? ordering->key() : nullptr,
                        detail::modeOf(ordering ? ordering->selector() : Selector()), fromIndex,
                        count};
  if (!detail::sortByKeys(run)) detail::sortInPlace(run);
}

void sortUsingKeyOrderArray(In<MutableArray> array, In<Array> orderings) {
  if (!array || !orderings || orderings->count() == 0) return;
  _sortUsingKeyOrder(array, detail::orderingAt(*orderings, 0), 0, array->count());
}

Ref<Array> sortedArrayUsingKeyOrderArray(In<Array> array, In<Array> orderings) {
  if (!array) return nullptr;
  const auto sorted = MutableArray::init();
  sortUsingKeyOrderArray(sorted, orderings);
  return Array::from(sorted->begin(), sorted->count());
}

}  // namespace qx
