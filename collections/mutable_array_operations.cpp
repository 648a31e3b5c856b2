#include <optional>
#include <vector>

#include <QXFoundation/array_shuffle.h>
#include <QXFoundation/exception.h>
#include <QXFoundation/mutable_array_operations.h>

#include "collections/added_operations.h"
#include "collections/membership.h"
#include "frame/array_storage.h"

namespace qx {

using detail::ArrayStorage;
using detail::Membership;

namespace {

// Moves what stays to the front and cuts off the rest; `before` keeps what goes until the array is
// whole again.
void closeUp(MutableArray& array, const Array& before, const std::vector<bool>& goes) {
  std::size_t kept = 0;
  for (std::size_t i = 0; i < before.count(); ++i) {
    if (goes[i]) continue;
    if (kept != i) array.replaceObjectAtIndex(kept, before.begin()[i]);
    ++kept;
  }
  while (array.count() > kept) array.removeLastObject();
}

// Removes the marked elements of an array that held `before` when they were marked.
void removeMarked(MutableArray& array, const Array& before, const std::vector<bool>& goes) {
  if (!detail::holdsStill(array, before))
    throw GenericException("an array was changed while its elements were compared");
  if (&array.cls() == &classOf<MutableArray>()) {
    closeUp(array, before, goes);
    return;
  }
  for (std::size_t i = before.count(); i-- > 0;) {
    if (goes[i]) array.removeObjectAtIndex(i);
  }
}

}  // namespace

// Comparing may run code of the application, which may let go of the array: each operation holds
// it.

void addObjectCheckNil(In<MutableArray> array, const PropertyValue& object) {
  if (array && !object.isNil()) array->addObject(object);
}

bool addObjectIfAbsent(In<MutableArray> array, const PropertyValue& object) {
  if (!array || object.isNil()) return false;
  const Ref<MutableArray> self = Ref<MutableArray>(array.get());
  const PropertyValue held = object;  // it may stand in the array
  if (self->containsObject(held)) return false;
  self->addObject(held);
  return true;
}

void addObjectIfMissing(In<MutableArray> array, const PropertyValue& object) {
  addObjectIfAbsent(array, object);
}

// A class of arrays may store something else than it is given, or elsewhere than at the end: what
// counts is what stands there.
void addObjectsFromArrayIfAbsent(In<MutableArray> array, In<Array> other) {
  if (!array || !other) return;
  const Ref<MutableArray> self = Ref<MutableArray>(array.get());
  const Ref<Array> held = ArrayStorage::steady(*other);
  std::optional<Membership> known(std::in_place, self, held->count());
  for (const PropertyValue& value : *held) {
    if (known->contains(value)) continue;
    self->addObject(value);
    const PropertyValue last = self->lastObject();
    if (last == value) {
      known->add(last);
    } else {
      known.emplace(self, held->count());
    }
  }
}

bool insertObjectIfAbsent(In<MutableArray> array, const PropertyValue& object,
                          std::uint32_t atIndex) {
  if (!array) return false;
  const Ref<MutableArray> self = Ref<MutableArray>(array.get());
  const PropertyValue held = object;
  if (!held.isNil() && self->containsObject(held)) return false;
  self->insertObject(held, atIndex);
  return true;
}

void removeObjectsNotInArray(In<MutableArray> array, In<Array> other) {
  if (!array) return;
  const Ref<MutableArray> self = Ref<MutableArray>(array.get());
  const Ref<Array> before = ArrayStorage::steady(*self);
  const Membership wanted(other, before->count());
  std::vector<bool> goes(before->count(), false);
  for (std::size_t i = 0; i < before->count(); ++i) goes[i] = !wanted.contains(before->begin()[i]);
  removeMarked(*self, *before, goes);
}

void removeObjectsInArrayUsingIsEqual(In<MutableArray> array, In<Array> other) {
  if (!array || !other) return;
  const Ref<MutableArray> self = Ref<MutableArray>(array.get());
  const Ref<Array> before = ArrayStorage::steady(*self);
  const Ref<Array> held = ArrayStorage::steady(*other);
  detail::Takeaway elements(*before, held->count());
  for (const PropertyValue& value : *held) elements.takeFirst(value);
  removeMarked(*self, *before, elements.taken());
}

namespace detail {

void addMutableArrayOperations(ClassBuilderBase& c) {
  using Value = const PropertyValue&;
  using Other = const Ref<Array>&;
  c.addFunction(
      "addObjectCheckNil:", +[](Value r, Value x) { addObjectCheckNil(r.as<MutableArray>(), x); });
  c.addFunction(
      "addObjectIfAbsent:",
      +[](Value r, Value x) { return addObjectIfAbsent(r.as<MutableArray>(), x); });
  c.addFunction(
      "addObjectIfMissing:",
      +[](Value r, Value x) { addObjectIfMissing(r.as<MutableArray>(), x); });
  c.addFunction(
      "addObjectsFromArrayIfAbsent:",
      +[](Value r, Other other) { addObjectsFromArrayIfAbsent(r.as<MutableArray>(), other); });
  c.addFunction(
      "insertObjectIfAbsent:atIndex:", +[](Value r, Value x, std::uint32_t index) {
        return insertObjectIfAbsent(r.as<MutableArray>(), x, index);
      });
  c.addFunction(
      "removeObjectsNotInArray:",
      +[](Value r, Other other) { removeObjectsNotInArray(r.as<MutableArray>(), other); });
  c.addFunction(
      "removeObjectsInArrayUsingIsEqual:",
      +[](Value r, Other other) { removeObjectsInArrayUsingIsEqual(r.as<MutableArray>(), other); });
  c.addFunction("kwRandomize", +[](Value r) { kwRandomize(r.as<MutableArray>()); });
}

}  // namespace detail
}  // namespace qx
