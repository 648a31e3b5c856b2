// Array operations: sub-arrays by exclusion, intersection, difference and by what elements answer.
//
//     auto both = subarrayByIntersectingWithArray(mine, yours);
//     auto here = subarrayByPerformingSelector(files, "localPath", "tmp");
//     if (kwContainsArray(granted, wanted)) open();
//
// Each result is a new mutable array in the order of the receiver, which stays as it is. Equal
// means by the `isEqual` of an array's own element, as `containsObject` uses it. Every operation
// can be performed by selector too; a selector as argument is then given by its name. An array may
// be its own argument. A nil array gives nil or false; a nil argument array holds nothing.
//
// Intersection, difference and the like look the elements up by hash, in time proportional to the
// two lengths together. Elements whose class overrides one of `isEqual` and `hash` without the
// other, and containers that hold such, are compared one by one instead. Thread-safe, as far as the
// arrays and what their elements perform are.
#pragma once

#include <QXFoundation/array.h>
#include <QXFoundation/object.h>
#include <QXFoundation/property_value.h>
#include <QXFoundation/selector.h>

namespace qx {

// The elements that are not equal to the object.
[[nodiscard]] QX_EXPORT Ref<MutableArray> subarrayWithoutObject(In<Array> array,
                                                                const PropertyValue& object);
// The elements that `other` contains, those that are equal to each other included.
[[nodiscard]] QX_EXPORT Ref<MutableArray> subarrayByIntersectingWithArray(In<Array> array,
                                                                          In<Array> other);
// The elements that `other` does not contain.
[[nodiscard]] QX_EXPORT Ref<MutableArray> subarrayByDifferenceWithArray(In<Array> array,
                                                                        In<Array> other);

// The elements whose result of performing the selector is equal to the object; a nil result never
// is. An element without the operation raises InvalidArgumentException, as in the two below.
[[nodiscard]] QX_EXPORT Ref<MutableArray> subarrayByPerformingSelector(
    In<Array> array, SelectorFor<0> selector, const PropertyValue& equalTo);
// The first such element, or nil; the elements behind it are not asked.
[[nodiscard]] QX_EXPORT PropertyValue firstObjectByPerformingSelector(In<Array> array,
                                                                      SelectorFor<0> selector,
                                                                      const PropertyValue& equalTo);
// The results of performing the selector on each element, without nil, and of equal ones the first.
[[nodiscard]] QX_EXPORT Ref<MutableArray> arrayByPerformingSelector(In<Array> array,
                                                                    SelectorFor<0> selector);

// Whether every element of `other` is contained in the array; an empty `other` is. It must not
// change meanwhile: an `isEqual` of the application that changes it makes this raise
// GenericException.
QX_EXPORT bool kwContainsArray(In<Array> array, In<Array> other);

}  // namespace qx
