#include <QXFoundation/sorted_insertion.h>

#include "frame/array_storage.h"
#include "ordering/key_probe.h"
#include "ordering/key_reader.h"
#include "ordering/mode.h"

namespace qx {
namespace detail {
namespace {

// `order(index)` is 1 where the object belongs behind the element at the index, and -1 where
// before.
template <class Order>
void insertSorted(MutableArray& array, const PropertyValue& object, Order order) {
  if (array.count() == 0) return array.addObject(object);
  auto low = std::ptrdiff_t{0};
  auto high = static_cast<std::ptrdiff_t>(array.count()) - 1;
  auto middle = high / 2;
  do {
    const int result = order(static_cast<std::size_t>(middle));
    if (result == 1) {
      low = middle + 1;
    } else if (result == -1) {
      high = middle - 1;
    } else {
      break;
    }
    middle = low + (high - low) / 2;
  } while (high >= low);
  array.insertObject(object, static_cast<std::size_t>(middle));
}

// Insertion by an ordering. As long as keys compare without code of the application, they are not
// held.
class KeyOrderInsertion {
 public:
  KeyOrderInsertion(MutableArray& array, const PropertyValue& object, QXSortOrdering* ordering)
      : array_(array),
        object_(object),
        ordering_(ordering),
        mode_(modeOf(ordering == nullptr ? Selector() : ordering->selector())),
        reader_(ordering == nullptr ? Ref<String>() : ordering->key()) {}

  void insert() {
    BorrowedKey key;
    if (!reader_.borrow(object_, key)) {
      hold();
      return insertSorted(array_, object_, [&](std::size_t index) { return ask(index); });
    }
    const KeyProbe probe(mode_, key);
    const PropertyValue* elements = ArrayStorage::values(array_);
    insertSorted(array_, object_, [&](std::size_t index) {
      BorrowedKey other;
      int result = 0;
      const bool isKnown =
          !held_ && reader_.borrow(elements[index], other) && probe.compare(other, result);
      return isKnown ? result : ask(index);
    });
  }

 private:
  void hold() {
    if (held_) return;
    held_ = true;
    heldArray_ = &array_;
    heldOrdering_ = ordering_;
    key_ = reader_.read(object_);
  }

  int ask(std::size_t index) {
    hold();
    const PropertyValue element = array_.objectAtIndex(index);
    const PropertyValue elementKey = reader_.read(element);
    return compareInMode(mode_, key_, elementKey.isNil() ? PropertyValue(null) : elementKey);
  }

  MutableArray& array_;
  const PropertyValue object_;
  QXSortOrdering* const ordering_;
  const Mode mode_;
  KeyReader reader_;

  bool held_ = false;
  Ref<MutableArray> heldArray_;
  Ref<QXSortOrdering> heldOrdering_;
  PropertyValue key_;  // once it is held
};

}  // namespace

void insertInSortedArray(In<MutableArray> array, const PropertyValue& object, OrderFunction order) {
  if (!array) return;
  const Ref<MutableArray> held(array.get());
  const PropertyValue heldObject = object;
  insertSorted(*held, heldObject, [&](std::size_t index) {
    const PropertyValue element = held->objectAtIndex(index);
    return order.call(order.function, heldObject, element);
  });
}

}  // namespace detail

void insertObjectInSortedArray(In<MutableArray> array, const PropertyValue& object,
                               In<Array> usingSortDescriptors) {
  const Ref<Array> descriptors(usingSortDescriptors.get());
  const auto compare = [](const PropertyValue& left, const PropertyValue& right,
                          const Ref<Array>& list) {
    return compareWithSortDescriptors(left, right, list);
  };
  insertObjectInSortedArray(array, object, compare, descriptors);
}

void insertObjectInSortedArray(In<MutableArray> array, const PropertyValue& object,
                               In<QXSortOrdering> usingKeyOrder) {
  if (array) detail::KeyOrderInsertion(*array, object, usingKeyOrder.get()).insert();
}

int compareWithSortDescriptors(const PropertyValue& left, const PropertyValue& right,
                               In<Array> descriptors) {
  if (!descriptors) return 0;
  const Ref<Array> held = detail::ArrayStorage::steady(*descriptors);
  for (const PropertyValue& descriptor : *held) {
    const int result =
        performSelector(descriptor, "compareObject:toObject:", left, right).intValue();
    if (result != 0) return result;
  }
  return 0;
}

}  // namespace qx
