// Inserting an object into an array that is sorted already, by binary search.
//
//     insertObjectInSortedArray(people, ann, byAge);                          // a QXSortOrdering
//     insertObjectInSortedArray(people, ann, qx::array(byCity, byName));      // sort descriptors
//     insertObjectInSortedArray(numbers, 4, [](const qx::PropertyValue& o, const qx::PropertyValue&
//     e,
//                                              int scale) { ... return -1, 0 or 1; }, 10);
//
// The search begins at place (count - 1) / 2. An object that is the same as one it meets goes to
// that one's place, before it; among several equal elements that may be any of them. Results other
// than -1, 0 and 1 count as 0.
//
// A nil array does nothing; a nil object raises InvalidArgumentException. When something raises,
// the array is unchanged. Comparisons that change the array themselves may meet a RangeException.
// A mutable array belongs to one thread at a time.
#pragma once

#include <concepts>
#include <type_traits>
#include <utility>

#include <QXFoundation/array.h>
#include <QXFoundation/sort_descriptor.h>
#include <QXFoundation/sort_ordering.h>

namespace qx {

namespace detail {

// A comparison of two values that is borrowed for a call.
struct OrderFunction {
  int (*call)(void* function, const PropertyValue& left, const PropertyValue& right);
  void* function;
};
QX_EXPORT void insertInSortedArray(In<MutableArray> array, const PropertyValue& object,
                                   OrderFunction order);

// A bool is refused: it tells whether, not where.
template <class R>
concept OrderResult =
    std::same_as<R, ComparisonResult> ||
    (std::convertible_to<R, int> && std::is_integral_v<R> && !std::same_as<R, bool>);

template <class F, class C>
concept OrderOf = requires(F& f, const PropertyValue& v, C& context) {
  { f(v, v, context) } -> OrderResult;
};

}  // namespace detail

// By a function of (object, element, context) that gives -1, 0, 1 or a ComparisonResult: where the
// object stands to the element.
template <class Function, class Context>
  requires detail::OrderOf<std::remove_reference_t<Function>, std::remove_reference_t<Context>>
void insertObjectInSortedArray(In<MutableArray> array, const PropertyValue& object,
                               Function&& usingFunction, Context&& context) {
  auto call = [&](const PropertyValue& left, const PropertyValue& right) {
    return static_cast<int>(usingFunction(left, right, context));
  };
  detail::insertInSortedArray(array, object,
                              {[](void* f, const PropertyValue& left, const PropertyValue& right) {
                                 return (*static_cast<decltype(call)*>(f))(left, right);
                               },
                               &call});
}

// By sort descriptors, with compareWithSortDescriptors.
QX_EXPORT void insertObjectInSortedArray(In<MutableArray> array, const PropertyValue& object,
                                         In<Array> usingSortDescriptors);

// By the ordering's comparison of the object's value, which is read once, with an element's value,
// null for a missing one. An object whose own value is missing compares as the same with every
// element, and goes to place (count - 1) / 2.
QX_EXPORT void insertObjectInSortedArray(In<MutableArray> array, const PropertyValue& object,
                                         In<QXSortOrdering> usingKeyOrder);

// What the first descriptor that does not answer 0 answers to `compareObject:toObject:`; 0 when
// none does, and for a nil array. Anything that performs the operation can be a descriptor.
QX_EXPORT int compareWithSortDescriptors(const PropertyValue& left, const PropertyValue& right,
                                         In<Array> descriptors);

}  // namespace qx
