// Sorting by several orderings, stable.

#include <numeric>

#include <QXFoundation/exception.h>
#include <QXFoundation/key_order_sorting.h>

#include "frame/array_storage.h"
#include "frame/raise.h"
#include "ordering/array_order.h"
#include "ordering/column_reading.h"
#include "ordering/merge_sort.h"
#include "ordering/mode.h"

namespace qx {
namespace detail {
namespace {

bool isMissing(const PropertyValue& key) { return key.isNil() || key.isNull(); }

// The keys of all elements for one ordering, as ranks where they have them.
class Criterion {
 public:
  Criterion(const Array& elements, const QXSortOrdering& ordering)
      : mode_(modeOf(ordering.selector())), keys_(readKeys(elements, ordering.key())) {}

  // When no more code of the application runs before the comparisons.
  void rank() {
    KeyColumn column(keys_.size(), mode_.ignoringCase);
    for (std::size_t i = 0; i < keys_.size(); ++i) {
      if (!isMissing(keys_[i])) column.add(static_cast<std::uint32_t>(i), keys_[i]);
    }
    if (column.order() == KeyColumn::Order::total) ranks_ = column.rank().ranks(keys_.size());
  }

  // Positive where `b` belongs before `a`.
  int compare(std::uint32_t a, std::uint32_t b) const {
    if (!ranks_.empty()) {
      const int order = (ranks_[a] > ranks_[b]) - (ranks_[a] < ranks_[b]);
      return mode_.descending ? -order : order;
    }
    const bool oneIsMissing = isMissing(keys_[a]) || isMissing(keys_[b]);
    if (!oneIsMissing) return compareInMode(mode_, keys_[a], keys_[b]);
    const int order = isMissing(keys_[b]) - isMissing(keys_[a]);
    return mode_.descending ? -order : order;
  }

 private:
  const Mode mode_;
  const std::vector<PropertyValue> keys_;
  std::vector<std::int32_t> ranks_;
};

std::vector<std::uint32_t> stableOrder(const Array& elements, const Array& orderings) {
  std::vector<Criterion> criteria;
  criteria.reserve(orderings.count());
  for (std::size_t i = 0; i < orderings.count(); ++i) {
    criteria.emplace_back(elements, *orderingAt(orderings, i));
  }
  for (Criterion& c : criteria) c.rank();
  std::vector<std::uint32_t> order(elements.count());
  std::iota(order.begin(), order.end(), 0U);
  mergeSort(order, [&](std::uint32_t a, std::uint32_t b) {
    for (const Criterion& c : criteria) {
      if (const int result = c.compare(a, b); result != 0) return result;
    }
    return 0;
  });
  return order;
}

Ref<Array> steadyArray(In<Array> array) {
  if (array->count() > kMaxSorted) raiseTooLong("an array to be sorted");
  return ArrayStorage::steady(*array);
}

}  // namespace
}  // namespace detail

void sortStablyUsingOrderings(In<MutableArray> array, In<Array> orderings) {
  if (!array || !orderings) return;
  const Ref<MutableArray> held(array.get());
  const Ref<Array> elements = detail::steadyArray(held);
  const std::vector<std::uint32_t> order =
      detail::stableOrder(*elements, *detail::ArrayStorage::steady(*orderings));
  if (held->count() != elements->count() || !detail::stillHolds(*held, 0, *elements)) {
    throw InternalInconsistencyException("the array was changed while it was being sorted");
  }
  if (detail::isPlain(*held)) return detail::reorder(*held, 0, order);
  for (std::size_t i = 0; i < order.size(); ++i) {
    if (order[i] != i) held->replaceObjectAtIndex(i, elements->objectAtIndex(order[i]));
  }
}

Ref<Array> arraySortedStablyUsingOrderings(In<Array> array, In<Array> orderings) {
  if (!array) return nullptr;
  auto sorted = MutableArray::from(array->begin(), array->count());
  sortStablyUsingOrderings(sorted, orderings);
  return Array::from(sorted->begin(), sorted->count());
}

}  // namespace qx
