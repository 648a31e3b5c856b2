// What arrays perform by selector through this folder.

#include <QXFoundation/key_order_sorting.h>
#include <QXFoundation/sorted_insertion.h>

#include "ordering/added_operations.h"

namespace qx::detail {
namespace {

void sort(const PropertyValue& receiver, const Ref<Array>& orderings) {
  sortUsingKeyOrderArray(receiver.as<MutableArray>(), orderings);
}
void sortStably(const PropertyValue& receiver, const Ref<Array>& orderings) {
  sortStablyUsingOrderings(receiver.as<MutableArray>(), orderings);
}
Ref<Array> sorted(const PropertyValue& receiver, const Ref<Array>& orderings) {
  return sortedArrayUsingKeyOrderArray(receiver.as<Array>(), orderings);
}
Ref<Array> sortedStably(const PropertyValue& receiver, const Ref<Array>& orderings) {
  return arraySortedStablyUsingOrderings(receiver.as<Array>(), orderings);
}

template <class Third>
void insert(const PropertyValue& receiver, const PropertyValue& object, const Ref<Third>& order) {
  insertObjectInSortedArray(receiver.as<MutableArray>(), object, order);
}

}  // namespace

void addSortedArrayOperations(ClassBuilderBase& builder) {
  builder.addFunction("sortedArrayUsingKeyOrderArray:", &sorted);
  builder.addFunction("arraySortedStablyUsingOrderings:", &sortedStably);
}

void addSortingOperations(ClassBuilderBase& builder) {
  builder.addFunction("sortUsingKeyOrderArray:", &sort);
  builder.addFunction("sortStablyUsingOrderings:", &sortStably);
  builder.addFunction("insertObjectInSortedArray:usingKeyOrder:", &insert<QXSortOrdering>);
  builder.addFunction("insertObjectInSortedArray:usingSortDescriptors:", &insert<Array>);
}

}  // namespace qx::detail
