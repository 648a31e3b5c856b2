// What sorting and sorted insertion refuse.

#include <QXFoundation/QXFoundation.h>

void sortsAndInserts(const qx::Ref<qx::MutableArray>& array, const qx::PropertyValue& object) {
  (void)qx::QXSortOrdering::sortOrderingWithKey("age", "compareDescending:");
  insertObjectInSortedArray(
      array, object,
      [](const qx::PropertyValue& a, const qx::PropertyValue& b, int) { return a.compare(b); }, 0);
}

#if MISUSE == 1
// EXPECT-ERROR(comparison without its colon): the_selector_needs_one_colon_for_each_argument
void f() { (void)qx::QXSortOrdering::sortOrderingWithKey("age", "compareDescending"); }

#elif MISUSE == 2
// EXPECT-ERROR(whether instead of where): no matching function for call to
// .insertObjectInSortedArray
void f(const qx::Ref<qx::MutableArray>& array, const qx::PropertyValue& object) {
  insertObjectInSortedArray(
      array, object,
      [](const qx::PropertyValue& a, const qx::PropertyValue& b, int) { return a.isLessThan(b); },
      0);
}

#elif MISUSE == 3
// EXPECT-ERROR(sorting an immutable array): sortUsingKeyOrderArray|no viable conversion|could not
// convert
void f(const qx::Ref<qx::Array>& array, const qx::Ref<qx::Array>& orderings) {
  sortUsingKeyOrderArray(array, orderings);
}

#elif MISUSE == 4
// EXPECT-ERROR(nil without saying which): call (of overloaded|to) .*insertObjectInSortedArray.* is
// ambiguous
void f(const qx::Ref<qx::MutableArray>& array, const qx::PropertyValue& object) {
  insertObjectInSortedArray(array, object, nullptr);
}

#endif
