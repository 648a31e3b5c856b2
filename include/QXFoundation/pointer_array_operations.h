// Object-style operations on pointer arrays.
//
//     addObject(watchers, watcher);
//     if (containsObject(watchers, watcher)) removeObject(watchers, watcher);
//     removeAllNulls(watchers);
//
// Objects are told apart by identity alone, never by `isEqual`; nil is what a null slot holds. All
// of them can be performed by selector too. On a nil array they do nothing and give false. An array
// belongs to one thread at a time.
#pragma once

#include <QXFoundation/object.h>
#include <QXFoundation/pointer_array.h>

namespace qx {

// Appends the pointer.
QX_EXPORT void addObject(In<PointerArray> array, In<Object> object);
// Whether some slot holds the object itself.
QX_EXPORT bool containsObject(In<PointerArray> array, In<Object> object);
// Removes the first slot that holds the object itself, if there is one.
QX_EXPORT void removeObject(In<PointerArray> array, In<Object> object);
// Does what removeObject does.
QX_EXPORT void removeObjectIdenticalTo(In<PointerArray> array, In<Object> object);
// Removes every slot, from the last to the first.
QX_EXPORT void removeAllObjects(In<PointerArray> array);
// Removes exactly the slots that are null, and keeps the order of the others.
QX_EXPORT void removeAllNulls(In<PointerArray> array);

}  // namespace qx
