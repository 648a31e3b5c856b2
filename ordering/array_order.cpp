#include "ordering/array_order.h"

#include <algorithm>
#include <cstring>

#include <QXFoundation/class_builder.h>

#include "frame/array_storage.h"

namespace qx::detail {

bool isPlain(const MutableArray& array) {
  static const std::uint16_t plain = classIndexOf(classOf<MutableArray>());
  return ObjectAccess::classIndex(array) == plain;
}

bool stillHolds(const Array& array, std::size_t index, const Array& elements) {
  return index <= array.count() && elements.count() <= array.count() - index &&
         std::equal(elements.begin(), elements.end(), array.begin() + index,
                    [](const PropertyValue& a, const PropertyValue& b) { return isSame(a, b); });
}

// Values are words that may be moved as bytes.
void reorder(MutableArray& array, std::size_t index, const std::vector<std::uint32_t>& order) {
  using Word = std::uint64_t;
  static_assert(sizeof(Word) == sizeof(PropertyValue));
  PropertyValue* values = ArrayStorage::values(array) + index;
  std::vector<Word> before(order.size());
  std::memcpy(before.data(), static_cast<const void*>(values), order.size() * sizeof(Word));
  for (std::size_t i = 0; i < order.size(); ++i) {
    std::memcpy(static_cast<void*>(values + i), &before[order[i]], sizeof(Word));
  }
}

Ref<QXSortOrdering> orderingAt(const Array& orderings, std::size_t index) {
  const PropertyValue& v = orderings.objectAtIndex(index);
  auto ordering = v.as<QXSortOrdering>();
  if (ordering == nullptr) raiseKind("a sort ordering", v);
  return ordering;
}

}  // namespace qx::detail
