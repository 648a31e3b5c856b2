// QXSortOrdering: a key and the comparison by which objects are sorted; and the four comparisons,
// which every object performs.
//
//     auto byAge = qx::QXSortOrdering::sortOrderingWithKey("age", "compareDescending:");
//     sortUsingKeyOrderArray(people, qx::array(byAge));
#pragma once

#include <QXFoundation/object.h>
#include <QXFoundation/property_value.h>
#include <QXFoundation/selector.h>
#include <QXFoundation/string.h>

namespace qx {

class Archiver;
class Unarchiver;

namespace detail {
struct SortOrderingCoding;
}

// -1, 0 or 1: the receiver is before, with or behind the argument. Every object performs these by
// selector too, with a number as result, and a class of the application may declare its own, which
// these then call.
//
// An argument without `compare:` (for the last two, without `caseInsensitiveCompare:`) compares as
// 0, as does a nil receiver. A receiver without it, and an argument of a kind that has no order
// with the receiver's, raise InvalidArgumentException. The descending forms exchange -1 and 1;
// whatever else an application's `compare:` answers is passed on as it is.
QX_EXPORT int compareAscending(const PropertyValue& receiver, const PropertyValue& other);
QX_EXPORT int compareDescending(const PropertyValue& receiver, const PropertyValue& other);
QX_EXPORT int compareCaseInsensitiveAscending(const PropertyValue& receiver,
                                              const PropertyValue& other);
QX_EXPORT int compareCaseInsensitiveDescending(const PropertyValue& receiver,
                                               const PropertyValue& other);

// The class is "QXSortOrdering". Immutable, thread-safe, archived.
class QX_EXPORT QXSortOrdering : public Object {
 public:
  QXSortOrdering();
  // As initWithKey.
  QXSortOrdering(StringArg key, Selector selector);

  // The key is one key, no path; with a nil one every object's value is missing. The selector is
  // "compareAscending:", "compareDescending:", "compareCaseInsensitiveAscending:" or
  // "compareCaseInsensitiveDescending:"; any other sorts like the first.
  static Ref<QXSortOrdering> sortOrderingWithKey(StringArg key, SelectorFor<1> selector);
  static Ref<QXSortOrdering> initWithKey(StringArg key, SelectorFor<1> selector);
  // From the next two objects: the key, and the selector's name. Raises InvalidArgumentException
  // for objects that are no strings.
  static Ref<QXSortOrdering> initWithCoder(Unarchiver& coder);

  // What it was made with.
  const Ref<String>& key() const { return key_; }
  Selector selector() const { return selector_; }

  // The key, then the selector's name as a string.
  void encodeWithCoder(Archiver& coder) const;

 protected:
  ~QXSortOrdering() override;

 private:
  friend struct detail::SortOrderingCoding;
  Ref<String> key_;
  Selector selector_;
};

QX_EXPORT const Class& classObject(detail::Type<QXSortOrdering>);

}  // namespace qx
