// Operations that change arrays: adding what is absent, removing what is not wanted.
//
//     addObjectsFromArrayIfAbsent(names, more);
//     if (addObjectIfAbsent(names, "Bob")) greet("Bob");
//     removeObjectsInArrayUsingIsEqual(basket, returned);   // one for each
//
// Equal means by the `isEqual` of an array's own element, as `containsObject` uses it. Every
// operation can be performed by selector too. An array may be its own argument. A nil array does
// nothing and gives false; a nil argument array holds nothing. What takes another array takes time
// in proportion to the two lengths together, under the conditions that array_operations.h tells.
//
// Arrays whose class overrides the primitives of MutableArray see each change through them; what is
// removed, from the last to the first. A mutable array belongs to one thread at a time.
#pragma once

#include <cstdint>

#include <QXFoundation/array.h>
#include <QXFoundation/object.h>
#include <QXFoundation/property_value.h>

namespace qx {

// Appends the object unless it is nil.
QX_EXPORT void addObjectCheckNil(In<MutableArray> array, const PropertyValue& object);
// Appends the object when it is neither nil nor contained; true when it did.
QX_EXPORT bool addObjectIfAbsent(In<MutableArray> array, const PropertyValue& object);
// The same without an answer.
QX_EXPORT void addObjectIfMissing(In<MutableArray> array, const PropertyValue& object);
// Appends each element of `other` that is not contained yet, in order; one that `other` repeats is
// added once.
QX_EXPORT void addObjectsFromArrayIfAbsent(In<MutableArray> array, In<Array> other);
// Inserts the object unless it is contained; true when it did. Nil raises InvalidArgumentException,
// an index beyond the count RangeException.
QX_EXPORT bool insertObjectIfAbsent(In<MutableArray> array, const PropertyValue& object,
                                    std::uint32_t atIndex);
// Removes every element that `other` does not contain.
QX_EXPORT void removeObjectsNotInArray(In<MutableArray> array, In<Array> other);
// For each element of `other`, in order, removes the first element equal to it: [a, a, b] less [a]
// is [a, b].
QX_EXPORT void removeObjectsInArrayUsingIsEqual(In<MutableArray> array, In<Array> other);

}  // namespace qx
