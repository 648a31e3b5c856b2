#include <utility>

#include <QXFoundation/pointer_array.h>

#include "frame/library_class.h"
#include "frame/raise.h"

namespace qx {
namespace {

void checkIndex(const char* operation, std::size_t index, std::size_t count) {
  if (index >= count) detail::raiseIndex(operation, index, count);
}

}  // namespace

Ref<PointerArray> PointerArray::init() {
  return make<PointerArray>(detail::Passkey{}, Memory::raw);
}
Ref<PointerArray> PointerArray::strongObjectsPointerArray() {
  return make<PointerArray>(detail::Passkey{}, Memory::strong);
}
Ref<PointerArray> PointerArray::weakObjectsPointerArray() {
  return make<PointerArray>(detail::Passkey{}, Memory::weak);
}
PointerArray::~PointerArray() = default;

PointerArray::Slot PointerArray::slotFor(Object* pointer) const {
  Slot slot;
  if (memory_ == Memory::raw) slot.pointer = pointer;
  if (memory_ == Memory::strong) slot.strong = Ref<Object>(pointer);
  if (memory_ == Memory::weak) slot.weak = WeakRef<Object>(pointer);
  return slot;
}

Object* PointerArray::pointerAtIndex(std::size_t index) const {
  checkIndex("-[NSPointerArray pointerAtIndex:]", index, count());
  return memory_ == Memory::raw ? slots_[index].pointer : objectAtIndex(index).get();
}

Ref<Object> PointerArray::objectAtIndex(std::size_t index) const {
  checkIndex("-[NSPointerArray pointerAtIndex:]", index, count());
  const Slot& slot = slots_[index];
  if (memory_ == Memory::weak) return slot.weak.lock();
  return memory_ == Memory::strong ? slot.strong : Ref<Object>(slot.pointer);
}

void PointerArray::addPointer(Object* pointer) { slots_.push_back(slotFor(pointer)); }

void PointerArray::insertPointer(Object* pointer, std::size_t atIndex) {
  if (atIndex > count())
    detail::raiseIndex("-[NSPointerArray insertPointer:atIndex:]", atIndex, count());
  slots_.insert(slots_.begin() + static_cast<std::ptrdiff_t>(atIndex), slotFor(pointer));
}

// What a slot held is released last, when the array is whole again.
void PointerArray::replacePointerAtIndex(std::size_t index, Object* withPointer) {
  checkIndex("-[NSPointerArray replacePointerAtIndex:withPointer:]", index, count());
  Slot slot = slotFor(withPointer);
  std::swap(slots_[index], slot);
}

void PointerArray::removePointerAtIndex(std::size_t index) {
  checkIndex("-[NSPointerArray removePointerAtIndex:]", index, count());
  const Slot removed = std::move(slots_[index]);
  slots_.erase(slots_.begin() + static_cast<std::ptrdiff_t>(index));
}

void PointerArray::compact() {
  std::vector<Slot> kept;
  for (std::size_t i = 0; i < count(); ++i) {
    if (pointerAtIndex(i) != nullptr) kept.push_back(slots_[i]);
  }
  slots_.swap(kept);
}

void describe(ClassBuilder<PointerArray>& c) {
  c.name("NSPointerArray").inherits<Object>();
  c.operation("count", &PointerArray::count);
  c.operation(
      "addPointer:", +[](const PropertyValue& r, const Ref<Object>& pointer) {
        r.as<PointerArray>()->addPointer(pointer.get());
      });
  c.operation(
      "pointerAtIndex:", +[](const PropertyValue& r, std::size_t index) {
        return r.as<PointerArray>()->objectAtIndex(index);
      });
  c.operation(
      "insertPointer:atIndex:",
      +[](const PropertyValue& r, const Ref<Object>& pointer, std::size_t index) {
        r.as<PointerArray>()->insertPointer(pointer.get(), index);
      });
  c.operation(
      "removePointerAtIndex:", +[](const PropertyValue& r, std::size_t index) {
        r.as<PointerArray>()->removePointerAtIndex(index);
      });
  c.operation("compact", &PointerArray::compact);
}

const Class& classObject(detail::Type<PointerArray>) {
  return detail::buildLibraryClass<PointerArray>();
}

}  // namespace qx
