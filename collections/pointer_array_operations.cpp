#include <QXFoundation/pointer_array_operations.h>

#include "collections/added_operations.h"

namespace qx {
namespace {

std::size_t indexOf(const PointerArray& array, const Object* object) {
  for (std::size_t i = 0; i < array.count(); ++i) {
    if (array.pointerAtIndex(i) == object) return i;
  }
  return kNotFound;
}

}  // namespace

void addObject(In<PointerArray> array, In<Object> object) {
  if (array) array->addPointer(object.get());
}

bool containsObject(In<PointerArray> array, In<Object> object) {
  return array && indexOf(*array, object.get()) != kNotFound;
}

// The array is held: what is removed may be its last owner.
void removeObject(In<PointerArray> array, In<Object> object) {
  if (!array) return;
  const Ref<PointerArray> held = Ref<PointerArray>(array.get());
  const std::size_t index = indexOf(*held, object.get());
  if (index != kNotFound) held->removePointerAtIndex(index);
}

void removeObjectIdenticalTo(In<PointerArray> array, In<Object> object) {
  removeObject(array, object);
}

void removeAllObjects(In<PointerArray> array) {
  if (!array) return;
  const Ref<PointerArray> held = Ref<PointerArray>(array.get());
  for (std::size_t i = held->count(); i-- > 0;) {
    if (i < held->count()) held->removePointerAtIndex(i);  // an object that goes may remove others
  }
}

void removeAllNulls(In<PointerArray> array) {
  if (array) array->compact();
}

namespace detail {
namespace {

// Numbers, bools and null are no objects of their own: they are in no slot.
bool canStandInSlot(const PropertyValue& x) { return x.isNil() || x.object() != nullptr; }

}  // namespace

void addPointerArrayOperations(ClassBuilderBase& c) {
  using Value = const PropertyValue&;
  using Item = const Ref<Object>&;
  c.addFunction("addObject:", +[](Value r, Item x) { addObject(r.as<PointerArray>(), x); });
  c.addFunction(
      "containsObject:", +[](Value r, Value x) {
        return canStandInSlot(x) && containsObject(r.as<PointerArray>(), x.as<Object>());
      });
  c.addFunction(
      "removeObject:", +[](Value r, Value x) {
        if (canStandInSlot(x)) removeObject(r.as<PointerArray>(), x.as<Object>());
      });
  c.addFunction(
      "removeObjectIdenticalTo:", +[](Value r, Value x) {
        if (canStandInSlot(x)) removeObjectIdenticalTo(r.as<PointerArray>(), x.as<Object>());
      });
  c.addFunction("removeAllObjects", +[](Value r) { removeAllObjects(r.as<PointerArray>()); });
  c.addFunction("removeAllNulls", +[](Value r) { removeAllNulls(r.as<PointerArray>()); });
}

}  // namespace detail
}  // namespace qx
