// PointerArray: an ordered array of pointers, which may hold null pointers.
//
//     auto watchers = qx::PointerArray::weakObjectsPointerArray();
//     watchers->addPointer(watcher.get());
//     watcher = nullptr;                       // the slot stays, and reads as null
//     removeAllNulls(watchers);                // pointer_array_operations.h
//
// How an array keeps its pointers is chosen when it is made: as they are (it never looks behind
// them, and their objects are the caller's care), as counted references, or as weak references,
// which become null with their objects.
#pragma once

#include <cstddef>
#include <vector>

#include <QXFoundation/object.h>
#include <QXFoundation/string.h>
#include <QXFoundation/weak_ref.h>

namespace qx {

// The class is "NSPointerArray". Belongs to one thread at a time.
class QX_EXPORT PointerArray : public Object {
 public:
  // Raw pointers: nothing is retained, and nothing becomes null by itself.
  static Ref<PointerArray> init();
  static Ref<PointerArray> strongObjectsPointerArray();
  static Ref<PointerArray> weakObjectsPointerArray();

  // The number of slots, those that are null included.
  std::size_t count() const { return slots_.size(); }
  // The object in a slot; null in an empty one, and where a weak object is gone. Raises
  // RangeException at or beyond the count. A raw pointer is handed out as it is: hold a reference
  // only if its object is known to live.
  Object* pointerAtIndex(std::size_t index) const;
  // The same, held. Of an array of raw pointers the object must be alive.
  Ref<Object> objectAtIndex(std::size_t index) const;

  // Null is a pointer like any other here. An index beyond the count (at it, but for insertion)
  // raises RangeException, and nothing changes.
  void addPointer(Object* pointer);
  void insertPointer(Object* pointer, std::size_t atIndex);
  void replacePointerAtIndex(std::size_t index, Object* withPointer);
  void removePointerAtIndex(std::size_t index);
  // Removes the slots that are null when it begins, and keeps the order of the others.
  void compact();

  // Inside the library.
  enum class Memory : unsigned char { raw, strong, weak };
  // Inside the library.
  PointerArray(detail::Passkey, Memory memory) : memory_(memory) {}

 protected:
  ~PointerArray() override;

 private:
  // One of them is in use, by the array's memory.
  struct Slot {
    Object* pointer = nullptr;
    Ref<Object> strong;
    WeakRef<Object> weak;
  };
  Slot slotFor(Object* pointer) const;

  Memory memory_;
  std::vector<Slot> slots_;
};

QX_EXPORT const Class& classObject(detail::Type<PointerArray>);

}  // namespace qx
